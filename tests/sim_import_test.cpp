// velmora-import --sim on a small simulator folder of our own: the layers of its scenery
// library, an area switched off, the second import of an unchanged library, a cancel.

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <map>
#include <sstream>

#include "data/files.h"
#include "data/platform.h"
#include "import/library_state.h"
#include "import/run.h"
#include "support/bgl_builder.h"
#include "test_support.h"

namespace velmora {
namespace {

using test::BglAirportSpec;
using test::BglFileSpec;
using test::TempDir;

BglAirportSpec Airport(const std::string& ident, const std::string& name) {
  BglAirportSpec a;
  a.ident = ident;
  a.region = "XX";
  a.name = name;
  a.lat = 10;
  a.lon = 10;
  test::BglRunwaySpec r;
  r.number = 16;
  r.lat = 10;
  r.lon = 10;
  r.length = 2000;
  r.width = 45;
  r.heading = 160;
  a.runways.push_back(r);
  return a;
}

void WriteBgl(const TempDir& dir, const std::string& name, std::vector<BglAirportSpec> airports) {
  BglFileSpec contents;
  contents.airports = std::move(airports);
  dir.write(name, test::BuildBgl(contents).bytes);
}

std::string Library(bool addonActive) {
  return "[Area.001]\r\nTitle=Base\r\nLocal=Scenery\\Base\r\nLayer=1\r\nActive=TRUE\r\n"
         "[Area.002]\r\nTitle=Addon\r\nLocal=Addon Scenery\\XAAA\r\nLayer=5\r\nActive=" +
         std::string(addonActive ? "TRUE" : "FALSE") +
         "\r\n"
         "[Area.003]\r\nTitle=Off\r\nLocal=Addon Scenery\\Off\r\nLayer=9\r\nActive=FALSE\r\n";
}

// A simulator folder: XAAA in the base area, a layer above it in an add-on, and once more in
// an area that is switched off; XBBB in the base area alone.
void MakeSimulator(const TempDir& dir) {
  WriteBgl(dir, "sim/Scenery/Base/scenery/base.bgl",
           {Airport("XAAA", "Base A"), Airport("XBBB", "Base B")});
  WriteBgl(dir, "sim/Addon Scenery/XAAA/scenery/xaaa.bgl", {Airport("XAAA", "Addon A")});
  WriteBgl(dir, "sim/Addon Scenery/Off/scenery/off.bgl", {Airport("XAAA", "Off A")});
  dir.write("sim/scenery.cfg", Library(true));
}

ImportOptions SimImport(const TempDir& dir) {
  ImportOptions options = SourcesImport(dir.path() / "data", {});
  options.simDir = dir.path() / "sim";
  return options;
}

std::string Text(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// Every file below the folder with its bytes.
std::map<std::string, std::string> Snapshot(const std::filesystem::path& folder) {
  std::map<std::string, std::string> files;
  for (const auto& e : std::filesystem::recursive_directory_iterator(folder)) {
    if (e.is_regular_file())
      files[PathToUtf8(e.path().lexically_relative(folder))] = Text(e.path());
  }
  return files;
}

bool Holds(const std::filesystem::path& file, std::string_view text) {
  return Text(file).find(text) != std::string::npos;
}

TEST(SimImport, TakesEachAirportFromTheHighestActiveLayer) {
  TempDir dir;
  MakeSimulator(dir);
  std::ostringstream err;
  const ImportResult result = RunImport(SimImport(dir), err);
  EXPECT_EQ(result.status, 0) << err.str();
  EXPECT_EQ(result.airports, 2);
  EXPECT_EQ(result.files, 2);
  const auto airports = dir.path() / "data" / kAirportFolder;
  EXPECT_TRUE(Holds(airports / "base.xml", "ident=\"XBBB\""));
  EXPECT_FALSE(Holds(airports / "base.xml", "ident=\"XAAA\""));
  EXPECT_TRUE(Holds(airports / "xaaa.xml", "Addon A"));
  EXPECT_FALSE(std::filesystem::exists(airports / "off.xml"));
  EXPECT_FALSE(std::filesystem::exists(airports / ".velmora-import"));
  const std::string index = Text(dir.path() / "data" / kIndexFileName);
  EXPECT_NE(index.find("XAAA"), std::string::npos);
  EXPECT_EQ(index.find("XAAA"), index.rfind("XAAA"));
}

TEST(SimImport, AnUnchangedLibraryIsOnlyChecked) {
  TempDir dir;
  MakeSimulator(dir);
  std::ostringstream first, second;
  RunImport(SimImport(dir), first);
  const auto before = Snapshot(dir.path() / "data");
  const ImportResult again = RunImport(SimImport(dir), second);
  EXPECT_TRUE(again.unchanged);
  EXPECT_EQ(again.status, 0);
  EXPECT_EQ(second.str(), "unchanged: 2 files as the last import found them\n");
  EXPECT_EQ(Snapshot(dir.path() / "data"), before);
}

TEST(SimImport, AChangedLibraryIsReadAgain) {
  TempDir dir;
  MakeSimulator(dir);
  std::ostringstream err;
  RunImport(SimImport(dir), err);
  // The add-on switched off: XAAA comes from the base area again, the add-on's file goes.
  dir.write("sim/scenery.cfg", Library(false));
  const ImportResult off = RunImport(SimImport(dir), err);
  const auto airports = dir.path() / "data" / kAirportFolder;
  EXPECT_FALSE(off.unchanged);
  EXPECT_TRUE(Holds(airports / "base.xml", "ident=\"XAAA\""));
  EXPECT_FALSE(std::filesystem::exists(airports / "xaaa.xml"));
  // A file of the base area rewritten: its new airport is read.
  WriteBgl(dir, "sim/Scenery/Base/scenery/base.bgl", {Airport("XCCC", "Base C")});
  const ImportResult changed = RunImport(SimImport(dir), err);
  EXPECT_FALSE(changed.unchanged);
  EXPECT_TRUE(Holds(airports / "base.xml", "ident=\"XCCC\""));
  // A state file that is none of ours tells of no import.
  dir.write(std::filesystem::path("data") / kLibraryStateName, "x");
  EXPECT_FALSE(RunImport(SimImport(dir), err).unchanged);
}

TEST(SimImport, ACancelledImportChangesNothing) {
  TempDir dir;
  MakeSimulator(dir);
  std::ostringstream err;
  RunImport(SimImport(dir), err);
  WriteBgl(dir, "sim/Scenery/Base/scenery/base.bgl", {Airport("XCCC", "Base C")});
  const auto before = Snapshot(dir.path() / "data");
  ImportOptions options = SimImport(dir);
  std::vector<std::string> steps;
  options.progress = [&](const ImportProgress& p) {
    steps.push_back(std::string(p.step) + " " + std::to_string(p.done));
    return !(p.step == "Writing" && p.done == 1);
  };
  const ImportResult result = RunImport(options, err);
  EXPECT_TRUE(result.cancelled);
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.summary, "import cancelled - nothing changed");
  EXPECT_EQ(Snapshot(dir.path() / "data"), before);
  const std::vector<std::string> expected = {"Reading 0", "Reading 1", "Writing 0", "Writing 1"};
  EXPECT_EQ(steps, expected);
}

TEST(SimImport, TellsWhatItCannotRead) {
  TempDir dir;
  MakeSimulator(dir);
  dir.write("sim/scenery.cfg", Library(true) + "[Area.004]\r\nTitle=Gone\r\nLocal=Nowhere\r\n");
  std::ostringstream err;
  const ImportResult result = RunImport(SimImport(dir), err);
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.airports, 2);
  EXPECT_NE(err.str().find("scenery.cfg:16: area \"Gone\": no folder "), std::string::npos)
      << err.str();
  std::ostringstream none;
  ImportOptions missing = SimImport(dir);
  missing.simDir = dir.path() / "elsewhere";
  EXPECT_EQ(RunImport(missing, none).status, 1);
  EXPECT_NE(none.str().find("no scenery.cfg found for this simulator folder"), std::string::npos);
}

}  // namespace
}  // namespace velmora
