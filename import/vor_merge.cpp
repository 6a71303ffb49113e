#include "import/vor_merge.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <ostream>

#include "data/atomic_write.h"
#include "data/platform.h"
#include "data/store.h"
#include "data/vor.h"
#include "geometry/coords.h"
#include "import/run.h"

namespace velmora {
namespace {

// Degrees and minutes fields from coordinate text: the minus on the degrees, or on the minutes
// when the degrees are 0, as the list writes the south and the west.
std::pair<std::string, std::string> Fields(const std::string& text, char negative) {
  const std::size_t blank = text.find(' ');
  std::string degrees = text.substr(1, blank - 1);
  degrees.erase(0, std::min(degrees.find_first_not_of('0'), degrees.size() - 1));
  std::string minutes = text.substr(blank + 1);
  if (text.front() != negative) return {degrees, minutes};
  if (degrees == "0") return {degrees, "-" + minutes};
  return {"-" + degrees, minutes};
}

std::string FieldText(std::string text) {
  std::replace(text.begin(), text.end(), ';', ',');
  return text;
}

int LineCount(const std::string& text) {
  int lines = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\n' || (text[i] == '\r' && (i + 1 == text.size() || text[i + 1] != '\n'))) {
      ++lines;
    }
  }
  if (!text.empty() && text.back() != '\n' && text.back() != '\r') ++lines;
  return lines;
}

struct Place {
  std::string ident;
  std::int32_t x = 0, y = 0;
};

bool Near(const Place& a, const Place& b) {
  return a.ident == b.ident && std::abs(static_cast<std::int64_t>(a.x) - b.x) <= kGridPerMinute &&
         std::abs(static_cast<std::int64_t>(a.y) - b.y) <= kGridPerMinute;
}

}  // namespace

std::string VorLine(const VorRecord& v) {
  const auto [lonDeg, lonMin] = Fields(LonText(v.lon), 'W');
  const auto [latDeg, latMin] = Fields(LatText(v.lat), 'S');
  const std::string type = v.type.empty() ? "" : std::string(1, v.type.front());
  return FieldText(v.name) + ';' + lonDeg + ';' + lonMin + ';' + latDeg + ';' + latMin + ';' +
         FieldText(type) + ';' + FieldText(v.ident) + ';' + FieldText(v.frequency) + "\r\n";
}

VorMerge MergeVors(const std::filesystem::path& file, const std::vector<VorRecord>& vors,
                   std::ostream& err) {
  VorMerge merge;
  std::string text;
  std::vector<Place> places;
  std::error_code ec;
  if (std::filesystem::exists(file, ec)) {
    std::ifstream in(file, std::ios::binary);
    text.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    const auto store = std::make_unique<Store>();
    const VorReport report = LoadVor(*store, file);
    if (!in || !report.opened || report.readError) {
      err << PathToUtf8(file) << " could not be read - no VOR added\n";
      merge.ok = false;
      return merge;
    }
    for (std::int32_t i = 0; i <= store->VorLast; ++i) {
      const VorRow& row = store->Vor[i];
      places.push_back({row.ident, LonToGrid(row.lon).value_or(0), LatToGrid(row.lat).value_or(0)});
    }
  }
  int lines = LineCount(text);
  if (!text.empty() && text.back() != '\n' && text.back() != '\r') text += "\r\n";
  for (const VorRecord& v : vors) {
    const Place p{v.ident, LonToGrid(LonText(v.lon)).value_or(0),
                  LatToGrid(LatText(v.lat)).value_or(0)};
    if (std::any_of(places.begin(), places.end(), [&](const Place& q) { return Near(p, q); })) {
      ++merge.known;
    } else if (lines >= kVorLines) {
      ++merge.leftOut;
    } else {
      text += VorLine(v);
      places.push_back(p);
      ++lines;
      ++merge.added;
    }
  }
  if (merge.leftOut > 0) {
    err << PathToUtf8(file) << ": " << merge.leftOut
        << " VORs left out - the list holds at most 8,001 lines\n";
  }
  std::string error;
  if (merge.added > 0 && !WriteWhole(file, text, error)) {
    err << error << " - no VOR added\n";
    merge.ok = false;
    merge.added = 0;
  }
  return merge;
}

}  // namespace velmora
