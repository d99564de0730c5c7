// Copying, swapping and comparing of rows and their matrices.
#include "fixtures/recording_services.h"
#include "fixtures/schema.h"
#include "store/row_shuffle.h"

#include <kestrona/matrices.h>
#include <kestrona/process.h>
#include <kestrona/store.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <random>
#include <vector>

namespace Kestrona {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

constexpr std::int32_t kRecords = 8;
constexpr double kUnset = -1.0;

Field Matrix(const std::wstring& name, std::vector<Class> classes = {}) {
    return {.name = name, .type = TypeBit::kMatrix, .classes = std::move(classes), .table = 0};
}

Field FreeString(const std::wstring& name) {
    return {.name = name, .type = TypeBit::kFreeString};
}

class Copies : public testing::Test {
protected:
    enum : std::int32_t {
        kKey,
        kTop, // overrides kMiddle, which overrides kBottom
        kMiddle,
        kBottom,
        kCount,
        kToggle,
        kText,
        kShared,
        kSum,
        kNote,
        kList,
        kGrid,
        kCommon,
        kSharedGrid,
        kBelow, // overrides kKey from behind
        kFields
    };

    Copies() {
        Field shared_grid = Shared(L"Shared grid", kGrid);
        shared_grid.type = TypeBit::kMatrix;
        format = AddFormat(*store, L"Rows",
                           {Number(L"Key", kUnset), Override(L"Top", kMiddle), Override(L"Middle", kBottom),
                            Number(L"Bottom"), Integer(L"Count"), Toggle(L"Toggle"), Text(L"Text"),
                            Shared(L"Shared", kCount), Calculated(L"Sum"), FreeString(L"Note"),
                            Matrix(L"List", {Classes::kList}), Matrix(L"Grid"),
                            Matrix(L"Common", {Classes::kCommonMatrix}), shared_grid, Override(L"Below", kKey)});
        MakeColumns(*store, format);
        store->CreateDbValues(format, kTop); // after what it overrides
        store->CreateDbStrings(format, kNote);
        store->SetCurrentDbSize(format, kRecords);
    }

    double Get(std::int32_t field, std::int32_t record) { return store->GetDbValue(format, field, record); }

    void Set(std::int32_t field, std::int32_t record, double value) { store->SetDbValue(format, field, record, value); }

    std::int32_t Id(std::int32_t field, std::int32_t record) {
        return KSDLL_GetDbMatrix(*store, format, field, record);
    }

    // The elements of a matrix; nothing where there is none.
    std::vector<double> Elements(std::int32_t of, std::int32_t field, std::int32_t record) {
        std::vector<double> elements;
        const std::int32_t size = KSDLL_GetMatrixSize(KSDLL_GetDbMatrix(*store, of, field, record));
        for (std::int32_t i = 0; i < size; ++i) {
            elements.push_back(KSDLL_GetMatrixValue(*store, of, field, record, static_cast<std::uint32_t>(i)));
        }
        return elements;
    }

    void Fill(std::int32_t of, std::int32_t field, std::int32_t record, const std::vector<double>& elements) {
        const std::int32_t id =
            KSDLL_CreateMatrix(*store, static_cast<std::uint32_t>(elements.size()), of, field, record);
        for (std::size_t i = 0; i < elements.size(); ++i) {
            KSDLL_SetMatrixValue(id, static_cast<std::uint32_t>(i), elements[i]);
        }
    }

    FreshProcess process;
    std::unique_ptr<MemoryResidentData> store = CreateMemoryResidentData();
    std::int32_t format = -1;
};

// A row as plain values. Lists are shared by whoever copied them.
struct TwinRow {
    std::array<double, 7> values{kUnset, kUnset, kUnset, 0.0, 0.0, 0.0, kUnset}; // Key to Toggle, then Below
    std::wstring text;
    std::wstring note;
    std::shared_ptr<std::vector<double>> list;
    std::vector<double> grid;
    std::int32_t update = 0;
};

class RowTwin : public Copies, public testing::WithParamInterface<unsigned> {
protected:
    static constexpr std::size_t kBelowValue = 6;

