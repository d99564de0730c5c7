// The cells of matrices, the table of all matrices, and the columns that name them.
#include "columns/matrix_cells.h"

#include "columns/matrix_identities.h"
#include "columns/matrix_table.h"
#include "fixtures/scratch_files.h"

#include <kestrona/matrix_column.h>
#include <kestrona/record_state.h>

#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <array>
#include <functional>
#include <map>
#include <random>

namespace Kestrona::Data::MemoryResident {

namespace {

constexpr double kDefault = 0.5;
constexpr std::array<std::int32_t, 4> kOddPlaces = {-1, kFirstScratchRecord, kLastScratchRecord,
                                                    kLastScratchRecord + 1};

std::string BytesOfColumn(IColumn<double>& column) {
    const Testing::File file(std::tmpfile());
    column.WriteToFile(file.get());
    return Testing::BytesOf(file.get());
}

// The cells of a matrix, and beside them a column with a strategy of its own that the same is done to.
class MatrixCellsTwin : public testing::TestWithParam<std::uint32_t> {
protected:
    template <typename Action>
    void Both(Action action) {
        action(cells_);
        action(column_);
    }

    std::int32_t Place() {
        return random_() % 20 == 0 ? kOddPlaces[random_() % kOddPlaces.size()]
                                   : static_cast<std::int32_t>(random_() % 12);
    }

    double Value() { return static_cast<double>(random_() % 4) * kDefault; }

    void Step() {
        const std::int32_t place = Place();
        const double value = Value();
        const std::string id = std::to_string(random_() % 2);
        const auto size = static_cast<std::uint32_t>(random_() % 12);
        switch (random_() % 12) {
        case 0:
            return Both([&](auto& matrix) { matrix.Insert(place, value); });
        case 1:
            return Both([&](auto& matrix) { matrix.Erase(place, value); });
        case 2:
            return Both([&](auto& matrix) { matrix.Resize(size); });
        case 3:
            return Both([&](auto& matrix) { matrix.ReportResize(size, 5); });
        case 4:
            return Both([&](auto& matrix) { matrix.StartTransaction(id); });
        case 5:
            return Both([&](auto& matrix) { matrix.EndTransaction(id); });
        case 6:
            return Both([&](auto& matrix) { matrix.RevertTransaction(id); });
        case 7:
            return random_() % 8 == 0 ? Both([&](auto& matrix) { matrix.ResetColoumnChanged(); }) : void();
        case 8:
            return Reload();
        default:
            return Both([&](auto& matrix) { matrix.SetValue(place, value); });
        }
    }

    // Both write the same bytes, and read at times those of others.
    void Reload() {
        const Testing::File file(std::tmpfile());
        cells_.WriteToFile(file.get());
        const std::string bytes = Testing::BytesOf(file.get());
        ASSERT_EQ(bytes, BytesOfColumn(column_));
        if (!earlier_.empty()) {
            Both([&](auto& matrix) { matrix.ReadFromFile(Testing::FileOf(earlier_).get()); });
        }
        earlier_ = random_() % 2 == 0 ? bytes : bytes.substr(0, bytes.size() / 2);
    }

    void ExpectTheSame() {
        std::array<double, 16> block{};
        std::array<double, 16> expected{};
        for (std::int32_t place = -2; place < 14; ++place) {
            ASSERT_EQ(cells_.GetValue(place), column_.GetValue(place)) << place;
        }
        for (const std::int32_t place : kOddPlaces) {
            ASSERT_EQ(cells_.GetValue(place), column_.GetValue(place)) << place;
        }
        cells_.ReadBlock(3, 16, block.data());
        column_.ReadBlock(3, 16, expected.data());
        ASSERT_EQ(block, expected);
        ASSERT_EQ(cells_.GetCurrentSize(), column_.GetCurrentSize());
        ASSERT_EQ(cells_.HasColumnChanged(), column_.HasColumnChanged());
        const std::int32_t asked = Place();
        ASSERT_EQ(cells_.GetRecordState(asked), column_.GetRecordState(asked));
        ASSERT_EQ(told_by_cells_.timestamp, told_by_column_.timestamp);
        ASSERT_EQ(told_by_cells_.changed, told_by_column_.changed);
        ASSERT_EQ(told_by_cells_.changedRecords.Entries(), told_by_column_.changedRecords.Entries());
        ASSERT_EQ(told_by_cells_.erasedKeys, told_by_column_.erasedKeys);
    }

