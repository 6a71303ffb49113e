#pragma once
// Where the programs find their data: the folder of the executable first, as always; an
// installed program, whose folder holds no data, uses the user's data folder instead.

#include <filesystem>
#include <string>

namespace velmora {

// The folder of the executable when it holds "Arpt index.txt" or FSXFiles, else `userDir`
// (when known). Neither having data gives `userDir`, so messages name the folder to fill.
std::filesystem::path ChooseDataDir(const std::filesystem::path& exeDir,
                                    const std::filesystem::path& userDir);

// True when `dir` holds the index or FSXFiles.
bool HasData(const std::filesystem::path& dir);

// The window's caption when `dataDir` holds no data: where to put it and how to index it.
// Empty when there is data.
std::string NoDataCaption(const std::filesystem::path& dataDir);

}  // namespace velmora
