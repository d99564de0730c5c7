#include "fixtures/store_test.h"

#include <kestrona/expression.h>
#include <kestrona/expression_parsing.h>

namespace Kestrona {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

using Duplicates = std::vector<std::pair<std::int32_t, std::int32_t>>;

class Handler : public IDuplicateFormatHandler {
public:
    explicit Handler(Duplicates& duplicated) : duplicated_(duplicated) {}

    void FormatDuplicated(std::int32_t source, std::int32_t copy) override { duplicated_.emplace_back(source, copy); }

    void FormatDestroyed(std::int32_t) override {}

private:
    Duplicates& duplicated_;
};

class DuplicateFormat : public StoreTest {
protected:
    DuplicateFormat() { store = CreateMemoryResidentData(nullptr, new Handler(duplicated)); }

    ~DuplicateFormat() override { store.reset(); } // before what its handler writes to

    std::int32_t Duplicate(std::int32_t format, bool at_end = false) {
        std::wstring name = L"Copy";
        return store->CreateDuplicateFormat(format, name.data(), at_end);
    }

    Duplicates duplicated;
};

TEST_F(DuplicateFormat, TakesTheFirstFreeNumber) {
    for (int i = 0; i < 3; ++i) {
        AddTable(*store, L"F" + std::to_wstring(i), {Number(L"Key")}, 1);
    }
    EXPECT_EQ(Duplicate(0), 3);
    store->DestroyFormat(1);
    EXPECT_EQ(Duplicate(2), 1);
    EXPECT_EQ(KSDLL_FindFormatImpl(*store, L"Copy"), 1);
    EXPECT_EQ(Duplicate(0, true), 6);
    EXPECT_EQ(Duplicate(2, true), 6); // in the place of the former one
    EXPECT_EQ(store->GetFormatCount(), 4);
    EXPECT_EQ(store->GetCopiedFormatSource(6), 2);
    EXPECT_EQ(duplicated, (Duplicates{{0, 3}, {2, 1}, {0, 6}, {2, 6}}));
}

TEST_F(DuplicateFormat, RefusesWhatHasNoRoom) {
    AddTable(*store, L"F", {Number(L"Key")});
    EXPECT_EQ(Duplicate(-1), -1);
    EXPECT_EQ(Duplicate(kMaxFormats), -1);
    EXPECT_EQ(Duplicate(3, true), -1); // itself
    EXPECT_EQ(Duplicate(5), 1);        // an empty one has no fields
    store->SetFormatCount(kMaxFormats - 2);
    EXPECT_EQ(Duplicate(0, true), -1);
    store->SetFormatCount(kMaxFormats);
    for (std::int32_t format = 0; format < kMaxFormats; ++format) {
        store->SetDbName(format, KSDLL_AddText(L"F"));
    }
    EXPECT_EQ(Duplicate(0), -1);
    EXPECT_EQ(store->GetFormatCount(), kMaxFormats);
    EXPECT_EQ(duplicated, (Duplicates{{5, 1}}));
}

TEST_F(DuplicateFormat, MapsNumbersOfTheFormatButNotOfFields) {
    AddTable(*store, L"First", {Number(L"Key")});
    const auto field = [](Class c, std::int32_t table, std::int32_t table_y) {
        return Field{.name = L"Field", .classes = {c}, .table = table, .source = 1, .table_y = table_y};
    };
    // The format and the field that is meant have the same number, 1.
    const std::int32_t format = AddFormat(
        *store, L"Second",
        {Number(L"Key"), Number(L"Owner"), field(Classes::kDatabase, 1, 1), field(Classes::kFamily, 1, 1),
         field(Classes::kDatabase, 0, 0), field(Classes::kAdditionalReference, 1, 1), field(Classes::kOverride, 1, 1),
         field(Classes::kUpdateReference, 1, 1), field(Classes::kRelatedList, 1, 1), field(Classes::kAutoSplit, 1, 1)});
    ASSERT_EQ(format, 1);
    MakeColumns(*store, format);
    const std::int32_t copy = Duplicate(format);
    const Duplicates expected = {{copy, copy}, {1, copy}, {0, 0},    {copy, 1},
                                 {copy, 1},    {copy, 1}, {copy, 1}, {copy, 1}};
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const auto number = static_cast<std::int32_t>(i) + 2;
        EXPECT_EQ(store->GetDbTable(copy, number), expected[i].first) << number;
        EXPECT_EQ(store->GetDbTableY(copy, number), expected[i].second) << number;
        EXPECT_EQ(store->GetDbSource(copy, number), 1) << number;
    }
    EXPECT_EQ(store->GetDbColumn(copy, 5), store->GetDbColumn(copy, 1)); // shared with its own field
    store->SetCurrentDbSize(copy, 1);
    store->SetDbValue(copy, 6, 0, 4.0);
    EXPECT_EQ(store->GetDbValue(copy, 1, 0), 4.0);
}

