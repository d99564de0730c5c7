#pragma once

#include <kestrona/dates.h>

#include <optional>

namespace Kestrona::Text {

// SimpleDateTimeToOADate for callers that tell "no date" from 29 December 1899, whose value is -1.0 too.
std::optional<double> DateFromPieces(SimpleDateTime& pieces);

} // namespace Kestrona::Text
