#include "data/record_condition.h"

#include "data/display_text.h"
#include "data/reference_texts.h"
#include "encryption.h"

#include <kestrona/record_search.h>
#include <kestrona/unicode.h>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <memory>
#include <numeric>
#include <utility>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;

/// The longer signs first.
constexpr std::array<std::pair<std::string_view, FindOperator>, 5> kSigns{{{"<=", FindOperator::LessThanOrEqual},
                                                                           {">=", FindOperator::GreaterThanOrEqual},
                                                                           {"<", FindOperator::LessThan},
                                                                           {">", FindOperator::GreaterThan},
                                                                           {"=", FindOperator::Equal}}};

constexpr std::string_view kBlanks = " \t";

std::string_view Trim(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// The text cut at a sign.
struct Parts {
    std::int32_t field = -1;
    FindOperator comparison = FindOperator::Equal;
    std::string_view value;
};

/// Cuts at the first sign behind the name of a field: names may hold signs, too.
std::optional<Parts> Cut(IMemoryResidentData& store, std::int32_t format, std::string_view text) {
    text = Trim(text);
    std::optional<Parts> parts;
    std::size_t first = std::string_view::npos;
    for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
        const std::string name = ToUtf8(store.GetColumnName(format, field));
        const std::size_t place =
            text.starts_with(name) ? text.find_first_not_of(kBlanks, name.size()) : std::string_view::npos;
        if (place >= first) {
            continue;
        }
        for (const auto& [sign, comparison] : kSigns) {
            if (text.substr(place).starts_with(sign)) {
                parts = Parts{field, comparison, Trim(text.substr(place + sign.size()))};
                first = place;
                break;
            }
        }
    }
    return parts;
}

/// An unset date comes before no other.
bool IsUnsetMatch(IMemoryResidentData& store, std::int32_t format, const RecordCondition& condition,
                  std::int32_t record) {
    return !condition.is_text && condition.comparison != FindOperator::Equal &&
           HasUnset(FormOfField(store, format, condition.field)) &&
           store.GetDbValue(format, condition.field, record) == kUnset;
}

/// No index knows the text of an encrypted field; it is compared record by record.
bool IsEncryptedText(IMemoryResidentData& store, std::int32_t format, const RecordCondition& condition) {
    return condition.is_text && IsEncrypted(store, format, condition.field);
}

std::vector<std::int32_t> AllRecords(IMemoryResidentData& store, std::int32_t format) {
    std::vector<std::int32_t> records(static_cast<std::size_t>(store.GetCurrentDbSize(format)));
    std::iota(records.begin(), records.end(), 0);
    return records;
}

/// Says why the encrypted field cannot be compared so; nothing when it can.
std::optional<Problem> WhyNoEncryptedText(IMemoryResidentData& store, std::int32_t format,
                                          const RecordCondition& condition) {
    if (IsLocked(store, format, condition.field)) {
        return Problem{Code::NoKey, "names an encrypted field, and there is no key"};
    }
    const bool sound = condition.comparison == FindOperator::Equal || !IsEncryptedText(store, format, condition);
    return sound ? std::nullopt
                 : std::optional(Problem{Code::BadCondition, "names an encrypted field, which goes with = only"});
}

} // namespace

bool ComparesField(IMemoryResidentData& store, std::int32_t format, std::string_view text) {
    return Cut(store, format, text).has_value();
}

std::optional<RecordCondition> ParseCondition(IMemoryResidentData& store, std::int32_t format, std::string_view text,
                                              Problem& problem) {
    const std::optional<Parts> parts = Cut(store, format, text);
    if (!parts) {
        problem = {Code::BadCondition, "does not begin with the name of a field and one of = < <= > >="};
        return std::nullopt;
    }
    if (!HasCells(store, format, parts->field)) {
        problem = {Code::BadCondition, "names a field without one value for each record"};
        return std::nullopt;
    }
    RecordCondition condition{parts->field, parts->comparison, false, 0.0, {}, {}};
    const ValueForm form = FormOfField(store, format, parts->field);
    if (form == ValueForm::Text) {
        condition.is_text = true;
        condition.text = FromUtf8(parts->value);
        const std::optional<Problem> trouble = WhyNoEncryptedText(store, format, condition);
        problem = trouble.value_or(problem);
        return trouble ? std::nullopt : std::optional(condition);
    }
    std::string fault;
    const std::optional<double> number = ReadCell(store, format, parts->field, form, parts->value, fault);
    if (!number && form == ValueForm::Reference && TargetOf(store, format, parts->field)) {
        if (parts->comparison != FindOperator::Equal) {
            problem = {Code::BadCondition, fmt::format("compares with the text '{}'", parts->value),
                       "A text that a reference is shown by goes with = only."};
            return std::nullopt;
        }
        condition.reference = parts->value;
        return condition;
    }
    if (!number) {
        problem = {Code::BadCondition, fmt::format("holds '{}', which {}", parts->value, fault)};
        return std::nullopt;
    }
    condition.number = *number;
    return condition;
}

std::vector<std::int32_t> FindRecords(IMemoryResidentData& store, std::int32_t format,
                                      std::vector<RecordCondition> conditions) {
    std::vector<std::pair<FieldMatchCriteria, std::vector<double>>> numbers;
    std::vector<std::pair<FieldMatchCriteria, wchar_t*>> texts;
    ReferenceTexts references(store);
    for (RecordCondition& condition : conditions) {
        const FieldMatchCriteria criteria{condition.field, condition.comparison};
        if (IsEncryptedText(store, format, condition)) {
            continue;
        }
        if (condition.is_text) {
            texts.emplace_back(criteria, condition.text.data());
        } else if (!condition.reference.empty()) {
            numbers.emplace_back(criteria, references.Keys(format, condition.field, condition.reference));
            if (numbers.back().second.empty()) {
                return {};
            }
        } else {
            numbers.emplace_back(criteria, std::vector<double>{condition.number});
        }
    }
    std::vector<std::int32_t> records = AllRecords(store, format);
    if (!numbers.empty() || !texts.empty()) {
        const std::unique_ptr<FindResult> found(KSDLL_LookupRecordsIntersect(store, format, numbers, texts));
        records.assign(found->begin(), found->end());
    }
    std::ranges::sort(records);
    for (const RecordCondition& condition : conditions) {
        std::erase_if(records, [&](std::int32_t r) {
            return IsUnsetMatch(store, format, condition, r) ||
                   (IsEncryptedText(store, format, condition) &&
                    EncryptedCell(store, format, condition.field, r) != condition.text);
        });
    }
    return records;
}

} // namespace Kestrona::Tool
