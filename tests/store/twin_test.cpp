// A store and an obvious model of it, put through the same random operations.
#include "fixtures/recording_services.h"
#include "fixtures/schema.h"

#include <kestrona/process.h>
#include <kestrona/store.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <random>
#include <set>

namespace Kestrona {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

constexpr std::int32_t kFields = 5; // key, number, integer, toggle, text
constexpr std::int32_t kText = 4;
constexpr double kDefaults[] = {-1.0, 0.5, 3.0, 1.0};
constexpr std::int32_t kScratch = kFirstScratchRecord;

// One format: rows as they read, and which records are marked by whom.
struct ModelFormat {
    struct Row {
        std::array<double, kText> numbers{kDefaults[0], kDefaults[1], kDefaults[2], kDefaults[3]};
        std::wstring text;
    };

    std::vector<Row> rows;
    Row scratch;
    std::set<std::int32_t> marks;
    std::int64_t timestamp = 0;
    bool changed = false;
    std::string transaction;
    std::map<std::pair<std::int32_t, std::int32_t>, std::string> owners; // (field, record)
};

double Stored(std::int32_t field, double value) {
    return field == 2 ? std::trunc(value) : field == 3 ? (value != 0.0 ? 1.0 : 0.0) : value;
}

class Twin : public testing::TestWithParam<unsigned> {
protected:
    Twin() {
        for (std::size_t i = 0; i < model.size(); ++i) {
            AddTable(*store, L"Format " + std::to_wstring(i),
                     {Number(L"Key", kDefaults[0]), Number(L"Number", kDefaults[1]), Integer(L"Integer", kDefaults[2]),
                      Toggle(L"Toggle", kDefaults[3]), Text(L"Text")});
        }
    }

    std::int32_t Draw(std::int32_t bound) { return static_cast<std::int32_t>(random() % static_cast<unsigned>(bound)); }

    ModelFormat& Model(std::int32_t format) { return model[static_cast<std::size_t>(format)]; }

    void Mark(ModelFormat& twin, std::int32_t field, std::int32_t record) {
        twin.marks.insert(record);
        twin.changed = true;
        ++twin.timestamp;
        if (!twin.transaction.empty()) {
            twin.owners[{field, record}] = twin.transaction;
        }
    }

    // A record of the format, or the scratch record.
    std::int32_t DrawRecord(const ModelFormat& twin) {
        return twin.rows.empty() || Draw(20) == 0 ? kScratch : Draw(static_cast<std::int32_t>(twin.rows.size()));
    }

    void Write(std::int32_t format) {
        ModelFormat& twin = Model(format);
        const std::int32_t record = DrawRecord(twin);
        const std::int32_t field = Draw(kFields);
        ModelFormat::Row& row = record == kScratch ? twin.scratch : twin.rows[static_cast<std::size_t>(record)];
        bool changes = false;
        if (field == kText) {
            const std::wstring text(static_cast<std::size_t>(Draw(3)), static_cast<wchar_t>(L'a' + Draw(3)));
            store->SetDbString(format, field, record, text);
            changes = std::exchange(row.text, text) != text;
        } else {
            const double value = Draw(9) / 2.0 - 1.0;
            store->SetDbValue(format, field, record, value);
            const double stored = Stored(field, value);
            changes = std::exchange(row.numbers[static_cast<std::size_t>(field)], stored) != stored;
        }
        if (changes && record != kScratch) {
            Mark(twin, field, record);
        }
    }

    void Resize(std::int32_t format) {
        ModelFormat& twin = Model(format);
        const auto size = static_cast<std::size_t>(Draw(4) == 0 ? Draw(3) : Draw(200));
        store->SetCurrentDbSize(format, static_cast<std::int32_t>(size));
        twin.rows.resize(size);
    }

