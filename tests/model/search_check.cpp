#include "model/search_check.h"

#include <kestrona/record_search.h>

#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <set>
#include <sstream>
#include <type_traits>

namespace Kestrona::Model {

namespace {

using namespace Data::MemoryResident;

using Numbers = std::pair<FieldMatchCriteria, std::vector<double>>;
using Texts = std::pair<FieldMatchCriteria, wchar_t*>;

constexpr std::int32_t kKey = 0;
constexpr std::int32_t kNone = -1;
constexpr auto kNoOperator = static_cast<FindOperator>(2); // acts as equal
constexpr std::array kOperators{
    FindOperator::Equal,       FindOperator::LessThan,           FindOperator::LessThanOrEqual,
    FindOperator::GreaterThan, FindOperator::GreaterThanOrEqual, kNoOperator};

template <typename T>
bool Holds(const T& stored, FindOperator comparison, const T& value) {
    switch (comparison) {
    case FindOperator::LessThan:
        return stored < value;
    case FindOperator::LessThanOrEqual:
        return stored <= value;
    case FindOperator::GreaterThan:
        return stored > value;
    case FindOperator::GreaterThanOrEqual:
        return stored >= value;
    default:
        return stored == value;
    }
}

RecordNumbers Take(FindResult* result) {
    const std::unique_ptr<FindResult> owned(result);
    return {owned->begin(), owned->end()};
}

// One round of searches in one format.
class Searcher {
public:
    Searcher(MemoryResidentData& store, const Twin& twin, std::int32_t format, std::mt19937& random)
        : store_(store),
          twin_(twin),
          format_(format),
          random_(random) {}

    std::string Run() {
        CheckKeys();
        const auto& fields = twin_.Format(format_).plan->fields;
        for (std::int32_t field = 0; field < static_cast<std::int32_t>(fields.size()); ++field) {
            const FieldPlan& plan = fields[static_cast<std::size_t>(field)];
            if (plan.IsMatrix() || plan.Has(Classes::kEncrypted)) {
                continue;
            }
            if (plan.Has(Classes::kEvaluate)) {
                CheckComparisons(field, DrawNumber(field));
                continue;
            }
            store_.AddIndexToColumn(format_, field);
            if (plan.IsText()) {
                const std::wstring text = DrawText(field);
                CheckField(field, text);
                CheckTextNeighbours(field, text);
            } else {
                const double value = DrawNumber(field);
                CheckField(field, value);
                CheckNumberNeighbours(field, value);
            }
            CheckRows(field, plan);
        }
        CheckIntersection();
        return differences_.str();
    }

private:
    [[nodiscard]] std::int32_t Size() const { return twin_.Size(format_); }

    std::int32_t Draw(std::int32_t bound) {
        return static_cast<std::int32_t>(random_() % static_cast<unsigned>(bound));
    }

    template <typename T>
    [[nodiscard]] T Cell(std::int32_t field, std::int32_t record) const {
        if constexpr (std::is_same_v<T, double>) {
            return twin_.Number(format_, field, record);
        } else {
            return twin_.Text(format_, field, record);
        }
    }

    // What a search compares with: numbers are sought as the field keeps them.
    [[nodiscard]] double AsStored(std::int32_t field, double value) const {
        return twin_.Format(format_).plan->fields[static_cast<std::size_t>(field)].Stored(value);
    }

    [[nodiscard]] static const std::wstring& AsStored(std::int32_t /*field*/, const std::wstring& text) { return text; }

    // A value of the column, or one that it may not hold.
    template <typename T>
    T DrawValue(std::int32_t field, const T& other) {
        return Size() > 0 && Draw(4) > 0 ? Cell<T>(field, Draw(Size())) : other;
    }

    double DrawNumber(std::int32_t field) { return DrawValue<double>(field, Draw(9) / 2.0 - 1.0); }

    std::wstring DrawText(std::int32_t field) { return DrawValue<std::wstring>(field, L"BB"); }

    FindOperator DrawOperator() { return kOperators[static_cast<std::size_t>(Draw(kOperators.size()))]; }

    [[nodiscard]] RecordNumbers Scan(const std::function<bool(std::int32_t)>& matches) const {
        RecordNumbers records;
        for (std::int32_t record = 0; record < Size(); ++record) {
            if (matches(record)) {
                records.push_back(record);
            }
        }
        return records;
    }

