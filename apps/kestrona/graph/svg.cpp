#include "graph/svg.h"

#include "graph/layout.h"
#include "output/text_table.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iterator>

namespace Kestrona::Tool::Graph {
namespace {

// Sizes in pixels. Letters are as wide as those of common sans-serif fonts, a little more to be on the safe side.
constexpr double kMargin = 24.0;
constexpr double kLineHeight = 16.0;
constexpr double kPadding = 10.0;
constexpr double kNameLetter = 8.4;
constexpr double kTextLetter = 6.6;
constexpr double kLabelLetter = 6.1;
constexpr double kLabelHeight = 16.0;
constexpr double kLegendHeight = 34.0;
constexpr double kLegendStep = 190.0;
constexpr std::size_t kLongestText = 40;
constexpr std::size_t kMostOwnReferences = 4;

struct Style {
    EdgeKind kind;
    const char* css;
    const char* meaning;
};

constexpr std::array kStyles{Style{EdgeKind::Reference, "reference", "reference, list"},
                             Style{EdgeKind::Dimension, "dimension", "sizes a matrix"},
                             Style{EdgeKind::Child, "child", "part of its file"},
                             Style{EdgeKind::Link, "link", "other keyword"}};

constexpr const char* kStyleSheet = R"(  <style>
    text { font-family: "DejaVu Sans", Verdana, Helvetica, Arial, sans-serif; font-size: 11px; fill: #444 }
    .box { fill: #f4f7fa; stroke: #5b6b7b; rx: 4 }
    .name { font-size: 13px; font-weight: bold; fill: #111 }
    .label { font-size: 10px; fill: #222; stroke: #fff; stroke-width: 3; paint-order: stroke }
    .edge { fill: none; stroke-width: 1.3 }
    .reference { stroke: #2b5c8a }
    .dimension { stroke: #a0522d; stroke-dasharray: 7 4 }
    .child { stroke: #3b7a3b; stroke-width: 2.6 }
    .link { stroke: #888; stroke-dasharray: 2 3 }
  </style>
  <defs>
    <marker id="arrow" viewBox="0 0 10 10" refX="9" refY="5" markerWidth="9" markerHeight="9"
            markerUnits="userSpaceOnUse" orient="auto-start-reverse"><path d="M0 1 L10 5 L0 9 z" fill="#444"/></marker>
  </defs>
)";

// XML has no form for control characters.
std::string Escaped(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        switch (c) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        default:
            escaped += static_cast<unsigned char>(c) < 0x20 ? ' ' : c;
        }
    }
    return escaped;
}

std::vector<std::string> LinesOf(const Node& node) {
    std::vector<std::string> lines{FitToWidth(node.name, kLongestText)};
    if (!node.title.empty()) {
        lines.push_back(FitToWidth(node.title, kLongestText));
    }
    lines.push_back(fmt::format("{} field{}{}", node.field_count, node.field_count == 1 ? "" : "s",
                                node.key.empty() ? "" : ", key " + FitToWidth(node.key, kLongestText)));
    for (std::size_t i = 0; i < std::min(node.own_references.size(), kMostOwnReferences); ++i) {
        lines.push_back("\u21BB " + FitToWidth(node.own_references[i], kLongestText));
    }
    if (node.own_references.size() > kMostOwnReferences) {
        lines.push_back(fmt::format("\u21BB and {} more", node.own_references.size() - kMostOwnReferences));
    }
    return lines;
}

Size BoxSize(const std::vector<std::string>& lines) {
    double width = 0.0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const double letter = i == 0 ? kNameLetter : kTextLetter;
        width = std::max(width, static_cast<double>(DisplayWidth(lines[i])) * letter);
    }
    return {width + 2.0 * kPadding, static_cast<double>(lines.size()) * kLineHeight + kPadding};
}

const Style& StyleOf(EdgeKind kind) {
    return *std::find_if(kStyles.begin(), kStyles.end(), [&](const Style& style) { return style.kind == kind; });
}

class SvgWriter {
public:
    explicit SvgWriter(const FormatGraph& graph) : graph_(graph) {
        for (const Node& node : graph.nodes) {
            lines_.push_back(LinesOf(node));
            sizes_.push_back(BoxSize(lines_.back()));
        }
    }

    std::string Write() {
        layout_ = LayOut(Input());
        const double width = std::max(layout_.size.width, kLegendStep * kStyles.size()) + 2.0 * kMargin;
        const double height = layout_.size.height + kLegendHeight + 2.0 * kMargin;
        Append("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"{0:.0f}\" height=\"{1:.0f}\" "
               "viewBox=\"0 0 {0:.0f} {1:.0f}\">\n",
               width, height);
        text_ += kStyleSheet;
        text_ += "  <rect width=\"100%\" height=\"100%\" fill=\"#fff\"/>\n";
        Append("  <g transform=\"translate({0} {0})\">\n", kMargin);
        for (std::size_t i = 0; i < graph_.edges.size(); ++i) {
            WriteEdge(graph_.edges[i], layout_.edges[i]);
        }
        for (std::size_t i = 0; i < graph_.nodes.size(); ++i) {
            WriteBox(i);
        }
        for (std::size_t i = 0; i < graph_.edges.size(); ++i) { // above all lines
            WriteLabel(graph_.edges[i], layout_.edges[i]);
        }
        WriteLegend();
        text_ += "  </g>\n</svg>\n";
        return std::move(text_);
    }

private:
    template <typename... Values>
    void Append(fmt::format_string<Values...> form, Values&&... values) {
        fmt::format_to(std::back_inserter(text_), form, std::forward<Values>(values)...);
    }

    [[nodiscard]] LayoutInput Input() const {
        LayoutInput input;
        input.boxes = sizes_;
        for (const Edge& edge : graph_.edges) {
            const double width = static_cast<double>(DisplayWidth(EdgeLabel(edge))) * kLabelLetter;
            input.edges.push_back({edge.from, edge.to, {width, kLabelHeight}});
        }
        return input;
    }

    // Level through each layer, and bent between them.
    void WriteEdge(const Edge& edge, const EdgeRoute& route) {
        Point at = route.points.front().at;
        std::string path = fmt::format("M{:.1f} {:.1f}", at.x, at.y);
        for (std::size_t i = 1; i < route.points.size(); ++i) {
            const Waypoint& next = route.points[i];
            const double middle = (at.x + next.at.x) / 2.0;
            fmt::format_to(std::back_inserter(path), " C{0:.1f} {1:.1f} {0:.1f} {3:.1f} {2:.1f} {3:.1f}", middle, at.y,
                           next.at.x, next.at.y);
            at = {next.at.x + next.width, next.at.y};
            if (next.width > 0.0) {
                fmt::format_to(std::back_inserter(path), " H{:.1f}", at.x);
            }
        }
        Append("    <path class=\"edge {}\" d=\"{}\" {}=\"url(#arrow)\"/>\n", StyleOf(edge.kind).css, path,
               route.reversed ? "marker-start" : "marker-end");
    }

    void WriteLabel(const Edge& edge, const EdgeRoute& route) {
        if (route.label != 0) {
            const Waypoint& point = route.points[route.label];
            Append("    <text class=\"label\" x=\"{:.1f}\" y=\"{:.1f}\" text-anchor=\"middle\">{}</text>\n",
                   point.at.x + point.width / 2.0, point.at.y - 4.0, Escaped(EdgeLabel(edge)));
        }
    }

    void WriteBox(std::size_t number) {
        const Point& at = layout_.boxes[number];
        const auto& lines = lines_[number];
        Append("    <rect class=\"box\" x=\"{:.1f}\" y=\"{:.1f}\" width=\"{:.1f}\" height=\"{:.1f}\"/>\n", at.x, at.y,
               sizes_[number].width, sizes_[number].height);
        for (std::size_t i = 0; i < lines.size(); ++i) {
            Append("    <text{} x=\"{:.1f}\" y=\"{:.1f}\">{}</text>\n", i == 0 ? " class=\"name\"" : "",
                   at.x + kPadding, at.y + kLineHeight * static_cast<double>(i + 1) + 1.0, Escaped(lines[i]));
        }
    }

    void WriteLegend() {
        const double y = layout_.size.height + kLegendHeight;
        double x = 0.0;
        for (const Style& style : kStyles) {
            Append("    <path class=\"edge {}\" d=\"M{:.1f} {:.1f} h34\" marker-end=\"url(#arrow)\"/>\n", style.css, x,
                   y - 4.0);
            Append("    <text x=\"{:.1f}\" y=\"{:.1f}\">{}</text>\n", x + 42.0, y, style.meaning);
            x += kLegendStep;
        }
    }

    const FormatGraph& graph_;
    std::vector<std::vector<std::string>> lines_; // of each box
    std::vector<Size> sizes_;
    Layout layout_;
    std::string text_;
};

} // namespace

std::string SvgText(const FormatGraph& graph) {
    return SvgWriter(graph).Write();
}

} // namespace Kestrona::Tool::Graph
