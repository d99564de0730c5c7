#include <kestrona/concrete_columns.h>
#include <kestrona/record_state.h>

#include <gtest/gtest.h>

#include <array>
#include <map>
#include <random>
#include <string>

namespace Kestrona::Testing {
namespace {

using namespace Kestrona::Data::MemoryResident;

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
        const auto record = static_cast<std::int32_t>(random() % 40);
        const auto key = static_cast<double>(random() % 5);
        const std::string& id = ids[random() % std::size(ids)];
        switch (random() % 40) {
        case 0:
            strategy.ResetColumnChanged();
            twin.Reset(column);
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
            ASSERT_EQ(strategy.GetRecordState(record), twin.changed_records[record] ? 2 : 0);
            break;
        case 9:
        case 10:
            strategy.RecordErased(key);
            twin.Erased(column, key);
            break;
        default:
            strategy.RecordChanged(record);
            twin.Changed(column, record);
        }
        ASSERT_EQ(strategy.HasColumnChanged(), twin.HasChanged(column)) << i;
        ASSERT_EQ(format.changed, twin.changed) << i;
        ASSERT_EQ(format.timestamp, twin.timestamp) << i;
        ASSERT_EQ(format.changedRecords.Size(), twin.changed_records.size()) << i;
        ASSERT_TRUE(std::equal(format.erasedKeys.begin(), format.erasedKeys.end(), twin.erased_keys.begin(),
                               twin.erased_keys.end()));
    }
}

TEST(RecordStateStrategy, AskingForAStateMakesTheFormatCountAsChanged) {
    formats_info format;
    DoubleColumn column(new RecordStateStrategy(&format, 0), 0.0);
    EXPECT_FALSE(column.HasColumnChanged());
    EXPECT_EQ(column.GetRecordState(4), 0);
    EXPECT_TRUE(column.HasColumnChanged());
    column.ResetColoumnChanged();
    EXPECT_FALSE(column.HasColumnChanged());
    RecordStateStrategy without_format_number(&format, -1);
    EXPECT_EQ(without_format_number.GetRecordState(4), 0);
    EXPECT_TRUE(format.changedRecords.IsEmpty());
}

} // namespace
} // namespace Kestrona::Testing
