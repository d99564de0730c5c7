#pragma once

#include <benchmark/benchmark.h>

#include <optional>
#include <utility>

// What the benchmarks share.
namespace Kestrona::Bench {

// Shows the time of one of the `count` operations that an iteration makes, with its unit.
inline void CountEach(benchmark::State& state, double count) {
    state.counters["each"] =
        benchmark::Counter(count, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

// Each iteration works on what `make` made for it alone; only the work is measured.
template <typename Make, typename Work>
void MeasureFresh(benchmark::State& state, Make make, Work work) {
    for (auto _ : state) {
        state.PauseTiming();
        auto subject = std::optional(make());
        state.ResumeTiming();
        work(*subject);
        benchmark::DoNotOptimize(*subject);
        state.PauseTiming();
        subject.reset();
        state.ResumeTiming();
    }
}

} // namespace Kestrona::Bench