    std::uint32_t Draw(std::uint32_t bound) { return static_cast<std::uint32_t>(random() % bound); }

    // A record, the last one standing for a scratch record.
    std::size_t DrawRow() { return Draw(kRecords + 1); }

    static std::int32_t RecordOf(std::size_t row) {
        return row < kRecords ? static_cast<std::int32_t>(row) : kFirstScratchRecord;
    }

    void WriteValue(std::size_t row) {
        const std::size_t which = Draw(7);
        const double value = which == 4 ? Draw(4) : which == 5 ? Draw(2) : Draw(5) - 1.0;
        TwinRow& twin = rows[row];
        Set(which == kBelowValue ? kBelow : static_cast<std::int32_t>(which), RecordOf(row), value);
        twin.values[which] = value;
        if (value != kUnset && which == kBelowValue) {
            twin.values[kKey] = value;
        }
        for (std::size_t below = which + 1; value != kUnset && (which == kTop || which == kMiddle) && below <= kBottom;
             ++below) {
            twin.values[below] = value;
        }
    }

    void WriteTexts(std::size_t row) {
        rows[row].text = std::wstring(Draw(3), L'a');
        rows[row].note = std::wstring(Draw(3), L'n');
        rows[row].update = static_cast<std::int32_t>(Draw(9));
        store->SetDbString(format, kText, RecordOf(row), rows[row].text);
        store->SetDbString(format, kNote, RecordOf(row), rows[row].note);
        store->SetDbUpdate(format, RecordOf(row), rows[row].update);
    }

    void WriteMatrices(std::size_t row) {
        std::vector<double> elements(Draw(4));
        std::ranges::generate(elements, [this] { return Draw(9); });
        Fill(format, kGrid, RecordOf(row), elements);
        rows[row].grid = elements;
        std::ranges::reverse(elements);
        Fill(format, kList, RecordOf(row), elements);
        if (rows[row].list == nullptr) {
            rows[row].list = std::make_shared<std::vector<double>>();
        }
        *rows[row].list = elements;
    }

    void CopyRow(std::size_t from, std::size_t to) {
        store->CopyItemInfo(RecordOf(from), RecordOf(to), format);
        const std::wstring note = rows[to].note; // free strings stay behind
        rows[to] = rows[from];
        rows[to].note = note;
    }

    void SwapRows(std::size_t a, std::size_t b) {
        store->SwapItemInfo(RecordOf(a), RecordOf(b), format);
        std::swap(rows[a], rows[b]);
        std::swap(rows[a].note, rows[b].note);
    }

    void Step() {
        const std::size_t row = DrawRow();
        switch (Draw(8)) {
        case 0:
            return WriteTexts(row);
        case 1:
            return WriteMatrices(row);
        case 2:
        case 3:
            return CopyRow(row, DrawRow());
        case 4:
        case 5:
            return SwapRows(row, DrawRow());
        default:
            return WriteValue(row);
        }
    }

    void Compare(int step) {
        for (std::size_t row = 0; row < rows.size(); ++row) {
            SCOPED_TRACE(testing::Message() << "step " << step << " row " << row);
            const std::int32_t record = RecordOf(row);
            const TwinRow& twin = rows[row];
            for (std::int32_t field = kKey; field <= kToggle; ++field) {
                ASSERT_EQ(Get(field, record), twin.values[static_cast<std::size_t>(field)]) << "field " << field;
            }
            ASSERT_EQ(Get(kBelow, record), twin.values[kBelowValue]);
            ASSERT_EQ(Get(kShared, record), twin.values[kCount]);
            ASSERT_EQ(store->GetDbString(format, kText, record), twin.text);
            ASSERT_EQ(store->GetDbString(format, kNote, record), twin.note);
            ASSERT_EQ(store->GetDbUpdate(format, record), twin.update);
            ASSERT_EQ(Elements(format, kGrid, record), twin.grid);
            ASSERT_EQ(Id(kSharedGrid, record), Id(kGrid, record));
            ASSERT_EQ(Id(kList, record) == -1, twin.list == nullptr);
            if (twin.list != nullptr) {
                ASSERT_EQ(Elements(format, kList, record), *twin.list);
            }
        }
    }

