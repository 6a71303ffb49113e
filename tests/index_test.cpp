#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "data/arpt_index.h"
#include "data/extract.h"
#include "data/line_reader.h"
#include "data/platform.h"
#include "import/index_run.h"
#include "shell/data_dir.h"
#include "test_support.h"

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

// One airport of a generated world, and whether the search and the reader can load it.
struct WorldAirport {
  std::string ident, file, city;
  bool loadable = true;
};

std::string AirportText(const std::string& ident, const std::string& name, const std::string& city,
                        bool tabLed, bool closed) {
  return CrLf({(tabLed ? "\t" : "") + std::string("<Airport ident=\"") + ident + "\"",
               "    country=\"Veldmark\"", "\tcity=\"" + city + "\"", "    name=\"" + name + "\"",
               "    lat=\"N10 00.00\"", "    lon=\"E10 00.00\"", "    alt=\"10M\">", "  <Tower",
               "    name=\"not the airport's\"/>"}) +
         (closed ? CrLf({"</Airport>"}) : "");
}

std::string Ident(int n) {
  std::string id = "X";
  for (int i = 0; i < 3; ++i, n /= 26) id += static_cast<char>('A' + n % 26);
  return id;
}

// Many files, many airports a file, with every kind of airport the search can't reach. Some
// airports lack their </Airport>, though not in front of a tab-led one, which the reader would
// take for part of the airport before it.
std::vector<WorldAirport> MakeWorld(const TempDir& dir) {
  std::vector<WorldAirport> world;
  std::map<std::string, std::string> files;
  for (int n = 0; n < 2100; ++n) {
    WorldAirport a{Ident(n), "part" + std::to_string(10 + n / 60) + ".txt",
                   "City " + std::to_string(n)};
    bool tabLed = false;
    if (n % 97 == 5) {
      a.ident = "x" + a.ident.substr(1);  // the search upper-cases
      a.loadable = false;
    } else if (n % 89 == 7) {
      a.ident.insert(2, " ");  // the search removes blanks
      a.loadable = false;
    } else if (n % 101 == 90) {
      // The search takes the first that it can reach.
      const WorldAirport& first = world[static_cast<std::size_t>(n - 70)];
      a.ident = Ident(n - 70);
      a.loadable = !first.loadable || first.ident != a.ident;
    } else if (n % 83 == 3) {
      tabLed = true;  // the reader passes over a tab-led opening line
      a.loadable = false;
    } else if (n % 211 == 11) {
      a.file = "with blank.txt";
      a.loadable = false;
    }
    const std::string name = n % 7 == 0 ? "" : "Field; " + std::to_string(n);
    files[a.file] += AirportText(a.ident, name, a.city, tabLed, n % 13 != 0 || n % 83 == 2);
    world.push_back(a);
  }
  for (const auto& [file, text] : files) dir.write("FSXFiles/" + file, text);
  dir.write("FSXFiles/empty.txt", "");
  dir.write("FSXFiles/below/deep.txt", AirportText("XDEP", "Deep", "Deep", false, true));
  dir.write("FSXFiles/binary.bin", std::string("\0\x01\xff\r\0<Airport", 13));
  return world;
}

int RunTool(const IndexOptions& options, std::string& err, std::string* out = nullptr) {
  std::ostringstream o, e;
  const int status = RunIndex(options, o, e, false);
  err = e.str();
  if (out != nullptr) *out = o.str();
  return status;
}

TEST(IndexBuild, ListsExactlyTheAirportsTheWindowCanLoad) {
  TempDir dir;
  const std::vector<WorldAirport> world = MakeWorld(dir);
  std::string err;
  ASSERT_EQ(RunTool({dir.path(), "", false}, err), 0) << err;
  const std::string index = Slurp(dir.path() / "Arpt index.txt");

  int loadable = 0;
  for (const WorldAirport& a : world) {
    // A fresh window each time, as each velmora-chart run is.
    Harness h(dir.path());
    h.form().setSearchText(a.ident);
    h.form().cmdSearch_Click();
    if (h.form().controls().cmdArpt.enabled) h.form().cmdArpt_Click();
    h.takeTrace();
    const bool loaded = h.store().hasAirport() && h.store().ArptCity == a.city;
    EXPECT_EQ(loaded, a.loadable) << a.ident << " in " << a.file;
    const bool listed =
        index.find("\r\n" + a.ident + ";") != std::string::npos || index.starts_with(a.ident + ";");
    EXPECT_EQ(listed && loaded, a.loadable) << a.ident;
    loadable += a.loadable;
  }
  EXPECT_GT(loadable, 1800);
  EXPECT_EQ(std::count(index.begin(), index.end(), '\n'), loadable);
  EXPECT_EQ(std::count(index.begin(), index.end(), '\r'), loadable);

  for (const std::string& said : std::initializer_list<std::string>{
           "with blank.txt: the file name holds a blank", "below: a folder",
           "empty.txt: no airport", "part11.txt: \"XUAA\" stands also in part10.txt",
           "binary.bin: no airport",
           "part10.txt: a line with <Airport ident that the reader passes over",
           Grouped(std::uintmax_t(loadable)) + " airports in 35 files, 4 files skipped\n"}) {
    EXPECT_NE(err.find(said), std::string::npos) << said << '\n' << err;
  }
}

