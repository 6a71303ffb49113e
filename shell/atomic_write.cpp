#include "shell/atomic_write.h"

#include <cstdio>
#include <random>

#include "data/platform.h"

namespace velmora {

bool WriteWhole(const std::filesystem::path& path, std::string_view bytes, std::string& error) {
  std::random_device random;
  std::filesystem::path temp = path;
  temp += ".part" + std::to_string(random());
  std::FILE* file = CreateNewFile(temp);
  if (file == nullptr) {
    error = "can't write " + path.string();
    return false;
  }
  const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
  const bool closed = std::fclose(file) == 0;
  const bool renamed = written && closed && RenameOver(temp, path);
  if (!renamed) {
    std::error_code ec;
    std::filesystem::remove(temp, ec);
    error = "can't write " + path.string() + " (disk full or no permission?)";
    return false;
  }
  return true;
}

}  // namespace velmora
