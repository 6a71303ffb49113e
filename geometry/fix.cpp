#include "geometry/fix.h"

#include "geometry/coords.h"

namespace velmora {
namespace {

struct FixText {
  const std::string* lat = nullptr;
  const std::string* lon = nullptr;
};

template <class TableT, class IdentOf>
bool Find(const TableT& table, std::int32_t last, std::string_view ident, IdentOf identOf,
          FixText& out) {
  for (std::int32_t slot = 0; slot <= last && TableT::has(slot); ++slot) {
    const auto& row = table[slot];
    if (identOf(row) == ident) {
      out = {&row.lat, &row.lon};
      return true;
    }
  }
  return false;
}

FixText FindFix(const Store& s, std::string_view ident) {
  FixText fix;
  // Empty slots never match: an empty ident is not a fix.
  if (ident.empty()) return fix;
  Find(
      s.Waypoint, s.WaypointLast, ident,
      [](const WaypointRow& r) -> const std::string& { return r.ident; }, fix) ||
      Find(
          s.Ndb, s.NdbLast, ident, [](const NdbRow& r) -> const std::string& { return r.ident; },
          fix) ||
      Find(
          s.Vor, s.VorLast, ident, [](const VorRow& r) -> const std::string& { return r.ident; },
          fix) ||
      Find(
          s.RwyEnd, s.RwyLast, ident,
          [](const RwyEndRow& r) -> const std::string& { return r.fixName; }, fix);
  return fix;
}

}  // namespace

std::int32_t FixGridY(const Store& store, std::string_view fixIdent) {
  const FixText fix = FindFix(store, fixIdent);
  return fix.lat != nullptr ? LatToGrid(*fix.lat).value_or(0) : 0;
}

std::int32_t FixGridX(const Store& store, std::string_view fixIdent) {
  const FixText fix = FindFix(store, fixIdent);
  return fix.lon != nullptr ? LonToGrid(*fix.lon).value_or(0) : 0;
}

std::optional<GridPoint> FixGrid(const Store& store, std::string_view fixIdent) {
  const FixText fix = FindFix(store, fixIdent);
  if (fix.lat == nullptr) return std::nullopt;
  const auto y = LatToGrid(*fix.lat);
  const auto x = LonToGrid(*fix.lon);
  if (!x || !y) return std::nullopt;
  return GridPoint{*x, *y};
}

}  // namespace velmora
