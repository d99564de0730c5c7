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

// Counts the handlers that live, and keeps the formats that went.
class Handler : public IDuplicateFormatHandler {
public:
    Handler(int& living, std::vector<std::int32_t>& destroyed) : living_(living), destroyed_(destroyed) { ++living_; }

    ~Handler() override { --living_; }

    void FormatDuplicated(std::int32_t, std::int32_t) override {}

    void FormatDestroyed(std::int32_t format) override { destroyed_.push_back(format); }

private:
    int& living_;
    std::vector<std::int32_t>& destroyed_;
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
    int handlers = 0;
    std::vector<std::int32_t> destroyed;
    std::unique_ptr<MemoryResidentData> store = CreateMemoryResidentData(nullptr, new Handler(handlers, destroyed));
};

TEST_F(Ownership, ASharedColumnGoesWithItsLastHolder) {
    for (const std::vector<std::int32_t>& order : {std::vector{0, 1, 2}, {2, 1, 0}, {1, 0, 2}}) {
        const std::int32_t format =
            AddFormat(*store, L"Format", {Number(L"Owner"), Shared(L"B1", 0), Shared(L"B2", 0)}, -1);
        store->SetDbColumn(format, 0, new CountedColumn(living));
        store->SetDbColumn(format, 1, store->GetDbColumn(format, 0));
        store->SetDbColumn(format, 2, store->GetDbColumn(format, 0));
        // The class bit decides nothing: a definition may take it away.
        store->RemoveDbClass(format, 1, Classes::kAdditionalReference);
        for (const std::int32_t field : order) {
            EXPECT_EQ(living, 1) << testing::PrintToString(order);
            store->FreeFieldMemory(format, field);
        }
        EXPECT_EQ(living, 0) << testing::PrintToString(order);
    }
}

TEST_F(Ownership, BorrowersFollowAnIndexAndANewColumn) {
    const std::int32_t format =
        AddTable(*store, L"Format", {Number(L"Key"), Number(L"Owner"), Shared(L"B1", 1), Shared(L"B2", 1)}, 2);
    const auto is_shared = [&](std::int32_t borrower) {
        return store->GetDbColumn(format, 1) == store->GetDbColumn(format, borrower);
    };
    store->AddIndexToColumn(format, 2);
    EXPECT_TRUE(store->GetDbColumn(format, 1)->IsIndexedColumn() && is_shared(2));
    store->CreateDbValues(format, 1);
    EXPECT_TRUE(is_shared(2) && is_shared(3));
    store->CreateDbValues(format, 2); // a borrower that goes its own way leaves the owner alone
    EXPECT_TRUE(!is_shared(2) && is_shared(3));
}

TEST_F(Ownership, AnOverrideWritesThroughAndGoesWithItsTarget) {
    const std::int32_t format =
        AddTable(*store, L"Format", {Number(L"Key"), Number(L"Target"), Override(L"Override", 1)}, 2);
    store->SetDbValue(format, 2, 0, 3.0);
    store->AddIndexToColumn(format, 1);
    store->AddIndexToColumn(format, 2);
    store->SetDbValue(format, 2, 1, 3.0);
    EXPECT_EQ(Take(store->LookupRecords(format, 1, 3.0, FindOperator::Equal)), (RecordNumbers{0, 1}));
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
    store->CreateDbValues(format, 1); // frees what both overrides lean on
    EXPECT_EQ(store->GetDbColumn(format, 2), nullptr);
    EXPECT_EQ(store->GetDbColumn(format, 3), nullptr);
}

TEST_F(Ownership, MakingColumnsAgainLeaksNothing) {
    Field shared_matrix = Shared(L"Same list", 5);
    shared_matrix.type = TypeBit::kMatrix;
    Field shared_text = Shared(L"Shared text", 1);
    shared_text.type = TypeBit::kReference;
    shared_text.classes.push_back(Classes::kFreeFormat);
    const std::int32_t format =
        AddTable(*store, L"Format",
                 {Number(L"Key"), Number(L"Owner"), Shared(L"Borrower", 1), Text(L"Text"), Override(L"Override", 1),
                  Matrix(L"List"), shared_matrix, shared_text, Calculated(L"Sum")},
                 3);
    const auto ids = [&](std::int32_t field) {
        return store->GetFieldInfo(format, field)->matrixColumn;
    };
    for (int round = 0; round < 3; ++round) {
        for (std::int32_t field = 0; field < store->GetDbFields(format); ++field) {
            store->AddIndexToColumn(format, field);
        }
        MakeColumns(*store, format);
        EXPECT_EQ(ids(5), ids(6));
        EXPECT_EQ(store->GetDbColumn(format, 1), store->GetDbColumn(format, 2));
    }
    store->CreateSpecialisedDataStorage(format, 4);
    store->CreateDbStrings(format, 3);
    store->RemoveDbClass(format, 6, Classes::kAdditionalReference);
    store->CreateDbMatrix(format, 6);
    EXPECT_NE(ids(5), ids(6));
    store->AssignDbMatrix(format, 6, 5);
    store->AssignDbMatrix(format, 6, 6);
    store->FreeFieldMemory(format, 5);
    EXPECT_EQ(ids(6)->GetValue(0), -1);
}

