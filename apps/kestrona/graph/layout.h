#pragma once

#include <cstddef>
#include <vector>

/// \file
/// Layered layout of a directed graph, from left to right.
///
/// Every box gets a layer: those that nothing points at stand leftmost, every other one right of all that point at it
/// (longest path, after the edges that close a cycle have been turned round). An edge passes one point in each layer
/// between its ends; the layer in the middle of it carries its label, as a small box of its own, so labels never cover
/// each other or a box. The order inside a layer comes from barycentres, swept to and fro, of which the order with the
/// fewest crossings is kept; positions are those nearest to the neighbours' middle that keep the order and the
/// distances.

namespace Kestrona::Tool::Graph {

struct Size {
    double width = 0.0;
    double height = 0.0;
};

struct Point {
    double x = 0.0;
    double y = 0.0;
};

struct LayoutEdge {
    std::size_t from = 0;
    std::size_t to = 0;
    Size label;
};

/// What is to be laid out. Edges from a box to itself are not allowed.
struct LayoutInput {
    std::vector<Size> boxes;
    std::vector<LayoutEdge> edges;
};

/// One point on the way of an edge; it runs level from `x` to `x + width`.
struct Waypoint {
    Point at;
    double width = 0.0;
};

struct EdgeRoute {
    std::vector<Waypoint> points; ///< From the left end to the right end, both on the border of a box.
    bool reversed = false;        ///< The edge points from right to left.
    std::size_t label = 0;        ///< Index of the point above which the label stands; 0 for none.
};

/// Positions of everything; y grows downwards, and all coordinates are 0 or more.
struct Layout {
    std::vector<Point> boxes; ///< Upper left corners.
    std::vector<EdgeRoute> edges;
    Size size;
};

/// Lays a graph out. Boxes without edges stand in rows below the others. Edges that are too many and too long to pass
/// layer by layer (more than 100000 points in all) run straight and without a label. Linear in boxes and points, but
/// for logarithms.
[[nodiscard]] Layout LayOut(const LayoutInput& input);

} // namespace Kestrona::Tool::Graph