    void Transact(std::int32_t format) {
        ModelFormat& twin = Model(format);
        if (twin.transaction.empty()) {
            twin.transaction = store->StartRecordStateTransaction(format, -1);
            return;
        }
        const std::string id = std::exchange(twin.transaction, std::string());
        const bool revert = Draw(2) == 0;
        if (revert) {
            store->RevertRecordState(format, id, -1);
        } else {
            store->EndRecordStateTransaction(format, id, -1);
        }
        for (auto entry = twin.owners.begin(); entry != twin.owners.end();) {
            if (entry->second == id && revert) {
                twin.marks.erase(entry->first.second);
                twin.changed = twin.changed && !twin.marks.empty();
            }
            entry = entry->second == id ? twin.owners.erase(entry) : std::next(entry);
        }
    }

    void Reset(std::int32_t format) {
        store->ResetDbChanged(format);
        Model(format).marks.clear();
        Model(format).changed = false;
        Model(format).owners.clear();
    }

    void CompareCells(std::int32_t format) {
        const ModelFormat& twin = Model(format);
        for (std::int32_t i = -1; i < static_cast<std::int32_t>(twin.rows.size()); ++i) {
            const std::int32_t record = i == -1 ? kScratch : i;
            const ModelFormat::Row& row = i == -1 ? twin.scratch : twin.rows[static_cast<std::size_t>(i)];
            for (std::int32_t field = 0; field < kText; ++field) {
                ASSERT_EQ(store->GetDbValue(format, field, record), row.numbers[static_cast<std::size_t>(field)])
                    << format << ' ' << field << ' ' << record;
            }
            ASSERT_EQ(store->GetDbString(format, kText, record), row.text) << format << ' ' << record;
        }
    }

    void CompareMarks(std::int32_t format) {
        const ModelFormat& twin = Model(format);
        std::vector<std::pair<std::int32_t, bool>> marks;
        for (const std::int32_t record : twin.marks) {
            marks.emplace_back(record, true);
        }
        ASSERT_EQ(store->GetFormatInfo(format)->changedRecords.Entries(), marks);
        ASSERT_EQ(store->GetDbChanged(format), twin.changed);
        ASSERT_EQ(store->GetTimestamp(format), twin.timestamp);
    }

    void CompareSearches(std::int32_t format) {
        const ModelFormat& twin = Model(format);
        const std::int32_t field = Draw(kText);
        const double probe = Stored(field, Draw(9) / 2.0 - 1.0);
        if (Draw(2) == 0) {
            store->AddIndexToColumn(format, field);
        }
        RecordNumbers expected;
        for (std::size_t i = 0; i < twin.rows.size(); ++i) {
            if (twin.rows[i].numbers[static_cast<std::size_t>(field)] == probe) {
                expected.push_back(static_cast<std::int32_t>(i));
            }
        }
        const std::unique_ptr<FindResult> found(store->LookupRecords(format, field, probe, FindOperator::Equal));
        ASSERT_TRUE(std::ranges::equal(found->Records(), expected)) << format << ' ' << field << ' ' << probe;
        if (field == 0) {
            ASSERT_EQ(store->LookupKeyRecord(format, probe), expected.empty() ? -1 : expected.front());
        }
    }

    FreshProcess process;
    std::unique_ptr<MemoryResidentData> store = CreateMemoryResidentData();
    std::array<ModelFormat, 3> model;
    std::mt19937 random{GetParam()};
};

TEST_P(Twin, StoreAndModelAgree) {
    for (int step = 0; step < 6000; ++step) {
        const std::int32_t format = Draw(static_cast<std::int32_t>(model.size()));
        const std::int32_t kind = Draw(100);
        if (kind < 85) {
            Write(format);
        } else if (kind < 89) {
            CompareMarks(format);
            Resize(format);
            // A cleared column counts as a change of the format; how often is the column's business.
            Model(format).timestamp = store->GetTimestamp(format);
            Model(format).changed = store->GetDbChanged(format);
        } else if (kind < 92) {
            Transact(format);
        } else if (kind < 93) {
            Reset(format);
        } else {
            CompareSearches(format);
        }
        if (HasFatalFailure()) {
            FAIL() << "step " << step;
        }
    }
    for (std::int32_t format = 0; format < static_cast<std::int32_t>(model.size()); ++format) {
        CompareCells(format);
        CompareMarks(format);
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, Twin, testing::Range(0u, 8u));

} // namespace

} // namespace Kestrona
