// Marks of changes, against plain maps.
#include <kestrona/change_set.h>
#include <kestrona/record_state.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <map>
#include <random>
#include <string>

namespace Kestrona::Testing {
namespace {

using namespace Kestrona::Data::MemoryResident;

using Marks = std::map<std::int32_t, bool>;

std::vector<std::pair<std::int32_t, bool>> Entries(const Marks& twin) {
    return {twin.begin(), twin.end()};
}

// Numbers beside the borders of words, pages, the near pages and 32 bits.
std::int32_t AnyRecord(std::mt19937& random) {
    constexpr std::int32_t kBorders[] = {0,
                                         64,
                                         4096,
                                         12288,
                                         67108864,
                                         kFirstScratchRecord,
                                         std::numeric_limits<std::int32_t>::min() + 70,
                                         std::numeric_limits<std::int32_t>::max() - 70};
    return kBorders[random() % std::size(kBorders)] + (static_cast<std::int32_t>(random() % 140) - 70);
}

TEST(ChangedRecords, MarkRangeMarksAndCountsEveryRecordOnce) {
    for (const std::int32_t count : {-5, 0, 1, 63, 64, 65, 4095, 4096, 4097, 10000}) {
        ChangedRecords marks;
        Marks twin;
        for (const std::int32_t known : {0, 64, 5000}) {
            marks.Lookup(known);
            twin[known] = false;
        }
        marks.MarkRange(count);
        for (std::int32_t record = 0; record < count; ++record) {
            twin[record] = true;
        }
        EXPECT_EQ(marks.Size(), twin.size()) << count;
        EXPECT_EQ(marks.Entries(), Entries(twin)) << count;
    }
}

TEST(ChangedRecords, MovingLeavesTheSourceEmpty) {
    ChangedRecords marks;
    marks.Mark(3);
    ChangedRecords moved = std::move(marks);
    EXPECT_TRUE(marks.IsEmpty()); // NOLINT(*-use-after-move,*.Move): what is tested
    marks = std::move(moved);
    EXPECT_EQ(marks.Entries(), (std::vector{std::pair{3, true}}));
    EXPECT_FALSE(moved.Contains(3)); // NOLINT(*-use-after-move,*.Move): likewise
}

TEST(KeyOrder, KeepsASetOfKeysSoundWithNaN) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    ErasedKeys keys;
    for (const double key : {2.0, nan, -1.0, 0.0, -0.0, nan, 2.0}) {
        keys[key] = true;
    }
    EXPECT_EQ(keys.size(), 4U);
    EXPECT_TRUE(keys.contains(nan));
    EXPECT_EQ(keys.rbegin()->first, 2.0);
}

// The change sets of a format and the attributions of its columns as plain maps.
struct StateTwin {
    struct Column {
        std::string current;
        bool cleared = false;
        std::map<std::int32_t, std::string> records;
        std::map<double, std::string> keys;
    };

    std::map<std::int32_t, bool> changed_records;
    std::map<double, bool> erased_keys;
    bool changed = false;
    std::int64_t timestamp = 0;
    std::vector<Column> columns{2};

    void Changed(Column& column, std::int32_t record) {
        if (!column.current.empty()) {
            column.records[record] = column.current;
        }
        changed_records[record] = changed = true;
        ++timestamp;
    }

    void Erased(Column& column, double key) {
        if (!column.current.empty()) {
            column.keys[key] = column.current;
        }
        erased_keys[key] = changed = true;
        ++timestamp;
    }

    void Release(Column& column, const std::string& id) {
        std::erase_if(column.records, [&](const auto& entry) { return entry.second == id; });
        std::erase_if(column.keys, [&](const auto& entry) { return entry.second == id; });
        column.current.clear();
    }

    void Revert(Column& column, const std::string& id) {
        const auto take_back = [&](auto& marks, const auto& attributed) {
            for (const auto& [mark, owner] : attributed) {
                if (owner == id) {
                    marks.erase(mark);
                    changed = changed && !(changed_records.empty() && erased_keys.empty());
                }
            }
        };
        take_back(changed_records, column.records);
        take_back(erased_keys, column.keys);
        Release(column, id);
    }

    void Reset(Column& column) {
        changed_records.clear();
        erased_keys.clear();
        changed = false;
        column.cleared = false;
        column.records.clear();
        column.keys.clear();
    }

    bool HasChanged(const Column& column) const {
        return column.cleared || !changed_records.empty() || !erased_keys.empty() || changed;
    }
};

TEST(RecordStateStrategy, AgreesWithTheTwinOverRandomSequences) {
    std::mt19937 random(21);
    formats_info format;
    StateTwin twin;
    std::array<RecordStateStrategy, 2> strategies{{{&format, 0}, {&format, 0}}};
    const std::string ids[] = {"", "first transaction, longer than a short text", "second", "third"};
    for (int i = 0; i < 20000; ++i) {
        const std::size_t side = random() % 2;
        RecordStateStrategy& strategy = strategies[side];
        StateTwin::Column& column = twin.columns[side];
        const std::int32_t record = AnyRecord(random);
        const auto near = static_cast<std::int32_t>(random() % 200) * 64;
        const auto key = static_cast<double>(random() % 5);
        const std::string& id = ids[random() % std::size(ids)];
        switch (random() % 40) {
        case 0:
            if (i % 5000 < 2500) { // then the sets stay small, and later they grow
                strategy.ResetColumnChanged();
                twin.Reset(column);
            }
            break;
        case 1:
            strategy.ColumnCleared(record % 2 == 0);
            column.cleared = record % 2 == 0;
            twin.changed = true;
            ++twin.timestamp;
            break;
        case 2:
        case 3:
            strategy.StartTransaction(id);
            column.current = id;
            break;
        case 4:
            strategy.EndTransaction(id);
            twin.Release(column, id);
            break;
        case 5:
        case 6:
        case 7:
            strategy.RevertTransaction(id);
            twin.Revert(column, id);
            break;
        case 8:
        case 9:
            ASSERT_EQ(strategy.GetRecordState(record), twin.changed_records[record] ? 2 : 0);
            break;
        case 10:
        case 11:
            strategy.RecordErased(key);
            twin.Erased(column, key);
            break;
        case 12:
        case 13:
            format.changedRecords.Erase(record);
            twin.changed_records.erase(record);
            break;
        case 14:
            strategy.RecordsChanged(near, 5);
            twin.Changed(column, near);
            twin.Changed(column, near + 2);
            break;
        default:
            strategy.RecordChanged(record);
            twin.Changed(column, record);
        }
        ASSERT_EQ(strategy.HasColumnChanged(), twin.HasChanged(column)) << i;
        ASSERT_EQ(format.changed, twin.changed) << i;
        ASSERT_EQ(format.timestamp, twin.timestamp) << i;
        ASSERT_EQ(format.changedRecords.Size(), twin.changed_records.size()) << i;
        ASSERT_EQ(format.changedRecords.IsEmpty(), twin.changed_records.empty()) << i;
        ASSERT_EQ(format.changedRecords.Contains(record), twin.changed_records.contains(record)) << i;
        ASSERT_TRUE(i % 200 != 0 || format.changedRecords.Entries() == Entries(twin.changed_records)) << i;
        ASSERT_TRUE(std::ranges::equal(format.erasedKeys, twin.erased_keys)) << i;
    }
}

} // namespace
} // namespace Kestrona::Testing
