#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace velmora {

// Writes `bytes` to a temporary file beside `path` and renames it over `path`, so the file is
// there whole or not changed at all. False with `error` set on failure.
bool WriteWhole(const std::filesystem::path& path, std::string_view bytes, std::string& error);

}  // namespace velmora
