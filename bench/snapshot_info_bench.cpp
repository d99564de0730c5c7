// Looking into a snapshot without loading it: by the host's function, and by a run of the tool. The argument is the
// size of the file in kilobytes; the largest is 1 GB. Files go to the folder for temporary files (TMPDIR).

#include "number_store.h"

#include <kestrona/host/snapshot.h>
#include <kestrona/store.h>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <string>

namespace {

using namespace Kestrona;
using namespace Kestrona::Data::MemoryResident;

constexpr std::int32_t kFields = 20;
// One table with as many datasets, so that the store holds a tenth of what the file does.
constexpr std::int32_t kDatasets = 10;
constexpr std::int64_t kBytesPerRecord = std::int64_t{kFields} * kDatasets * std::int64_t{sizeof(double)};

std::unique_ptr<MemoryResidentData> MakeStore(std::int32_t records) {
    auto store = Bench::MakeNumberStore(kFields);
    store->SetCurrentDbSize(0, records);
    for (std::int32_t field = 0; field < kFields; ++field) {
        for (std::int32_t record = 0; record < records; ++record) {
            store->SetDbValue(0, field, record, record * 0.5 + field + 1.0);
        }
    }
    return store;
}

// A snapshot until the end of the program.
class LargeSnapshot {
public:
    explicit LargeSnapshot(std::int64_t kilobytes)
        : path_(std::filesystem::temp_directory_path() / ("kestrona_bench_" + std::to_string(kilobytes) + ".kes")) {
        const auto store = MakeStore(static_cast<std::int32_t>(kilobytes * 1000 / kBytesPerRecord));
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
}

// The process, from its start to its end.
void RunInfo(benchmark::State& state) {
    // cppcheck-suppress ignoredReturnValue ; it is a part of the text
    const std::string command = "'" KESTRONA_TOOL "' info '" + LargeSnapshot::Of(state).Path() + "' > /dev/null";
    for (auto _ : state) {
        if (std::system(command.c_str()) != 0) {
            state.SkipWithError("the tool failed");
        }
    }
}

BENCHMARK(ReadInfo)->Arg(1000)->Arg(1000000)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(RunInfo)->Arg(1000)->Arg(1000000)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
