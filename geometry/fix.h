#pragma once
// Where a fix named by an approach leg stands: looked up in Waypoint, Ndb, Vor and the
// runway ends' fix names, in that order; the first slot with the ident wins.

#include <cstdint>
#include <optional>
#include <string_view>

#include "data/store.h"
#include "geometry/coords.h"

namespace velmora {

// Grid units; 0 when no table holds the ident or its position can't be read.
std::int32_t FixGridY(const Store& store, std::string_view fixIdent);
std::int32_t FixGridX(const Store& store, std::string_view fixIdent);

// Both grid values; none when no table holds the ident or either value can't be read.
std::optional<GridPoint> FixGrid(const Store& store, std::string_view fixIdent);

}  // namespace velmora
