#include "data/display_text.h"

#include "data/matrix_text.h"
#include "data/shown_times.h"

#include <kestrona/classes.h>
#include <kestrona/classification_readers.h>
#include <kestrona/matrices.h>
#include <kestrona/record_search.h>
#include <kestrona/unicode.h>
#include <kestrona/value_text.h>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;

constexpr std::int32_t kNoRecord = -1;
/// Bits of types whose values have a text of their own.
constexpr std::uint32_t kSingleTypes = TypeBit::kReal | TypeBit::kInteger | TypeBit::kReference | TypeBit::kDateTime |
                                       TypeBit::kDuration | TypeBit::kToggle;

std::wstring Trimmed(const std::wstring& text) {
    const std::size_t first = text.find_first_not_of(L' ');
    return first == std::wstring::npos ? std::wstring() : text.substr(first, text.find_last_not_of(L' ') - first + 1);
}

bool IsMatrix(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return (store.GetDbType(format, field) & TypeBit::kMatrix) != 0;
}

/// An entry of a list without a type of its own is a key of the list's format.
std::wstring TextOfEntry(IMemoryResidentData& store, std::int32_t format, std::int32_t field, double key) {
    const std::int32_t target = store.GetDbTable(format, field);
    const bool is_format = target >= 0 && target < store.GetFormatCount();
    const std::int32_t record = is_format ? store.LookupKeyRecord(target, key) : -1;
    return record < 0 ? std::wstring() : KSDLL_FieldToTString(store, target, store.GetDbSource(format, field), record);
}

std::wstring ElementText(IMemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t record,
                         double value, std::int32_t index) {
    const bool has_type = (store.GetDbType(format, field) & kSingleTypes) != 0;
    return Trimmed(has_type ? KSDLL_ValueToTString(store, format, field, record, value, index)
                            : TextOfEntry(store, format, field, value));
}

std::optional<double> ReadSubstitute(IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                                     const std::wstring& text) {
    double value = 0.0;
    std::wstring list;
    const bool found = CheckForSubstitute(store, format, field, list, text.c_str(), &value) == 0;
    return found ? std::optional(value) : std::nullopt;
}

std::optional<double> ReadToggle(IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                                 const std::wstring& text) {
    for (const double value : {1.0, 0.0}) {
        if (EqualIgnoringCase(text, ShownValue(store, format, field, value))) {
            return value;
        }
    }
    return std::nullopt;
}

bool IsFromTable(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return !store.ClassDefined(format, field, Classes::kDatabase) &&
           !store.ClassDefined(format, field, Classes::kFamily) &&
           !store.ClassDefined(format, field, Classes::kStringStorage);
}

std::optional<double> ReadTableText(IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                                    const std::wstring& text) {
    if (!IsFromTable(store, format, field)) {
        return std::nullopt;
    }
    const std::int32_t table = GetStringTableIndex(store, format, field);
    const std::int32_t count = store.GetTableFields(table);
    for (std::int32_t index = 0; index < count; ++index) {
        if (store.GetTableText(table, index) == text) {
            return store.GetTableValue(table, index);
        }
    }
    return std::nullopt;
}

std::optional<double> ReadShown(IMemoryResidentData& store, std::int32_t format, std::int32_t field, ValueForm form,
                                const std::wstring& text) {
    switch (form) {
    case ValueForm::Date:
        return ReadShownDate(store, format, field, text);
    case ValueForm::Duration:
        return ReadShownDuration(store, format, field, text);
    case ValueForm::Toggle:
        return ReadToggle(store, format, field, text);
    case ValueForm::Reference:
        return ReadTableText(store, format, field, text);
    case ValueForm::Number:
    case ValueForm::Integer:
    case ValueForm::Text:
        break;
    }
    return std::nullopt;
}

} // namespace

bool ShowsNumbers(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    if (store.ClassDefined(format, field, Classes::kDatabase) && !IsMatrix(store, format, field)) {
        ResolveReferenceChain(store, format, field, &format, &field);
    }
    const ValueForm form = FormOfField(store, format, field);
    return (form == ValueForm::Number || form == ValueForm::Integer) && !IsMatrix(store, format, field) &&
           !store.ClassDefined(format, field, Classes::kSubstitute);
}

std::wstring ShownValue(IMemoryResidentData& store, std::int32_t format, std::int32_t field, double value) {
    return Trimmed(
        KSDLL_ValueToTString(store, format, field, kNoRecord, value, IsMatrix(store, format, field) ? 0 : -1));
}

std::string DisplayText(IMemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t record) {
    if (FormOfField(store, format, field) == ValueForm::Text) {
        return CellText(store, format, field, record, ValueForm::Text);
    }
    return ToUtf8(Trimmed(KSDLL_FieldToTString(store, format, field, record)));
}

std::string DisplayMatrix(IMemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t record) {
    const bool has_unset = HasUnset(FormOfElement(store, format, field));
    return JoinMatrix(store, format, field, record, [&](double value, std::int32_t index) {
        if (has_unset && value == kUnset) {
            return std::string(kUnsetEntry);
        }
        const std::wstring text = ElementText(store, format, field, record, value, index);
        return text.empty() ? ValueText(value, ValueForm::Number) : ToUtf8(text);
    });
}

std::optional<double> ReadCell(IMemoryResidentData& store, std::int32_t format, std::int32_t field, ValueForm form,
                               std::string_view text, std::string& problem) {
    const std::optional<double> stored = ParseCell(text, form, problem);
    if (stored || !IsValidUtf8(text)) {
        return stored;
    }
    const std::wstring shown = FromUtf8(TrimCell(text));
    if (const auto value = ReadSubstitute(store, format, field, shown)) {
        return value;
    }
    if (form == ValueForm::Duration) {
        problem = "is neither a number of days nor a duration as the field shows it";
    } else if (form == ValueForm::Reference && IsFromTable(store, format, field)) {
        problem = "is neither a number nor a text of the field's table";
    }
    return ReadShown(store, format, field, form, shown);
}

} // namespace Kestrona::Tool
