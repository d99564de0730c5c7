// Following a path for a million records, beside the same key lookups made by hand, which keep the references of each
// format in a bare vector. Every figure "each" is the time of one record; the argument is the depth of the path.
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

namespace {

using namespace Kestrona;
using namespace Kestrona::Bench;
using namespace Kestrona::Data::MemoryResident;

constexpr std::int32_t kStartRecords = 1000000;
constexpr std::int32_t kRecords = 100000;
constexpr std::int32_t kReference = 1;
constexpr double kFirstKey = 1000.0;

// A chain of formats, each with a reference into the next in no order. The last one refers to nothing.
class Chain {
public:
    explicit Chain(std::int32_t depth) : depth_(depth), store_(CreateMemoryResidentData()) {
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
        Fill(format, format == 0 ? kStartRecords : kRecords);
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
    std::mt19937 random_{7};
    std::unique_ptr<MemoryResidentData> store_;
    std::vector<std::vector<double>> values_;
    Tracking::TrackingPath path_;
};

const Chain& ChainOf(std::int64_t depth) {
    static std::unique_ptr<Chain> chain;
    static std::int64_t made = 0;
    if (chain == nullptr || made != depth) {
        chain = std::make_unique<Chain>(static_cast<std::int32_t>(depth));
        made = depth;
    }
    return *chain;
}

template <typename Read>
void Run(benchmark::State& state, Read read) {
    const Chain& chain = ChainOf(state.range(0));
    for (auto _ : state) {
        double sum = 0.0;
        for (std::int32_t record = 0; record < kStartRecords; ++record) {
            sum += read(chain, record);
        }
        benchmark::DoNotOptimize(sum);
    }
    CountEach(state, kStartRecords);
}

void FollowPath(benchmark::State& state) {
    Run(state, [](const Chain& chain, std::int32_t record) { return chain.Follow(record); });
}

void FollowByHand(benchmark::State& state) {
    Run(state, [](const Chain& chain, std::int32_t record) { return chain.FollowByHand(record); });
}

void Depths(benchmark::internal::Benchmark* benchmark) {
    benchmark->Unit(benchmark::kMillisecond)->Arg(1)->Arg(3)->Arg(10);
}

BENCHMARK(FollowPath)->Apply(Depths);
BENCHMARK(FollowByHand)->Apply(Depths);

} // namespace
