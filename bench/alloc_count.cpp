// Counting replacements of the global allocator, so a benchmark can show it allocates nothing.
// Kept apart from the data generator: replacing operator new concerns the whole program.

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>

#include "bench/bench_support.h"

namespace {
std::atomic<std::size_t> gAllocations{0};

void* Allocate(std::size_t n) {
  gAllocations.fetch_add(1, std::memory_order_relaxed);
  return std::malloc(n == 0 ? 1 : n);
}

void* AllocateAligned(std::size_t n, std::align_val_t align) {
  gAllocations.fetch_add(1, std::memory_order_relaxed);
  void* p = nullptr;
  const std::size_t a = std::max(sizeof(void*), static_cast<std::size_t>(align));
  return posix_memalign(&p, a, n == 0 ? 1 : n) == 0 ? p : nullptr;
}
}  // namespace

void* operator new(std::size_t n) {
  if (void* p = Allocate(n)) return p;
  throw std::bad_alloc();
}
void* operator new[](std::size_t n) {
  if (void* p = Allocate(n)) return p;
  throw std::bad_alloc();
}
void* operator new(std::size_t n, const std::nothrow_t&) noexcept {
  return Allocate(n);
}
void* operator new[](std::size_t n, const std::nothrow_t&) noexcept {
  return Allocate(n);
}
void* operator new(std::size_t n, std::align_val_t a) {
  if (void* p = AllocateAligned(n, a)) return p;
  throw std::bad_alloc();
}
void* operator new[](std::size_t n, std::align_val_t a) {
  if (void* p = AllocateAligned(n, a)) return p;
  throw std::bad_alloc();
}
void operator delete(void* p) noexcept {
  std::free(p);
}
void operator delete[](void* p) noexcept {
  std::free(p);
}
void operator delete(void* p, std::size_t) noexcept {
  std::free(p);
}
void operator delete[](void* p, std::size_t) noexcept {
  std::free(p);
}
void operator delete(void* p, std::align_val_t) noexcept {
  std::free(p);
}
void operator delete[](void* p, std::align_val_t) noexcept {
  std::free(p);
}
void operator delete(void* p, std::size_t, std::align_val_t) noexcept {
  std::free(p);
}
void operator delete[](void* p, std::size_t, std::align_val_t) noexcept {
  std::free(p);
}

std::size_t velmora::bench::AllocationCount() {
  return gAllocations.load(std::memory_order_relaxed);
}
