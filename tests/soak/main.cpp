// Random operations of every kind on a large plant for a set time, each compared with a twin of the store, with an eye
// on memory: kestrona_soak [--seconds N] [--formats N] [--records N] [--seed N]. Ends with 1 at the first difference,
// and when memory grows although the number of records does not.

#include "fixtures/recording_services.h"
#include "soak/memory.h"
#include "soak/soak.h"

#include <kestrona/encryption.h>
#include <kestrona/unicode.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace Kestrona::Soak {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::int32_t kIntervals = 30; // of the whole time; the first third counts as warming up
constexpr std::int32_t kSecondsToJudge = 300;
constexpr std::int32_t kIntervalsToCompareAll = 3;
constexpr std::int32_t kIntervalsToSnapshot = 10;
constexpr double kMegabyte = 1048576.0;

// A fresh folder as the current one, with the user's key in it, until the end.
class Folder {
public:
    Folder() {
        std::string path = std::filesystem::temp_directory_path() / "kestrona_soak_XXXXXX";
        if (mkdtemp(path.data()) == nullptr) {
            throw std::filesystem::filesystem_error("no folder", std::error_code(errno, std::generic_category()));
        }
        path_ = path;
        std::filesystem::current_path(path_);
        setenv("XDG_DATA_HOME", path.c_str(), 1);
    }

    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    ~Folder() {
        std::filesystem::current_path(former_);
        std::filesystem::remove_all(path_);
    }

private:
    std::filesystem::path former_ = std::filesystem::current_path();
    std::filesystem::path path_;
};

// False for arguments that are none.
bool ReadSettings(int count, char** arguments, Settings& settings) {
    for (int i = 1; i + 1 < count; i += 2) {
        const std::string_view name = arguments[i];
        const int value = std::atoi(arguments[i + 1]);
        if (name == "--seed") {
            settings.seed = static_cast<unsigned>(value);
        } else if (name == "--seconds" && value > 0) {
            settings.seconds = value;
        } else if (name == "--formats" && value >= 10 && value < kMaxFormats) {
            settings.formats = value;
        } else if (name == "--records" && value > 0) {
            settings.records = value;
        } else {
            return false;
        }
    }
    return count % 2 == 1;
}

void PrintInterval(double seconds, Soak& soak, const Memory& memory) {
    std::int64_t operations = 0;
    for (const auto& [name, tally] : soak.Tallies()) {
        operations += tally.count;
    }
    std::printf("%8.1f s %10lld operations and checks %9lld records %11lld compared   library %8.1f MB   twin %8.1f MB"
                "   resident %8.1f MB\n",
                seconds, static_cast<long long>(operations), static_cast<long long>(soak.Records()),
                static_cast<long long>(soak.ComparedRecords()), static_cast<double>(memory.library) / kMegabyte,
                static_cast<double>(memory.twin) / kMegabyte, static_cast<double>(memory.resident) / kMegabyte);
    std::fflush(stdout);
}

void PrintTallies(const Soak& soak) {
    for (const auto& [name, tally] : soak.Tallies()) {
        std::printf("%12lld  %-32s %9.1f s\n", static_cast<long long>(tally.count), name.c_str(), tally.seconds);
    }
}

// The highest value of the last third of the samples over that of the second third.
double Growth(const std::vector<Memory>& samples, std::size_t Memory::*member) {
    const auto highest = [&](std::size_t first, std::size_t last) {
        std::size_t value = 1;
        for (std::size_t i = first; i < last; ++i) {
            value = std::max(value, samples[i].*member);
        }
        return static_cast<double>(value);
    };
    const std::size_t third = samples.size() / 3;
    return highest(2 * third, samples.size()) / highest(third, 2 * third);
}

// Only a run that is long enough to have made most indexes and change marks before is judged.
bool IsFlat(const std::vector<Memory>& samples, std::int32_t seconds) {
    constexpr double kLibraryLimit = 1.02;
    constexpr double kResidentLimit = 1.05;
    const double library = Growth(samples, &Memory::library);
    const double resident = Growth(samples, &Memory::resident);
    const bool is_judged = kCountsMemory && seconds >= kSecondsToJudge;
    const bool is_flat = library <= kLibraryLimit && resident <= kResidentLimit;
    std::printf("memory, highest of the last third to that of the second: library %.4f, twin %.4f, resident %.4f: %s\n",
                library, Growth(samples, &Memory::twin), resident,
                !is_judged ? "not judged"
                : is_flat  ? "flat"
                           : "GROWS");
    return is_flat || !is_judged;
}

class Run {
public:
    explicit Run(const Settings& settings) : settings_(settings), soak_(settings) {}

    // Returns the exit code.
    int Go() {
        std::printf("seed %u, %d formats, %d records, %d s\n", settings_.seed, settings_.formats, settings_.records,
                    settings_.seconds);
        soak_.Fill();
        std::printf("filled\n");
        EndInterval(true, true);
        samples_.clear();
        start_ = Clock::now();
        for (std::int32_t interval = 1; interval <= kIntervals && soak_.Problem().empty(); ++interval) {
            const double end = static_cast<double>(settings_.seconds) * interval / kIntervals;
            while (Seconds() < end && soak_.Problem().empty()) {
                soak_.Step();
            }
            const bool is_last = interval == kIntervals;
            EndInterval(interval % kIntervalsToCompareAll == 0 || is_last,
                        interval % kIntervalsToSnapshot == 0 || is_last);
        }
        return Judge();
    }

private:
    [[nodiscard]] double Seconds() const { return std::chrono::duration<double>(Clock::now() - start_).count(); }

    void EndInterval(bool compares_all, bool makes_snapshot) {
        if (compares_all && soak_.Problem().empty()) {
            soak_.CompareAll();
        }
        if (makes_snapshot && soak_.Problem().empty()) {
            soak_.CheckSnapshot();
        }
        samples_.push_back(MeasureMemory());
        PrintInterval(Seconds(), soak_, samples_.back());
    }

    int Judge() {
        PrintTallies(soak_);
        const bool has_told = !messages_.boxes.empty();
        const std::wstring told = has_told ? L" message: " + messages_.boxes.front().text : L"";
        if (!soak_.Problem().empty() || has_told) {
            std::printf("FAILED with seed %u: %s%s%s\n", settings_.seed, soak_.Problem().c_str(), ToUtf8(told).c_str(),
                        soak_.LastOperations().c_str());
            return 1;
        }
        return IsFlat(samples_, settings_.seconds) ? 0 : 1;
    }

    Settings settings_;
    Fixtures::RecordingMessages& messages_ = Fixtures::InstallRecordingMessages();
    Soak soak_;
    Clock::time_point start_ = Clock::now();
    std::vector<Memory> samples_;
};

} // namespace

} // namespace Kestrona::Soak

int main(int count, char** arguments) {
    using namespace Kestrona;
    Soak::Settings settings;
    if (!Soak::ReadSettings(count, arguments, settings)) {
        std::fprintf(stderr, "usage: kestrona_soak [--seconds N] [--formats N] [--records N] [--seed N]\n");
        return 2;
    }
    const Fixtures::FreshProcess process;
    const Soak::Folder folder;
    Encryption::EncryptionService::Instance()->Initialise(Encryption::DataProtection().Protect(L"phrase"), true);
    return Soak::Run(settings).Go();
}
