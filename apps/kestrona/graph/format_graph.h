#pragma once

#include <kestrona/memory_resident_data.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// \file
/// The references between the formats of a definition as a graph.

namespace Kestrona::Tool::Graph {

enum class EdgeKind {
    Reference, ///< Fields whose values are keys of the other format, also lists of keys.
    Dimension, ///< Matrices that the other format's records size.
    Child,     ///< Saved in the other format's file.
    Link       ///< Any other keyword that names a field of the other format.
};

/// What one format has to do with another one.
struct Edge {
    std::size_t from = 0;
    std::size_t to = 0;
    EdgeKind kind = EdgeKind::Link;
    std::vector<std::string> fields; ///< Names of the fields, in field order; empty for `Child`.
};

/// One format. Texts are UTF-8.
struct Node {
    std::string name;
    std::string title; ///< Display name, "" where it says no more than the name.
    std::string key;
    std::size_t field_count = 0;
    std::vector<std::string> own_references; ///< Fields that refer to records of the format itself.
};

struct FormatGraph {
    std::vector<Node> nodes;
    std::vector<Edge> edges; ///< At most one of a kind between two formats, never from a format to itself.
};

/// Builds the graph of a resolved definition. Linear in its size, but for logarithms.
[[nodiscard]] FormatGraph BuildGraph(Data::MemoryResident::IMemoryResidentData& store);

/// Returns the fields of an edge in one short line: "Product, Customer +3".
[[nodiscard]] std::string EdgeLabel(const Edge& edge);

/// Returns the graph in the language of Graphviz.
[[nodiscard]] std::string DotText(const FormatGraph& graph);

} // namespace Kestrona::Tool::Graph
