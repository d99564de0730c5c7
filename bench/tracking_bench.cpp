// Following a path, beside the same key lookups made by hand, which keep the references of each format in a bare
// vector. Names tell the depth of the path; the argument is the number of records that it starts from, and "each" the
// time of one of them.
#include "fixtures/schema.h"
#include "measure.h"

#include <kestrona/store.h>
#include <kestrona/tracked_values.h>

#include <algorithm>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace Kestrona::Bench {
namespace {

constexpr std::int32_t kRecords = 100000;
constexpr std::int32_t kReference = 1;
constexpr double kFirstKey = 1000.0;

// A chain of formats, each with a reference into the next in no order. The last one refers to nothing.
class Chain {
public:
    Chain(std::int32_t depth, std::int32_t start_records)
        : depth_(depth),
          start_records_(start_records),
          store_(CreateMemoryResidentData()) {
        for (std::int32_t format = 0; format < depth; ++format) {
            MakeFormat(format);
        }
        IsLast condition(depth);
        Tracking::setDataPath(*store_, path_, 0, &condition);
    }

    [[nodiscard]] double Follow(std::int32_t record) const {
        return Tracking::FollowDataPathForValue(*store_, path_, record);
    }

    [[nodiscard]] double FollowByHand(std::int32_t record) const {
        double key = values_[0][static_cast<std::size_t>(record)];
        for (std::int32_t format = 1; format < depth_; ++format) {
            const std::int32_t found = store_->LookupKeyRecord(format, key);
            key = values_[static_cast<std::size_t>(format)][static_cast<std::size_t>(found)];
        }
        return key;
    }

private:
    class IsLast : public Tracking::Conditions::ITrackingCondition {
    public:
        explicit IsLast(std::int32_t depth) : format_(depth - 1) {}

        bool Test(IMemoryResidentData& /*store*/, std::int32_t format, std::int32_t field) override {
            return format == format_ && field == kReference;
        }

    private:
        std::int32_t format_;
    };

    void MakeFormat(std::int32_t format) {
        Fixtures::Field reference = Fixtures::Reference(L"Next", format + 1, 0);
        reference.type = TypeBit::kReal;
        if (format + 1 == depth_) {
            reference.classes.clear();
        }
        Fixtures::AddTable(*store_, std::to_wstring(format), {Fixtures::Integer(L"Key"), reference});
        Fill(format, format == 0 ? start_records_ : kRecords);
    }

    void Fill(std::int32_t format, std::int32_t records) {
        std::vector<double>& values = values_.emplace_back(static_cast<std::size_t>(records));
        std::ranges::generate(values, [this] { return kFirstKey + static_cast<double>(random_() % kRecords); });
        std::vector<double> keys(values.size());
        std::iota(keys.begin(), keys.end(), kFirstKey);
        std::ranges::shuffle(keys, random_);
        store_->SetCurrentDbSize(format, records);
        for (std::int32_t record = 0; record < records; ++record) {
            store_->SetDbValue(format, 0, record, keys[static_cast<std::size_t>(record)]);
            store_->SetDbValue(format, kReference, record, values[static_cast<std::size_t>(record)]);
        }
    }

    std::int32_t depth_;
    std::int32_t start_records_;
    std::mt19937 random_{7};
    std::unique_ptr<MemoryResidentData> store_;
    std::vector<std::vector<double>> values_;
    Tracking::TrackingPath path_;
};

template <std::int32_t kDepth>
std::unique_ptr<Chain> MakeChain(std::int64_t start_records) {
    return std::make_unique<Chain>(kDepth, static_cast<std::int32_t>(start_records));
}

template <std::int32_t kDepth, typename Read>
void Run(benchmark::State& state, Read read) {
    const Chain& chain = *OfSize<MakeChain<kDepth>>(state.range(0));
    const auto records = static_cast<std::int32_t>(state.range(0));
    benchmark::DoNotOptimize(read(chain, 0)); // builds the indexes
    for (auto _ : state) {
        double sum = 0.0;
        for (std::int32_t record = 0; record < records; ++record) {
            sum += read(chain, record);
        }
        benchmark::DoNotOptimize(sum);
    }
    CountEach(state, static_cast<double>(records));
}

template <std::int32_t kDepth>
void FollowPath(benchmark::State& state) {
    Run<kDepth>(state, [](const Chain& chain, std::int32_t record) { return chain.Follow(record); });
}

template <std::int32_t kDepth>
void FollowByHand(benchmark::State& state) {
    Run<kDepth>(state, [](const Chain& chain, std::int32_t record) { return chain.FollowByHand(record); });
}

#define KS_DEPTH(depth)                                                                                                \
    BENCHMARK(FollowPath<depth>)->Apply(PeerSizes);                                                                    \
    BENCHMARK(FollowByHand<depth>)->Apply(PeerSizes)

KS_DEPTH(1);
KS_DEPTH(3);
KS_DEPTH(10);
BENCHMARK(FollowPath<3>)->Apply(OtherGrowthSizes);

} // namespace
} // namespace Kestrona::Bench
