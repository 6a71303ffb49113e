#pragma once
// Which files the readers may open: regular files only, and airport files only below their
// folder. A FIFO, a device or a socket would block or never end; a path out of the folder
// reads what the data was never meant to reach.

#include <cstdio>
#include <filesystem>
#include <optional>
#include <string_view>

namespace velmora {

enum class OpenStatus { kOpened, kUnreadable, kNotRegular };

// Opens `path` for reading if it is, or links to, a regular file. Never blocks: the open
// itself doesn't wait for a FIFO's writer. `file` is set only for kOpened.
OpenStatus OpenRegularFile(const std::filesystem::path& path, std::FILE*& file);

// `folder` / `relative` when `relative` names something below the folder, judged on the
// text alone (the folder itself may be a link); none for an empty or absolute path or one
// whose ".." climbs out.
std::optional<std::filesystem::path> PathBelow(const std::filesystem::path& folder,
                                               std::string_view relative);

}  // namespace velmora
