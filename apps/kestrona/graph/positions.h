#pragma once

#include "graph/layers.h"

#include <cstddef>
#include <vector>

namespace Kestrona::Tool::Graph {

/// Returns the height at which the middle of each item stands, near to the middle of its neighbours, in the order of
/// its layer and clear of the items above and below. Items in no layer get 0.
[[nodiscard]] std::vector<double> PlaceInLayers(const Layering& layering);

/// Returns values nearest to the wanted ones (by weighted squares) of which none is smaller than the one before it.
[[nodiscard]] std::vector<double> NearestAscending(const std::vector<double>& wanted,
                                                   const std::vector<double>& weights);

} // namespace Kestrona::Tool::Graph
