#pragma once
// Imported VORs added to "vor.nav" in its own fields; the lines already there stay as they are.

#include <filesystem>
#include <iosfwd>
#include <vector>

#include "import/writer.h"

namespace velmora {

struct VorMerge {
  bool ok = true;  // false when the list could not be read or written: nothing changed
  int added = 0;
  int known = 0;    // the same ident within a minute of arc of a VOR already listed
  int leftOut = 0;  // beyond the list's 8,001 lines
};

// One line of the list: name;lon deg;lon min;lat deg;lat min;class;ident;frequency.
std::string VorLine(const VorRecord& vor);

VorMerge MergeVors(const std::filesystem::path& file, const std::vector<VorRecord>& vors,
                   std::ostream& err);

}  // namespace velmora
