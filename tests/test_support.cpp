#include "test_support.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <random>

#include "data/platform.h"

namespace velmora::test {

TempDir::TempDir() {
  std::random_device rd;
  path_ = std::filesystem::temp_directory_path() /
          ("velmora-test-" + std::to_string(rd()) + std::to_string(rd()));
  std::filesystem::create_directories(path_);
}

TempDir::~TempDir() {
  std::error_code ec;
  std::filesystem::remove_all(path_, ec);
}

std::filesystem::path TempDir::write(const std::filesystem::path& name,
                                     std::string_view bytes) const {
  const std::filesystem::path file = path_ / name;
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << bytes;
  return file;
}

std::string CrLf(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\r\n";
  return text;
}

std::filesystem::path SampleDir() {
  return VELMORA_SAMPLE_DIR;
}

Harness::Harness(const std::filesystem::path& dataDir, std::string_view commandLine)
    : store_(std::make_unique<Store>()), canvas_(out_) {
  form_ = std::make_unique<ArptForm>(*store_, canvas_, dataDir);
  form_->onCaption = [this](const std::string& text) { canvas_.caption(text); };
  form_->Form_Load(commandLine);
}

std::vector<std::string> Harness::takeTrace() {
  return TakeLines(out_);
}

std::vector<std::string> TakeLines(std::ostringstream& out) {
  std::vector<std::string> lines;
  std::istringstream in(out.str());
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  out.str({});
  return lines;
}

namespace {
std::string Coord(long long twips, char pos, char neg) {
  const long long off = 2160000 + twips * 16, a = off < 0 ? -off : off;
  char text[40];
  std::snprintf(text, sizeof text, "%c%lld %.6f", off < 0 ? neg : pos, a / 216000,
                a % 216000 / 3600.0);
  return text;
}
}  // namespace

std::string LatAt(int y) {
  return Coord(5000 - y, 'N', 'S');
}
std::string LonAt(int x) {
  return Coord(x - 7000, 'E', 'W');
}

void Harness::load(std::string_view code) {
  form_->setSearchText(std::string(code));
  form_->cmdSearch_Click();
  form_->cmdArpt_Click();
}

void WriteAirports(const TempDir& dir, const std::vector<GenAirport>& airports) {
  std::vector<std::string> index, file;
  for (const GenAirport& a : airports) {
    index.push_back(a.code + ";Generated;Testland;gen.txt");
    file.insert(file.end(),
                {"<Airport ident=\"" + a.code + "\"", "lat=\"N10 00.00\"", "lon=\"E10 00.00\">"});
    for (std::size_t n = 0; n < a.approaches.size(); ++n) {
      for (std::size_t i = 0; i < a.approaches[n].fixes.size(); ++i) {
        const auto [x, y] = a.approaches[n].fixes[i];
        file.insert(
            file.end(),
            {"<Waypoint", "waypointIdent=\"A" + std::to_string(n) + "F" + std::to_string(i) + "\"",
             "lat=\"" + LatAt(y) + "\"", "lon=\"" + LonAt(x) + "\"/>"});
      }
    }
    for (std::size_t n = 0; n < a.approaches.size(); ++n) {
      const GenApproach& app = a.approaches[n];
      file.insert(file.end(), {"<Approach type=\"" + app.type + "\"",
                               "runway=\"" + app.runway + "\"", "designator=\"NONE\">"});
      if (app.lostFirst)
        file.insert(file.end(), {"<Leg type=\"IF\"", "fixIdent=\"NOWHERE\"", "/>"});
      for (std::size_t i = 0; i < app.fixes.size(); ++i) {
        file.insert(file.end(),
                    {"<Leg type=\"TF\"",
                     "fixIdent=\"A" + std::to_string(n) + "F" + std::to_string(i) + "\"",
                     "magneticCourse=\"90.0\"", "altitude1=\"3000.00F\"", "/>"});
      }
      file.push_back("</Approach>");
    }
    file.push_back("</Airport>");
  }
  dir.write("Arpt index.txt", CrLf(index));
  dir.write("vor.nav", "");
  dir.write("FSXFiles/gen.txt", CrLf(file));
}

std::vector<std::string> Filter(const std::vector<std::string>& trace, std::string_view prefix) {
  std::vector<std::string> out;
  for (const std::string& line : trace) {
    if (line.starts_with(prefix)) out.push_back(line);
  }
  return out;
}

long Count(const Lines& trace, std::string_view part) {
  return std::ranges::count_if(trace, [&](const std::string& l) { return l.find(part) != l.npos; });
}

std::string Slurp(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

ChartResult RunChartTool(const std::filesystem::path& data, const Lines& args,
                         const PictureWriter& writer) {
  Lines all = {"--data", PathToUtf8(data)};
  all.insert(all.end(), args.begin(), args.end());
  std::ostringstream out, err;
  const auto options = ParseChartArgs(all, "/nowhere", err);
  const auto none = [](const auto&, const auto&, double, std::ostream&) { return false; };
  const int status = options ? RunChart(*options, writer ? writer : none, out, err) : 2;
  return {status, out.str(), err.str()};
}

}  // namespace velmora::test
