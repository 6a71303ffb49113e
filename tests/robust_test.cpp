#include <gtest/gtest.h>
#ifndef _WIN32
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

#include <climits>
#include <fstream>
#include <future>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "data/files.h"
#include "data/line_reader.h"
#include "data/text.h"
#include "geometry/polar.h"
#include "test_support.h"

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

struct Read {
  Lines lines;
  int longLines = 0;
  bool operator==(const Read&) const = default;
  friend void PrintTo(const Read& r, std::ostream* out) {
    *out << r.longLines << " long;";
    for (const auto& line : r.lines) *out << " [" << line << "]";
  }
};

Read ReadAll(LineReader& reader, std::string_view needle = {}) {
  Read r;
  std::string_view line;
  while (needle.empty() ? reader.next(line) : reader.nextContaining(needle, line))
    r.lines.emplace_back(line);
  r.longLines = reader.longLines();
  return r;
}

Read FromMemory(std::string_view bytes, std::size_t chunk, std::size_t maxLine,
                std::string_view needle = {}) {
  LineReader reader(chunk, maxLine);
  reader.openMemory(bytes);
  return ReadAll(reader, needle);
}

// Groups of four lines: one of each length from 0 to 12, a key at a shifting place, a near
// miss, an empty line. Ends follow 22001102100, so empty lines end in each kind of end behind
// each kind (but LF behind CR, which is a CR LF), and at each buffer size some end, some CR of
// a CR LF and some key falls across the buffer's edge. File and memory give the same lines.
TEST(LineReaderTest, SameLinesFromMemoryAndFileAtEveryBufferSize) {
  const char* ends[] = {"\r\n", "\r", "\n"};
  std::string text;
  Lines all, keyed;
  for (std::size_t n = 0; n < 31; ++n) {
    keyed.push_back(std::string(n * 7 % 71, n % 2 ? ' ' : 'x') + "<Airport ident=\"" +
                    std::to_string(n) + "\"");
    for (const std::string& line :
         {std::string(n % 13, static_cast<char>('a' + n % 13)), keyed.back(),
          std::string(n % 23, ' ') + "<Airport iden", std::string()}) {
      all.push_back(line);
      text += line + ends["22001102100"[all.size() % 11] - '0'];
    }
  }
  text += "last";
  all.emplace_back("last");
  TempDir dir;
  const fs::path file = dir.write("lines.txt", text);
  for (std::size_t chunk = 16; chunk <= 40; ++chunk) {
    for (const auto& [needle, want] : {std::pair{"", all}, {"<Airport ident", keyed}}) {
      SCOPED_TRACE(::testing::Message() << chunk << needle);
      EXPECT_EQ(FromMemory(text, chunk, kMaxLineBytes, needle), (Read{want, 0}));
      LineReader reader(chunk);
      ASSERT_EQ(reader.open(file), OpenStatus::kOpened);
      EXPECT_EQ(ReadAll(reader, needle), (Read{want, 0}));
      EXPECT_FALSE(reader.failed());
    }
  }
}

