// Who frees what. The address and leak sanitizers are the judges of most of this; a counting column says how often a
// column went.
#include "fixtures/store_test.h"

#include <kestrona/concrete_columns.h>

namespace Kestrona {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

// Counts the columns that live.
class CountedColumn : public DoubleColumn {
public:
    explicit CountedColumn(int& living)
        : DataStorage<double>(new NullRecordStateStrategy()),
          ValueManagedDataStorage<double>(0.0, nullptr),
          DoubleColumn(nullptr, 0.0),
          living_(living) {
        ++living_;
    }

    ~CountedColumn() override { --living_; }

private:
    int& living_;
};

struct HandlerLog {
    std::vector<std::int32_t> destroyed;
    int living = 0;
};

class Handler : public IDuplicateFormatHandler {
public:
    explicit Handler(HandlerLog& log) : log_(log) { ++log_.living; }

    ~Handler() override { --log_.living; }

    void FormatDuplicated(std::int32_t, std::int32_t) override {}

    void FormatDestroyed(std::int32_t format) override { log_.destroyed.push_back(format); }

private:
    HandlerLog& log_;
};

class Ownership : public testing::Test {
protected:
    // Gives the field a column that counts its life.
    void Count(std::int32_t format, std::int32_t field) {
        delete store->GetDbColumn(format, field);
        store->SetDbColumn(format, field, new CountedColumn(living));
    }

