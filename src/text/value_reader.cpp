// Implements: ConvertStringByColumnType.
#include "platform/numbers.h"
#include "text/value_forms.h"

#include <kestrona/classes.h>
#include <kestrona/dates.h>
#include <kestrona/durations.h>
#include <kestrona/unicode.h>
#include <kestrona/value_text.h>

#include <cmath>

namespace Kestrona::Text {

namespace {

using Data::MemoryResident::field_info;

// A matrix has no one value. The other bit stands for nothing that a store shows; a host may set it to keep typed text
// away from a field.
constexpr std::uint32_t kUnreadable = TypeBit::kMatrix | 0x100;

void ReadDate(const field_info& info, const wchar_t* text, double& value) {
    double read = 0.0;
    const std::int32_t result =
        HasClass(info, Classes::kTimeForm) ? KSDLL_StringToTime(&read, text) : KSDLL_StringToOADate(&read, text);
    if (result == 0) {
        value = read;
    }
}

void ReadReal(const field_info&, const wchar_t* text, double& value) {
    std::size_t used = 0;
    const double read = Platform::ParseDouble(text, &used);
    if (used != 0 && std::isfinite(read)) {
        value = read;
    }
}

void ReadInteger(const field_info&, const wchar_t* text, double& value) {
    std::size_t used = 0;
    const std::int32_t read = Platform::ParseInt32(text, &used);
    if (used != 0) {
        value = static_cast<double>(read);
    }
}

DurationConversionMode ConversionModeOf(const field_info& info) {
    if (HasClass(info, Classes::kDurationMode3)) {
        return DurationConversionMode::Weekday;
    }
    return HasClass(info, Classes::kTimeForm) ? DurationConversionMode::DayNumber : DurationConversionMode::Days;
}

void ReadDuration(const field_info& info, const wchar_t* text, double& value) {
    KSDLL_StringToDuration(&value, text, ConversionModeOf(info), true);
}

void ReadToggle(const field_info&, const wchar_t* text, double& value) {
    value = EqualIgnoringCase(text, Message(kToggleSetWord)) ? 1.0 : 0.0;
}

struct Reader {
    std::uint32_t type;
    void (*read)(const field_info& info, const wchar_t* text, double& value);
};

// The first bit that a type has chooses.
constexpr Reader kReaders[] = {
    {TypeBit::kDateTime, ReadDate},     {TypeBit::kReal, ReadReal},     {TypeBit::kInteger, ReadInteger},
    {TypeBit::kDuration, ReadDuration}, {TypeBit::kToggle, ReadToggle},
};

} // namespace

} // namespace Kestrona::Text

bool ConvertStringByColumnType(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                               std::int32_t field, const wchar_t* text, double* value) {
    const auto* const info = store.GetFieldInfo(format, field);
    if (info == nullptr || info->type == Kestrona::TypeBit::kFreeString ||
        (info->type & Kestrona::Text::kUnreadable) != 0) {
        return false;
    }
    for (const Kestrona::Text::Reader& reader : Kestrona::Text::kReaders) {
        if ((info->type & reader.type) != 0) {
            reader.read(*info, text != nullptr ? text : L"", *value);
            break;
        }
    }
    return false;
}
