#pragma once
// The sample re-expressed the ways decompilers and hand edits write BglComp files, for the
// import tests: each style converts back to the sample's own texts exactly.

#include <filesystem>
#include <string>
#include <vector>

namespace velmora::test {

struct SourceStyle {
  std::string name;
  bool wordAlone = false;  // "<Airport" alone, one attribute a line, in reverse order
  bool oneLine = false;    // every attribute of an element on its line
  char quote = '"';
  enum class Coords { kReader, kDecimal, kDms } coords = Coords::kReader;
  char lengthUnit = 'M';     // elevations, runway lengths and widths; 0 for none
  char altitudeUnit = 'F';   // leg altitudes
  char rhoUnit = 0;          // 0: the reader's own unit
  bool bglMagvar = false;    // east negative, as BglComp writes it
  bool wholeCourse = false;  // "160" for "160.0"
  enum class Encoding { kCp1252, kUtf8, kLatin1 } encoding = Encoding::kCp1252;
  bool navaidsApart = false;  // NDBs, waypoints and the VOR list in a navaid file of their own
  bool clutter = false;       // taxiway points, scenery objects and comments around the records
  bool runwayStarts = false;  // each start as a <RunwayStart> of its runway, named by its end
};

// Every style the import must read, the decompiler's own first.
std::vector<SourceStyle> SourceStyles();

struct SourceFile {
  std::string name;
  std::string bytes;
};

// The sample's airport files (and for navaidsApart the navaid file) in `style`.
std::vector<SourceFile> SampleSources(const SourceStyle& style);

}  // namespace velmora::test
