#pragma once
// Compiled BGL scenery files of FSX and Prepar3D (v4 to v6) read into the same tree the XML
// reader gives for the BglComp source they came from: airports with runways, ILS, starts, COM
// frequencies and approaches, and the VOR, NDB and waypoint records. Everything else in a BGL
// (scenery, taxiways, terrain) is stepped over by its size. Every byte is read through one
// bounds-checked little-endian cursor; a damaged file gives "offset N: reason" and no records.

#include <cstdint>
#include <filesystem>
#include <string_view>

#include "import/xml_source.h"

namespace velmora {

// kOutline: airports without children (ident, lat, lon) and navaids in full, so that a first
// pass over a whole scenery library learns where airports and fixes are without paying for
// approaches, runways and names it will mostly not keep.
enum class BglDetail { kFull, kOutline };

// Records nested deeper than this (airport, approach, transition, leg list is 4) are damage.
inline constexpr int kMaxBglDepth = 8;

// The bytes of a whole BGL file.
SourceTree ParseBgl(std::string_view bytes, BglDetail detail = BglDetail::kFull);

// A file; only regular files are read, larger than kMaxSourceBytes are refused unread.
SourceTree ReadBglFile(const std::filesystem::path& path, BglDetail detail = BglDetail::kFull);

// Identifier packings of section 3.5 of the format: base-38 characters (blank, 0-9, A-Z).
std::string BglIdent(std::uint32_t code);         // the code itself, unshifted ("plain")
std::string BglTaggedIdent(std::uint32_t raw);    // bits 5-31, bits 0-4 a type tag
std::string BglRegion(std::uint32_t raw);         // bits 0-10 of a region + airport dword
std::string BglRegionAirport(std::uint32_t raw);  // bits 11-31 of it

// Degrees of the packed coordinates (longitude east positive, latitude north positive).
double BglLongitude(std::uint32_t raw);
double BglLatitude(std::uint32_t raw);

}  // namespace velmora
