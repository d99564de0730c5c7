// Table data blocks.
#include "fixtures/record_snapshot.h"
#include "fixtures/recording_services.h"
#include "fixtures/schema.h"
#include "fixtures/scratch_files.h"

#include <kestrona/matrices.h>
#include <kestrona/records.h>
#include <kestrona/table_storage.h>

#include <gtest/gtest.h>
#include <malloc.h>

#include <limits>
#include <random>
#include <set>

namespace Kestrona::Testing {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;
using Common::TableStorage;

using Store = std::unique_ptr<MemoryResidentData>;

constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

Field Matrix(const std::wstring& name, Class of_class) {
    return {.name = name, .type = TypeBit::kMatrix, .classes = {of_class}, .default_value = 7.5, .table = 0};
}

enum : std::int32_t {
    kKey,
    kCount,
    kToggle,
    kReference,
    kSum,
    kFleeting,
    kFree,
    kList,
    kGrid,
    kCommon,
    kComputed,
    kShared,
    kOverride,
    kSharedList,
    kText // last, so that it can be left out
};

std::vector<Field> AllFields() {
    Field shared_list = Matrix(L"SharedList", Classes::kAdditionalReference);
    shared_list.table_y = kList;
    return {Number(L"Key", -1.0),
            Integer(L"Count", 3.0),
            Toggle(L"Toggle", 1.0),
            Reference(L"Reference", 0, kText),
            Calculated(L"Sum"),
            {.name = L"Fleeting", .classes = {Classes::kNotPersisted}},
            {.name = L"Free", .type = TypeBit::kFreeString},
            Matrix(L"List", Classes::kList),
            Matrix(L"Grid", Classes::k3DMatrix),
            Matrix(L"Common", Classes::kCommonMatrix),
            Matrix(L"Computed", Classes::kEvaluate),
            Shared(L"Shared", kCount),
            Override(L"Override", kKey),
            shared_list,
            Text(L"Text")};
}

Store MakeStore(const std::vector<Field>& fields, std::int32_t records = 0) {
    Store store = CreateMemoryResidentData();
    AddTable(*store, L"Table", fields, records);
    return store;
}

std::int32_t Draw(std::mt19937& random, unsigned end) {
    return static_cast<std::int32_t>(random() % end);
}

void FillMatrix(MemoryResidentData& store, std::int32_t field, std::int32_t record, std::mt19937& random) {
    const std::int32_t size = field == kComputed ? 0 : Draw(random, 4); // computed elements are not stored
    const std::int32_t id = KSDLL_CreateMatrix(store, static_cast<std::uint32_t>(size), 0, field, record);
    for (std::int32_t i = 0; i < size; i += 1 + Draw(random, 2)) {
        KSDLL_SetMatrixValue(id, static_cast<std::uint32_t>(i), Draw(random, 100) / 4.0);
    }
}

void FillRecord(MemoryResidentData& store, std::int32_t record, std::mt19937& random, bool all_matrices) {
    constexpr const wchar_t* kTexts[] = {L"", L"x", L"\u00e4\u65e5", L"\U0001F9A6 \U0010FFFF", L"\xDC00"};
    for (const std::int32_t field : {kKey, kCount, kToggle, kReference, kOverride}) {
        if (Draw(random, 3) > 0) {
            store.SetDbValue(0, field, record, Draw(random, field == kToggle ? 2 : 1000));
        }
    }
    for (const std::int32_t field : {kList, kGrid, kCommon, kComputed}) {
        if (all_matrices || Draw(random, 2) > 0) {
            FillMatrix(store, field, record, random);
        }
    }
    if (store.GetDbFields(0) > kText) {
        store.SetDbString(0, kText, record, kTexts[random() % std::size(kTexts)]);
    }
}

Store MakeFilled(std::int32_t records, std::mt19937& random, bool all_matrices) {
    Store store = MakeStore(AllFields(), records);
    for (std::int32_t record = 0; record < records; ++record) {
        FillRecord(*store, record, random, all_matrices);
    }
    return store;
}

std::string Save(MemoryResidentData& store) {
    const File file(std::tmpfile());
    TableStorage::WriteTableData(store, 0, file.get());
    return BytesOf(file.get());
}

// Whether the file was read to its end and no further.
bool Load(MemoryResidentData& store, const std::string& bytes) {
    const File file = FileOf(bytes);
    TableStorage::ReadTableData(store, 0, file.get());
    return std::feof(file.get()) == 0 && static_cast<std::size_t>(std::ftell(file.get())) == bytes.size();
}

std::set<std::int32_t> IdsOf(MemoryResidentData& store, std::int32_t field) {
    std::set<std::int32_t> ids;
    for (std::int32_t record = 0; record < store.GetCurrentDbSize(0); ++record) {
        ids.insert(KSDLL_GetDbMatrix(store, 0, field, record));
    }
    return ids;
}

// Values as they lie in a block.
template <typename T>
std::string Raw(std::initializer_list<T> values) {
    return {reinterpret_cast<const char*>(values.begin()), values.size() * sizeof(T)};
}

std::string Words(std::initializer_list<std::int32_t> words) {
    return Raw(words);
}

class TableData : public testing::Test {
protected:
    FreshProcess process;
};

TEST_F(TableData, TheLayoutIsTheOneWrittenDown) {
    const Store store = MakeStore({Number(L"Key", -1.0), Integer(L"Count"), Toggle(L"Toggle"), Text(L"Text"),
                                   Matrix(L"List", Classes::kList), Matrix(L"Common", Classes::kCommonMatrix)},
                                  3);
    EXPECT_EQ(Save(*MakeStore({Number(L"A"), Toggle(L"B")})), Words({0, 0, 0}));
    store->SetDbValue(0, 0, 0, 1.5);
    store->SetDbValue(0, 1, 1, -2.0);
    store->SetDbValue(0, 2, 0, 1.0);
    store->SetDbString(0, 3, 0, L"a\U0001F9A6");
    for (const std::int32_t field : {4, 5}) {
        KSDLL_SetMatrixValue(KSDLL_CreateMatrix(*store, 3, 0, field, 0), 0, 0.5);
        KSDLL_CreateMatrix(*store, 2, 0, field, 1);
    }
    const std::string expected = Words({3, 1}) + Raw({1.5}) + Words({2, 0, -2, 1}) + Raw<char>({1}) + Words({1, 3}) +
                                 Raw<char16_t>({u'a', 0xD83E, 0xDDA6}) + Words({2, 0, 1, 3, 1}) + Raw({0.5}) +
                                 Words({2, 0, 0, 2, 2, 2, 3, 1}) + Raw({0.5});
    EXPECT_EQ(Save(*store), expected);
}

TEST_F(TableData, RandomStoresComeBackCellByCell) {
    std::mt19937 random(5);
    for (const std::int32_t records : {0, 1, 2, 9, 300}) {
        for (const bool all_matrices : {true, false}) {
            Store store = MakeFilled(records, random, all_matrices);
            const std::string bytes = Save(*store);
            const std::string content = DescribeRecords(*store, 0);
            store->SetDbValue(0, kFleeting, 0, 8.0);
            EXPECT_EQ(Save(*store), bytes);
            store->SetDbValue(0, kFleeting, 0, 0.0);

            // Beside the store that it came from.
            Store other = MakeStore(AllFields());
            EXPECT_TRUE(Load(*other, bytes));
            EXPECT_EQ(DescribeRecords(*other, 0), content);
            for (std::int32_t record = 0; record < records; ++record) {
                KSDLL_SetMatrixValue(KSDLL_CreateMatrix(*other, 3, 0, kList, record), 0, -1.0);
            }
            EXPECT_EQ(DescribeRecords(*store, 0), content);

            // After it.
            store.reset();
            other.reset();
            store = MakeStore(AllFields());
            EXPECT_TRUE(Load(*store, bytes));
            const std::string again = Save(*store);
            EXPECT_TRUE(again == bytes || !all_matrices);
            for (const std::int32_t field : {kList, kGrid, kComputed}) {
                EXPECT_EQ(IdsOf(*store, field).size(), static_cast<std::size_t>(records)) << field;
            }

            // Over other records of its own.
            FillMatrix(*store, kList, 0, random);
            store->SetDbValue(0, kKey, records + 3, 1.0);
            KSDLL_Clear(*store, 0);
            EXPECT_TRUE(Load(*store, again));
            EXPECT_EQ(DescribeRecords(*store, 0), content);
        }
    }
}

TEST_F(TableData, NumbersAndMatricesComeWithoutAChange) {
    std::mt19937 random(6);
    std::vector<Field> fields = AllFields();
    fields.pop_back();
    const Store source = MakeStore(fields, 50);
    for (std::int32_t record = 0; record < 50; ++record) {
        FillRecord(*source, record, random, record % 2 > 0);
    }
    const Store store = MakeStore(fields);
    EXPECT_TRUE(Load(*store, Save(*source)));
    EXPECT_EQ(DescribeRecords(*store, 0), DescribeRecords(*source, 0));
    EXPECT_EQ(DescribeChanges(*store, 0), "changed 0 timestamp 1 records erased");
    store->GetFormatInfo(0)->timestampSuspendCount = 1;
    EXPECT_TRUE(Load(*store, Save(*source)));
    EXPECT_EQ(DescribeChanges(*store, 0), "changed 0 timestamp 1 records erased");
}

// Cells of a format that was emptied go on holding the ids of its matrices.
TEST_F(TableData, AnEmptiedStoreLosesNoMatrixToAnotherAndTakesNone) {
    std::mt19937 random(7);
    Store emptied = MakeFilled(20, random, true);
    const std::string bytes = Save(*emptied);
    const std::string content = DescribeRecords(*emptied, 0);
    KSDLL_Clear(*emptied, 0);
    const Store store = MakeStore(AllFields());
    EXPECT_TRUE(Load(*store, bytes));
    emptied->SetCurrentDbSize(0, 20);
    FillMatrix(*emptied, kList, 0, random);
    EXPECT_EQ(DescribeRecords(*store, 0), content);
    KSDLL_Clear(*emptied, 0);
    EXPECT_TRUE(Load(*emptied, bytes));
    EXPECT_EQ(DescribeRecords(*store, 0), content);
    emptied.reset();
    EXPECT_EQ(DescribeRecords(*store, 0), content);
}

// Memory that is in use; 0 for instruments that do not tell.
std::size_t UsedMemory() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

constexpr std::size_t kFewBytes = std::size_t{8} << 20U;

TEST_F(TableData, FalseNumbersCostNothingAndNeverShareAMatrix) {
    std::string far = Words({4000, 0, 4000});
    for (std::int32_t record = 0; record < 4000; ++record) {
        far += Words({record * 4099});
    }
    far.resize(far.size() + 4000 * sizeof(std::int32_t)); // the sizes

    struct Case {
        const char* what;
        std::string block; // of a number and a list
        std::int32_t records;
    };

    const Case cases[] = {
        {"records without bytes", Words({900000000, 0, 0}), 0},
        {"few records without bytes", Words({1 << 24, 0, 0}), 1 << 24},
        {"less than no records", Words({-1, 1}), 0},
        {"numbers without end", Words({2, kHighest, 1}), 2},
        {"ids without end", Words({2, 0, kHighest, 5, 6}), 2},
        {"ids twice", Words({3, 0, 3, 4, 4, 4, 0, 0, 0}), 3},
        {"ids that are none", Words({4, 0, 4, -2, kHighest, 1 << 26, -kHighest, 0, 0, 0, 0}), 4},
        {"ids of the other store", Words({2, 0, 2, 0, 1, 0, 0}), 2},
        {"sizes that are none", Words({3, 0, 3, 7, 8, 9, -1, kHighest, 0}), 3},
        {"elements without end", Words({2, 0, 2, 7, 8, 1 << 26, kHighest, 1, 1}), 2},
        {"ids far from one another", far, 4000},
    };
    const std::vector<Field> fields = {Number(L"Key"), Matrix(L"List", Classes::kList)};
    const Store other = MakeStore(fields, 2);
    KSDLL_SetMatrixValue(KSDLL_CreateMatrix(*other, 1, 0, 1, 0), 0, 5.0);
    KSDLL_SetMatrixValue(KSDLL_CreateMatrix(*other, 1, 0, 1, 1), 0, 6.0);
    const std::string content = DescribeRecords(*other, 0);
    for (const Case& c : cases) {
        const std::size_t before = UsedMemory();
        Store store = MakeStore(fields);
        Load(*store, c.block);
        EXPECT_LT(UsedMemory(), before + kFewBytes) << c.what;
        EXPECT_EQ(store->GetCurrentDbSize(0), c.records) << c.what;
        std::set<std::int32_t> ids = IdsOf(*other, 1);
        for (std::int32_t record = 0; record < std::min(c.records, 4000); ++record) {
            const std::int32_t id = KSDLL_GetDbMatrix(*store, 0, 1, record);
            EXPECT_TRUE(id == -1 || ids.insert(id).second) << c.what << ' ' << record;
        }
        store.reset();
        EXPECT_EQ(DescribeRecords(*other, 0), content) << c.what;
    }
}

TEST_F(TableData, EveryDamageIsSurvived) {
    std::mt19937 random(9);
    const std::string bytes = Save(*MakeFilled(3, random, true));
    const auto load = [&](const std::string& damaged, std::size_t at, bool is_cut) {
        const std::size_t before = UsedMemory();
        const Store store = MakeStore(AllFields());
        const File file = FileOf(damaged);
        TableStorage::ReadTableData(*store, 0, file.get());
        EXPECT_LT(UsedMemory(), before + 4 * kFewBytes) << at;
        EXPECT_TRUE(!is_cut || std::feof(file.get()) != 0) << at;
        if (store->GetCurrentDbSize(0) < 1000) {
            EXPECT_FALSE(Save(*store).empty()) << at;
        }
    };
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        load(bytes.substr(0, at), at, true);
        for (const int mask : {0x01, 0x40, 0x80, 0xFF}) {
            std::string damaged = bytes;
            damaged[at] = static_cast<char>(damaged[at] ^ mask);
            load(damaged, at, false);
        }
    }
}

TEST_F(TableData, AFormatWithoutColumnsWritesEmptyBlocksAndPassesOverWhatItFinds) {
    const Store store = CreateMemoryResidentData();
    AddFormat(*store, L"Bare", {Number(L"A"), Text(L"B"), Matrix(L"C", Classes::kList)});
    EXPECT_EQ(Save(*store), Words({0, 0, 0, 0}));
    EXPECT_TRUE(Load(*store, Words({1, 1}) + Raw({2.0}) + Words({2, 0, 0, 1, 5, 1, 1}) + Raw({3.0})));
}

} // namespace

} // namespace Kestrona::Testing
