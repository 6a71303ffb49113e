#pragma once
// The kinds of airport source the import reads, told apart by their extension in any letter
// case: BglComp XML (".xml"), and what the one reader for each kind made of a file.

#include <filesystem>
#include <string>

#include "import/xml_source.h"

namespace velmora {

// Whether a file found in a searched folder is a source.
bool IsSourceFile(const std::filesystem::path& path);

// How much of a file a reader takes: all, or where it can pass over airports cheaply, only
// their idents and places with the navaids in full (a library's first pass).
enum class SourceDetail { kFull, kOutline };

// The file read by the reader of its kind.
SourceTree ReadSourceFile(const std::filesystem::path& path,
                          SourceDetail detail = SourceDetail::kFull);

// "FILE:LINE: reason" (XML), "FILE: offset N: reason" (binary) or "FILE: reason" (the whole
// file) for a source that was not read.
std::string SourceProblem(const std::filesystem::path& path, const SourceTree& tree);

}  // namespace velmora
