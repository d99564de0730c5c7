#pragma once

#include "graph/layout.h"

#include <cstddef>
#include <vector>

/// \file
/// The layers of a graph and the order inside them.

namespace Kestrona::Tool::Graph {

/// A box, or a point on the way of an edge.
struct Item {
    std::size_t layer = 0;
    Size size;
    std::vector<std::size_t> left;  ///< Neighbours in the layer before.
    std::vector<std::size_t> right; ///< Neighbours in the layer behind.
};

/// The way of an edge through the layers.
struct Way {
    std::vector<std::size_t> items; ///< From left to right, boxes at both ends.
    bool reversed = false;
    std::size_t label = 0; ///< Index into `items` of the one that carries the label, 0 for none.
};

/// Boxes keep their numbers as items. Boxes without edges are in no layer.
struct Layering {
    std::vector<Item> items;
    std::vector<std::vector<std::size_t>> layers;
    std::vector<Way> ways;
};

/// Assigns layers and makes the points on the way of long edges. Boxes stand in even layers, labels in any layer
/// between the two ends of their edge.
[[nodiscard]] Layering MakeLayers(const LayoutInput& input);

/// Orders each layer so that edges cross little.
void OrderLayers(Layering& layering);

/// Returns the number of pairs of edges that cross between neighbouring layers.
[[nodiscard]] std::size_t CountCrossings(const Layering& layering);

} // namespace Kestrona::Tool::Graph
