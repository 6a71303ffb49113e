#include "data/vor.h"

#include <charconv>
#include <cmath>
#include <optional>

#include "data/numbers.h"
#include "data/text.h"

namespace velmora {
namespace {

// The list may write its minutes with "," as decimal mark.
std::string DecimalText(std::string_view field) {
  std::string text(field);
  for (char& c : text) {
    if (c == ',') c = '.';
  }
  return text;
}

std::string PlainDecimal(double value) {
  char buf[64];
  const auto res = std::to_chars(buf, buf + sizeof buf, value, std::chars_format::fixed);
  return std::string(buf, res.ptr);
}

// "N47 26.39" from the two fields; the sign of the degrees picks the second letter.
std::optional<std::string> CoordText(std::string_view degField, std::string_view minField,
                                     char positive, char negative) {
  const std::string degText = DecimalText(degField);
  const std::string minText = DecimalText(minField);
  const auto degrees = ParseNumber(degText);
  const auto minutes = ParseNumber(minText);
  if (!degrees || !minutes) return std::nullopt;
  const std::int32_t whole = RoundEven(*degrees);
  if (whole < 0) {
    return negative + std::to_string(-static_cast<std::int64_t>(whole)) + ' ' +
           PlainDecimal(std::fabs(*minutes));
  }
  return positive + degText + ' ' + minText;
}

}  // namespace

VorReport LoadVor(Store& store, const std::filesystem::path& file) {
  store.Vor.clear();
  store.VorLast = -1;
  return ReadFileWith<VorReport>(file, [&](LineReader& reader) { return LoadVor(store, reader); });
}

VorReport LoadVor(Store& store, LineReader& reader) {
  VorReport report;
  store.Vor.clear();
  std::int32_t slot = 0;
  std::string_view line;
  while (reader.next(line)) {
    const auto fields = Split(line, ';');
    if (fields.size() < 8) {
      ++report.skipped;
      continue;
    }
    auto lon = CoordText(fields[1], fields[2], 'E', 'W');
    auto lat = CoordText(fields[3], fields[4], 'N', 'S');
    if (!lon || !lat) {
      ++report.skipped;
      continue;
    }
    if (!store.Vor.has(slot)) {
      ++report.dropped;
      continue;
    }
    VorRow& row = store.Vor[slot++];
    row.lon = std::move(*lon);
    row.lat = std::move(*lat);
    row.ident = fields[6];
    row.frequency = fields[7];
  }
  report.take(reader);
  store.VorLast = slot - 1;
  return report;
}

}  // namespace velmora
