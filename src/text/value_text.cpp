// Implements: the display text of values.
#include "configuration/parsers/field_caches.h"
#include "text/number_format.h"
#include "text/value_forms.h"

#include <kestrona/classes.h>
#include <kestrona/dates.h>
#include <kestrona/durations.h>
#include <kestrona/host_settings.h>
#include <kestrona/services.h>
#include <kestrona/value_text.h>

#include <algorithm>

namespace Kestrona::Text {

using Data::MemoryResident::field_info;
using Data::MemoryResident::IMemoryResidentData;

std::wstring Message(std::int32_t id) {
    return MessageManager::getInstance()->GetMessage(id);
}

namespace {

constexpr double kToggleSet = 1.0;
constexpr std::uint32_t kSubstitutedTypes =
    TypeBit::kReference | TypeBit::kReal | TypeBit::kInteger | TypeBit::kDuration;

bool ShowSubstitute(field_info& info, double value, std::wstring& text) {
    for (const SubstPair& pair : Configuration::Parsers::KeptSubstitutes(info)) {
        if (pair.Value == value) {
            text = pair.Text;
            return true;
        }
    }
    return false;
}

void ShowInteger(const ShownValue& shown, std::wstring& text) {
    text = WholeText(shown.value);
}

void ShowDate(const ShownValue& shown, std::wstring& text) {
    if (HasClass(shown.info, Classes::kTimeForm)) {
        text = KSDLL_TimeToTString(shown.value);
        return;
    }
    text = KSDLL_OADateToTString(shown.value, ColumnIncludeSeconds(shown.store, shown.format, shown.field));
    if (HasClass(shown.info, Classes::kShowDate) && shown.value > 0.0) {
        std::int32_t length = 0;
        GetFormatInformation(nullptr, &length);
        text.resize(std::min(text.size(), static_cast<std::size_t>(length)));
    }
}

std::int16_t DurationModeOf(const field_info& info) {
    if (HasClass(info, Classes::kDurationMode3)) {
        return DurationMode::kWeekday;
    }
    if (HasClass(info, Classes::kDurationMode2)) {
        return DurationMode::kHours;
    }
    return HasClass(info, Classes::kTimeForm) ? DurationMode::kDayNumber : DurationMode::kDays;
}

void ShowDuration(const ShownValue& shown, std::wstring& text) {
    text = KSDLL_DurationToTString(shown.value, DurationModeOf(shown.info),
                                   Configuration::Parsers::KeptNumberFormat(shown.info));
}

void ShowReal(const ShownValue& shown, std::wstring& text) {
    text = FormatNumber(Configuration::Parsers::KeptNumberFormat(shown.info), shown.value);
}

void ShowToggle(const ShownValue& shown, std::wstring& text) {
    text = Message(shown.value == kToggleSet ? kToggleSetWord : kToggleClearedWord);
}

void ShowListEntry(const ShownValue& shown, std::wstring& text) {
    if (shown.list_index == -1) {
        return;
    }
    const bool parallel = HasClass(shown.info, Classes::kParallelList);
    KSDLL_FieldToTString(shown.store, shown.info.table, shown.info.source,
                         parallel ? shown.list_index : GetCurrentListRecord(), &text);
}

struct Form {
    std::uint32_t type;
    void (*show)(const ShownValue& shown, std::wstring& text);
};

// The first bit that a type has chooses.
constexpr Form kForms[] = {
    {TypeBit::kInteger, ShowInteger},     {TypeBit::kDateTime, ShowDate}, {TypeBit::kDuration, ShowDuration},
    {TypeBit::kReference, ShowReference}, {TypeBit::kReal, ShowReal},     {TypeBit::kToggle, ShowToggle},
    {TypeBit::kMatrix, ShowListEntry},
};

double Show(const ShownValue& shown, std::wstring& text) {
    const std::uint32_t type = shown.info.type;
    if ((type & kSubstitutedTypes) != 0 && ShowSubstitute(shown.info, shown.value, text)) {
        return shown.value;
    }
    for (const Form& form : kForms) {
        if ((type & form.type) != 0) {
            form.show(shown, text);
            return form.type == TypeBit::kReference ? 0.0 : shown.value;
        }
    }
    return shown.value;
}

} // namespace

} // namespace Kestrona::Text

using Kestrona::Data::MemoryResident::field_info;
using Kestrona::Data::MemoryResident::IMemoryResidentData;
namespace TypeBit = Kestrona::TypeBit;

double KSDLL_ValueToTString(IMemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t record,
                            std::wstring* text, double value, std::int32_t list_index) {
    field_info* const info = store.GetFieldInfo(format, field);
    if (info == nullptr || info->type == TypeBit::kFreeString) {
        return value;
    }
    return Kestrona::Text::Show({store, *info, format, field, record, value, list_index}, *text);
}

std::wstring KSDLL_ValueToTString(IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                                  std::int32_t record, double value, std::int32_t list_index) {
    std::wstring text;
    KSDLL_ValueToTString(store, format, field, record, &text, value, list_index);
    return text;
}

double KSDLL_FieldToTString(IMemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t record,
                            std::wstring* text) {
    field_info* const info = store.GetFieldInfo(format, field);
    if (info == nullptr || (info->type & (TypeBit::kMatrix | TypeBit::kFreeString)) != 0) {
        return 0.0;
    }
    // Free text has no value of its own.
    const bool is_text = Kestrona::Text::HasClass(*info, Kestrona::Classes::kFreeFormat);
    const double value = is_text ? 0.0 : store.GetDbValue(format, field, record);
    return Kestrona::Text::Show({store, *info, format, field, record, value, -1}, *text);
}

std::wstring KSDLL_FieldToTString(IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                                  std::int32_t record) {
    std::wstring text;
    KSDLL_FieldToTString(store, format, field, record, &text);
    return text;
}

std::wstring GetValueAsTString(IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                               std::int32_t record) {
    return KSDLL_FieldToTString(store, format, field, record);
}