    FreshProcess process;
    int living = 0;
    HandlerLog handler;
    std::unique_ptr<MemoryResidentData> store = CreateMemoryResidentData(nullptr, new Handler(handler));
};

TEST_F(Ownership, ASharedColumnGoesWithItsLastHolder) {
    struct Case {
        std::vector<std::int32_t> order;
        const char* what;
    };

    for (const auto& [order, what] :
         {Case{{0, 1, 2}, "owner first"}, {{2, 1, 0}, "borrowers first"}, {{1, 0, 2}, "owner between"}}) {
        const std::int32_t format =
            AddFormat(*store, L"Format", {Number(L"Owner"), Shared(L"B1", 0), Shared(L"B2", 0)}, -1);
        store->SetDbColumn(format, 0, new CountedColumn(living));
        store->SetDbColumn(format, 1, store->GetDbColumn(format, 0));
        store->SetDbColumn(format, 2, store->GetDbColumn(format, 0));
        // The class bit decides nothing: a definition may take it away.
        store->RemoveDbClass(format, 1, Classes::kAdditionalReference);
        store->FreeFieldMemory(format, order[0]);
        EXPECT_EQ(living, 1) << what;
        store->FreeFieldMemory(format, order[1]);
        EXPECT_EQ(living, 1) << what;
        store->FreeFieldMemory(format, order[2]);
        EXPECT_EQ(living, 0) << what;
    }
}

TEST_F(Ownership, BorrowersFollowAnIndexAndANewColumn) {
    const std::int32_t format =
        AddTable(*store, L"Format", {Number(L"Key"), Number(L"Owner"), Shared(L"B1", 1), Shared(L"B2", 1)}, 2);
    store->AddIndexToColumn(format, 2);
    EXPECT_TRUE(store->GetDbColumn(format, 1)->IsIndexedColumn());
    EXPECT_EQ(store->GetDbColumn(format, 1), store->GetDbColumn(format, 2));
    store->AddIndexToColumn(format, 1);
    store->SetDbValue(format, 2, 0, 4.0);
    EXPECT_EQ(store->GetDbValue(format, 1, 0), 4.0);

    store->CreateDbValues(format, 1);
    EXPECT_EQ(store->GetDbColumn(format, 1), store->GetDbColumn(format, 2));
    EXPECT_EQ(store->GetDbValue(format, 2, 0), 0.0);

    store->CreateDbValues(format, 2); // a borrower that goes its own way leaves the owner alone
    EXPECT_NE(store->GetDbColumn(format, 1), store->GetDbColumn(format, 2));
    store->SetDbValue(format, 2, 0, 4.0);
    EXPECT_EQ(store->GetDbValue(format, 1, 0), 0.0);
    EXPECT_EQ(store->GetDbColumn(format, 1), store->GetDbColumn(format, 3));
}

TEST_F(Ownership, AnOverrideWritesThroughAndGoesWithItsTarget) {
    const std::int32_t format =
        AddTable(*store, L"Format", {Number(L"Key"), Number(L"Target"), Override(L"Override", 1)}, 2);
    store->SetDbValue(format, 2, 0, 3.0);
    store->AddIndexToColumn(format, 1);
    store->AddIndexToColumn(format, 2);
    store->SetDbValue(format, 2, 1, 3.0);
    const std::unique_ptr<FindResult> found(store->LookupRecords(format, 1, 3.0, FindOperator::Equal));
    EXPECT_EQ(found->Size(), 2u);
    store->SetDbValue(format, 2, 1, -1.0);
    EXPECT_EQ(store->GetDbValue(format, 1, 1), 3.0);

    store->FreeFieldMemory(format, 1);
    EXPECT_EQ(store->GetDbColumn(format, 2), nullptr);
    store->SetDbValue(format, 2, 0, 9.0);
    EXPECT_EQ(store->GetDbValue(format, 2, 0), -1.0);
}

TEST_F(Ownership, OverridesInALineOrOfThemselvesAreSafe) {
    const std::int32_t format = AddTable(
        *store, L"Format",
        {Number(L"Key"), Number(L"Target"), Override(L"First", 1), Override(L"Second", 2), Override(L"Self", 4)}, 1);
    store->SetDbValue(format, 3, 0, 8.0);
    EXPECT_EQ(store->GetDbValue(format, 1, 0), 8.0);
    store->SetDbValue(format, 4, 0, 8.0);
    EXPECT_EQ(store->GetDbValue(format, 4, 0), 8.0);
    store->CreateDbValues(format, 4);
    EXPECT_NE(store->GetDbColumn(format, 4), nullptr);
    store->CreateDbValues(format, 1); // frees what both overrides lean on
    EXPECT_EQ(store->GetDbColumn(format, 2), nullptr);
    EXPECT_EQ(store->GetDbColumn(format, 3), nullptr);
    MakeColumns(*store, format);
    store->SetDbValue(format, 3, 0, 5.0);
    EXPECT_EQ(store->GetDbValue(format, 1, 0), 5.0);
}

TEST_F(Ownership, MakingColumnsAgainLeaksNothing) {
    Field matrix{.name = L"List", .type = TypeBit::kMatrix};
    Field shared_matrix = Shared(L"Same list", 5);
    shared_matrix.type = TypeBit::kMatrix;
    Field shared_text = Shared(L"Shared text", 1);
    shared_text.type = TypeBit::kReference;
    shared_text.classes.push_back(Classes::kFreeFormat);
    const std::int32_t format =
        AddTable(*store, L"Format",
                 {Number(L"Key"), Number(L"Owner"), Shared(L"Borrower", 1), Text(L"Text"), Override(L"Override", 1),
                  matrix, shared_matrix, shared_text, Calculated(L"Sum")},
                 3);
    for (int round = 0; round < 3; ++round) {
        for (std::int32_t field = 0; field < store->GetDbFields(format); ++field) {
            store->AddIndexToColumn(format, field);
        }
        MakeColumns(*store, format);
        EXPECT_EQ(store->GetFieldInfo(format, 5)->matrixColumn, store->GetFieldInfo(format, 6)->matrixColumn);
        EXPECT_EQ(store->GetDbColumn(format, 1), store->GetDbColumn(format, 2));
        EXPECT_EQ(store->GetFieldInfo(format, 5)->matrixColumn->GetValue(0), -1);
    }
    store->CreateSpecialisedDataStorage(format, 4);
    store->CreateDbStrings(format, 3);
    store->RemoveDbClass(format, 6, Classes::kAdditionalReference);
    store->CreateDbMatrix(format, 6);
    EXPECT_NE(store->GetFieldInfo(format, 5)->matrixColumn, store->GetFieldInfo(format, 6)->matrixColumn);
    store->AssignDbMatrix(format, 6, 5);
    store->AssignDbMatrix(format, 6, 6);
    store->FreeFieldMemory(format, 5);
    EXPECT_EQ(store->GetFieldInfo(format, 6)->matrixColumn->GetValue(0), -1);
}

TEST_F(Ownership, ShrinkingTheFieldArrayFreesTheFieldsThatGo) {
    const std::int32_t format = AddTable(
        *store, L"Format", {Shared(L"Borrower", 1), Number(L"Owner"), Text(L"Text"), Number(L"Counted")}, 2, -1);
    Count(format, 3);
    store->SetDbValue(format, 1, 0, 6.0);
    store->CreateDbFieldInfo(format, 1);
    EXPECT_EQ(living, 0);
    EXPECT_EQ(store->GetDbValue(format, 0, 0), 6.0); // the borrower is the last holder now
    store->CreateDbFieldInfo(format, 4);
    EXPECT_EQ(store->GetDbType(format, 3), 0u);
    EXPECT_EQ(store->GetDbColumn(format, 3), nullptr);
    try {
        store->CreateDbFieldInfo(format, -1);
        FAIL() << "nothing thrown";
    } catch (const wchar_t* text) {
        EXPECT_STREQ(text, L"Fields must be a positive number");
    }
    EXPECT_NE(store->GetFieldInfo(format, 3), nullptr);
}

TEST_F(Ownership, ADestroyedFormatLeavesNothingToTheNextUserOfItsNumber) {
    const std::int32_t root = AddTable(*store, L"Root", {Number(L"Key")}, 1);
    const std::int32_t middle = AddTable(*store, L"Middle", {Number(L"Key"), Text(L"Text")}, 4);
    const std::int32_t last = AddTable(*store, L"Last", {Number(L"Key")}, 1);
    Count(middle, 0);
    store->AddChildTable(root, middle);
    store->AddChildTable(root, last);
    store->AddChildTable(middle, last);
    store->SetAssociatedTable(middle, KSDLL_AddText(L"Root"), true);
    store->SetDefaultDatasetName(middle, KSDLL_AddText(L"Default"));
    store->SetDbExtension(middle, KSDLL_AddText(L"ext"));
    store->SetDatasetName(middle, L"Plan");
    store->SetDbDisplayName(middle, L"Shown");
    store->SetDbString(middle, 1, 0, L"text");
    store->SetUserMaxRecords(middle, 8);

    EXPECT_EQ(store->FindFormatByName(L"Middle"), middle);
    store->DestroyFormat(middle);
    EXPECT_EQ(living, 0);
    EXPECT_EQ(store->GetFormatCount(), 3);
    EXPECT_EQ(handler.destroyed, std::vector{middle});
    EXPECT_EQ(store->FindFormatByName(L"Middle"), -1);
    EXPECT_EQ(store->FindFormatByName(L"Last"), last); // past the hole
    EXPECT_FALSE(store->IsFormatChildOfParent(root, middle));
    EXPECT_TRUE(store->IsFormatChildOfParent(root, last));
    const formats_info& info = *store->GetFormatInfo(middle);
    EXPECT_TRUE(!info.name && !info.extension && !info.defaultDatasetName && !info.associatedTableName);
    EXPECT_TRUE(info.fields.empty() && info.childTables.empty() && info.displayName.empty());
    EXPECT_TRUE(info.changedRecords.IsEmpty() && info.erasedKeys.empty() && !info.changed);
    EXPECT_EQ(info.timestamp + info.recordCount + info.fieldCount + info.userMaximumRecords, 0);
    EXPECT_EQ(info.updateColumn, nullptr);
    EXPECT_EQ(info.keyField, -1);
    EXPECT_STREQ(store->GetDbCurrentDatasetName(middle), L"");
    EXPECT_FALSE(store->IsAssociatedTableEligibleCommonDataset(middle));

    store->SetDbName(middle, KSDLL_AddText(L"Again"));
    store->CreateDbFieldInfo(middle, 1);
    store->CreateDbValues(middle, 0);
    EXPECT_EQ(store->GetDbDefaultValue(middle, 0), 0.0);
    store->DestroyFormat(last);
    EXPECT_EQ(store->GetFormatCount(), 2);
    store->DestroyFormat(last); // there is nothing left of it
    EXPECT_EQ(store->GetFormatCount(), 2);
}

TEST_F(Ownership, InitialisingTheFormatsKeepsTheStringTables) {
    AddTable(*store, L"First", {Number(L"Key"), Text(L"Text")}, 2);
    Count(0, 0);
    store->CreateTablePointer();
    store->SetTableName(0, KSDLL_AddText(L"Table"));
    KSDLL_InitializeFormats(*store);
    EXPECT_EQ(living, 0);
    EXPECT_EQ(store->GetFormatCount(), 0);
    EXPECT_EQ(store->GetDbName(0), nullptr);
    EXPECT_STREQ(store->GetTableName(0), L"Table");
}

TEST_F(Ownership, FreeingTheStoreTwiceIsHarmless) {
    AddTable(*store, L"First", {Number(L"Key"), Text(L"Text"), Number(L"Counted")}, 2);
    Count(0, 2);
    store->CreateTablePointer();
    store->CreateTableFields(3);
    store->SetTableText(3, 0, KSDLL_AddText(L"entry"));
    store->SetStringSubstitution(KSDLL_AddText(L"a"), KSDLL_AddText(L"b"));
    KSDLL_SetUserString(5, L"user");
    RecordingLogger& logger = InstallRecordingLogger();
    for (int round = 0; round < 2; ++round) {
        store->FreeDbMemory();
        EXPECT_EQ(living, 0);
        EXPECT_EQ(store->GetFormatCount(), 0);
        EXPECT_EQ(store->GetTableName(3), nullptr);
        EXPECT_EQ(KSDLL_GetUserString(5), nullptr);
        wchar_t* from = nullptr;
        store->GetStringSubstitution(0, &from, nullptr);
        EXPECT_EQ(from, nullptr);
        EXPECT_NE(LogManager::getInstance(), &logger);
    }
    EXPECT_EQ(AddTable(*store, L"After", {Number(L"Key")}, 1), 0);
}

TEST_F(Ownership, TheStoreFreesWhatItWasGiven) {
    int columns = 0;
    {
        const std::unique_ptr<MemoryResidentData> other = CreateMemoryResidentData(nullptr, new Handler(handler));
        AddFormat(*other, L"Format", {Number(L"Key"), Shared(L"Borrower", 0)});
        other->SetDbColumn(0, 0, new CountedColumn(columns));
        other->SetDbColumn(0, 1, other->GetDbColumn(0, 0));
        EXPECT_EQ(handler.living, 2);
    }
    EXPECT_EQ(handler.living, 1);
    EXPECT_EQ(columns, 0);
}

// A host that derives.
class HostStore : public MemoryResidentData {
public:
    HostStore(DefaultLogger* logger, BaseProgressManager* progress, CoreMessage* messages)
        : MemoryResidentData(nullptr, nullptr, logger, progress, messages) {}
};

TEST_F(Ownership, AConstructorsLoggerIsFreedAndItsOtherServicesStay) {
    struct CountedLogger : DefaultLogger {
        explicit CountedLogger(int& count) : living(count) { ++living; }

        ~CountedLogger() override { --living; }

        int& living;
    };

    int loggers = 0;
    InstallRecordingLogger();
    auto* const messages = new RecordingMessages();
    auto* const progress = new BaseProgressManager();
    {
        HostStore host(new CountedLogger(loggers), progress, messages);
        EXPECT_EQ(loggers, 0);
        EXPECT_EQ(dynamic_cast<RecordingLogger*>(LogManager::getInstance()), nullptr);
        EXPECT_EQ(host.GetFormatCount(), 0);
    }
    EXPECT_EQ(MessageManager::getInstance(), messages); // the process owns them, not the store
    EXPECT_EQ(ProgressManager::getInstance(), progress);
    const HostStore silent(nullptr, nullptr, nullptr);
    EXPECT_EQ(MessageManager::getInstance(), messages);

    auto* const installed = new CountedLogger(loggers);
    LogManager::setInstance(installed);
    const HostStore again(installed, nullptr, nullptr); // the one that is installed already
    EXPECT_EQ(loggers, 0);
}

} // namespace

} // namespace Kestrona