TEST_F(DuplicateFormat, HasTheSchemaAndNoneOfTheData) {
    Field shared_list = Shared(L"Same list", 2);
    shared_list.type = TypeBit::kMatrix;
    const std::int32_t format =
        AddTable(*store, L"Source",
                 {Number(L"Key", -1.0), Text(L"Text", 3), Matrix(L"List", {Classes::kList}, -1, -1, 3.0), shared_list,
                  Number(L"Number", 0.5)},
                 2);
    store->SetDbClassString(format, 4, L"CLASSES");
    store->SetDbExtension(format, KSDLL_AddText(L"EXT"));
    store->SetDefaultDatasetName(format, KSDLL_AddText(L"Set"));
    store->SetDbDisplayName(format, L"Shown");
    store->SetDbMinLength(format, 12);
    store->SetDbDialogLevel(format, 4, kHiddenDialogLevel);
    store->SetParentSortEnabled(format, 4, false);
    KSDLL_SetMatrixXLabel(*store, format, 2, KSDLL_AddText(L"X"));
    Fill(format, 2, 0, {1.0});
    store->SetDbString(format, 1, 0, L"abc");

    const std::int32_t copy = Duplicate(format);
    store->DestroyFormat(format);
    EXPECT_EQ(std::wstring(store->GetDbName(copy)) + store->GetDbExtension(copy) + store->GetDefaultDatasetName(copy) +
                  store->GetDbDisplayName(copy) + store->GetColumnName(copy, 4) + store->GetDbClassString(copy, 4) +
                  KSDLL_GetMatrixXLabel(*store, copy, 2),
              L"CopyEXTSetShownNumberCLASSESX");
    EXPECT_EQ(KSDLL_GetMatrixYLabel(*store, copy, 2), nullptr);
    EXPECT_TRUE(store->GetDbMinLength(copy) == 12 && store->GetDbFields(copy) == 5 && store->GetDbKey(copy) == 0);
    EXPECT_TRUE(store->IsHiddenDialog(copy, 4) && !store->GetParentSortEnabled(copy, 4));
    EXPECT_TRUE(store->GetCurrentDbSize(copy) == 0 && !store->GetDbChanged(copy));

    store->SetCurrentDbSize(copy, 2);
    EXPECT_EQ(store->GetDbKeyValue(copy, 0), -1.0); // the defaults stood before the columns were made
    EXPECT_EQ(store->GetDbValue(copy, 4, 1), 0.5);
    store->SetDbString(copy, 1, 0, L"abcdef");
    EXPECT_EQ(store->GetDbString(copy, 1, 0), L"abc");
    EXPECT_TRUE(store->GetDbColumn(copy, 0)->IsIndexedColumn());
    const std::int32_t id = KSDLL_CreateMatrix(*store, 2, copy, 2, 1);
    EXPECT_EQ(KSDLL_GetDbMatrix(*store, copy, 3, 1), id);
    EXPECT_EQ(KSDLL_GetMatrixValueFromId(id, 1, 0), 3.0);
}

TEST_F(DuplicateFormat, ANumberThatComesAgainHasNoExpressionsOfItsFormerFormat) {
    const auto read = [&](std::int32_t format) {
        store->SetCurrentDbSize(format, 1);
        INativeExpression* const expression =
            KSDLL_CreateExpressionFromCache(*store, format, L"{#Cost}", false, nullptr);
        return expression != nullptr ? expression->Evaluate(*store, 0, -1, nullptr) : -1.0;
    };
    AddTable(*store, L"First", {Number(L"Key"), Number(L"Cost", 3.0), Number(L"Time", 4.0)});
    AddTable(*store, L"Second", {Number(L"Key"), Number(L"Time", 5.0), Number(L"Cost", 6.0)});
    const std::int32_t copy = Duplicate(0, true);
    EXPECT_EQ(read(copy), 3.0);
    ASSERT_EQ(Duplicate(1, true), copy);
    EXPECT_EQ(read(copy), 6.0);
    EXPECT_EQ(read(0), 3.0);
    store->InitializeFormats();
    AddTable(*store, L"Third", {Number(L"Key"), Number(L"Time", 7.0), Number(L"Cost", 8.0)});
    EXPECT_EQ(read(0), 8.0);
}

TEST_F(DuplicateFormat, IsUntrackedWhereALaterKeyFieldSaysSo) {
    Field key = Number(L"Key");
    key.classes = {Classes::kExcludeFromDb};
    const std::int32_t format = AddTable(*store, L"Source", {Number(L"Number"), key}, 0, 1);
    const std::int32_t copy = Duplicate(format);
    store->SetCurrentDbSize(copy, 1);
    store->SetDbValue(copy, 0, 0, 5.0);
    EXPECT_FALSE(store->GetDbChanged(copy));
}

} // namespace

} // namespace Kestrona
