#include "graph/format_graph.h"

#include "data/field_names.h"
#include "schema/field_links.h"

#include <kestrona/unicode.h>

#include <algorithm>
#include <map>
#include <tuple>

namespace Kestrona::Tool::Graph {
namespace {

using Data::MemoryResident::IMemoryResidentData;

constexpr std::size_t kMostNames = 3;
constexpr std::size_t kLongestLabel = 34; // bytes, so that labels of one graph are about as wide as its boxes

EdgeKind KindOf(LinkKind kind) {
    switch (kind) {
    case LinkKind::Reference:
    case LinkKind::List:
        return EdgeKind::Reference;
    case LinkKind::Dimension:
        return EdgeKind::Dimension;
    case LinkKind::Other:
        break;
    }
    return EdgeKind::Link;
}

class GraphBuilder {
public:
    explicit GraphBuilder(IMemoryResidentData& store) : store_(store) {}

    FormatGraph Build() {
        for (std::int32_t format = 0; format < store_.GetFormatCount(); ++format) {
            AddNode(format);
        }
        for (std::int32_t format = 0; format < store_.GetFormatCount(); ++format) {
            for (std::int32_t field = 0; field < store_.GetDbFields(format); ++field) {
                AddField(format, field);
            }
            const std::int32_t parent = store_.GetAssociateTableNumber(format);
            if (parent >= 0 && parent != format) {
                EdgeOf(format, parent, EdgeKind::Child);
            }
        }
        return std::move(graph_);
    }

private:
    void AddNode(std::int32_t format) {
        const std::int32_t key = store_.GetDbKey(format);
        Node& node = graph_.nodes.emplace_back();
        node.name = FormatName(store_, format);
        node.title = ToUtf8(store_.GetDbDisplayName(format));
        node.title = node.title == node.name ? std::string() : node.title;
        node.key = key < 0 ? std::string() : ToUtf8(store_.GetColumnName(format, key));
        node.field_count = static_cast<std::size_t>(store_.GetDbFields(format));
    }

    void AddField(std::int32_t format, std::int32_t field) {
        const std::string name = ToUtf8(store_.GetColumnName(format, field));
        for (const FieldLink& link : FieldLinks(store_, format, field)) {
            const EdgeKind kind = KindOf(link.kind);
            if (link.format != format) {
                AddName(EdgeOf(format, link.format, kind).fields, name);
            } else if (kind == EdgeKind::Reference) {
                AddName(graph_.nodes[static_cast<std::size_t>(format)].own_references, name);
            }
        }
    }

    // The links of one field come one after another.
    static void AddName(std::vector<std::string>& names, const std::string& name) {
        if (names.empty() || names.back() != name) {
            names.push_back(name);
        }
    }

    Edge& EdgeOf(std::int32_t from, std::int32_t to, EdgeKind kind) {
        const auto [found, is_new] = numbers_.emplace(std::make_tuple(from, to, kind), graph_.edges.size());
        if (is_new) {
            graph_.edges.push_back({static_cast<std::size_t>(from), static_cast<std::size_t>(to), kind, {}});
        }
        return graph_.edges[found->second];
    }

    IMemoryResidentData& store_;
    FormatGraph graph_;
    std::map<std::tuple<std::int32_t, std::int32_t, EdgeKind>, std::size_t> numbers_;
};

std::string Quoted(std::string_view text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            quoted += '\\';
        }
        quoted += c == '\n' ? ' ' : c;
    }
    return quoted + '"';
}

std::string_view DotStyle(EdgeKind kind) {
    switch (kind) {
    case EdgeKind::Reference:
        return "solid";
    case EdgeKind::Dimension:
        return "dashed";
    case EdgeKind::Child:
        return "bold";
    case EdgeKind::Link:
        break;
    }
    return "dotted";
}

} // namespace

FormatGraph BuildGraph(IMemoryResidentData& store) {
    return GraphBuilder(store).Build();
}

std::string EdgeLabel(const Edge& edge) {
    if (edge.kind == EdgeKind::Child) {
        return "part of";
    }
    std::string label;
    std::size_t shown = 0;
    for (const std::string& field : edge.fields) {
        const std::size_t length = label.size() + (shown == 0 ? 0 : 2) + field.size();
        if (shown > 0 && (shown == kMostNames || length > kLongestLabel)) {
            break;
        }
        label += (shown == 0 ? "" : ", ") + field;
        ++shown;
    }
    return shown < edge.fields.size() ? label + " +" + std::to_string(edge.fields.size() - shown) : label;
}

std::string DotText(const FormatGraph& graph) {
    std::string text = "digraph formats {\n    rankdir=LR;\n    node [shape=box, fontname=\"sans-serif\"];\n"
                       "    edge [fontname=\"sans-serif\", fontsize=10];\n";
    for (const Node& node : graph.nodes) {
        text += "    " + Quoted(node.name) +
                (node.title.empty() ? std::string() : " [label=" + Quoted(node.name + " (" + node.title + ")") + "]") +
                ";\n";
        for (const std::string& field : node.own_references) {
            text += "    " + Quoted(node.name) + " -> " + Quoted(node.name) + " [label=" + Quoted(field) + "];\n";
        }
    }
    for (const Edge& edge : graph.edges) {
        text += "    " + Quoted(graph.nodes[edge.from].name) + " -> " + Quoted(graph.nodes[edge.to].name) +
                " [label=" + Quoted(EdgeLabel(edge)) + ", style=" + std::string(DotStyle(edge.kind)) + "];\n";
    }
    return text + "}\n";
}

} // namespace Kestrona::Tool::Graph