TEST(IndexBuild, FieldsBytesAndOrder) {
  TempDir dir;
  dir.write("FSXFiles/b.txt", AirportText("XBBB", "", "Bb\xe9 City", false, true) +
                                  AirportText("XAAA", "Am\xe9ssa; Field", "", false, true));
  dir.write("FSXFiles/a.txt", CrLf({"<Airport ident=\"XCCC\"", "state=\"Ost\"", "</Airport>"}));
  // A tab-led opening line is no airport to the reader: behind a </Airport> its lines are
  // passed over; without the </Airport> they belong to the airport before it.
  dir.write(
      "FSXFiles/c.txt",
      CrLf({"<Airport ident=\"XDDD\"", "name=\"Dd\"", "<Tower", "name=\"tower\"", "</Airport>",
            "\t<Airport ident=\"XEEE\"", "name=\"Ee\"", "</Airport>", "<Airport ident=\"XFFF\"",
            "name=\"Ff\"", "<Tower", "\t<Airport ident=\"XGGG\"", "name=\"Gg\"", "</Airport>"}));
  std::string err, out;
  ASSERT_EQ(RunTool({dir.path(), "-", false}, err, &out), 0) << err;
  const auto store = std::make_unique<Store>();
  for (const auto& [ident, name] : {std::pair{"XDDD", "Dd"}, std::pair{"XFFF", "Gg"}}) {
    ExtractArpt(*store, dir.path() / "FSXFiles/c.txt", ident);
    EXPECT_EQ(store->ArptName, name);
  }
  // Files in name order, airports in file order; city for an empty name, state for no
  // country; ";" can't split a field; Windows-1252 bytes as they were.
  EXPECT_EQ(out,
            "XCCC;;Ost;a.txt\r\nXBBB;Bb\xe9 City;Veldmark;b.txt\r\n"
            "XAAA;Am\xe9ssa, Field;Veldmark;b.txt\r\nXDDD;Dd;;c.txt\r\nXFFF;Gg;;c.txt\r\n");
  EXPECT_FALSE(fs::exists(dir.path() / "Arpt index.txt"));
  const std::string tabLed =
      "c.txt: a line with <Airport ident that the reader passes over (it does not begin with it, "
      "or begins with a tab)\n";
  EXPECT_EQ(err, tabLed + tabLed + "5 airports in 3 files, 0 files skipped\n");
}

TEST(IndexBuild, BadFoldersWriteNothing) {
  // No FSXFiles; a file; a broken link; only files without airports.
  for (int c = 0; c < 4; ++c) {
    TempDir dir;
    if (c == 1) dir.write("FSXFiles", "x");
#ifndef _WIN32  // MinGW's library makes no links
    if (c == 2) fs::create_directory_symlink(dir.path() / "gone", dir.path() / "FSXFiles");
#endif
    if (c == 3) {
      dir.write("FSXFiles/a.txt", "");
      dir.write("FSXFiles/b.txt", std::string(3'000'000, 'x'));
      dir.write("FSXFiles/c.txt", CrLf({"<Airport ident=\"xlow\"", "</Airport>"}));
    }
    dir.write("Arpt index.txt", "OLD;;;a.txt\r\n");
    std::string err;
    EXPECT_EQ(RunTool({dir.path(), "", false}, err), 1) << c;
    EXPECT_EQ(Slurp(dir.path() / "Arpt index.txt"), "OLD;;;a.txt\r\n") << c;
    EXPECT_FALSE(err.empty()) << c;
    for (const auto& e : fs::directory_iterator(dir.path())) {
      EXPECT_EQ(e.path().filename().string().find(".part"), std::string::npos) << c;
    }
  }
}

