#include "data/record_condition.h"

#include "data/cell_text.h"

#include <kestrona/record_search.h>
#include <kestrona/unicode.h>

#include <fmt/format.h>

#include <array>
#include <memory>
#include <utility>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;

constexpr double kUnset = -1.0;

/// The longer signs first.
constexpr std::array<std::pair<std::string_view, FindOperator>, 5> kSigns{{{"<=", FindOperator::LessThanOrEqual},
                                                                           {">=", FindOperator::GreaterThanOrEqual},
                                                                           {"<", FindOperator::LessThan},
                                                                           {">", FindOperator::GreaterThan},
                                                                           {"=", FindOperator::Equal}}};

std::string_view Trim(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::int32_t FieldNamed(IMemoryResidentData& store, std::int32_t format, std::string_view name) {
    const std::wstring wanted = FromUtf8(name);
    for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
        if (store.GetColumnName(format, field) == wanted) {
            return field;
        }
    }
    return -1;
}

/// The text cut at a sign.
struct Parts {
    std::int32_t field = -1;
    FindOperator comparison = FindOperator::Equal;
    std::string_view value;
};

/// Cuts at the first sign behind the name of a field: names may hold signs, too.
std::optional<Parts> Cut(IMemoryResidentData& store, std::int32_t format, std::string_view text) {
    for (std::size_t place = text.find_first_of("<>="); place != std::string_view::npos;
         place = text.find_first_of("<>=", place + 1)) {
        const std::int32_t field = FieldNamed(store, format, Trim(text.substr(0, place)));
        for (const auto& [sign, comparison] : kSigns) {
            if (field >= 0 && text.substr(place).starts_with(sign)) {
                return Parts{field, comparison, Trim(text.substr(place + sign.size()))};
            }
        }
    }
    return std::nullopt;
}

/// An unset date comes before no other.
bool IsUnsetMatch(IMemoryResidentData& store, std::int32_t format, const RecordCondition& condition,
                  std::int32_t record) {
    return !condition.is_text && condition.comparison != FindOperator::Equal &&
           HasUnset(FormOfField(store, format, condition.field)) &&
           store.GetDbValue(format, condition.field, record) == kUnset;
}

} // namespace

bool ComparesField(IMemoryResidentData& store, std::int32_t format, std::string_view text) {
    return Cut(store, format, text).has_value();
}

std::optional<RecordCondition> ParseCondition(IMemoryResidentData& store, std::int32_t format, std::string_view text,
                                              std::string& problem) {
    const std::optional<Parts> parts = Cut(store, format, text);
    if (!parts) {
        problem = "does not begin with the name of a field and one of = < <= > >=";
        return std::nullopt;
    }
    if (!HasCells(store, format, parts->field)) {
        problem = "names a field without one value for each record";
        return std::nullopt;
    }
    RecordCondition condition{parts->field, parts->comparison, false, 0.0, {}};
    const ValueForm form = FormOfField(store, format, parts->field);
    if (form == ValueForm::Text) {
        condition.is_text = true;
        condition.text = FromUtf8(parts->value);
        return condition;
    }
    std::string fault;
    const std::optional<double> number = ParseCell(parts->value, form, fault);
    if (!number) {
        problem = fmt::format("holds '{}', which {}", parts->value, fault);
        return std::nullopt;
    }
    condition.number = *number;
    return condition;
}

std::vector<std::int32_t> FindRecords(IMemoryResidentData& store, std::int32_t format,
                                      std::vector<RecordCondition> conditions) {
    std::vector<std::pair<FieldMatchCriteria, std::vector<double>>> numbers;
    std::vector<std::pair<FieldMatchCriteria, wchar_t*>> texts;
    for (RecordCondition& condition : conditions) {
        const FieldMatchCriteria criteria{condition.field, condition.comparison};
        if (condition.is_text) {
            texts.emplace_back(criteria, condition.text.data());
        } else {
            numbers.emplace_back(criteria, std::vector<double>{condition.number});
        }
    }
    const std::unique_ptr<FindResult> found(KSDLL_LookupRecordsIntersect(store, format, numbers, texts));
    std::vector<std::int32_t> records(found->begin(), found->end());
    for (const RecordCondition& condition : conditions) {
        std::erase_if(records, [&](std::int32_t r) { return IsUnsetMatch(store, format, condition, r); });
    }
    return records;
}

} // namespace Kestrona::Tool
