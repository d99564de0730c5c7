#include "soak/soak.h"

#include "model/comparison.h"
#include "model/search_check.h"
#include "soak/checks.h"

#include <algorithm>
#include <cassert>
#include <chrono>
#include <numeric>

namespace Kestrona::Soak {

using namespace Data::MemoryResident;

namespace {

constexpr std::int32_t kAll = 10000;
constexpr std::int32_t kSmallPercent = 15; // operations in small formats
constexpr std::int32_t kCompared = 4;

// A changing operation, which tells what it finds wrong by itself.
template <auto Method>
std::string Change(Model::Mirror& mirror, std::int32_t format) {
    (mirror.*Method)(format);
    return "";
}

} // namespace

const Soak::Operation Soak::kOperations[] = {
    {"write a field", 3900, false,
     [](Soak& s, std::int32_t f) {
         return Change<&Model::Mirror::Write>(s.mirror_, f);
     }},
    {"create or delete records", 2300, false,
     [](Soak& s, std::int32_t f) {
         s.Populate(f);
         return std::string();
     }},
    {"copy a row", 500, false,
     [](Soak& s, std::int32_t f) {
         return Change<&Model::Mirror::CopyRow>(s.mirror_, f);
     }},
    {"swap two rows", 500, false,
     [](Soak& s, std::int32_t f) {
         return Change<&Model::Mirror::SwapRows>(s.mirror_, f);
     }},
    {"copy a list", 500, false,
     [](Soak& s, std::int32_t f) {
         return Change<&Model::Mirror::CopyList>(s.mirror_, f);
     }},
    {"look up 24 keys", 500, false,
     [](Soak& s, std::int32_t f) {
         return CheckKeys(s.mirror_, f);
     }},
    {"search all fields in every way", 150, false,
     [](Soak& s, std::int32_t f) {
         return Model::FindSearchDifference(*s.store_, s.mirror_.TheTwin(), f, s.mirror_.Random());
     }},
    {"sort to a list", 60, false,
     [](Soak& s, std::int32_t f) {
         return CheckSort(s.mirror_, f);
     }},
    {"sort the rows", 20, false,
     [](Soak& s, std::int32_t f) {
         return SortRows(s.mirror_, f);
     }},
    {"evaluate expressions", 200, true,
     [](Soak& s, std::int32_t f) {
         return CheckExpressions(s.mirror_, f);
     }},
    {"follow paths", 400, true,
     [](Soak& s, std::int32_t f) {
         return CheckPath(s.mirror_, f);
     }},
    {"values as text and back", 400, false,
     [](Soak& s, std::int32_t f) {
         return CheckTexts(s.mirror_, f);
     }},
    {"change marks and transactions", 400, false,
     [](Soak& s, std::int32_t f) {
         return CheckMarks(s.mirror_, f);
     }},
    {"save and load a format", 30, false,
     [](Soak& s, std::int32_t f) {
         return s.files_.CheckTable(s.mirror_, f);
     }},
    {"write and read the definition", 10, false,
     [](Soak& s, std::int32_t /*format*/) {
         return Files::CheckDefinition(s.mirror_);
     }},
    {"duplicate a format", 20, true,
     [](Soak& s, std::int32_t f) {
         return Files::CheckDuplicate(s.mirror_, f);
     }},
    {"audit a change", 100, true,
     [](Soak& s, std::int32_t f) {
         return Files::CheckAudit(s.mirror_, f);
     }},
    {"empty a small format", 10, false,
     [](Soak& s, std::int32_t f) {
         return s.plant_.IsLarge(f) ? std::string() : Change<&Model::Mirror::Clear>(s.mirror_, f);
     }},
};

Soak::Soak(const Settings& settings)
    : plant_(MakePlant(settings.formats, settings.records)),
      store_(CreateMemoryResidentData()),
      files_(plant_.plan),
      mirror_(*store_, plant_.plan, settings.seed) {
    Model::Build(*store_, plant_.plan);
    assert(std::accumulate(std::begin(kOperations), std::end(kOperations), 0,
                           [](std::int32_t sum, const Operation& o) { return sum + o.weight; }) == kAll);
}

void Soak::Fill() {
    for (std::int32_t format = 0; format < store_->GetFormatCount(); ++format) {
        for (std::int32_t record = 0; record < plant_.sizes[static_cast<std::size_t>(format)]; ++record) {
            mirror_.Append(format, record + 1.0);
            for (std::int32_t field = 1; plant_.IsLarge(format) && field < mirror_.Fields(format); ++field) {
                mirror_.WriteField(format, field, record);
            }
        }
    }
    // Makes every index, so that the memory of one that is asked for late does not look like growth.
    for (std::int32_t format = 0; format < store_->GetFormatCount() && problem_.empty(); ++format) {
        problem_ += Model::FindSearchDifference(*store_, mirror_.TheTwin(), format, mirror_.Random());
    }
}

std::int64_t Soak::Records() {
    std::int64_t records = 0;
    for (std::int32_t format = 0; format < store_->GetFormatCount(); ++format) {
        records += store_->GetCurrentDbSize(format);
    }
    return records;
}

// Keeps each format near its size.
void Soak::Populate(std::int32_t format) {
    if (mirror_.TheTwin().Size(format) > plant_.sizes[static_cast<std::size_t>(format)]) {
        mirror_.Delete(format);
    } else if (mirror_.Chance(50)) {
        mirror_.Insert(format);
    } else {
        mirror_.Create(format);
    }
}

// Every operation but the making of records needs some.
void Soak::KeepFilled(std::int32_t format) {
    while (mirror_.TheTwin().Size(format) < 2) {
        mirror_.Insert(format);
    }
}

void Soak::CompareSome(std::int32_t format) {
    const Model::Twin& twin = mirror_.TheTwin();
    problem_ += mirror_.Problems() + Model::SizeDifference(*store_, twin, format);
    for (std::int32_t i = 0; i < kCompared && problem_.empty() && twin.Size(format) > 0; ++i) {
        problem_ += Model::RecordDifference(*store_, twin, format, mirror_.Draw(twin.Size(format)));
        ++compared_;
    }
}

template <typename Action>
void Soak::Count(const std::string& name, Action action) {
    const auto start = std::chrono::steady_clock::now();
    action();
    Tally& tally = tallies_[name];
    ++tally.count;
    tally.seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void Soak::Step() {
    std::int32_t place = mirror_.Draw(kAll);
    const Operation* operation = std::begin(kOperations);
    for (; place >= operation->weight; ++operation) {
        place -= operation->weight;
    }
    const std::int32_t large = store_->GetFormatCount() - plant_.first_large;
    const std::int32_t format = operation->only_large || !mirror_.Chance(kSmallPercent)
                                    ? plant_.first_large + mirror_.Draw(large)
                                    : mirror_.Draw(plant_.first_large);
    KeepFilled(format);
    Count(operation->name, [&] {
        const std::string found = operation->run(*this, format);
        problem_ +=
            found.empty() ? "" : std::string(operation->name) + ", format " + std::to_string(format) + ": " + found;
    });
    Count("compare 4 records", [&] { CompareSome(format); });
}

void Soak::CompareAll() {
    Count("compare every record", [&] { problem_ += Model::StoreDifference(*store_, mirror_.TheTwin()); });
    compared_ += Records();
}

void Soak::CheckSnapshot() {
    Count("save and load everything", [&] { problem_ += files_.CheckSnapshot(mirror_); });
    compared_ += Records();
}

} // namespace Kestrona::Soak
