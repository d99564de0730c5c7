// Sorting: every sort against a chain of comparisons written out here, over random records with ties and families.
#include "fixtures/store_test.h"
#include "store/stable_sort.h"

#include <kestrona/host_settings.h>
#include <kestrona/sorting.h>
#include <kestrona/unicode.h>

#include <numeric>

namespace Kestrona {

namespace {

using namespace Data::MemoryResident;
using namespace Fixtures;

using Records = std::vector<std::int32_t>;

constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

class Sort : public StoreTest {
protected:
    // Fields 0 to 4: key, family, two numbers with ties, a text with ties.
    void MakeRandomTable(std::int32_t records, std::uint32_t seed) {
        std::mt19937 random(seed);
        AddTable(*store, L"Plan", {Number(L"Key"), Family(L"Parent"), Number(L"A"), Number(L"B"), Text(L"Name")},
                 records);
        const auto draw = [&](std::int32_t bound) {
            return static_cast<std::int32_t>(random() % static_cast<std::uint32_t>(bound));
        };
        for (std::int32_t record = 0; record < records; ++record) {
            store->SetDbValue(0, 0, record, record + 100.0);
            // A parent is no child itself, so that a family has two generations.
            const bool child = record % 3 != 0 && draw(2) == 0;
            store->SetDbValue(0, 1, record, child ? 100.0 + draw((records + 2) / 3) * 3 : -1.0);
            store->SetDbValue(0, 2, record, draw(4) - 1.5);
            store->SetDbValue(0, 3, record, draw(3));
            store->SetDbString(0, 4, record, (draw(2) == 0 ? L"A" : L"B") + std::to_wstring(draw(12)));
        }
    }

    double Cell(std::int32_t field, std::int32_t record) { return store->GetDbValue(0, field, record); }

    // Negative, 0 or positive.
    int CompareField(std::int32_t field, std::int32_t a, std::int32_t b) {
        if (field != 4) {
            return Cell(field, a) < Cell(field, b) ? -1 : Cell(field, a) > Cell(field, b) ? 1 : 0;
        }
        // A letter and a number: the letter first, then the number as a number.
        const std::wstring left = store->GetDbString(0, 4, a);
        const std::wstring right = store->GetDbString(0, 4, b);
        const int letters = left[0] - right[0];
        return letters != 0 ? letters : std::stoi(left.substr(1)) - std::stoi(right.substr(1));
    }

    std::int32_t ParentOf(std::int32_t record) {
        return Cell(1, record) < 0 ? record : static_cast<std::int32_t>(Cell(1, record)) - 100;
    }

    // `families_at` is the place of the family comparison among the fields, -1 for none.
    Records Expected(const std::vector<SortDetails>& details, int families_at) {
        Records records(static_cast<std::size_t>(store->GetCurrentDbSize(0)));
        std::iota(records.begin(), records.end(), 0);
        std::ranges::stable_sort(records, [&](std::int32_t a, std::int32_t b) {
            for (int place = 0; place <= static_cast<int>(details.size()); ++place) {
                if (place == families_at && ParentOf(a) != ParentOf(b)) {
                    return ParentOf(a) < ParentOf(b);
                }
                if (place < static_cast<int>(details.size())) {
                    const SortDetails& entry = details[static_cast<std::size_t>(place)];
                    const int order = CompareField(entry.field, a, b) * (entry.ascending ? 1 : -1);
                    if (order != 0) {
                        return order < 0;
                    }
                }
            }
            return false;
        });
        return records;
    }

