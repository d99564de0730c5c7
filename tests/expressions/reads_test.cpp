// What expressions read: cells, their texts, elements of matrices, display texts, and chains of such reads.
#include "expressions/expression_test.h"

#include <kestrona/value_text.h>

namespace Kestrona::Expressions {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;
using Reads = ExpressionTest;

TEST_F(Reads, TakeTheCellOrItsText) {
    struct Case {
        const wchar_t* text;
        std::int32_t record;
        double expected;
        bool is_reported = false;
    };

    Field dual = Number(L"Dual"); // a number with a text of its own
    dual.classes = {Classes::kFreeFormat};
    const Field plain{.name = L"Plain", .type = TypeBit::kReference}; // no text column
    AddTable(*store, L"Orders", {Number(L"Key"), Text(L"Cost"), Number(L"Amount"), plain, dual}, 4);
    const wchar_t* const costs[] = {L"12.5", L"abc", L"", L" 1"};
    for (std::int32_t record = 0; record < 4; ++record) {
        store->SetDbString(0, 1, record, costs[record]);
        store->SetDbValue(0, 2, record, 0.1 + record);
        store->SetDbValue(0, 3, record, 3.0 + record);
        store->SetDbValue(0, 4, record, 7.0);
        store->SetDbString(0, 4, record, L"1e3");
    }
    for (const Case& c :
         {Case{L"{$Cost}", 0, 12.5}, Case{L"{Cost}", 0, 12.5}, Case{L"{#Cost}", 0, 0.0}, Case{L"{$Cost}", 1, 0.0, true},
          Case{L"{Cost}", 2, 0.0, true}, Case{L"{$Cost}", 3, 0.0, true}, Case{L"{Amount}", 0, 0.1},
          Case{L"{#Amount}", 3, 3.1}, Case{L"{$Amount}", 0, 0.1}, Case{L"{Plain}", 0, 3.0}, Case{L"{#Plain}", 1, 4.0},
          Case{L"{$Dual}", 0, 1000.0}, Case{L"{Dual}", 0, 7.0}, Case{L"{#Dual}", 0, 7.0}}) {
        logger.lines.clear();
        EXPECT_EQ(ValueOf(0, c.text, c.record), c.expected) << testing::PrintToString(c.text) << c.record;
        EXPECT_EQ(logger.lines,
                  std::vector<std::wstring>(c.is_reported ? 1 : 0,
                                            L"Evaluation Error: Could not convert field string to double"));
        double one = -5.0;
        Compile(0, -1, c.text)->EvaluateBlock(*store, c.record, 1, &one);
        EXPECT_EQ(one, c.expected) << testing::PrintToString(c.text) << c.record;
    }
    EXPECT_EQ(TextOf(0, L"{$Cost}", 1), L"abc");
    EXPECT_EQ(TextOf(0, L"{Cost}", 2), L"");
    EXPECT_EQ(TextOf(0, L"{#Cost}|{Amount}|{$Dual}|{Dual}|<{$Cost}{#Dual}>", 0),
              L"0|0.10000000000000001|1e3|7|<12.57>");
    std::wstring text = L"kept";
    EXPECT_EQ(KSDLL_EvaluateExpression(*store, 1, Compile(0, -1, L"\"b\"@\"x{$Cost}\"").get(), &text), 1.0);
    EXPECT_EQ(text, L"kept");
}

// A matrix of numbers in the group of field 0.
Field GroupMatrix(const std::wstring& name, double default_value, std::vector<Class> classes = {}) {
    classes.push_back(Classes::kAssociate);
    return {.name = name,
            .type = TypeBit::kReal | TypeBit::kMatrix,
            .classes = std::move(classes),
            .default_value = default_value};
}

class MatrixReads : public Reads {
protected:
    enum : std::int32_t {
        kKey,
        kRate,
        kHours,
        kCost,
        kTwice
    };

    MatrixReads() {
        format = AddTable(*store, L"Plant",
                          {Number(L"Key"), Number(L"Rate"), GroupMatrix(L"Hours", 7.0),
                           GroupMatrix(L"Cost", 9.0, {Classes::kEvaluate}),
                           GroupMatrix(L"Twice", 0.0, {Classes::kEvaluate})},
                          3);
        Calculate(format, kCost, L"{#Hours} * {#Rate}");
        Calculate(format, kTwice, L"{#Cost} * 2");
        for (std::int32_t record = 0; record < 3; ++record) {
            store->SetDbValue(format, kRate, record, 10.0 * (record + 1));
        }
        for (std::int32_t record = 0; record < 3; ++record) {
            KSDLL_CreateMatrix(*store, 3, format, kTwice, record);
        }
        Fill(format, kHours, 0, {0.25, 1.25, 2.25});
        Fill(format, kHours, 1, {100.25, 101.25, 102.25});
        KSDLL_CreateMatrix(*store, 3, format, kCost, 0);
    }

    double Get(std::int32_t field, std::int32_t record, std::uint32_t index) {
        return KSDLL_GetMatrixValue(*store, format, field, record, index);
    }