    template <typename T>
    [[nodiscard]] RecordNumbers Scan(std::int32_t field, FindOperator comparison, const T& value) const {
        const T sought = AsStored(field, value);
        return Scan([&](std::int32_t record) { return Holds(Cell<T>(field, record), comparison, sought); });
    }

    template <typename T>
    void Expect(const char* what, std::int32_t field, const T& found, const T& expected) {
        if (found != expected) {
            differences_ << what << " in format " << format_ << " field " << field << "; ";
        }
    }

    // The first number of `records` above `record`, and the last below.
    void ExpectNeighbours(const char* what, std::int32_t field, std::int32_t record, const RecordNumbers& records,
                          std::int32_t next, std::int32_t previous) {
        const auto above = std::ranges::upper_bound(records, record);
        const auto below = std::ranges::lower_bound(records, record);
        Expect(what, field, next, above != records.end() ? *above : kNone);
        Expect(what, field, previous, below != records.begin() ? *(below - 1) : kNone);
    }

    void CheckKeys() {
        const double key = DrawNumber(kKey);
        Expect("LookupKeyRecord", kKey, store_.LookupKeyRecord(format_, key), twin_.FindKey(format_, key));
        Expect("KSDLL_GetRecordNumberFromPrimaryKey", kKey, KSDLL_GetRecordNumberFromPrimaryKey(store_, format_, key),
               twin_.FindKey(format_, key));
    }

    // `value` as the searches take it.
    static double Argument(double value) { return value; }

    static const wchar_t* Argument(const std::wstring& text) { return text.c_str(); }

    template <typename T>
    void CheckComparisons(std::int32_t field, const T& value) {
        for (const FindOperator comparison : kOperators) {
            // Nothing compares calculated values but the five operators.
            const bool finds_nothing =
                comparison == kNoOperator &&
                twin_.Format(format_).plan->fields[static_cast<std::size_t>(field)].Has(Classes::kEvaluate);
            Expect("LookupRecords", field, Take(store_.LookupRecords(format_, field, Argument(value), comparison)),
                   finds_nothing ? RecordNumbers() : Scan(field, comparison, value));
        }
    }

    template <typename T>
    void CheckField(std::int32_t field, const T& value) {
        CheckComparisons(field, value);
        Expect("KSDLL_GetRecords", field, KSDLL_GetRecords(store_, format_, field, Argument(value)),
               Scan(field, FindOperator::Equal, value));
        RecordNumbers distinct;
        std::set<T> seen;
        for (std::int32_t record = 0; record < Size(); ++record) {
            if (seen.insert(Cell<T>(field, record)).second) {
                distinct.push_back(record);
            }
        }
        Expect("DistinctRecords", field, Take(store_.DistinctRecords(format_, field)), distinct);
    }

    void CheckNumberNeighbours(std::int32_t field, double value) {
        const std::int32_t from = Draw(Size() + 2) - 1;
        ExpectNeighbours("neighbour of a number", field, from, Scan(field, FindOperator::Equal, value),
                         KSDLL_FindNextNumeric(store_, format_, field, from, value),
                         KSDLL_FindPreviousNumeric(store_, format_, field, from, value));
        std::vector<double> values{value, DrawNumber(field)};
        ExpectNeighbours("neighbour of several numbers", field, from, Scan([&](std::int32_t r) {
                             return std::ranges::any_of(values, [&](double sought) {
                                 return Cell<double>(field, r) == AsStored(field, sought);
                             });
                         }),
                         KSDLL_FindNextNumericMany(store_, format_, field, from, values),
                         KSDLL_FindPreviousNumericMany(store_, format_, field, from, values));
    }

    void CheckTextNeighbours(std::int32_t field, const std::wstring& text) {
        const std::int32_t from = Draw(Size() + 2) - 1;
        ExpectNeighbours("neighbour of a text", field, from, Scan(field, FindOperator::Equal, text),
                         KSDLL_FindNextString(store_, format_, field, from, text.c_str()),
                         KSDLL_FindPreviousString(store_, format_, field, from, text.c_str()));
    }

