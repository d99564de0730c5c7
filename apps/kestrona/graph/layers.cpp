#include "graph/layers.h"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <utility>

namespace Kestrona::Tool::Graph {
namespace {

constexpr std::size_t kMostPoints = 100000;

/// Sweeps over the layers, of which the order with the fewest crossings is kept; few where each takes its time.
constexpr std::size_t kSweeps = 40;
constexpr std::size_t kSweepsOfMany = 4;
constexpr std::size_t kManyItems = 20000;

class LayerMaker {
public:
    explicit LayerMaker(const LayoutInput& input) : input_(input), out_(input.boxes.size()) {
        for (std::size_t e = 0; e < input.edges.size(); ++e) {
            out_[input.edges[e].from].push_back(e);
        }
    }

    Layering Make() {
        for (const Size& size : input_.boxes) {
            result_.items.push_back({0, size, {}, {}});
        }
        result_.ways.resize(input_.edges.size());
        TurnCycles();
        AssignLayers();
        MakeWays();
        FillLayers();
        return std::move(result_);
    }

private:
    enum class Visit : std::uint8_t {
        None,
        Open,
        Done
    };

    // Depth first, without recursion: an edge to a box that is still open closes a cycle.
    void TurnCycles() {
        std::vector<Visit> visits(input_.boxes.size(), Visit::None);
        std::vector<std::pair<std::size_t, std::size_t>> path; // box, number of its edges that were followed
        for (std::size_t start = 0; start < visits.size(); ++start) {
            if (visits[start] == Visit::None) {
                visits[start] = Visit::Open;
                path.emplace_back(start, 0);
            }
            while (!path.empty()) {
                Follow(visits, path);
            }
        }
    }

    void Follow(std::vector<Visit>& visits, std::vector<std::pair<std::size_t, std::size_t>>& path) {
        auto& [box, followed] = path.back();
        if (followed == out_[box].size()) {
            visits[box] = Visit::Done;
            order_.push_back(box);
            path.pop_back();
            return;
        }
        const std::size_t edge = out_[box][followed++];
        const std::size_t target = input_.edges[edge].to;
        if (visits[target] == Visit::Open) {
            result_.ways[edge].reversed = true;
        } else if (visits[target] == Visit::None) {
            visits[target] = Visit::Open;
            path.emplace_back(target, 0);
        }
    }

    [[nodiscard]] std::size_t LeftEnd(std::size_t edge) const {
        return result_.ways[edge].reversed ? input_.edges[edge].to : input_.edges[edge].from;
    }

    [[nodiscard]] std::size_t RightEnd(std::size_t edge) const {
        return result_.ways[edge].reversed ? input_.edges[edge].from : input_.edges[edge].to;
    }

    void AssignLayers() {
        std::vector<std::vector<std::size_t>> to_right(input_.boxes.size());
        for (std::size_t edge = 0; edge < input_.edges.size(); ++edge) {
            to_right[LeftEnd(edge)].push_back(RightEnd(edge));
        }
        std::vector<std::size_t> ranks = LongestPaths(to_right);
        PullRight(to_right, ranks);
        for (std::size_t box = 0; box < ranks.size(); ++box) {
            result_.items[box].layer = 2 * ranks[box];
        }
    }

    // Boxes in the order of the search, the last one finished first, come before all that they point at.
    [[nodiscard]] std::vector<std::size_t> LongestPaths(const std::vector<std::vector<std::size_t>>& to_right) const {
        std::vector<std::size_t> ranks(input_.boxes.size());
        std::for_each(order_.rbegin(), order_.rend(), [&](std::size_t box) {
            for (const std::size_t target : to_right[box]) {
                ranks[target] = std::max(ranks[target], ranks[box] + 1);
            }
        });
        return ranks;
    }

    // Boxes that nothing points at move next to what they point at, which shortens their edges.
    void PullRight(const std::vector<std::vector<std::size_t>>& to_right, std::vector<std::size_t>& ranks) const {
        std::vector<bool> pointed_at(ranks.size());
        for (const auto& targets : to_right) {
            for (const std::size_t target : targets) {
                pointed_at[target] = true;
            }
        }
        for (std::size_t box = 0; box < ranks.size(); ++box) {
            if (pointed_at[box] || to_right[box].empty()) {
                continue;
            }
            const auto nearest = std::min_element(to_right[box].begin(), to_right[box].end(),
                                                  [&](std::size_t a, std::size_t b) { return ranks[a] < ranks[b]; });
            ranks[box] = ranks[*nearest] - 1;
        }
    }

    void MakeWays() {
        std::vector<std::size_t> shortest_first(input_.edges.size());
        std::iota(shortest_first.begin(), shortest_first.end(), std::size_t{0});
        std::stable_sort(shortest_first.begin(), shortest_first.end(),
                         [&](std::size_t a, std::size_t b) { return Span(a) < Span(b); });
        for (const std::size_t edge : shortest_first) {
            MakeWay(edge);
        }
    }

    [[nodiscard]] std::size_t Span(std::size_t edge) const {
        return result_.items[RightEnd(edge)].layer - result_.items[LeftEnd(edge)].layer;
    }

