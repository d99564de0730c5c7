// KSDLL_SetDefaultFieldValue.
#include "fixtures/store_test.h"

namespace Kestrona {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

class DefaultValues : public StoreTest {
protected:
    void Set(std::int32_t format, std::int32_t field, std::int32_t record, std::int32_t level = 1,
             std::int32_t skip = -1) {
        KSDLL_SetDefaultFieldValue(*store, format, field, record, -1, skip, level, -1, 0.0);
    }
};

TEST_F(DefaultValues, FollowTheClassesOfTheField) {
    RecordingMessages& messages = InstallRecordingMessages();
    messages.texts = {{0x4a67, L"somebody"}};
    Field now = Number(L"Now", 3.0);
    now.classes = {Classes::kTimeOfNow, Classes::kAutomaticKey};
    Field next = Number(L"Next", 4.0);
    next.classes = {Classes::kAutomaticKey};
    Field deep = Number(L"Deep", 6.0);
    deep.classes = {Classes::kDeepDefault};
    Field user = Text(L"User");
    user.classes.push_back(Classes::kUserNameDefault);
    Field text = Text(L"Text");
    text.classification = L"FREE FORMAT FF_STRING_DEF \"as usual\"";
    const std::int32_t format =
        AddTable(*store, L"F", {Number(L"Key", 1.0), now, next, Number(L"Plain", 5.0), deep, user, text}, 2);
    KSDLL_SetDoubleSv(kSvFixedNow, 40000.25);

    struct Case {
        std::int32_t field;
        std::int32_t level;
        std::int32_t skip;
        double value;
    };

    for (const auto& [field, level, skip, value] : {Case{1, 9, 1, 40000.25},
                                                    {2, 9, 2, 78.0}, // behind the largest
                                                    {3, 1, -1, 5.0},
                                                    {3, 1, 3, 77.0},
                                                    {3, 2, -1, 77.0},
                                                    {4, 2, -1, 6.0},
                                                    {4, 2, 4, 77.0},
                                                    {4, 0, -1, 77.0}}) {
        store->SetDbValue(format, field, 1, 77.0);
        Set(format, field, 1, level, skip);
        EXPECT_EQ(store->GetDbValue(format, field, 1), value) << field << ' ' << level << ' ' << skip;
    }
    Set(format, 5, 1, 7, 5);
    Set(format, 6, 1, 7, 6);
    EXPECT_EQ(store->GetDbString(format, 5, 1), L"somebody");
    EXPECT_EQ(store->GetDbString(format, 6, 1), L"as usual");
    Set(format, 99, 1);
    Set(-1, 0, 1);
    KSDLL_SetDoubleSv(kSvFixedNow, -1.0);
    Set(format, 1, 1);
    const double today = store->GetDbValue(format, 1, 1);
    KSDLL_SetDoubleSv(kSvTimeShift, 1000.0);
    Set(format, 1, 1);
    EXPECT_NEAR(store->GetDbValue(format, 1, 1) - today, 1000.0, 0.1);
    EXPECT_GT(today, 45000.0);
}

TEST_F(DefaultValues, FillAMatrixAndSelectLists) {
    RecordingLogger& logger = InstallRecordingLogger();
    const auto matrix = [](const wchar_t* name, std::vector<Class> classes, std::int32_t table, std::int32_t source,
                           std::int32_t table_y) {
        Field field = Matrix(name, std::move(classes), table, table_y, 2.0);
        field.source = source;
        return field;
    };
    const std::int32_t items = AddTable(*store, L"Items", {Number(L"Key", 1.0)});
    const std::int32_t groups =
        AddTable(*store, L"Groups", {Number(L"Key", 1.0), matrix(L"Items", {Classes::kList}, items, 0, items)});
    const std::int32_t orders = AddTable(
        *store, L"Orders",
        {Number(L"Key", 1.0), matrix(L"All", {Classes::kList, Classes::kSelectAll}, items, 0, items),
         Reference(L"Group", groups, 0), matrix(L"Some", {Classes::kList, Classes::kSelectAll}, items, 0, groups),
         matrix(L"Beside", {Classes::kParallelList, Classes::kAssociate}, -1, -1, -1),
         matrix(L"Named", {Classes::kParallelList, Classes::kList}, -1, -1, 3), matrix(L"Row", {}, -1, -1, items)});
    store->SetDbSourceY(orders, 3, 1);
    store->SetDbRelated(orders, 3, 2);
    store->SetDbData(orders, 4, DataSlot::kAssociateField, 3);
    store->SetDbData(orders, 5, DataSlot::kAssociateField, 3);
    for (const std::int32_t format : {items, items, items, groups, groups, orders}) {
        KSDLL_CreateRecord(*store, format);
    }
    Fill(groups, 1, 1, {3.0, 1.0});
    KSDLL_SetMatrixValue(KSDLL_GetDbMatrix(*store, orders, 6, 0), 1, 9.0);
    Set(orders, 6, 0);
    EXPECT_EQ(Cells(orders, 6, 0), (Doubles{2, 2, 2}));
    Set(orders, 1, 0);
    EXPECT_EQ(Cells(orders, 1, 0), (Doubles{1, 2, 3}));
    Set(orders, 3, 0); // nothing is selected
    EXPECT_EQ(Cells(orders, 3, 0), (Doubles{1, 2, 3}));
    EXPECT_EQ(Cells(orders, 4, 0).size(), 3u);
    store->SetDbValue(orders, 2, 0, 2.0);
    Set(orders, 3, 0);
    EXPECT_EQ(Cells(orders, 3, 0), (Doubles{3, 1}));
    EXPECT_EQ(Cells(orders, 5, 0), (Doubles{0, 0}));
    store->SetDbValue(orders, 2, 0, 8.0);
    logger.lines.clear();
    Set(orders, 3, 0);
    EXPECT_EQ(logger.lines, (std::vector<std::wstring>{L"Select all Auto list entries",
                                                       L"ERROR :- Key Value of 8.000000 not found in Database"}));
    EXPECT_EQ(Cells(orders, 4, 0).size(), 2u);
}

} // namespace

} // namespace Kestrona
