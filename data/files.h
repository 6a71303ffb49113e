#pragma once
// Which files the readers may open: regular files only, and airport files only below their
// folder. A FIFO, a device or a socket would block or never end; a path out of the folder
// reads what the data was never meant to reach.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "data/platform.h"  // OpenRegularFile

namespace velmora {

// The data folder: the index, the VOR list and the folder of airport files.
inline constexpr std::string_view kIndexFileName = "Arpt index.txt";
inline constexpr std::string_view kVorFileName = "vor.nav";
inline constexpr std::string_view kAirportFolder = "FSXFiles";

// `folder` / `relative` when `relative` names something below the folder, judged on the
// text alone (the folder itself may be a link); none for an empty path, one with a root (a
// drive or a leading slash, absolute or not) or one whose ".." climbs out. `relative` is
// Windows-1252, as the index gives it.
std::optional<std::filesystem::path> PathBelow(const std::filesystem::path& folder,
                                               std::string_view relative);

// The whole of a regular file of at most `limit` bytes into `bytes`; false with `reason` ("can't
// be read", "not a plain file", "larger than N MB - not read") otherwise.
bool ReadSmallFile(const std::filesystem::path& path, std::uintmax_t limit, std::string& bytes,
                   std::string& reason);

}  // namespace velmora
