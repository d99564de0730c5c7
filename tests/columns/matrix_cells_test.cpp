#include "columns/matrix_cells.h"

#include "columns/matrix_identities.h"
#include "columns/matrix_table.h"

#include <kestrona/matrix_column.h>
#include <kestrona/record_state.h>

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace Kestrona::Data::MemoryResident {

namespace {

constexpr double kDefault = 0.5;
constexpr std::array<std::int32_t, 4> kOddPlaces = {-1, kFirstScratchRecord, kLastScratchRecord,
                                                    kLastScratchRecord + 1};

struct File {
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> handle{std::tmpfile(), &std::fclose};

    std::string Bytes() const {
        std::string bytes(static_cast<std::size_t>(std::ftell(handle.get())), '\0');
        std::rewind(handle.get());
        bytes.resize(std::fread(bytes.data(), 1, bytes.size(), handle.get()));
        return bytes;
    }
};

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
        File cells;
        File column;
        cells_.WriteToFile(cells.handle.get());
        column_.WriteToFile(column.handle.get());
        const std::string bytes = cells.Bytes();
        ASSERT_EQ(bytes, column.Bytes());
        if (!earlier_.empty()) {
            Both([&](auto& matrix) {
                File file;
                std::fwrite(earlier_.data(), 1, earlier_.size(), file.handle.get());
                std::rewind(file.handle.get());
                matrix.ReadFromFile(file.handle.get());
            });
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

// What is known of matrices in order holds until one of them, or an id, changes; ids and matrices of others do not
// matter.
TEST(MatrixIdentityColumn, ForgetsWhatItKnewWithAnyChange) {
    constexpr std::uint32_t kSize = 5;
    MatrixTable& table = MatrixTable::Instance();
    using Change = std::function<void(MatrixIdentityColumn&, std::int32_t)>;
    const auto make = [&](bool is_counted) {
        MatrixEntry matrix;
        matrix.cells = MatrixCells(nullptr, 0, kDefault);
        matrix.size = kSize;
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