    std::int32_t format = -1;
};

TEST_F(MatrixReads, TakeTheElementOfTheRecordsOwnMatrix) {
    for (std::uint32_t i = 0; i < 3; ++i) {
        EXPECT_EQ(Get(kTwice, 0, i), (i + 0.25) * 10.0 * 2.0) << i;
    }
    EXPECT_EQ(Get(kTwice, 0, 3), 7.0 * 10.0 * 2.0) << "the element right behind the last one";
    EXPECT_EQ(Get(kTwice, 0, 4), 0.0) << "further out";
    EXPECT_EQ(Get(kTwice, 1, 1), 0.0) << "without a matrix of costs";
    KSDLL_CreateMatrix(*store, 0, format, kCost, 1);
    EXPECT_EQ(Get(kTwice, 1, 1), 101.25 * 20.0 * 2.0) << "a calculated matrix computes elements beyond its size";
    KSDLL_CreateMatrix(*store, 0, format, kCost, 2);
    EXPECT_EQ(Get(kTwice, 2, 1), 0.0) << "without a matrix of hours";

    const std::int32_t hours = KSDLL_GetDbMatrix(*store, format, kHours, 0);
    KSDLL_SetMatrixValue(hours, 1, -4.0);
    EXPECT_EQ(Get(kTwice, 0, 1), -80.0);
    KSDLL_FreeMatrix(hours);
    EXPECT_EQ(Get(kTwice, 0, 1), 0.0) << "an id without its matrix";
    EXPECT_TRUE(messages.boxes.empty());
}

TEST_F(MatrixReads, AsTextShowTheElementByTheFieldsForm) {
    EXPECT_EQ(TextOf(format, L"{$Hours}|{#Hours}|{Hours}|{$Rate}", 1, 2, kCost), L"102.25|102.25|102.25|20.00");
    EXPECT_EQ(TextOf(format, L"{$Cost}", 0, 1, kCost), L"12.50");
}

TEST_F(Reads, AsTextShowWhatTheFieldDisplays) {
    const std::int32_t parts = AddTable(
        *store, L"Parts", {Number(L"Key", -1.0), Text(L"Name"), Calculated(L"Sum"), CalculatedText(L"Label")}, 3);
    const std::int32_t orders =
        AddTable(*store, L"Orders",
                 {Number(L"Key", -1.0), Number(L"Amount"), Integer(L"Count"), Reference(L"Part", parts, 1),
                  Reference(L"Sum", parts, 2), Reference(L"Label", parts, 3)},
                 2);
    Calculate(parts, 2, L"{#Key} + 0.126");
    Calculate(parts, 3, L"<{$Name}>");
    store->SetDbKeyValue(parts, 1, 42.0);
    store->SetDbString(parts, 1, 1, L"bolt");
    store->SetDbValue(orders, 1, 0, 0.126);
    store->SetDbValue(orders, 2, 0, 13.0);
    for (const std::int32_t field : {3, 4, 5}) {
        store->SetDbValue(orders, field, 0, 42.0);
        store->SetDbValue(orders, field, 1, 43.0);
    }
    EXPECT_EQ(TextOf(orders, L"{$Amount}|{$Count}|{$Part}|{Part}|{#Part}|{$Sum}|{$Label}", 0),
              L"0.13|13|bolt|bolt|42|42.13|<bolt>");
    EXPECT_EQ(TextOf(orders, L"{$Part}|{$Sum}|{$Label}", 1), L"43.00|43.00|43.00") << "no such record";

    EXPECT_EQ(ValueOf(orders, L"{$Amount} + {$Sum}", 0), 0.13 + 42.13) << "as displayed";
    EXPECT_TRUE(logger.lines.empty());
}

// People who stand behind each other, and whose label tells of all in front of them.
class Queue : public Reads {
protected:
    Queue() {
        format = AddTable(*store, L"People",
                          {Number(L"Key", -1.0), Reference(L"Next", 0, 2), CalculatedText(L"Label"), Calculated(L"Sum"),
                           Reference(L"Next sum", 0, 3)},
                          400);
        for (std::int32_t record = 0; record < 400; ++record) {
            store->SetDbKeyValue(format, record, record);
            store->SetDbValue(format, 1, record, record + 1);
            store->SetDbValue(format, 4, record, record + 1);
        }
    }

    void CloseRing(std::int32_t record) {
        store->SetDbValue(format, 1, record, 0.0);
        store->SetDbValue(format, 4, record, 0.0);
    }

    std::int32_t format = -1;
};

TEST_F(Queue, ThatBitesItsTailEndsInTimeHoweverOftenItIsRead) {
    Calculate(format, 2, L"{$Next}/{$Next}/{$Next}");
    Calculate(format, 3, L"{$Next sum} + {$Next sum} + 1");
    for (const std::int32_t last : {0, 1, 2, 7}) {
        CloseRing(last);
        logger.lines.clear();
        EXPECT_EQ(store->GetDbString(format, 2, 0), L"") << last;
        EXPECT_EQ(store->GetDbValue(format, 3, 0), 0.0) << last;
        EXPECT_EQ(logger.lines.size(), 2u) << last;
        EXPECT_EQ(KSDLL_FieldToTString(*store, format, 1, 0), L"") << last;
        EXPECT_EQ(TextOf(format, L"{$Next sum}", 0), L"0.00") << last;
    }
    CloseRing(1);
    EXPECT_EQ(store->GetDbString(format, 2, 399), L"400.00/400.00/400.00");
}

} // namespace

} // namespace Kestrona::Expressions
