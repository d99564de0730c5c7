// How long the tool takes to start, and to look into a snapshot without loading it, beside another tool and a program
// that does nothing. The argument is the size of the file in kilobytes; the largest is 1 GB. Files go to the folder for
// temporary files (TMPDIR). The time of a program is that on the clock; "cpu" is its time on a processor.

#include "measure.h"
#include "number_store.h"

#include <kestrona/host/snapshot.h>
#include <kestrona/store.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Kestrona::Bench {
namespace {

constexpr std::int32_t kFields = 20;
// One table with as many datasets, so that the store holds a tenth of what the file does.
constexpr std::int32_t kDatasets = 10;
constexpr std::int64_t kBytesPerRecord = std::int64_t{kFields} * kDatasets * std::int64_t{sizeof(double)};

// A snapshot until the end of the program.
class LargeSnapshot {
public:
    explicit LargeSnapshot(std::int64_t kilobytes)
        : path_(std::filesystem::temp_directory_path() /
                ("kestrona_bench_" + std::to_string(getpid()) + "_" + std::to_string(kilobytes) + ".kes")) {
        const auto store = MakeNumberStore(kFields, static_cast<std::int32_t>(kilobytes * 1000 / kBytesPerRecord));
        Host::SnapshotWriter writer(*store, path_, kDatasets);
        for (std::int32_t dataset = 0; dataset < kDatasets; ++dataset) {
            writer.AddTable(0, L"Dataset " + std::to_wstring(dataset));
        }
        is_written_ = writer.Commit();
    }

    LargeSnapshot(const LargeSnapshot&) = delete;
    LargeSnapshot& operator=(const LargeSnapshot&) = delete;

    ~LargeSnapshot() { std::filesystem::remove(path_); }

    // Made by the first that asks.
    static const LargeSnapshot& Of(benchmark::State& state) {
        static std::map<std::int64_t, LargeSnapshot> snapshots;
        const LargeSnapshot& snapshot = snapshots.try_emplace(state.range(0), state.range(0)).first->second;
        if (!snapshot.is_written_) {
            state.SkipWithError("the snapshot could not be written");
        }
        return snapshot;
    }

    [[nodiscard]] const std::string& Path() const { return path_; }

private:
    std::string path_;
    bool is_written_ = false;
};

void ReadInfo(benchmark::State& state) {
    const LargeSnapshot& snapshot = LargeSnapshot::Of(state);
    Host::FileProblem problem;
    for (auto _ : state) {
        const auto info = Host::ReadSnapshotInfo(snapshot.Path(), problem);
        if (!info || info->tables.size() != kDatasets || info->file_size < state.range(0) * 1000) {
            state.SkipWithError("the snapshot was not read");
        }
    }
    CountEach(state, 1);
}

double Seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

// Runs a program, whose output nobody sees, from its start to its end. Returns what it used, nothing after a failure.
std::optional<rusage> RunProgram(std::vector<std::string> words) {
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    const int error = posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    rusage used{};
    if (error != 0 || wait4(child, &status, 0, &used) != child || status != 0) {
        return std::nullopt;
    }
    return used;
}

void Start(benchmark::State& state, const std::vector<std::string>& words) {
    using Clock = std::chrono::steady_clock;
    double cpu = 0.0;
    for (auto _ : state) {
        const Clock::time_point start = Clock::now();
        const std::optional<rusage> used = RunProgram(words);
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
        if (!used) {
            state.SkipWithError("the program failed");
            break;
        }
        cpu += Seconds(used->ru_utime) + Seconds(used->ru_stime);
    }
    CountEach(state, 1);
    state.counters["cpu"] = benchmark::Counter(cpu, benchmark::Counter::kAvgIterations);
}

void StartInfo(benchmark::State& state) {
    Start(state, {KESTRONA_TOOL, "info", LargeSnapshot::Of(state).Path()});
}

using Words = std::vector<std::string>;

BENCHMARK_CAPTURE(Start, version, Words{KESTRONA_TOOL, "--version"})->UseManualTime();
BENCHMARK_CAPTURE(Start, git_version, Words{"git", "--version"})->UseManualTime();
BENCHMARK_CAPTURE(Start, nothing, Words{"true"})->UseManualTime();
BENCHMARK(StartInfo)->Arg(1000)->Arg(100000)->Arg(1000000)->UseManualTime();
BENCHMARK(ReadInfo)->Arg(1000)->Arg(1000000);

} // namespace
} // namespace Kestrona::Bench
