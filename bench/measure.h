#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <map>
#include <optional>
#include <utility>

namespace Kestrona::Data::MemoryResident {}

// What the benchmarks share; they are in this namespace themselves.
namespace Kestrona::Bench {

using namespace Data::MemoryResident;

// Shows the time of one of the `count` operations that an iteration makes, with its unit.
inline void CountEach(benchmark::State& state, double count) {
    state.counters["each"] =
        benchmark::Counter(count, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

// Each iteration works on what `make` made for it alone, and `check` may look at afterwards; only the work is measured.
template <typename Make, typename Work, typename Check>
void MeasureFresh(benchmark::State& state, Make make, Work work, Check check) {
    for (auto _ : state) {
        state.PauseTiming();
        auto subject = std::optional(make());
        state.ResumeTiming();
        work(*subject);
        benchmark::DoNotOptimize(*subject);
        state.PauseTiming();
        check(*subject);
        subject.reset();
        state.ResumeTiming();
    }
}

template <typename Make, typename Work>
void MeasureFresh(benchmark::State& state, Make make, Work work) {
    MeasureFresh(state, make, work, [](const auto&) {});
}

// What `kMake` makes of this size, made once.
template <auto kMake>
auto& OfSize(std::int64_t size) {
    static std::map<std::int64_t, decltype(kMake(size))> made;
    const auto found = made.find(size);
    return found != made.end() ? found->second : made.emplace(size, kMake(size)).first->second;
}

// The sizes at which an operation stands beside its peers.
inline void PeerSizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(10000)->Arg(1000000);
}

// Those that show how cost grows, beside the sizes above.
inline void OtherGrowthSizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(100000)->Arg(5000000);
}

inline void GrowthSizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(10000)->Arg(100000)->Arg(1000000)->Arg(5000000);
}

} // namespace Kestrona::Bench
