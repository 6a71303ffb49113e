#pragma once
// Screen positions far off the chart are clamped to 32 bits, so a pan or a label offset added
// to one could overflow. Every such sum is formed here, in 64 bits, and saturates.

#include <algorithm>
#include <cstdint>
#include <limits>

namespace velmora {

// A position on the canvas, twips.
struct ScreenPoint {
  std::int32_t x, y;
};

constexpr std::int32_t ScreenAdd(std::int32_t position, std::int32_t offset) {
  constexpr std::int64_t kLow = std::numeric_limits<std::int32_t>::min();
  constexpr std::int64_t kHigh = std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(std::clamp(std::int64_t{position} + offset, kLow, kHigh));
}

}  // namespace velmora