    std::mt19937 random_{GetParam()};
    formats_info told_by_cells_;
    formats_info told_by_column_;
    std::int32_t number_ = GetParam() % 4 == 0 ? -1 : 3; // a matrix of no format never tells a state
    MatrixCells cells_{&told_by_cells_, number_, kDefault};
    MatrixColumn column_{new RecordStateStrategy(&told_by_column_, number_), kDefault};
    std::string earlier_;
};

TEST_P(MatrixCellsTwin, BehavesAsAColumn) {
    for (int step = 0; step < 3000; ++step) {
        Step();
        ASSERT_NO_FATAL_FAILURE(ExpectTheSame()) << step;
        if (step % 500 == 0) {
            MatrixCells moved(std::move(cells_)); // changes its place, and nothing else
            cells_ = std::move(moved);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, MatrixCellsTwin, testing::Range(1u, 9u));

TEST(MatrixCells, TellNobodyWithoutAFormat) {
    MatrixCells cells(nullptr, 3, kDefault);
    cells.StartTransaction("1");
    cells.SetValue(2, 1.0);
    cells.RevertTransaction("1");
    EXPECT_EQ(cells.GetValue(2), 1.0);
    EXPECT_FALSE(cells.HasColumnChanged());
    EXPECT_EQ(cells.GetRecordState(2), 0);
}

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

    MatrixTable& table = MatrixTable::Instance();
};

// What the table tells of an id: its size, and the default of its cells as long as there are any.
struct Told {
    std::uint32_t size = 0;
    double cells = -1.0;

    friend bool operator==(const Told&, const Told&) = default;
};

TEST_F(MatrixTableTest, KeepsWhatAMapKeepsWhilePagesComeAndGo) {
    std::mt19937 random(7);
    std::map<std::int32_t, Told> twin;
    std::int32_t next = 0;
    for (int step = 0; step < 60000; ++step) {
        const bool frees = step % 20000 > 19700; // at times most go: pages are given up, and some are made again
        const auto draw = static_cast<std::int32_t>(random() % static_cast<unsigned>(next + 1));
        if (random() % 4000 == 0) {
            table.FreeColumns(); // sizes stay
            std::ranges::for_each(twin, [](auto& entry) { entry.second.cells = -1.0; });
        } else if (frees) {
            const std::int32_t end = draw + static_cast<std::int32_t>(random() % 400);
            for (std::int32_t id = draw; id < end; ++id) {
                table.Free(id);
                twin.erase(id);
            }
        } else {
            const std::int32_t id = random() % 4 == 0 && next > 0 ? draw % next : table.TakeId();
            const Told told{static_cast<std::uint32_t>(step % 2 * step), static_cast<double>(step)};
            next = std::max(next, id + 1);
            table.Put(id, Matrix(told.cells, told.size));
            twin[id] = told;
        }
        if (step % 2500 == 2499) {
            for (std::int32_t id = -1; id <= next; ++id) {
                const MatrixEntry* const entry = table.Find(id);
                const bool has_cells = entry != nullptr && entry->IsMatrix();
                const Told told{entry != nullptr ? entry->size : 0, has_cells ? entry->cells.GetValue(0) : -1.0};
                ASSERT_EQ(told, twin.contains(id) ? twin[id] : Told()) << id;
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
    constexpr std::int32_t kIds = 256 * MatrixTable::kPageEntries;
    constexpr std::size_t kFarBelowPages = 256 * 1024; // the pages take 3 MiB
    const auto lasts = [](std::int32_t id) {
        return id % MatrixTable::kPageEntries == 7;
    };
    const std::size_t before = mallinfo2().uordblks;
    for (const bool at_once : {true, false}) {
        table.Reset();
        for (std::int32_t i = 0; i < kIds; ++i) {
            const std::int32_t id = table.TakeId();
            table.Put(id, Matrix(i, 1));
            if (!at_once && !lasts(id)) {
                table.Free(id);
            }
        }
        for (std::int32_t id = 0; id < kIds; ++id) {
            if (!lasts(id)) {
                table.Free(id);
            }
        }
        EXPECT_LE(mallinfo2().uordblks, before + kFarBelowPages) << at_once;
    }
}

TEST_F(MatrixTableTest, IdsEndWithoutComingAgain) {
    table.NoteId(MatrixTable::kMaxIds - 2);
    EXPECT_EQ(table.TakeId(), MatrixTable::kMaxIds - 1);
    EXPECT_EQ(table.TakeId(), MatrixTable::kNoId);
    EXPECT_EQ(table.TakeId(), MatrixTable::kNoId);
    table.NoteId(3);
    EXPECT_EQ(table.TakeId(), MatrixTable::kNoId);
}

TEST_F(MatrixTableTest, APageGoesWithItsLastMatrix) {
    table.Put(0, Matrix(1.0, 0));
    table.Put(1, Matrix(2.0, 0));
    table.NoteId(10000);
    table.Put(1, Matrix(3.0, 5)); // in the place of another one
    table.Free(0);
    table.Free(0);
    ASSERT_NE(table.Find(1), nullptr);
    table.FreeColumns();
    table.Put(0, Matrix(1.0, 0));
    table.Free(0);
    ASSERT_NE(table.Find(1), nullptr); // its size is still told
    table.Put(1, Matrix(1.0, 0));
    table.Free(1);
    EXPECT_EQ(table.Find(1), nullptr);
}

// What is known of matrices in order holds until one of them, or an id, changes; ids and matrices of others do not
// matter.
TEST(MatrixIdentityColumn, ForgetsWhatItKnewWithAnyChange) {
    constexpr std::uint32_t kSize = 5;
    MatrixTable& table = MatrixTable::Instance();
    using Change = std::function<void(MatrixIdentityColumn&, std::int32_t)>;
    const auto make = [&](bool is_counted) {
        MatrixEntry matrix = Matrix(kDefault, kSize);
        matrix.isNotedInOrder = is_counted;
        const std::int32_t id = table.TakeId();
        table.Put(id, std::move(matrix));
        return id;
    };
    const std::vector<std::pair<Change, std::int32_t>> changes = {
        {[](auto&, auto) {}, 2},
        {[&](auto&, auto) { table.SetSize(make(false), 7); }, 2},
        {[](auto& ids, auto) { ids.SetValue(kFirstScratchRecord, 3); }, 2},
        {[&](auto&, auto id) { table.SetSize(id, kSize); }, 2},
        {[&](auto&, auto id) { table.SetSize(id, 7); }, 0},
        {[&](auto&, auto id) { table.Free(id); }, 0},
        {[&](auto&, auto id) { table.Put(id, {}); }, 0},
        {[&](auto&, auto) { table.FreeColumns(); }, 0},
        {[](auto& ids, auto) { ids.SetValue(1, -1); }, 0},
        {[](auto& ids, auto) { ids.Erase(0, 0.0); }, 0},
        {[](auto& ids, auto) { ids.Insert(0, -1); }, 0},
        {[](auto& ids, auto) { ids.MoveUp(0, 1); }, 0},
        {[](auto& ids, auto) { ids.Resize(1); }, 0},
        {[](auto& ids, auto) {
             ids.ReplaceValues({4, 5});
         },
         0},
        {[](auto& ids, auto) { ids.Clear(false); }, 0},
    };
    for (std::size_t i = 0; i < changes.size(); ++i) {
        MatrixIdentityColumn ids(new NullRecordStateStrategy());
        const std::int32_t first = make(true);
        ids.SetValue(0, first);
        ids.SetValue(1, make(true));
        ids.NoteInOrder(2, kSize);
        EXPECT_EQ(ids.InOrder(kSize + 1), 0);
        changes[i].first(ids, first);
        EXPECT_EQ(ids.InOrder(kSize), changes[i].second) << i;
    }
    table.Reset();
}

} // namespace

} // namespace Kestrona::Data::MemoryResident
