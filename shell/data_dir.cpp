#include "shell/data_dir.h"

#include "data/platform.h"
#include "shell/form.h"

namespace velmora {

bool HasData(const std::filesystem::path& dir) {
  std::error_code ec;
  return std::filesystem::exists(dir / kIndexFileName, ec) ||
         std::filesystem::exists(dir / kAirportFolder, ec);
}

std::filesystem::path ChooseDataDir(const std::filesystem::path& exeDir,
                                    const std::filesystem::path& userDir) {
  if (HasData(exeDir) || userDir.empty()) return exeDir;
  return userDir;
}

std::string NoDataCaption(const std::filesystem::path& dataDir) {
  if (HasData(dataDir)) return {};
  return "Velmora - no data: import your decompiled FSX airport files with velmora-import (or "
         "drop them here), or put your FSXFiles folder and vor.nav into " +
         PathToUtf8(dataDir) + ", then run velmora-index";
}

}  // namespace velmora