    std::array<TwinRow, kRecords + 1> rows;
    std::mt19937 random{GetParam()};
};

TEST_P(RowTwin, RowsAreTheSumOfTheirCells) {
    for (int step = 0; step < 1500; ++step) {
        Step();
        Compare(step);
        if (HasFatalFailure()) {
            return;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RowTwin, testing::Values(1u, 2u, 3u));

TEST_F(Copies, MovingRowsUpByOneTakesTheirMatricesAlong) {
    for (std::int32_t record = 0; record < kRecords; ++record) {
        Fill(format, kGrid, record, {record * 1.0, record * 2.0});
        Fill(format, kList, record, std::vector<double>(static_cast<std::size_t>(record), 5.0));
    }
    store->CopyItemInfo(kRecords - 1, kFirstScratchRecord, format);
    {
        const RowShuffle shuffle;
        for (std::int32_t record = kRecords - 1; record > 0; --record) {
            store->CopyItemInfo(record - 1, record, format);
        }
    }
    store->CopyItemInfo(kFirstScratchRecord, 0, format);
    for (std::int32_t record = 0; record < kRecords; ++record) {
        const double former = record == 0 ? kRecords - 1 : record - 1;
        EXPECT_EQ(Elements(format, kGrid, record), (std::vector{former, former * 2.0})) << record;
        EXPECT_EQ(Elements(format, kList, record).size(), static_cast<std::size_t>(former)) << record;
    }
}

TEST_F(Copies, SwappingExchangesOwnersButNotTheCommonMatrix) {
    Fill(format, kGrid, 1, {1.0});
    Fill(format, kGrid, 2, {2.0, 3.0});
    Fill(format, kCommon, 0, {9.0});
    const std::array ids = {Id(kGrid, 1), Id(kGrid, 2)};
    store->SwapItemInfo(1, 2, format);
    EXPECT_EQ(Id(kGrid, 1), ids[1]);
    EXPECT_EQ(Id(kGrid, 2), ids[0]);
    store->SwapItemInfo(0, 1, format);
    EXPECT_EQ(Elements(format, kCommon, 0), std::vector{9.0});
    EXPECT_EQ(Id(kCommon, 1), -1);
    store->CopyItemInfo(0, 3, format);
    EXPECT_EQ(Id(kCommon, 3), Id(kCommon, 0));
    EXPECT_EQ(Id(kGrid, 3) == Id(kGrid, 0), false);
}

TEST_F(Copies, EqualRowsMayDifferInWhatIsNotCompared) {
    Set(kBottom, 1, 4.0);
    EXPECT_FALSE(store->ItemInfoIsEqual(0, 1, format));
    Set(kBottom, 0, 4.0);
    EXPECT_TRUE(store->ItemInfoIsEqual(0, 1, format));
    store->SetDbString(format, kText, 0, L"text");
    EXPECT_FALSE(store->ItemInfoIsEqual(0, 1, format));
    store->SetDbString(format, kText, 1, L"text");
    store->SetDbString(format, kNote, 1, L"note");
    store->SetDbUpdate(format, 1, 7);
    Fill(format, kGrid, 1, {1.0});
    EXPECT_TRUE(store->ItemInfoIsEqual(0, 1, format));
    Set(kBottom, 1, std::numeric_limits<double>::quiet_NaN());
    EXPECT_FALSE(store->ItemInfoIsEqual(1, 1, format));
}

TEST_F(Copies, OneFieldIsCopiedWhateverItsType) {
    store->SetDbString(format, kNote, 1, L"note");
    Set(kCount, 1, 3.0);
    Fill(format, kGrid, 1, {1.0});
    for (std::int32_t field = 0; field < kFields; ++field) {
        store->CopyField(format, field, 1, 2);
    }
    EXPECT_EQ(store->GetDbString(format, kNote, 2), L"note");
    EXPECT_EQ(Get(kShared, 2), 3.0);
    EXPECT_EQ(Id(kGrid, 2), -1);
    Set(kTop, 3, 8.0); // a single copy of an override writes through, as a write does
    Set(kBottom, 3, 1.0);
    store->CopyField(format, kTop, 3, 4);
    EXPECT_EQ(Get(kBottom, 4), 8.0);
}

TEST_F(Copies, NothingHappensOutOfRange) {
    for (const std::int32_t bad : {-1, 99, kMaxFormats}) {
        store->CopyItemInfo(0, 1, bad);
        store->SwapItemInfo(0, 1, bad);
        store->CopyMatrixItemInfo(0, 1, bad);
        store->SwapMatrixItemInfo(0, 1, bad);
        store->CopyField(bad, 0, 0, 1);
        store->CopyField(format, bad, 0, 1);
        store->CopyMatrix(bad, kGrid, 0, format, kGrid, 1);
        store->CopyMatrix(format, kGrid, 0, bad, kGrid, 1);
        store->SwapMatrix(format, bad, 0, 1);
        EXPECT_TRUE(store->ItemInfoIsEqual(0, 1, bad));
    }
    store->CopyMatrix(format, kGrid, 0, format, kBottom, 1);
    EXPECT_EQ(Id(kGrid, 1), -1);
    EXPECT_FALSE(store->GetDbChanged(format));
}

TEST_F(Copies, AListIsSharedWithinItsFormatAndCopiedToAnother) {
    const std::int32_t other = AddTable(*store, L"Other", {Number(L"Key"), Matrix(L"List", {Classes::kList})}, 2);
    Fill(format, kList, 1, {1.0, 2.0});
    store->CopyMatrix(format, kList, 1, format, kList, 2);
    store->CopyMatrix(format, kList, 1, other, 1, 0);
    store->CopyMatrix(format, kList, 7, other, 1, 1); // from no matrix at all
    KSDLL_SetMatrixValue(Id(kList, 1), 0, 9.0);
    EXPECT_EQ(Elements(format, kList, 2), (std::vector{9.0, 2.0}));
    EXPECT_EQ(Elements(other, 1, 0), (std::vector{1.0, 2.0}));
    EXPECT_NE(KSDLL_GetDbMatrix(*store, other, 1, 1), -1);
    store->DestroyFormat(other);
    EXPECT_EQ(Elements(format, kList, 1), (std::vector{9.0, 2.0}));
}

TEST_F(Copies, AMissingStoredStringTakesItsTextAlong) {
    const std::int32_t storage = AddTable(*store, L"Strings", {Number(L"Key", kUnset)}, 2);
    store->SetDbKeyValue(storage, 1, 50.0);
    Field strings = Matrix(L"Strings", {Classes::kStringStorage});
    const std::int32_t owner = AddTable(*store, L"Owner", {Number(L"Key"), strings}, 4);
    store->SetDbData(owner, 1, DataSlot::kStorageFormat, storage);
    store->CreateDbStrings(owner, 1);
    store->SetDbString(owner, 1, 0, L"text");
    Fill(owner, 1, 0, {50.0, 60.0});

    struct Case {
        std::int32_t target;
        bool shuffles;
        std::vector<double> elements;
        const wchar_t* text;
    };

    const std::vector<Case> cases = {
        {1, false, {50.0, 0.0}, L"text"},
        {2, true, {50.0, 60.0}, L""},
        {kFirstScratchRecord, false, {50.0, 60.0}, L""},
    };
    for (const Case& c : cases) {
        {
            const std::unique_ptr<RowShuffle> shuffle = c.shuffles ? std::make_unique<RowShuffle>() : nullptr;
            store->CopyMatrix(owner, 1, 0, owner, 1, c.target);
        }
        EXPECT_EQ(Elements(owner, 1, c.target), c.elements) << c.target;
        EXPECT_EQ(store->GetDbString(owner, 1, c.target), c.text) << c.target;
    }
    store->CopyMatrix(owner, 1, kFirstScratchRecord, owner, 1, 3);
    EXPECT_EQ(Elements(owner, 1, 3), (std::vector{50.0, 60.0}));
    EXPECT_FALSE(RowShuffle::IsRunning());
}

} // namespace

} // namespace Kestrona
