#include "columns/matrix_table.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <map>
#include <random>

namespace Kestrona::Data::MemoryResident {

namespace {

MatrixEntry Matrix(double default_value, std::uint32_t size) {
    MatrixEntry matrix;
    matrix.cells = MatrixCells(nullptr, 0, default_value);
    matrix.size = size;
    return matrix;
}

class MatrixTableTest : public testing::Test {
protected:
    MatrixTableTest() { table.Reset(); }

    ~MatrixTableTest() override { table.Reset(); }

    // What the table tells of an id: its size and the default of its cells.
    void ExpectEntry(std::int32_t id, const std::pair<std::uint32_t, double>* expected) {
        const MatrixEntry* const entry = table.Find(id);
        const bool has_matrix = entry != nullptr && entry->IsMatrix();
        ASSERT_EQ(has_matrix, expected != nullptr) << id;
        if (expected != nullptr) {
            EXPECT_EQ(entry->size, expected->first) << id;
            EXPECT_EQ(entry->cells.GetValue(0), expected->second) << id;
        } else if (entry != nullptr) {
            EXPECT_EQ(entry->size, 0u) << id;
        }
    }

    MatrixTable& table = MatrixTable::Instance();
};

TEST_F(MatrixTableTest, KeepsWhatAMapKeepsWhilePagesComeAndGo) {
    std::mt19937 random(7);
    std::map<std::int32_t, std::pair<std::uint32_t, double>> twin;
    std::int32_t next = 0;
    for (int step = 0; step < 60000; ++step) {
        const bool frees = step % 20000 > 19700; // at times most go: pages are given up, and some are made again
        const auto draw = static_cast<std::int32_t>(random() % static_cast<unsigned>(next + 1));
        if (frees) {
            const std::int32_t end = draw + static_cast<std::int32_t>(random() % 400);
            for (std::int32_t id = draw; id < end; ++id) {
                table.Free(id);
                twin.erase(id);
            }
        } else {
            const std::int32_t id = random() % 4 == 0 && next > 0 ? draw % next : table.TakeId();
            next = std::max(next, id + 1);
            table.Put(id, Matrix(step, static_cast<std::uint32_t>(step)));
            twin[id] = {static_cast<std::uint32_t>(step), step};
        }
        if (step % 2500 == 2499) {
            for (std::int32_t id = -1; id <= next; ++id) {
                const auto found = twin.find(id);
                ExpectEntry(id, found != twin.end() ? &found->second : nullptr);
            }
        }
    }
}

TEST_F(MatrixTableTest, AnEntryKeepsItsPlaceWhileTheTableGrows) {
    table.Put(table.TakeId(), Matrix(1.0, 5));
    const MatrixEntry* const first = table.Find(0);
    table.Put(MatrixTable::kMaxIds - 1, Matrix(2.0, 6));
    EXPECT_EQ(table.Find(0), first);
    EXPECT_FALSE(table.Find(MatrixTable::kMaxIds - 2)->IsMatrix());
    EXPECT_EQ(table.Find(1 << 20), nullptr); // no page in between
}

TEST_F(MatrixTableTest, MatricesThatLastDoNotKeepThePagesOfThoseThatWent) {
    const std::size_t before = mallinfo2().uordblks;
    const auto expect_little_memory = [&](const char* when) {
        EXPECT_LE(mallinfo2().uordblks, before + 256 * 1024) << when; // 3 MiB for pages
    };
    constexpr std::int32_t kIds = 256 * MatrixTable::kPageEntries;
    for (std::int32_t i = 0; i < kIds; ++i) {
        table.Put(table.TakeId(), Matrix(i, 1));
    }
    for (std::int32_t id = 0; id < kIds; ++id) {
        if (id % MatrixTable::kPageEntries != 7) {
            table.Free(id);
        }
    }
    expect_little_memory("all at once");
    table.Reset();
    for (std::int32_t i = 0; i < kIds; ++i) {
        const std::int32_t id = table.TakeId();
        table.Put(id, Matrix(i, 1));
        if (id % MatrixTable::kPageEntries != 7) {
            table.Free(id);
        }
    }
    expect_little_memory("one by one");
    const std::pair<std::uint32_t, double> kept = {1, 7.0};
    ExpectEntry(7, &kept);
}

TEST_F(MatrixTableTest, IdsEndWithoutComingAgain) {
    table.NoteId(MatrixTable::kMaxIds - 2);
    EXPECT_EQ(table.TakeId(), MatrixTable::kMaxIds - 1);
    EXPECT_EQ(table.TakeId(), MatrixTable::kNoId);
    EXPECT_EQ(table.TakeId(), MatrixTable::kNoId);
    table.NoteId(3);
    EXPECT_EQ(table.TakeId(), MatrixTable::kNoId);
}

TEST_F(MatrixTableTest, APageStaysForItsLastEmptyMatrix) {
    table.Put(0, Matrix(1.0, 0));
    table.Put(1, Matrix(2.0, 0));
    table.NoteId(10000);
    table.Put(1, Matrix(3.0, 0)); // in the place of another one
    table.Free(0);
    table.Free(0);
    const std::pair<std::uint32_t, double> kept = {0, 3.0};
    ExpectEntry(1, &kept);
    table.Free(1);
    EXPECT_EQ(table.Find(1), nullptr);
}

TEST_F(MatrixTableTest, ColumnsGoAndSizesStay) {
    const std::int32_t id = table.TakeId();
    table.Put(id, Matrix(1.0, 5));
    table.NoteId(10000);
    for (int i = 0; i < 2; ++i) {
        table.FreeColumns();
        ASSERT_NE(table.Find(id), nullptr);
        EXPECT_FALSE(table.Find(id)->IsMatrix());
        EXPECT_EQ(table.Find(id)->size, 5u);
    }
    table.Put(id + 1, Matrix(1.0, 7));
    table.Free(id + 1); // the last column of a page that still tells a size
    ASSERT_NE(table.Find(id), nullptr);
    EXPECT_EQ(table.Find(id)->size, 5u);
    table.Put(id, Matrix(1.0, 7));
    table.Free(id);
    EXPECT_EQ(table.Find(id), nullptr);
}

} // namespace

} // namespace Kestrona::Data::MemoryResident