TEST_F(Ownership, ShrinkingTheFieldArrayFreesTheFieldsThatGo) {
    const std::int32_t format =
        AddTable(*store, L"Format", {Shared(L"Borrower", 1), Number(L"Owner"), Number(L"Counted")}, 2, -1);
    Count(format, 2);
    store->SetDbValue(format, 1, 0, 6.0);
    store->CreateDbFieldInfo(format, 1);
    EXPECT_EQ(living, 0);
    EXPECT_EQ(store->GetDbValue(format, 0, 0), 6.0); // the borrower is the last holder now
    store->CreateDbFieldInfo(format, 4);
    EXPECT_EQ(store->GetDbColumn(format, 2), nullptr);
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
    for (const auto& [parent, child] : {std::pair{root, middle}, {root, last}, {middle, last}}) {
        store->AddChildTable(parent, child);
    }
    store->SetAssociatedTable(middle, KSDLL_AddText(L"Root"), true);
    store->SetDefaultDatasetName(middle, KSDLL_AddText(L"Default"));
    store->SetDbExtension(middle, KSDLL_AddText(L"ext"));
    store->SetDatasetName(middle, L"Plan");
    store->SetDbDisplayName(middle, L"Shown");
    store->SetDbString(middle, 1, 0, L"text");
    store->SetUserMaxRecords(middle, 8);
    store->DestroyFormat(middle);
    EXPECT_EQ(living, 0);
    EXPECT_EQ(store->GetFormatCount(), 3);
    EXPECT_EQ(destroyed, std::vector{middle});
    EXPECT_EQ(store->FindFormatByName(L"Last"), last); // past the hole
    EXPECT_TRUE(!store->IsFormatChildOfParent(root, middle) && store->IsFormatChildOfParent(root, last));
    const formats_info& info = *store->GetFormatInfo(middle);
    EXPECT_TRUE(!info.name && !info.extension && !info.defaultDatasetName && !info.associatedTableName);
    EXPECT_TRUE(info.fields.empty() && info.childTables.empty() && info.displayName.empty());
    EXPECT_TRUE(info.changedRecords.IsEmpty() && info.erasedKeys.empty() && !info.changed);
    EXPECT_EQ(info.timestamp + info.recordCount + info.fieldCount + info.userMaximumRecords, 0);
    EXPECT_TRUE(info.updateColumn == nullptr && info.keyField == -1);
    EXPECT_STREQ(store->GetDbCurrentDatasetName(middle), L"");
    EXPECT_FALSE(store->IsAssociatedTableEligibleCommonDataset(middle));
    for (int round = 0; round < 2; ++round) {
        store->DestroyFormat(last); // the second time there is nothing left of it
        EXPECT_EQ(store->GetFormatCount(), 2);
    }
}

TEST_F(Ownership, FreeingTheStoreTwiceIsHarmless) {
    store->CreateTablePointer();
    store->CreateTableFields(3);
    store->SetTableName(3, KSDLL_AddText(L"Table"));
    store->SetTableText(3, 0, KSDLL_AddText(L"entry"));
    store->SetStringSubstitution(KSDLL_AddText(L"a"), KSDLL_AddText(L"b"));
    KSDLL_SetUserString(5, L"user");
    RecordingLogger& logger = InstallRecordingLogger();
    const auto add_format = [&] {
        AddTable(*store, L"First", {Number(L"Key"), Text(L"Text"), Number(L"Counted")}, 2);
        Count(0, 2);
    };
    add_format();
    KSDLL_InitializeFormats(*store); // the formats alone
    EXPECT_EQ(living, 0);
    EXPECT_STREQ(store->GetTableName(3), L"Table");
    add_format();
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
}

TEST_F(Ownership, TheStoreFreesWhatItWasGiven) {
    AddFormat(*store, L"Format", {Number(L"Key"), Shared(L"Borrower", 0)});
    store->SetDbColumn(0, 0, new CountedColumn(living));
    store->SetDbColumn(0, 1, store->GetDbColumn(0, 0));
    EXPECT_EQ(handlers, 1);
    store.reset();
    EXPECT_EQ(handlers, 0);
    EXPECT_EQ(living, 0);
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
    const HostStore host(new CountedLogger(loggers), progress, messages);
    EXPECT_EQ(loggers, 0);
    EXPECT_EQ(dynamic_cast<RecordingLogger*>(LogManager::getInstance()), nullptr);
    const HostStore silent(nullptr, nullptr, nullptr);
    EXPECT_EQ(MessageManager::getInstance(), messages); // the process owns them, not the store
    EXPECT_EQ(ProgressManager::getInstance(), progress);
    auto* const installed = new CountedLogger(loggers);
    LogManager::setInstance(installed);
    const HostStore again(installed, nullptr, nullptr); // the one that is installed already
    EXPECT_EQ(loggers, 0);
}

} // namespace

} // namespace Kestrona
