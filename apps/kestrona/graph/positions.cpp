#include "graph/positions.h"

#include <algorithm>

namespace Kestrona::Tool::Graph {
namespace {

constexpr double kBoxGap = 18.0;
constexpr double kLineGap = 9.0;
constexpr double kLineWeight = 4.0; // long edges are kept straight before boxes are centred
constexpr int kSweeps = 24;
constexpr int kLastSweeps = 4; // these look at the neighbours on both sides

bool IsBox(const Item& item) {
    return item.layer % 2 == 0 && item.size.width > 0.0;
}

class Placer {
public:
    explicit Placer(const Layering& layering) : layering_(layering), middles_(layering.items.size()) {}

    std::vector<double> Run() {
        for (const auto& layer : layering_.layers) {
            Stack(layer);
        }
        for (int sweep = 0; sweep < kSweeps; ++sweep) {
            const bool both_sides = sweep + kLastSweeps >= kSweeps;
            for (std::size_t i = 0; i < layering_.layers.size(); ++i) {
                const bool to_right = sweep % 2 == 0;
                Settle(layering_.layers[to_right ? i : layering_.layers.size() - 1 - i], to_right || both_sides,
                       !to_right || both_sides);
            }
        }
        return std::move(middles_);
    }

private:
    // The least distance between the middles of two items of a layer.
    [[nodiscard]] double Distance(std::size_t above, std::size_t below) const {
        const Item& a = layering_.items[above];
        const Item& b = layering_.items[below];
        return (a.size.height + b.size.height) / 2.0 + (IsBox(a) && IsBox(b) ? kBoxGap : kLineGap);
    }

    void Stack(const std::vector<std::size_t>& layer) {
        for (std::size_t i = 1; i < layer.size(); ++i) {
            middles_[layer[i]] = middles_[layer[i - 1]] + Distance(layer[i - 1], layer[i]);
        }
    }

    void Settle(const std::vector<std::size_t>& layer, bool by_left, bool by_right) {
        std::vector<double> wanted;
        std::vector<double> weights;
        std::vector<double> offsets;
        for (std::size_t i = 0; i < layer.size(); ++i) {
            offsets.push_back(i == 0 ? 0.0 : offsets.back() + Distance(layer[i - 1], layer[i]));
            wanted.push_back(Wanted(layer[i], by_left, by_right) - offsets.back());
            weights.push_back(IsBox(layering_.items[layer[i]]) ? 1.0 : kLineWeight);
        }
        const std::vector<double> settled = NearestAscending(wanted, weights);
        for (std::size_t i = 0; i < layer.size(); ++i) {
            middles_[layer[i]] = settled[i] + offsets[i];
        }
    }

    [[nodiscard]] double Wanted(std::size_t item, bool by_left, bool by_right) const {
        double sum = 0.0;
        std::size_t count = 0;
        const auto add = [&](const std::vector<std::size_t>& neighbours) {
            for (const std::size_t neighbour : neighbours) {
                sum += middles_[neighbour];
            }
            count += neighbours.size();
        };
        if (by_left) {
            add(layering_.items[item].left);
        }
        if (by_right) {
            add(layering_.items[item].right);
        }
        return count == 0 ? middles_[item] : sum / static_cast<double>(count);
    }

    const Layering& layering_;
    std::vector<double> middles_;
};

} // namespace

std::vector<double> PlaceInLayers(const Layering& layering) {
    return Placer(layering).Run();
}

std::vector<double> NearestAscending(const std::vector<double>& wanted, const std::vector<double>& weights) {
    // Neighbours in the wrong order are pooled and share their mean, until the pools ascend.
    struct Pool {
        double mean;
        double weight;
        std::size_t count;
    };

    std::vector<Pool> pools;
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        Pool pool{wanted[i], weights[i], 1};
        while (!pools.empty() && pools.back().mean > pool.mean) {
            const Pool& last = pools.back();
            const double weight = last.weight + pool.weight;
            pool = {(last.mean * last.weight + pool.mean * pool.weight) / weight, weight, last.count + pool.count};
            pools.pop_back();
        }
        pools.push_back(pool);
    }
    std::vector<double> values;
    for (const Pool& pool : pools) {
        values.insert(values.end(), pool.count, pool.mean);
    }
    return values;
}

} // namespace Kestrona::Tool::Graph
