// Lets each request for memory fail in turn, in everything that reads and writes a plant.
#include "faults/failing_memory.h"
#include "faults/plant_work.h"
#include "host/snapshot_fixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <new>
#include <string>

namespace Kestrona::Faults {
namespace {

// Requests that are tried of each kind of work. All of them with KESTRONA_FAULTS=every, which takes long; a number
// there is the only one that is tried.
constexpr std::int64_t kMostTried = 40;

std::vector<std::int64_t> Tried(std::int64_t requests) {
    const char* const variable = std::getenv("KESTRONA_FAULTS");
    const std::string wish = variable != nullptr ? variable : "";
    if (!wish.empty() && wish != "every") {
        return {std::stoll(wish)};
    }
    // An odd step, so that it does not keep to one place of a loop.
    const std::int64_t step = wish == "every" ? 1 : (requests / kMostTried) | 1;
    std::vector<std::int64_t> tried;
    for (std::int64_t request = 1; request <= requests; request += step) {
        tried.push_back(request);
    }
    return tried;
}

struct Attempt {
    std::string result; // "" for a failure that was told
    std::int64_t requests = 0;
};

Attempt Try(Work& work, std::int64_t failing, Shortage shortage) {
    work.Prepare();
    RunOutOfMemoryAt(failing, shortage);
    bool is_done = false;
    try {
        is_done = work.Run();
    } catch (const std::bad_alloc&) {
    }
    const std::int64_t requests = GiveMemoryAgain();
    return {work.Finish(is_done), requests};
}

// Lets one request fail, does the work again with all the memory, and tells what is wrong.
std::string WrongAfter(Work& work, std::int64_t failing, Shortage shortage, const std::string& expected,
                       bool& is_told) {
    std::string wrong;
    const std::string result = Try(work, failing, shortage).result;
    is_told = result.empty();
    if (!is_told && result != expected) {
        wrong = "a wrong result passes for a right one\n" + Host::Difference(result, expected);
    }
    wrong += work.HalfWrittenFiles();
    if (const std::string again = Try(work, 0, Shortage::Once).result; again != expected) {
        wrong += "cannot be done afterwards\n" + Host::Difference(again, expected);
    }
    return wrong;
}

struct Case {
    const char* name;
    std::function<std::unique_ptr<Work>()> make;
    Shortage shortage;
};

void PrintTo(const Case& shown, std::ostream* out) {
    *out << shown.name;
}

class Allocation : public testing::TestWithParam<Case> {};

TEST_P(Allocation, FailureIsToldAndLeavesNothingBehind) {
    const std::unique_ptr<Work> work = GetParam().make();
    const std::string expected = Try(*work, 0, Shortage::Once).result;
    ASSERT_FALSE(expected.empty());
    // Once more, as the first time fills what the process keeps.
    const std::int64_t requests = Try(*work, 0, Shortage::Once).requests;
    ASSERT_GT(requests, 0);
    ASSERT_EQ(work->HalfWrittenFiles(), "");

    const std::vector<std::int64_t> tried = Tried(requests);
    std::int64_t told = 0;
    for (const std::int64_t failing : tried) {
        bool is_told = false;
        std::int64_t live = LiveBlocks();
        std::string wrong = WrongAfter(*work, failing, GetParam().shortage, expected, is_told);
        if (LiveBlocks() != live) { // what the report of a new kind of failure leaves to the process stays once
            live = LiveBlocks();
            wrong += WrongAfter(*work, failing, GetParam().shortage, expected, is_told);
        }
        EXPECT_EQ(LiveBlocks(), live) << "request " << failing << " leaks";
        EXPECT_EQ(wrong, "") << "request " << failing;
        told += is_told ? 1 : 0;
    }
    if (GetParam().shortage == Shortage::FromThenOn) {
        EXPECT_EQ(told, static_cast<std::int64_t>(tried.size())) << "nothing can be done without any memory";
    }
    std::cout << GetParam().name << ": " << tried.size() << " of " << requests << " requests failed, " << told
              << " of them told\n";
}

std::vector<Case> Cases() {
    std::vector<Case> cases;
    for (const Shortage shortage : {Shortage::Once, Shortage::FromThenOn}) {
        for (const NamedWork& work : AllWork()) {
            cases.push_back({work.name, work.make, shortage});
        }
    }
    return cases;
}

INSTANTIATE_TEST_SUITE_P(Work, Allocation, testing::ValuesIn(Cases()), [](const auto& chosen) {
    return std::string(chosen.param.name) + (chosen.param.shortage == Shortage::Once ? "Once" : "FromThenOn");
});

} // namespace
} // namespace Kestrona::Faults