TEST(LineReaderTest, LinesOverTheLimitArePassedOverWhole) {
  const std::string x20(20, 'x'), x31(31, 'x');
  struct Case {
    std::string text, needle;
    Read read;
  } cases[] = {
      {"short\r\n" + x20 + "\r\nafter", "", {{"short", "after"}, 1}},
      {x20, "", {{}, 1}},
      {"12345678\n123456789\nnext", "", {{"12345678", "next"}, 1}},
      // The CR of the long line's CR LF is the buffer's last byte: no empty line behind it.
      {x31 + "\r\nz", "", {{"z"}, 1}},
      {x20 + "\n" + x20 + "\r\n\r\n", "", {{""}, 2}},
      {"aaaa\nbKEYb\nKEY", "KEY", {{"bKEYb", "KEY"}, 0}},
      {x20 + "KEY\nKEY2\nno", "KEY", {{"KEY2"}, 1}},
      // The needle straddles the end of the first buffer.
      {"012345\n012345\n0KEY\n", "KEY", {{"0KEY"}, 0}},
      // Lines passed over on the way to a match count too.
      {"0123456789\r1234KEY\n", "KEY", {{"1234KEY"}, 1}},
      // The key in the same buffer as the lone CR that ends a long line: that line counts once.
      {"0123456789\rKEY\n", "KEY", {{"KEY"}, 1}},
      {x20 + "\n" + x20 + "\nKEYa", "KEY", {{"KEYa"}, 2}},
      {"aaa\nbbb", "KEY", {{}, 0}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(FromMemory(c.text, 16, 8, c.needle), c.read);
  }
}

// A FIFO, /dev/zero and links on POSIX; Windows has a device name in their place (MinGW's
// library makes no links).
TEST(FilesTest, OnlyRegularFilesOpenAndNeverBlock) {
  TempDir dir;
  const fs::path p = dir.path();
  dir.write("f.txt", "x");
  fs::create_directory(p / "dir");
  std::vector<std::pair<fs::path, OpenStatus>> cases = {
      {p / "f.txt", OpenStatus::kOpened},
      {p / "dir", OpenStatus::kNotRegular},
      {p / "none", OpenStatus::kUnreadable},
  };
#ifdef _WIN32
  cases.push_back({"NUL", OpenStatus::kNotRegular});
#else
  ASSERT_EQ(mkfifo((p / "fifo").c_str(), 0600), 0);
  fs::create_symlink(p / "f.txt", p / "toFile");
  fs::create_symlink(p / "fifo", p / "toFifo");
  fs::create_symlink(p / "none", p / "dangling");
  cases.insert(cases.end(), {
                                {p / "toFile", OpenStatus::kOpened},
                                {p / "fifo", OpenStatus::kNotRegular},
                                {p / "toFifo", OpenStatus::kNotRegular},
                                {"/dev/zero", OpenStatus::kNotRegular},
                                {p / "dangling", OpenStatus::kUnreadable},
                            });
#endif
  for (const auto& [path, status] : cases) {
    SCOPED_TRACE(path);
    LineReader reader;
    auto opened = std::async(std::launch::async, [&] { return reader.open(path); });
    if (opened.wait_for(std::chrono::seconds(2)) == std::future_status::timeout) {
      ADD_FAILURE() << "open blocks";
#ifndef _WIN32
      // A writer lets the blocked open return.
      close(open((p / "fifo").c_str(), O_WRONLY | O_NONBLOCK));
#endif
    }
    EXPECT_EQ(opened.get(), status);
    // Reading /dev/zero would never end: only what should open is read.
    std::string_view line;
    if (status == OpenStatus::kOpened) {
      EXPECT_TRUE(reader.next(line));
    }
  }
}

TEST(FilesTest, AirportFileNamesStayBelowTheFolder) {
  struct Case {
    std::string_view name;  // field 4 of the index, Windows-1252
    std::optional<fs::path> below;
  };
  const fs::path f = "F";
  const Case cases[] = {
      {"a.txt", f / "a.txt"},
      {"sub/../a.txt", f / "a.txt"},
      {"./s/a.txt", f / "s" / "a.txt"},
      {"../a.txt", std::nullopt},
      {"sub/../../a.txt", std::nullopt},
      {"/dev/zero", std::nullopt},
      {"", std::nullopt},
      {"..", std::nullopt},
#ifdef _WIN32
      // A drive, with or without its root, and a root without a drive.
      {"C:a.txt", std::nullopt},
      {"C:\\x\\a.txt", std::nullopt},
      {"\\x\\a.txt", std::nullopt},
      {"caf\xe9.txt", f / L"caf\u00e9.txt"},
#endif
  };
  for (const Case& c : cases) {
    EXPECT_EQ(PathBelow(f, c.name), c.below) << c.name;
  }
}

// The sample data in a temp folder, with extra index lines.
struct World {
  TempDir dir;
  explicit World(std::string_view extraIndex = {}) {
    fs::copy(SampleDir(), dir.path(), fs::copy_options::recursive);
    std::ofstream(dir.path() / "Arpt index.txt", std::ios::app) << extraIndex;
  }
};

long DrawnCount(const Lines& trace) {
  return static_cast<long>(Filter(trace, "line").size() + Filter(trace, "circle").size());
}

// Index lines that name a FIFO (on Windows a folder), /dev/zero, a way up and the folder
// itself; on POSIX the airport folder is a link to a folder elsewhere.
TEST(FilesTest, FilesThatAreNotFilesGiveACaptionAndNoChart) {
  const struct {
    std::string code, file;
  } cases[] = {{"XFIF", "fifo.txt"}, {"XZER", "/dev/zero"}, {"XUP", "../vor.nav"}, {"XDIR", "."}};
  std::string index;
  for (const auto& c : cases) index += c.code + ";a;b;" + c.file + "\r\n";
  World w(index), elsewhere;
#ifdef _WIN32
  fs::create_directory(w.dir.path() / "FSXFiles/fifo.txt");
#else
  fs::remove_all(w.dir.path() / "FSXFiles");
  fs::create_directory_symlink(elsewhere.dir.path() / "FSXFiles", w.dir.path() / "FSXFiles");
  ASSERT_EQ(mkfifo((w.dir.path() / "FSXFiles/fifo.txt").c_str(), 0600), 0);
#endif
  Harness h(w.dir.path());
  for (const auto& c : cases) {
    h.load("XWHL");
    h.takeTrace();
    h.load(c.code);
    EXPECT_EQ(
        h.form().controls().caption,
        "FSXFiles/" + c.file + " is not an airport file Velmora can read - no chart for " + c.code);
    EXPECT_FALSE(h.store().hasAirport()) << c.code;
    EXPECT_EQ(DrawnCount(h.takeTrace()), 0) << c.code;
    EXPECT_FALSE(h.form().controls().cmbAPP.enabled) << c.code;
  }
  // A good load afterwards works as if the bad ones never came.
  Harness fresh(w.dir.path());
  fresh.load("XWHL");
  const Lines good = fresh.takeTrace();
  h.load("XWHL");
  EXPECT_EQ(h.takeTrace(), good);
  EXPECT_EQ(h.form().controls().caption,
            "XWHL-WhitlowHarborInternational-Westmark-sample_west.txt");
}

TEST(FilesTest, IndexAndVorListThatAreNotFiles) {
  World w;
  fs::remove(w.dir.path() / "Arpt index.txt");
#ifdef _WIN32
  fs::create_directory(w.dir.path() / "Arpt index.txt");
#else
  ASSERT_EQ(mkfifo((w.dir.path() / "Arpt index.txt").c_str(), 0600), 0);
#endif
  fs::remove(w.dir.path() / "vor.nav");
  fs::create_directory(w.dir.path() / "vor.nav");
  Harness h(w.dir.path());
  EXPECT_EQ(h.form().controls().caption,
            "vor.nav is not a VOR list Velmora can read: the chart shows no VORs");
  h.form().setSearchText("XWHL");
  h.form().cmdSearch_Click();
  EXPECT_EQ(h.form().controls().caption,
            "Arpt index.txt is not an index Velmora can read - no search for XWHL");
  EXPECT_FALSE(h.form().controls().cmdArpt.enabled);
}

TEST(ScreenTest, SumsSaturateAtThe32BitEnds) {
  const int sums[] = {INT_MAX, 1,       INT_MAX, INT_MIN, -1,    INT_MIN,
                      INT_MAX, INT_MIN, -1,      7000,    -7200, -200};
  for (std::size_t i = 0; i < std::size(sums); i += 3) {
    EXPECT_EQ(ScreenAdd(sums[i], sums[i + 1]), sums[i + 2]) << i;
  }
  std::int32_t x = 0, y = 0;
  PolarOffset(INT_MAX, INT_MIN, 45, 1.0, x, y);
  EXPECT_EQ(std::tie(x, y), std::tuple(INT_MAX, INT_MIN));
}

TEST(ScreenTest, PanIsHeldWithinReach) {
  Harness h(SampleDir());
  h.load("XWHL");
  const std::pair<double, std::int32_t> clicks[] = {
      {-1e9, kPanLimit}, {-1e9, kPanLimit}, {1e12, -kPanLimit}, {7000 - kPanLimit, 0}};
  for (const auto& [x, pan] : clicks) {
    h.form().picArpt_MouseDown(1, 0, x, 5000);
    EXPECT_EQ(h.form().view().PanX, pan) << x;
  }
}

}  // namespace
}  // namespace velmora::test