    Records SequenceOf(const IColumn<double>& column) {
        Records records(static_cast<std::size_t>(store->GetCurrentDbSize(0)), -1);
        for (std::int32_t record = 0; record < store->GetCurrentDbSize(0); ++record) {
            records.at(static_cast<std::size_t>(column.GetValue(record))) = record;
        }
        return records;
    }
};

TEST_F(Sort, AgreesWithAChainOfComparisons) {
    const std::vector<SortDetails> orders[] = {
        {{2, true}},
        {{2, false}},
        {{4, true}},
        {{4, false}, {2, true}},
        {{2, true}, {-1, true}, {3, false}, {4, true}},
        {{3, false}, {2, false}},
    };
    std::uint32_t seed = 0;
    for (const std::int32_t records : {0, 1, 33, 700}) {
        store = CreateMemoryResidentData();
        MakeRandomTable(records, ++seed);
        for (std::vector<SortDetails> details : orders) {
            std::vector<SortDetails> named = details;
            std::erase_if(named, [](const SortDetails& entry) { return entry.field < 0; });
            Records sorted{7};
            KSDLL_SortToVector(*store, 0, details, sorted);
            EXPECT_EQ(sorted, Expected(named, -1)) << records;
            // Fields with parent sort enabled go behind the families, all others before them.
            for (std::int32_t field = 0; field < 5; ++field) {
                store->SetParentSortEnabled(0, field, field == named.back().field);
            }
            const std::unique_ptr<IColumn<double>> sequence(KSDLL_CreateDisplaySequenceColumn());
            KSDLL_MulticolumnSort(*store, 0, details, true, false, sequence.get());
            EXPECT_EQ(SequenceOf(*sequence), Expected(named, static_cast<int>(named.size()) - 1)) << records;
            KSDLL_MulticolumnSort(*store, 0, details, true, true, sequence.get());
            EXPECT_EQ(SequenceOf(*sequence), Expected(named, 0)) << records;
        }
        EXPECT_EQ(KSDLL_SingleColumnSortVector(*store, 0, 2, true), Expected({{2, true}}, -1));
        EXPECT_EQ(KSDLL_SingleColumnSortVector(*store, 0, 2, false), Expected({}, -1));
    }
    std::vector<SortDetails> none;
    Records untouched{7};
    KSDLL_SortToVector(*store, 0, none, untouched);
    EXPECT_EQ(untouched, Records{7});
}

TEST_F(Sort, MovedRowsStandInTheOrderOfTheListAndANamedRecordIsFollowed) {
    const auto expect_rows = [&](const Records& expected) {
        for (std::int32_t place = 0; place < static_cast<std::int32_t>(expected.size()); ++place) {
            ASSERT_EQ(Cell(0, place), expected[static_cast<std::size_t>(place)] + 100.0) << place;
        }
    };
    MakeRandomTable(200, 5);
    const Records families = Expected({}, 0);
    std::vector<SortDetails> details{{4, true}, {2, false}};
    const Records sorted = Expected(details, -1);
    KSDLL_MulticolumnSort(*store, 0, details, false, true, nullptr);
    expect_rows(sorted);
    details = {{0, true}};
    KSDLL_MulticolumnSort(*store, 0, details, false, true, nullptr);
    std::int32_t record = 40;
    KSDLL_ParentSort(*store, 0, &record, nullptr);
    EXPECT_EQ(Cell(0, record), 140.0);
    expect_rows(families);
}

TEST_F(Sort, NumbersOfEveryKindHaveAPlace) {
    // Ties between the zeros; more than a few records, so that the other way of sorting is taken, too.
    const std::vector<double> values{0.0,  -kInfinity, 5e-324,  kNotANumber, -0.0,
                                     -1.5, kInfinity,  -5e-324, 1e300,       -1e300};
    const Records ascending{1, 9, 5, 7, 0, 4, 2, 8, 6, 3};
    for (const std::int32_t copies : {1, 100}) {
        store = CreateMemoryResidentData();
        AddTable(*store, L"Numbers", {Number(L"Key"), Number(L"Value")}, 10 * copies);
        for (std::int32_t record = 0; record < 10 * copies; ++record) {
            store->SetDbValue(0, 1, record, values[static_cast<std::size_t>(record / copies)]);
        }
        Records blocks;
        for (const std::int32_t record : KSDLL_SingleColumnSortVector(*store, 0, 1, true)) {
            blocks.push_back(record / copies);
        }
        blocks.erase(std::unique(blocks.begin(), blocks.end()), blocks.end());
        EXPECT_EQ(blocks, ascending);
    }
}

// Tells of every pair what the comparison tells, and compares the sort of the comparator with that.
void ExpectOneOrder(ISort& comparator, std::int32_t records) {
    Records expected(static_cast<std::size_t>(records));
    std::iota(expected.begin(), expected.end(), 0);
    Records sorted = expected;
    std::ranges::stable_sort(expected, [&](std::int32_t a, std::int32_t b) { return comparator.Compare(0, a, b); });
    comparator.SortStably(sorted);
    EXPECT_EQ(sorted, expected);
    for (std::int32_t a = 0; a < records; ++a) {
        for (std::int32_t b = 0; b < records; ++b) {
            ASSERT_EQ(comparator.Compare(1, a, b), comparator.Compare(0, b, a)) << a << ' ' << b;
        }
    }
}

TEST_F(Sort, ComparingAndSortingAreOneOrder) {
    MakeRandomTable(60, 11);
    store->SetDbValue(0, 1, 5, 77.0); // the key of no record
    store->SetDbValue(0, 2, 6, kNotANumber);
    for (const bool ascending : {true, false}) {
        NumericSort numbers(*store->GetDbColumn(0, 2), ascending);
        StringSort shown(*store, 0, 3, ascending);
        FreeFormatSort texts(*store, 0, 4, ascending);
        ExpectOneOrder(numbers, 60);
        ExpectOneOrder(shown, 60);
        ExpectOneOrder(texts, 60);
    }
    ParentSort families(*store->GetDbColumn(0, 0), *store->GetDbColumn(0, 1));
    ExpectOneOrder(families, 60);
    EXPECT_TRUE(families.Compare(0, 5, 0)); // no parent comes before the first one
}

TEST_F(Sort, ReferencesComeInTheOrderOfTheirTextsByCodeUnits) {
    const std::vector<std::wstring> names{L"b", L"A10", L"A9", L"B", L"\U0001F600", L"\uFFFD", L""};
    const auto count = static_cast<std::int32_t>(names.size());
    const std::int32_t goods = AddTable(*store, L"Goods", {Number(L"Key"), Text(L"Name")}, count);
    const std::int32_t orders = AddTable(*store, L"Orders", {Number(L"Key"), Reference(L"Good", goods, 1)}, count);
    for (std::int32_t record = 0; record < count; ++record) {
        store->SetDbKeyValue(goods, record, count - record);
        store->SetDbString(goods, 1, record, names[static_cast<std::size_t>(record)]);
        store->SetDbValue(orders, 1, record, count - record);
    }
    // A surrogate pair stands before U+FFFD.
    EXPECT_EQ(KSDLL_SingleColumnSortVector(*store, orders, 1, true), (Records{6, 1, 2, 3, 0, 4, 5}));
}

std::vector<Records> told_places;

TEST_F(Sort, RowsTakeTheirMatricesAlongAndTheHostHearsOfTheirPlaces) {
    const Records values{3, 0, 2, 0, 1};
    const auto count = static_cast<std::int32_t>(values.size());
    Field sequence = Number(L"Sequence");
    sequence.classes = {Classes::kDisplaySequence};
    AddTable(*store, L"Plan",
             {Number(L"Key"), Number(L"Value"), Matrix(L"List", {Classes::kList}, 0),
              Matrix(L"Grid", {Classes::k3DMatrix}, 0), sequence},
             count);
    for (std::int32_t record = 0; record < count; ++record) {
        store->SetDbKeyValue(0, record, record);
        store->SetDbValue(0, 1, record, values[static_cast<std::size_t>(record)]);
        Fill(0, 2, record, {record + 20.0});
        Fill(0, 3, record, {record + 30.0});
    }
    SetSequencerFunctions(
        nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, [](Records& places) { told_places.push_back(places); },
        nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    SetCurrentModule(KestronaModule::Sequencer);
    SetSequencerOrderFormat(0);
    told_places.clear();
    IColumn<double>* const column = KSDLL_FindDisplaySequenceColumn(*store, 0);
    ASSERT_EQ(column, store->GetDbColumn(0, 4));
    KSDLL_RankSort(*store, 0, 1, 0, column);
    EXPECT_TRUE(told_places.empty());
    KSDLL_RankSort(*store, 0, 1, 0, nullptr);
    EXPECT_EQ(told_places, (std::vector<Records>{{4, 0, 3, 1, 2}}));
    EXPECT_EQ(Keys(0), (Doubles{1, 3, 4, 2, 0}));
    for (std::int32_t place = 0; place < count; ++place) {
        const double key = store->GetDbKeyValue(0, place);
        EXPECT_EQ(Cells(0, 2, place), Doubles{key + 20.0});
        EXPECT_EQ(Cells(0, 3, place), Doubles{key + 30.0});
        EXPECT_EQ(column->GetValue(place), place); // moved with the rows that it numbered
    }
    EXPECT_EQ(KSDLL_FindDisplaySequenceColumn(*store, 1), nullptr);
}

TEST(TextOrder, DigitsCountAsNumbersAndEqualTextsByCodeUnits) {
    constexpr std::uint32_t kEnglish = 0x0409;
    constexpr std::uint32_t kSwedish = 0x041D;
    constexpr std::uint32_t kUnknown = 0xFFFFFFFF; // stands for the default

    for (const auto& [locale, first, second] : {std::tuple{kEnglish, L"A9", L"A10"},
                                                {kUnknown, L"A9", L"A10"},
                                                {kEnglish, L"a2b10", L"a2b11"},
                                                {kEnglish, L"a", L"B"},
                                                {kEnglish, L"A010", L"A10"}, // equal to the collation
                                                {kEnglish, L"\u00C4", L"Z"},
                                                {kSwedish, L"Z", L"\u00C4"}}) {
        EXPECT_TRUE(KSDLL_FirstFilesFirst(locale, first, second)) << first;
        EXPECT_FALSE(KSDLL_FirstFilesFirst(locale, second, first)) << first;
    }
    EXPECT_EQ(KSDLL_FirstFilesFirst(0, L"\u00C4", L"Z"), KSDLL_FirstFilesFirst(kUnknown, L"\u00C4", L"Z"));
}

// Byte texts of few letters, zeros among them, so that many begin alike, against std::stable_sort.
TEST(StableSort, TextsStandInTheOrderOfTheirBytes) {
    std::mt19937 random(31);
    const std::string zeros(1, '\0');
    const std::string mixed = zeros + "a\xFF";
    for (const std::size_t count : {0U, 1U, 20U, 300U, 5000U}) {
        for (const auto& [letters, longest] : {std::pair{zeros, 30U}, {mixed, 3U}, {mixed, 40U}, {zeros + "a", 12U}}) {
            std::vector<std::string> texts(count);
            for (std::string& text : texts) {
                text.resize(random() % (longest + 1));
                std::ranges::generate(text, [&, &from = letters] { return from[random() % from.size()]; });
            }
            for (const bool ascending : {true, false}) {
                std::vector<NumberedText> sorted;
                for (const std::string& text : texts) {
                    sorted.push_back({0, text, static_cast<std::int32_t>(sorted.size())});
                }
                std::vector<NumberedText> expected = sorted;
                std::ranges::stable_sort(expected, [&](const NumberedText& a, const NumberedText& b) {
                    return ascending ? a.text < b.text : b.text < a.text;
                });
                SortStably(sorted, ascending);
                EXPECT_TRUE(std::ranges::equal(sorted, expected, {}, &NumberedText::record, &NumberedText::record))
                    << count << ' ' << longest;
            }
        }
    }
}

} // namespace

} // namespace Kestrona
