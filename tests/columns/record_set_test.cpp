#include "columns/record_set.h"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <vector>

namespace Kestrona::Data::MemoryResident {
namespace {

struct Shape {
    const char* name;
    std::size_t start;   // records at first
    std::int32_t stride; // between them
    unsigned changes;    // before the set is settled, at most
};

class RecordSetShapes : public testing::TestWithParam<Shape> {};

// The shapes lead to every way of working notes in: at once, one by one, by sorting, by bits, and before being asked.
TEST_P(RecordSetShapes, HoldsWhatWasAddedAndNotRemoved) {
    const Shape shape = GetParam();
    std::mt19937 random(5);
    std::vector<std::int32_t> built;
    for (std::size_t i = 0; i < shape.start; ++i) {
        built.push_back(static_cast<std::int32_t>(i) * shape.stride);
    }
    RecordSet set{std::span<const std::int32_t>(built)};
    std::set<std::int32_t> twin(built.begin(), built.end());
    const auto range = static_cast<unsigned>(shape.start + 10) * static_cast<unsigned>(shape.stride);
    for (int round = 0; round < 30; ++round) {
        for (auto i = random() % shape.changes; i > 0; --i) {
            const auto record = static_cast<std::int32_t>(random() % range);
            if (twin.insert(record).second) {
                set.Add(record);
            } else {
                twin.erase(record);
                set.Remove(record);
            }
            ASSERT_EQ(set.Size(), twin.size());
        }
        if (round % 7 == 3) {
            const auto end = static_cast<std::int32_t>(range) + round * 10;
            set.AddRange(end, end + 5);
            for (std::int32_t record = end; record < end + 5; ++record) {
                twin.insert(record);
            }
        }
        set.Settle();
        ASSERT_TRUE(std::equal(set.Rows().begin(), set.Rows().end(), twin.begin(), twin.end())) << round;
    }
}

INSTANTIATE_TEST_SUITE_P(Shapes, RecordSetShapes,
                         testing::Values(Shape{"short", 20, 2, 40}, Shape{"long_few_notes", 5000, 2, 6},
                                         Shape{"long_many_notes", 5000, 2, 3000},
                                         Shape{"overflowing_notes", 5000, 1, 20000},
                                         Shape{"wide_apart", 5000, 400000, 3000}),
                         [](const auto& shape) { return std::string(shape.param.name); });

// 1024 notes are worked in at the next one: here they leave 1024 records, and then take away every one of them.
TEST(RecordSet, RefillsAfterItsNotesEmptiedIt) {
    constexpr std::int32_t kRecords = 1026;
    RecordSet set;
    set.AddRange(0, kRecords);
    for (std::int32_t i = 0; i < 511; ++i) {
        set.Remove(i);
        set.Add(i);
    }
    for (std::int32_t record = 0; record < kRecords; ++record) {
        set.Remove(record);
    }
    ASSERT_EQ(set.Size(), 0U);
    set.Add(5);
    set.Settle();
    ASSERT_EQ(set.Rows().size(), 1U);
    EXPECT_EQ(set.Rows().front(), 5);
}

} // namespace
} // namespace Kestrona::Data::MemoryResident