    void MakeWay(std::size_t edge) {
        Way& way = result_.ways[edge];
        const std::size_t left = LeftEnd(edge);
        const std::size_t right = RightEnd(edge);
        const std::size_t between = Span(edge) - 1;
        way.items.push_back(left);
        if (result_.items.size() + between <= input_.boxes.size() + kMostPoints) {
            // The label stands in the odd layer next to the end that has fewer edges, where it is easiest to follow.
            const bool at_left = out_[left].size() <= out_[right].size() || between == 1;
            way.label = at_left ? 1 : between;
            for (std::size_t i = 1; i <= between; ++i) {
                const Size size = i == way.label ? input_.edges[edge].label : Size{};
                way.items.push_back(result_.items.size());
                result_.items.push_back({result_.items[left].layer + i, size, {}, {}});
            }
        }
        way.items.push_back(right);
        if (way.label == 0) {
            return; // neighbours are in neighbouring layers only
        }
        for (std::size_t i = 1; i < way.items.size(); ++i) {
            result_.items[way.items[i - 1]].right.push_back(way.items[i]);
            result_.items[way.items[i]].left.push_back(way.items[i - 1]);
        }
    }

    void FillLayers() {
        std::vector<bool> has_edge(input_.boxes.size());
        for (const LayoutEdge& edge : input_.edges) {
            has_edge[edge.from] = has_edge[edge.to] = true;
        }
        for (std::size_t i = 0; i < result_.items.size(); ++i) {
            if (i >= has_edge.size() || has_edge[i]) {
                const std::size_t layer = result_.items[i].layer;
                result_.layers.resize(std::max(result_.layers.size(), layer + 1));
                result_.layers[layer].push_back(i);
            }
        }
    }

    const LayoutInput& input_;
    std::vector<std::vector<std::size_t>> out_; // edges by the box that they come from
    std::vector<std::size_t> order_;            // boxes as the search finished them
    Layering result_;
};

// Sorts the layers by the mean position of their neighbours on one side.
class Orderer {
public:
    explicit Orderer(Layering& layering) : layering_(layering), places_(layering.items.size()) {}

    void Run() {
        for (std::size_t layer = 0; layer < layering_.layers.size(); ++layer) {
            Place(layer);
        }
        auto best = layering_.layers;
        std::size_t fewest = CountCrossings(layering_);
        const std::size_t sweeps = layering_.items.size() > kManyItems ? kSweepsOfMany : kSweeps;
        for (std::size_t sweep = 0; sweep < sweeps && fewest > 0; ++sweep) {
            Sweep(sweep % 2 == 0);
            const std::size_t crossings = CountCrossings(layering_);
            if (crossings < fewest) {
                fewest = crossings;
                best = layering_.layers;
            }
        }
        layering_.layers = std::move(best);
    }

private:
    void Place(std::size_t layer) {
        for (std::size_t i = 0; i < layering_.layers[layer].size(); ++i) {
            places_[layering_.layers[layer][i]] = static_cast<double>(i);
        }
    }

    void Sweep(bool to_right) {
        const std::size_t count = layering_.layers.size();
        for (std::size_t i = 1; i < count; ++i) {
            Sort(to_right ? i : count - 1 - i, to_right);
        }
    }

    void Sort(std::size_t layer, bool by_left) {
        std::vector<std::pair<double, std::size_t>> keyed;
        for (const std::size_t item : layering_.layers[layer]) {
            const auto& neighbours = by_left ? layering_.items[item].left : layering_.items[item].right;
            keyed.emplace_back(neighbours.empty() ? places_[item] : Mean(neighbours), item);
        }
        std::stable_sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
        std::transform(keyed.begin(), keyed.end(), layering_.layers[layer].begin(),
                       [](const auto& each) { return each.second; });
        Place(layer);
    }

    [[nodiscard]] double Mean(const std::vector<std::size_t>& items) const {
        double sum = 0.0;
        for (const std::size_t item : items) {
            sum += places_[item];
        }
        return sum / static_cast<double>(items.size());
    }

    Layering& layering_;
    std::vector<double> places_; // by item, its number in its layer
};

// Counts, for every edge from top to bottom, those before it that end below it.
std::size_t CrossingsBehind(const Layering& layering, const std::vector<std::size_t>& layer,
                            const std::vector<std::size_t>& places, std::size_t width) {
    std::vector<std::size_t> tree(width + 1); // Fenwick tree of the ends so far
    std::size_t crossings = 0;
    std::size_t ends = 0;
    for (const std::size_t item : layer) {
        std::vector<std::size_t> targets;
        for (const std::size_t target : layering.items[item].right) {
            targets.push_back(places[target]);
        }
        std::sort(targets.begin(), targets.end());
        for (const std::size_t target : targets) {
            std::size_t at_or_above = 0;
            for (std::size_t i = target + 1; i > 0; i &= i - 1) {
                at_or_above += tree[i];
            }
            crossings += ends - at_or_above;
        }
        for (const std::size_t target : targets) {
            for (std::size_t i = target + 1; i <= width; i += i & (~i + 1)) {
                ++tree[i];
            }
            ++ends;
        }
    }
    return crossings;
}

} // namespace

Layering MakeLayers(const LayoutInput& input) {
    return LayerMaker(input).Make();
}

void OrderLayers(Layering& layering) {
    Orderer(layering).Run();
}

std::size_t CountCrossings(const Layering& layering) {
    std::vector<std::size_t> places(layering.items.size());
    for (const auto& layer : layering.layers) {
        for (std::size_t i = 0; i < layer.size(); ++i) {
            places[layer[i]] = i;
        }
    }
    std::size_t crossings = 0;
    for (std::size_t layer = 0; layer + 1 < layering.layers.size(); ++layer) {
        crossings += CrossingsBehind(layering, layering.layers[layer], places, layering.layers[layer + 1].size());
    }
    return crossings;
}

} // namespace Kestrona::Tool::Graph
