#include "graph/layout.h"

#include "graph/layers.h"
#include "graph/positions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace Kestrona::Tool::Graph {
namespace {

class RandomGraph {
public:
    explicit RandomGraph(unsigned seed) : random_(seed) {}

    LayoutInput Make() {
        LayoutInput input;
        const std::size_t boxes = 1 + Below(30);
        for (std::size_t i = 0; i < boxes; ++i) {
            input.boxes.push_back({60.0 + static_cast<double>(Below(90)), 30.0 + static_cast<double>(Below(40))});
        }
        for (std::size_t i = Below(3 * boxes); i > 0; --i) {
            const std::size_t from = Below(boxes);
            const std::size_t to = Below(boxes);
            if (from != to) { // two edges between the same boxes, and both ways round, may come
                input.edges.push_back({from, to, {20.0 + static_cast<double>(Below(60)), 16.0}});
            }
        }
        return input;
    }

    std::size_t Below(std::size_t bound) { return random_() % bound; }

    std::mt19937& Numbers() { return random_; }

private:
    std::mt19937 random_;
};

struct Rectangle {
    Point at;
    Size size;
};

bool Overlap(const Rectangle& a, const Rectangle& b) {
    constexpr double kTolerance = 0.01;
    return a.at.x + a.size.width > b.at.x + kTolerance && b.at.x + b.size.width > a.at.x + kTolerance &&
           a.at.y + a.size.height > b.at.y + kTolerance && b.at.y + b.size.height > a.at.y + kTolerance;
}

TEST(Layout, KeepsBoxesAndLabelsClearOfEachOtherAndEdgesOnTheirWay) {
    for (unsigned seed = 0; seed < 150; ++seed) {
        const LayoutInput input = RandomGraph(seed).Make();
        const Layout layout = LayOut(input);
        std::vector<Rectangle> all;
        for (std::size_t i = 0; i < input.boxes.size(); ++i) {
            all.push_back({layout.boxes[i], input.boxes[i]});
        }
        for (std::size_t e = 0; e < input.edges.size(); ++e) {
            const EdgeRoute& route = layout.edges[e];
            const std::size_t left = route.reversed ? input.edges[e].to : input.edges[e].from;
            const std::size_t right = route.reversed ? input.edges[e].from : input.edges[e].to;
            ASSERT_EQ(route.points.front().at.x, layout.boxes[left].x + input.boxes[left].width) << seed;
            ASSERT_EQ(route.points.back().at.x, layout.boxes[right].x) << seed;
            for (std::size_t i = 1; i < route.points.size(); ++i) {
                ASSERT_GT(route.points[i].at.x, route.points[i - 1].at.x + route.points[i - 1].width) << seed;
            }
            ASSERT_GT(route.label, 0U);
            const Waypoint& label = route.points[route.label];
            all.push_back({{label.at.x, label.at.y - input.edges[e].label.height + 3.0},
                           {label.width, input.edges[e].label.height}});
            ASSERT_GE(label.width, input.edges[e].label.width) << seed;
            // Level stretches pass boxes above or below.
            for (std::size_t i = 1; i + 1 < route.points.size(); ++i) {
                for (std::size_t box = 0; box < input.boxes.size(); ++box) {
                    const Rectangle line{{route.points[i].at.x, route.points[i].at.y - 1.0},
                                         {route.points[i].width, 2.0}};
                    ASSERT_FALSE(Overlap(line, all[box])) << seed << " edge " << e << " box " << box;
                }
            }
        }
        for (std::size_t a = 0; a < all.size(); ++a) {
            ASSERT_TRUE(all[a].at.x >= 0.0 && all[a].at.y >= -0.01 &&
                        all[a].at.x + all[a].size.width <= layout.size.width + 0.01 &&
                        all[a].at.y + all[a].size.height <= layout.size.height + 0.01)
                << seed;
            for (std::size_t b = 0; b < a; ++b) {
                ASSERT_FALSE(Overlap(all[a], all[b])) << seed << ": " << a << " and " << b;
            }
        }
    }
}

TEST(Layout, CountsCrossingsAsAPairwiseComparisonDoesAndNeverAddsAny) {
    for (unsigned seed = 0; seed < 80; ++seed) {
        Layering layering = MakeLayers(RandomGraph(seed).Make());
        const auto by_pairs = [&] {
            std::vector<std::pair<std::size_t, std::size_t>> edges; // places of both ends, layer by layer
            std::size_t crossings = 0;
            std::vector<std::size_t> places(layering.items.size());
            for (const auto& layer : layering.layers) {
                for (std::size_t i = 0; i < layer.size(); ++i) {
                    places[layer[i]] = i;
                }
            }
            for (const auto& layer : layering.layers) {
                edges.clear();
                for (const std::size_t item : layer) {
                    for (const std::size_t target : layering.items[item].right) {
                        edges.emplace_back(places[item], places[target]);
                    }
                }
                for (const auto& a : edges) {
                    crossings += static_cast<std::size_t>(std::count_if(edges.begin(), edges.end(), [&](const auto& b) {
                        return a.first < b.first && a.second > b.second;
                    }));
                }
            }
            return crossings;
        };
        const std::size_t before = CountCrossings(layering);
        ASSERT_EQ(before, by_pairs()) << seed;
        OrderLayers(layering);
        ASSERT_EQ(CountCrossings(layering), by_pairs()) << seed;
        ASSERT_LE(CountCrossings(layering), before) << seed;
    }
}

// The best ascending value at i is the largest, over all starts up to i, of the least mean up to an end from i on.
TEST(Layout, PlacesByTheNearestAscendingValues) {
    RandomGraph random(5);
    for (int round = 0; round < 200; ++round) {
        const std::size_t count = 1 + random.Below(9);
        std::vector<double> wanted;
        std::vector<double> weights;
        for (std::size_t i = 0; i < count; ++i) {
            wanted.push_back(static_cast<double>(random.Below(20)));
            weights.push_back(1.0 + static_cast<double>(random.Below(3)));
        }
        const std::vector<double> found = NearestAscending(wanted, weights);
        for (std::size_t i = 0; i < count; ++i) {
            double best = -1.0e9;
            for (std::size_t start = 0; start <= i; ++start) {
                double least = 1.0e9;
                for (std::size_t end = i; end < count; ++end) {
                    double sum = 0.0;
                    double weight = 0.0;
                    for (std::size_t k = start; k <= end; ++k) {
                        sum += wanted[k] * weights[k];
                        weight += weights[k];
                    }
                    least = std::min(least, sum / weight);
                }
                best = std::max(best, least);
            }
            ASSERT_NEAR(found[i], best, 1e-9) << round;
        }
    }
}

TEST(Layout, RunsEdgesStraightWhenTheyAreTooManyAndTooLong) {
    LayoutInput input;
    input.boxes.resize(700, {50.0, 20.0});
    for (std::size_t box = 1; box < input.boxes.size(); ++box) {
        input.edges.push_back({box - 1, box, {10.0, 16.0}});
        input.edges.push_back({0, box, {10.0, 16.0}});
    }
    const Layout layout = LayOut(input);
    const auto labelled = std::count_if(layout.edges.begin(), layout.edges.end(),
                                        [](const EdgeRoute& route) { return route.label != 0; });
    EXPECT_GT(labelled, 700);
    EXPECT_LT(labelled, 1398);
    EXPECT_TRUE(LayOut({}).boxes.empty());
}

} // namespace
} // namespace Kestrona::Tool::Graph
