#include "shell/atomic_write.h"

#include <cstdio>
#include <random>

namespace velmora {

bool WriteWhole(const std::filesystem::path& path, std::string_view bytes, std::string& error) {
  std::random_device random;
  std::filesystem::path temp = path;
  temp += ".part" + std::to_string(random());
  std::FILE* file = std::fopen(temp.c_str(), "wbx");
  if (file == nullptr) {
    error = "can't write " + path.string();
    return false;
  }
  const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
  const bool closed = std::fclose(file) == 0;
  std::error_code ec;
  if (written && closed) std::filesystem::rename(temp, path, ec);
  if (!written || !closed || ec) {
    std::filesystem::remove(temp, ec);
    error = "can't write " + path.string() + " (disk full or no permission?)";
    return false;
  }
  return true;
}

}  // namespace velmora
