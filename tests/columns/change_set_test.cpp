#include <kestrona/change_set.h>
#include <kestrona/types.h>

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <random>
#include <utility>

namespace Kestrona::Data::MemoryResident {
namespace {

using Twin = std::map<std::int32_t, bool>;

std::vector<std::pair<std::int32_t, bool>> Entries(const Twin& twin) {
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

TEST(ChangedRecords, BehavesAsAMapFromRecordToFlag) {
    std::mt19937 random(11);
    ChangedRecords marks;
    Twin twin;
    for (int i = 0; i < 20000; ++i) {
        const std::int32_t record = AnyRecord(random);
        switch (random() % 8) {
        case 0:
            ASSERT_EQ(marks.Lookup(record), twin[record]);
            break;
        case 1:
        case 2:
            marks.Erase(record);
            twin.erase(record);
            break;
        default:
            marks.Mark(record);
            twin[record] = true;
        }
        ASSERT_EQ(marks.Contains(record), twin.contains(record));
        ASSERT_EQ(marks.Size(), twin.size());
        ASSERT_EQ(marks.IsEmpty(), twin.empty());
        if (i % 500 == 0) {
            ASSERT_EQ(marks.Entries(), Entries(twin));
        }
        if (i % 5000 == 4999) {
            marks.Clear();
            twin.clear();
        }
    }
}

TEST(ChangedRecords, MarkRangeMarksAndCountsEveryRecordOnce) {
    for (const std::int32_t count : {-5, 0, 1, 63, 64, 65, 4095, 4096, 4097, 10000}) {
        ChangedRecords marks;
        Twin twin;
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
    marks.Mark(-1);
    ChangedRecords moved = std::move(marks);
    EXPECT_EQ(moved.Size(), 2U);
    EXPECT_TRUE(marks.IsEmpty());
    marks = std::move(moved);
    EXPECT_EQ(marks.Entries(), (std::vector<std::pair<std::int32_t, bool>>{{-1, true}, {3, true}}));
    EXPECT_FALSE(moved.Contains(3));
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

} // namespace
} // namespace Kestrona::Data::MemoryResident
