#pragma once

#include "graph/format_graph.h"

#include <string>

namespace Kestrona::Tool::Graph {

/// Draws the graph as an SVG document that needs nothing else: a box for each format, labelled edges, a legend.
[[nodiscard]] std::string SvgText(const FormatGraph& graph);

} // namespace Kestrona::Tool::Graph