TEST(IndexBuild, CheckComparesWithoutWriting) {
  TempDir dir;
  dir.write("FSXFiles/a.txt", AirportText("XAAA", "Aa", "", false, true) +
                                  AirportText("XBBB", "Bb", "", false, true));
  std::string err;
  ASSERT_EQ(RunTool({dir.path(), "", false}, err), 0);
  EXPECT_EQ(RunTool({dir.path(), "", true}, err), 0) << err;

  std::string lf = Slurp(dir.path() / "Arpt index.txt");
  std::erase(lf, '\r');
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"XAAA;Aa;Veldmark;a.txt\r\n", "line 2: has nothing, would be \"XBBB;Bb;Veldmark;a.txt\""},
      {"XAAA;Aa;Veldmark;a.txt\r\nXBBC;Bb;Veldmark;a.txt\r\n",
       "line 2: has \"XBBC;Bb;Veldmark;a.txt\", would be \"XBBB;Bb;Veldmark;a.txt\""},
      {lf, "the line ends differ"},
  };
  for (const auto& [existing, said] : cases) {
    dir.write("Arpt index.txt", existing);
    EXPECT_EQ(RunTool({dir.path(), "", true}, err), 1);
    EXPECT_NE(err.find(said), std::string::npos) << err;
    EXPECT_EQ(Slurp(dir.path() / "Arpt index.txt"), existing);
  }
  // Five differences are shown, no more.
  dir.write("Arpt index.txt", "a\r\nb\r\nc\r\nd\r\ne\r\nf\r\n");
  RunTool({dir.path(), "", true}, err);
  EXPECT_NE(err.find("line 5: has \"e\""), std::string::npos) << err;
  EXPECT_EQ(err.find("line 6:"), std::string::npos) << err;
  fs::remove(dir.path() / "Arpt index.txt");
  EXPECT_EQ(RunTool({dir.path(), "", true}, err), 1);
}

TEST(IndexArgs, OptionsAndMistakes) {
  std::ostringstream err;
  // Arguments are UTF-8 on every system; a name outside ASCII stays that name.
  const auto o = ParseIndexArgs({"--check", "--data", "/J\xc3\xbcrgen", "--out", "K\xc3\xb6ln.txt"},
                                "/exe", err);
  ASSERT_TRUE(o);
  EXPECT_EQ(o->dataDir, fs::path(u8"/Jürgen"));
  EXPECT_EQ(o->outPath, fs::path(u8"Köln.txt"));
  EXPECT_TRUE(o->check);
  EXPECT_EQ(ParseIndexArgs({}, "/exe", err)->dataDir, "/exe");
  for (const auto& bad :
       std::vector<std::vector<std::string>>{{"--data"}, {"--out", ""}, {"--fast"}, {"dir"}}) {
    EXPECT_FALSE(ParseIndexArgs(bad, "/exe", err)) << bad[0];
  }
}

TEST(DataDir, ExecutableFolderFirstThenTheUsers) {
  TempDir exe, user;
  EXPECT_EQ(ChooseDataDir(exe.path(), user.path()), user.path());
  EXPECT_EQ(ChooseDataDir(exe.path(), ""), exe.path());
  EXPECT_NE(NoDataCaption(user.path()).find(user.path().string()), std::string::npos);
  exe.write("FSXFiles/a.txt", "");
  EXPECT_EQ(ChooseDataDir(exe.path(), user.path()), exe.path());
  EXPECT_EQ(NoDataCaption(exe.path()), "");
  TempDir exe2;
  exe2.write("Arpt index.txt", "");
  EXPECT_EQ(ChooseDataDir(exe2.path(), user.path()), exe2.path());
}

TEST(DataDir, UserDataFolderFromTheEnvironment) {
  using Env = std::map<std::string, std::string>;
  struct Case {
    Env env;  // unset when absent
    fs::path folder;
  };
  const Case cases[] = {
#ifdef _WIN32
      {{{"APPDATA", "C:\\Users\\p\\AppData\\Roaming"}}, "C:\\Users\\p\\AppData\\Roaming\\velmora"},
      {{{"APPDATA",
         "C:\\Users\\Z\xc3\xbc"
         "rich"}},
       fs::path(L"C:\\Users\\Z\u00fcrich\\velmora")},
      {{{"APPDATA", "relative"}}, ""},
      {{{"HOME", "C:\\p"}, {"XDG_DATA_HOME", "C:\\x"}}, ""},
#else
      {{{"XDG_DATA_HOME", "/x/data"}, {"HOME", "/home/p"}}, "/x/data/velmora"},
      {{{"XDG_DATA_HOME", "relative"}, {"HOME", "/home/p"}}, "/home/p/.local/share/velmora"},
      {{{"XDG_DATA_HOME", ""}, {"HOME", "/home/p"}}, "/home/p/.local/share/velmora"},
      {{{"HOME", "/home/p"}}, "/home/p/.local/share/velmora"},
      {{{"HOME", ""}}, ""},
#endif
      {{}, ""},
  };
  for (const Case& c : cases) {
    const auto lookup = [&](const std::string& name) -> std::optional<std::string> {
      const auto it = c.env.find(name);
      return it == c.env.end() ? std::nullopt : std::optional(it->second);
    };
    EXPECT_EQ(UserDataDir(lookup), c.folder);
  }
}

// The environment keeps text outside ASCII whole (UTF-16 on Windows).
TEST(DataDir, EnvironmentKeepsUtf8) {
  SetEnv("VELMORA_TEST_FOLDER",
         "Z\xc3\xbc"
         "rich");
  EXPECT_EQ(GetEnv("VELMORA_TEST_FOLDER"),
            "Z\xc3\xbc"
            "rich");
  EXPECT_EQ(GetEnv("VELMORA_TEST_UNSET"), std::nullopt);
}

}  // namespace
}  // namespace velmora::test
