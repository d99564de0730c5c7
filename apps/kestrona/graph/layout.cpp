#include "graph/layout.h"

#include "graph/layers.h"
#include "graph/positions.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <tuple>

namespace Kestrona::Tool::Graph {
namespace {

constexpr double kColumnGap = 26.0; // room for the bends between two layers
constexpr double kRowGap = 18.0;
constexpr double kLeastRowWidth = 700.0;
constexpr double kLabelLine = 3.0; // the line under a label, above the lower edge of its box

class Arranger {
public:
    explicit Arranger(const LayoutInput& input) : input_(input), layering_(MakeLayers(input)) {}

    Layout Run() {
        OrderLayers(layering_);
        middles_ = PlaceInLayers(layering_);
        layout_.boxes.resize(input_.boxes.size());
        layout_.edges.resize(input_.edges.size());
        PlaceColumns();
        PlaceBoxes();
        RouteEdges();
        PlaceLoose();
        return std::move(layout_);
    }

private:
    void PlaceColumns() {
        double x = 0.0;
        for (const auto& layer : layering_.layers) {
            double width = 0.0;
            for (const std::size_t item : layer) {
                width = std::max(width, layering_.items[item].size.width);
            }
            columns_.push_back({x, width});
            x += width + kColumnGap;
        }
        layout_.size.width = columns_.empty() ? 0.0 : x - kColumnGap;
    }

    void PlaceBoxes() {
        double top = std::numeric_limits<double>::max();
        double bottom = std::numeric_limits<double>::lowest();
        for (const auto& layer : layering_.layers) {
            for (const std::size_t item : layer) {
                const double half = layering_.items[item].size.height / 2.0;
                top = std::min(top, middles_[item] - half);
                bottom = std::max(bottom, middles_[item] + half);
            }
        }
        for (const auto& layer : layering_.layers) {
            for (const std::size_t item : layer) {
                middles_[item] -= top;
                if (item < input_.boxes.size()) {
                    const Column& column = columns_[layering_.items[item].layer];
                    const Size& size = layering_.items[item].size;
                    layout_.boxes[item] = {column.x + (column.width - size.width) / 2.0,
                                           middles_[item] - size.height / 2.0};
                }
            }
        }
        layout_.size.height = layering_.layers.empty() ? 0.0 : bottom - top;
    }

    void RouteEdges() {
        const std::vector<double> left_ports = Ports(false);
        const std::vector<double> right_ports = Ports(true);
        for (std::size_t e = 0; e < layering_.ways.size(); ++e) {
            const Way& way = layering_.ways[e];
            EdgeRoute& route = layout_.edges[e];
            route.reversed = way.reversed;
            route.label = way.label;
            const std::size_t left = way.items.front();
            route.points.push_back({{layout_.boxes[left].x + input_.boxes[left].width, left_ports[e]}, 0.0});
            for (std::size_t i = 1; i + 1 < way.items.size(); ++i) {
                const Column& column = columns_[layering_.items[way.items[i]].layer];
                const double down = i == way.label ? input_.edges[e].label.height / 2.0 - kLabelLine : 0.0;
                route.points.push_back({{column.x, middles_[way.items[i]] + down}, column.width});
            }
            route.points.push_back({{layout_.boxes[way.items.back()].x, right_ports[e]}, 0.0});
        }
    }

    // Edges leave and reach a box in the order of where they come from, spread over its side. Heights by edge, for its
    // left or its right end.
    [[nodiscard]] std::vector<double> Ports(bool right_end) const {
        std::vector<std::tuple<std::size_t, double, std::size_t>> ends; // box, height of the neighbour, edge
        for (std::size_t e = 0; e < layering_.ways.size(); ++e) {
            const auto& items = layering_.ways[e].items;
            ends.emplace_back(right_end ? items.back() : items.front(),
                              middles_[right_end ? items[items.size() - 2] : items[1]], e);
        }
        std::sort(ends.begin(), ends.end());
        std::vector<double> heights(ends.size());
        for (std::size_t first = 0; first < ends.size();) {
            const std::size_t box = std::get<0>(ends[first]);
            std::size_t last = first;
            while (last < ends.size() && std::get<0>(ends[last]) == box) {
                ++last;
            }
            const double step = input_.boxes[box].height / static_cast<double>(last - first + 1);
            for (std::size_t i = first; i < last; ++i) {
                heights[std::get<2>(ends[i])] = layout_.boxes[box].y + step * static_cast<double>(i - first + 1);
            }
            first = last;
        }
        return heights;
    }

    // Boxes without edges, in rows.
    void PlaceLoose() {
        std::vector<bool> placed(input_.boxes.size());
        for (const LayoutEdge& edge : input_.edges) {
            placed[edge.from] = placed[edge.to] = true;
        }
        const double limit = std::max(layout_.size.width, kLeastRowWidth);
        double x = 0.0;
        double y = layout_.size.height + (layering_.layers.empty() ? 0.0 : 2.0 * kRowGap);
        double row_height = 0.0;
        for (std::size_t box = 0; box < placed.size(); ++box) {
            if (placed[box]) {
                continue;
            }
            const Size& size = input_.boxes[box];
            if (x > 0.0 && x + size.width > limit) {
                x = 0.0;
                y += row_height + kRowGap;
                row_height = 0.0;
            }
            layout_.boxes[box] = {x, y};
            row_height = std::max(row_height, size.height);
            layout_.size.width = std::max(layout_.size.width, x + size.width);
            layout_.size.height = std::max(layout_.size.height, y + size.height);
            x += size.width + kRowGap;
        }
    }

    struct Column {
        double x;
        double width;
    };

    const LayoutInput& input_;
    Layering layering_;
    std::vector<double> middles_;
    std::vector<Column> columns_;
    Layout layout_;
};

} // namespace

Layout LayOut(const LayoutInput& input) {
    return Arranger(input).Run();
}

} // namespace Kestrona::Tool::Graph
