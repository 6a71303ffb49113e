// The simulator's scenery library: scenery.cfg in the encodings and line ends the simulators
// write, the areas it keeps and leaves out, and the folders found the way Windows finds them.

#include "import/library.h"

#include <gtest/gtest.h>

#include <sstream>

#include "data/platform.h"
#include "test_support.h"

namespace velmora {
namespace {

using test::TempDir;

std::string Utf16(std::string_view ascii, bool bigEndian) {
  std::string out = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
  for (const char c : ascii) {
    out += bigEndian ? std::string{'\0', c} : std::string{c, '\0'};
  }
  return out;
}

constexpr std::string_view kTwoAreas =
    "[General]\r\nTitle=FS World\r\n\r\n"
    "[Area.001]\r\nTitle=Default Terrain\r\nLocal=Scenery\\World\r\nLayer=1\r\nActive=TRUE\r\n"
    "\r\n[Area.002]\r\nTitle=Addon\r\nLocal=Addon Scenery\r\nLayer=7\r\nActive=FALSE\r\n";

struct EncodingCase {
  std::string name;
  std::string bytes;
};

TEST(SceneryLibrary, ReadsEveryEncodingAndLineEnd) {
  std::string lf(kTwoAreas);
  std::erase(lf, '\r');
  const std::vector<EncodingCase> cases = {
      {"UTF-8, CR LF", std::string(kTwoAreas)},
      {"UTF-8 with BOM", "\xEF\xBB\xBF" + std::string(kTwoAreas)},
      {"LF alone", lf},
      {"UTF-16 LE with BOM", Utf16(kTwoAreas, false)},
      {"UTF-16 BE with BOM", Utf16(kTwoAreas, true)},
  };
  for (const EncodingCase& c : cases) {
    SCOPED_TRACE(c.name);
    const SceneryLibrary lib = ParseSceneryLibrary(c.bytes);
    ASSERT_EQ(lib.areas.size(), 2u);
    EXPECT_TRUE(lib.problems.empty());
    EXPECT_EQ(lib.areas[0].number, 1);
    EXPECT_EQ(lib.areas[0].title, "Default Terrain");
    EXPECT_EQ(lib.areas[0].local, "Scenery\\World");
    EXPECT_EQ(lib.areas[0].layer, 1);
    EXPECT_TRUE(lib.areas[0].active);
    EXPECT_EQ(lib.areas[0].line, 4u);
    EXPECT_EQ(lib.areas[1].local, "Addon Scenery");
    EXPECT_EQ(lib.areas[1].layer, 7);
    EXPECT_FALSE(lib.areas[1].active);
  }
}

TEST(SceneryLibrary, TakesWindows1252WhereTheBytesAreNoUtf8) {
  const SceneryLibrary lib =
      ParseSceneryLibrary("[Area.3]\nTitle=A\xE9roport\nLocal=Addon\\J\xFCrgen\n");
  ASSERT_EQ(lib.areas.size(), 1u);
  EXPECT_EQ(lib.areas[0].title, "A\xC3\xA9roport");
  EXPECT_EQ(lib.areas[0].local, "Addon\\J\xC3\xBCrgen");
}

struct AreaCase {
  std::string name;
  std::string text;
  std::size_t areas;
  std::string problem;  // the start of the one problem told, or empty
  int layer = 0;        // of the first area kept
  bool active = true;
};

TEST(SceneryLibrary, KeepsOrLeavesOutEachArea) {
  const std::vector<AreaCase> cases = {
      {"no Layer: the area number", "[Area.012]\nLocal=x\n", 1, "", 12, true},
      {"no Active: active", "[area.4]\nlocal=x\nlayer=2\n", 1, "", 2, true},
      {"Active in lower case", "[Area.4]\nLocal=x\nActive=false\n", 1, "", 4, false},
      {"no Local", "[Area.4]\nTitle=t\n", 0, "1: [Area.4] has no Local= - left out"},
      {"a Layer that is no number, and nothing more told of it",
       "[Area.4]\nLocal=x\nLayer=top\nLayer=-1\n", 0,
       "3: Layer=top is no layer number - area left out"},
      {"a negative Layer", "[Area.4]\nLocal=x\nLayer=-1\n", 0,
       "3: Layer=-1 is no layer number - area left out"},
      {"an area number out of reason", "[Area.99999999999]\nLocal=x\n", 0,
       "1: [Area.99999999999] is no area number - left out"},
      {"a Layer just beyond any library's", "[Area.4]\nLocal=x\nLayer=1000000\n", 0,
       "3: Layer=1000000 is no layer number - area left out"},
      {"a Local with a control character", "[Area.4]\nLocal=a\x1F\n", 0,
       "2: Local= names no folder - area left out"},
      {"a Local longer than any folder", "[Area.4]\nLocal=" + std::string(1025, 'a') + "\n", 0,
       "2: Local= names no folder - area left out"},
      {"other sections and comments", "; x\n[General]\nLocal=y\n[Area.1]\n# c\nLocal=x\n", 1, "", 1,
       true},
  };
  for (const AreaCase& c : cases) {
    SCOPED_TRACE(c.name);
    const SceneryLibrary lib = ParseSceneryLibrary(c.text);
    EXPECT_EQ(lib.areas.size(), c.areas);
    if (c.problem.empty()) {
      EXPECT_TRUE(lib.problems.empty());
    } else {
      ASSERT_EQ(lib.problems.size(), 1u);
      EXPECT_EQ(lib.problems[0], c.problem);
    }
    if (!lib.areas.empty()) {
      EXPECT_EQ(lib.areas[0].layer, c.layer);
      EXPECT_EQ(lib.areas[0].active, c.active);
    }
  }
}

TEST(SceneryLibrary, FindsFoldersInAnyLetterCaseInLayerOrder) {
  TempDir dir;
  const auto sim = dir.path() / "sim";
  dir.write("sim/Scenery/World/scenery/world.bgl", "x");
  dir.write("sim/Addon Scenery/LEAR/Scenery/b.BGL", "x");
  dir.write("sim/Addon Scenery/LEAR/Scenery/a.bgl", "x");
  dir.write("sim/Addon Scenery/LEAR/Scenery/notes.txt", "x");
  const SceneryLibrary lib = ParseSceneryLibrary(
      "[Area.1]\nTitle=High\nLocal=addon scenery\\lear\nLayer=9\n"
      "[Area.2]\nTitle=Low\nLocal=SCENERY\\WORLD\nLayer=1\n"
      "[Area.3]\nTitle=Off\nLocal=Scenery\\World\nLayer=5\nActive=FALSE\n"
      "[Area.4]\nTitle=Gone\nLocal=Scenery\\Missing\nLayer=4\n");
  std::ostringstream err;
  const auto folders = FindLibraryFolders(lib, sim, "scenery.cfg", err);
  ASSERT_EQ(folders.size(), 2u);
  EXPECT_EQ(folders[0].area->title, "Low");
  EXPECT_TRUE(std::filesystem::equivalent(folders[0].scenery, sim / "Scenery/World/scenery"));
  EXPECT_EQ(folders[1].area->title, "High");
  ASSERT_EQ(folders[1].files.size(), 2u);
  EXPECT_EQ(folders[1].files[0].filename(), "a.bgl");
  EXPECT_EQ(folders[1].files[1].filename(), "b.BGL");
  EXPECT_EQ(err.str(), "scenery.cfg:14: area \"Gone\": no folder " +
                           PathToUtf8(sim / "Scenery/Missing") + "/scenery - skipped\n");
}

TEST(SceneryLibrary, FindsWindowsPathsOfAWinePrefix) {
  if (std::filesystem::path("C:/").is_absolute()) {
    GTEST_SKIP() << "on Windows a drive letter names a real drive, not a Wine prefix's";
  }
  TempDir dir;
  const auto driveC = dir.path() / "prefix" / "drive_c";
  const auto sim = driveC / "Program Files" / "FSX";
  dir.write("prefix/drive_c/Addon/LEAR/scenery/a.bgl", "x");
  dir.write("prefix/drive_c/Program Files/FSX/Scenery/Base/scenery/b.bgl", "x");
  const SceneryLibrary lib = ParseSceneryLibrary(
      "[Area.1]\nTitle=Absolute\nLocal=C:\\addon\\lear\nLayer=2\n"
      "[Area.2]\nTitle=Relative\nLocal=scenery\\BASE\\\nLayer=1\n"
      "[Area.3]\nTitle=Other drive\nLocal=Z:\\Addon\nLayer=3\n");
  std::ostringstream err;
  const auto folders = FindLibraryFolders(lib, sim, "cfg", err);
  ASSERT_EQ(folders.size(), 2u);
  EXPECT_TRUE(std::filesystem::equivalent(folders[0].scenery, sim / "Scenery/Base/scenery"));
  EXPECT_TRUE(std::filesystem::equivalent(folders[1].scenery, driveC / "Addon/LEAR/scenery"));
  EXPECT_EQ(err.str(),
            "cfg:9: area \"Other drive\": Local=Z:\\Addon names a Windows drive that is not here"
            " - skipped\n");
}

struct FindCase {
  std::string name;
  std::vector<std::string> files;  // made below the temporary folder
  std::string simDir;
  bool programData = false;  // ProgramData set to <tmp>/pd
  std::string expected;      // below the temporary folder; empty: none found
};

TEST(SceneryLibrary, FindsTheFileWhereTheSimulatorKeepsIt) {
  const std::vector<FindCase> cases = {
      {"FSX under ProgramData",
       {"pd/Microsoft/FSX/scenery.cfg", "fsx/scenery.cfg"},
       "fsx",
       true,
       "pd/Microsoft/FSX/scenery.cfg"},
      {"Prepar3D v5 beside an FSX",
       {"pd/Microsoft/FSX/scenery.cfg", "pd/Lockheed Martin/Prepar3D v5/scenery.cfg",
        "p3d/Prepar3D.exe"},
       "p3d",
       true,
       "pd/Lockheed Martin/Prepar3D v5/scenery.cfg"},
      {"the Steam edition",
       {"pd/Microsoft/FSX/scenery.cfg", "pd/Microsoft/FSX-SE/scenery.cfg",
        "steamapps/common/FSX/fsx.exe"},
       "steamapps/common/FSX",
       true,
       "pd/Microsoft/FSX-SE/scenery.cfg"},
      {"a Wine prefix's ProgramData",
       {"w/drive_c/ProgramData/Microsoft/FSX/Scenery.CFG", "w/drive_c/FSX/fsx.exe"},
       "w/drive_c/FSX",
       false,
       "w/drive_c/ProgramData/Microsoft/FSX/Scenery.CFG"},
      {"in the simulator folder", {"fsx/scenery.cfg"}, "fsx", true, "fsx/scenery.cfg"},
      {"nowhere", {"fsx/fsx.exe"}, "fsx", true, ""},
  };
  for (const FindCase& c : cases) {
    SCOPED_TRACE(c.name);
    TempDir dir;
    for (const std::string& f : c.files) dir.write(f, "x");
    const auto found = FindSceneryFile(
        dir.path() / c.simDir,
        c.programData ? std::optional(PathToUtf8(dir.path() / "pd")) : std::nullopt);
    if (c.expected.empty()) {
      EXPECT_FALSE(found.has_value());
    } else {
      ASSERT_TRUE(found.has_value());
      EXPECT_TRUE(std::filesystem::equivalent(*found, dir.path() / c.expected));
    }
  }
}

}  // namespace
}  // namespace velmora