    // The parent first, then its children in order; nothing for a family without a parent.
    RecordNumbers Family(std::int32_t field, double key) const {
        RecordNumbers members;
        if (const std::int32_t parent = twin_.FindKey(format_, key); parent != kNone) {
            members = Scan(field, FindOperator::Equal, key);
            members.insert(members.begin(), parent);
        }
        return members;
    }

    void CheckRows(std::int32_t field, const FieldPlan& plan) {
        if (plan.Has(Classes::kFamily)) {
            const double key = DrawNumber(kKey);
            Expect("KSDLL_GetFamilyRecords", field, KSDLL_GetFamilyRecords(store_, format_, key), Family(field, key));
            Expect("KSDLL_GetChildRecords", field, KSDLL_GetChildRecords(store_, format_, key),
                   Scan(field, FindOperator::Equal, key));
        }
        if (Size() == 0) {
            return;
        }
        const std::int32_t record = Draw(Size());
        RecordNumbers expected;
        if (plan.IsText()) {
            expected = Scan(field, FindOperator::Equal, twin_.Text(format_, field, record));
        } else if (const double value = twin_.Number(format_, field, record);
                   plan.Has(Classes::kFamily) && value != -1.0) {
            expected = Family(field, value);
            std::ranges::sort(expected);
            expected.erase(std::unique(expected.begin(), expected.end()), expected.end());
        } else {
            expected = Scan(field, FindOperator::Equal, value);
        }
        Expect("GetRecordsMatchingRow", field, Take(store_.GetRecordsMatchingRow(format_, field, record)), expected);
    }

    // Hits of each value, one after the other.
    RecordNumbers Union(const Numbers& numbers) const {
        RecordNumbers records;
        for (const double value : numbers.second) {
            const RecordNumbers hits = Scan(numbers.first.field, numbers.first.comparison, value);
            records.insert(records.end(), hits.begin(), hits.end());
        }
        return records;
    }

    void CheckIntersection() {
        std::vector<Numbers> numbers;
        std::vector<Texts> texts;
        std::vector<std::wstring> words; // what `texts` points at
        std::vector<RecordNumbers> parts;
        const auto& fields = twin_.Format(format_).plan->fields;
        words.reserve(fields.size());
        for (std::int32_t field = 0; field < static_cast<std::int32_t>(fields.size()); ++field) {
            const FieldPlan& plan = fields[static_cast<std::size_t>(field)];
            if (plan.IsMatrix() || plan.Has(Classes::kEncrypted) || plan.Has(Classes::kEvaluate) || Draw(2) == 0) {
                continue;
            }
            const FieldMatchCriteria criteria{field, DrawOperator()};
            if (plan.IsText()) {
                words.push_back(DrawText(field));
                texts.emplace_back(criteria, words.back().data());
                parts.push_back(Scan(field, criteria.comparison, words.back()));
            } else {
                std::vector<double> values(static_cast<std::size_t>(1 + Draw(2)));
                std::ranges::generate(values, [&] { return DrawNumber(field); });
                numbers.emplace_back(criteria, values);
                parts.push_back(Union(numbers.back()));
            }
        }
        if (parts.empty()) {
            return;
        }
        RecordNumbers expected = parts.front(); // alone, in the order of the values
        if (parts.size() > 1) {
            expected = Scan([&](std::int32_t record) {
                return std::ranges::all_of(
                    parts, [&](const RecordNumbers& part) { return std::ranges::count(part, record) > 0; });
            });
        }
        Expect("KSDLL_LookupRecordsIntersect", kNone,
               Take(KSDLL_LookupRecordsIntersect(store_, format_, numbers, texts)), expected);
    }

    MemoryResidentData& store_;
    const Twin& twin_;
    std::int32_t format_;
    std::mt19937& random_;
    std::ostringstream differences_;
};

} // namespace

std::string FindSearchDifference(MemoryResidentData& store, const Twin& twin, std::int32_t format,
                                 std::mt19937& random) {
    return Searcher(store, twin, format, random).Run();
}

std::string FindSearchDifference(MemoryResidentData& store, const Twin& twin, std::mt19937& random) {
    std::string differences;
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        differences += FindSearchDifference(store, twin, format, random);
    }
    return differences;
}

} // namespace Kestrona::Model
