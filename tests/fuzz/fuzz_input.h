#pragma once
// What the fuzz targets share. An input is a first line holding an airport code, then the
// bytes of a file. The input's size picks the reader's buffer (16 to 2048 bytes) and a small
// line limit, so that line ends and CR LF pairs fall on every buffer boundary and long lines
// are passed over; it also picks the Zoom and the pan a chart is drawn at.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "data/line_reader.h"
#include "geometry/mapping.h"

namespace velmora::fuzz {

inline constexpr std::size_t kMaxLine = 4096;

struct Input {
  std::string_view code;
  std::string_view bytes;
  std::size_t chunk = 16;
  View view;
};

inline Input Take(const std::uint8_t* data, std::size_t size) {
  Input in;
  const std::string_view all(reinterpret_cast<const char*>(data), size);
  const std::size_t lineEnd = all.find('\n');
  in.code = all.substr(0, lineEnd == std::string_view::npos ? 0 : lineEnd);
  in.bytes = lineEnd == std::string_view::npos ? all : all.substr(lineEnd + 1);
  in.chunk = std::size_t{16} << (size % 8);
  in.view.Zoom = kZoomMin + kZoomStep * static_cast<std::int32_t>(size % 25);
  const std::int32_t side = static_cast<std::int32_t>(size / 25 % 3) - 1;
  in.view.PanX = side * kPanLimit;
  in.view.PanY = -side * kPanLimit;
  return in;
}

}  // namespace velmora::fuzz
