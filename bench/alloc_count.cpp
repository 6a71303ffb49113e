// Counting replacements of the global allocator, so a benchmark can show it allocates nothing.
// Kept apart from the data generator: replacing operator new concerns the whole program. The
// array and nothrow forms call these two by default, so they count too.

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>

#include "bench/bench_support.h"

namespace {
std::atomic<std::size_t> gAllocations{0};
}  // namespace

void* operator new(std::size_t n) {
  gAllocations.fetch_add(1, std::memory_order_relaxed);
  if (void* p = std::malloc(n == 0 ? 1 : n)) return p;
  throw std::bad_alloc();
}
void* operator new(std::size_t n, std::align_val_t align) {
  gAllocations.fetch_add(1, std::memory_order_relaxed);
  void* p = nullptr;
  const std::size_t a = std::max(sizeof(void*), static_cast<std::size_t>(align));
  if (posix_memalign(&p, a, n == 0 ? 1 : n) == 0) return p;
  throw std::bad_alloc();
}
// The other forms of delete end here by default, and everything above came from malloc.
void operator delete(void* p) noexcept {
  std::free(p);
}
void operator delete(void* p, std::size_t) noexcept {
  std::free(p);
}
void operator delete(void* p, std::align_val_t) noexcept {
  std::free(p);
}

std::size_t velmora::bench::AllocationCount() {
  return gAllocations.load(std::memory_order_relaxed);
}
