// Implements: the texts of single values of a snapshot.
#include "persistence/data_extraction.h"
#include "platform/numbers.h"
#include "text/number_format.h"

#include <kestrona/classes.h>
#include <kestrona/data_extraction.h>
#include <kestrona/dates.h>
#include <kestrona/durations.h>

#include <array>

namespace Kestrona::DataExtraction {

namespace {

constexpr std::int32_t kDecimals = 6;

std::wstring DurationText(double value) {
    static const NumberFormat whole_minutes{true, L".0", false};
    return KSDLL_DurationToTString(value, DurationMode::kHours, whole_minutes);
}

std::wstring IntegerText(double value) {
    return std::to_wstring(Platform::TruncateToInt32(value));
}

const wchar_t* ToggleText(double value, const std::array<const wchar_t*, 2>& texts, const wchar_t* otherwise) {
    const auto toggle = static_cast<std::uint32_t>(Platform::TruncateToInt32(value));
    // cppcheck-suppress CastIntegerToAddressAtReturn ; the texts are pointers
    return toggle < texts.size() ? texts[toggle] : otherwise;
}

} // namespace

bool DataExtractReader::GetDisplayStringFromStorageValue(double value, int type, std::wstring* text) {
    const auto bits = static_cast<std::uint32_t>(type);
    if ((bits & TypeBit::kDuration) != 0) {
        *text = DurationText(value);
    } else if ((bits & TypeBit::kInteger) != 0) {
        *text = IntegerText(value);
    } else if ((bits & TypeBit::kDateTime) != 0) {
        *text = value < 0.0 ? kNoValue : KSDLL_OADateToTString(value, false);
    } else if ((bits & TypeBit::kToggle) != 0) {
        *text = ToggleText(value, {L"OFF", L"ON"}, kNoValue);
    } else if ((bits & TypeBit::kReal) != 0) {
        *text = Text::FixedText(value, kDecimals);
    } else {
        return false;
    }
    return true;
}

bool DataExtractReader::GetRawDisplayStringFromStorageValue(double value, int type, std::wstring* text) {
    const auto bits = static_cast<std::uint32_t>(type);
    if ((bits & TypeBit::kDuration) != 0) {
        *text = DurationText(value);
    } else if ((bits & TypeBit::kInteger) != 0) {
        *text = IntegerText(value);
    } else if ((bits & TypeBit::kDateTime) != 0) {
        *text = value < 0.0 ? std::wstring() : KSDLL_OADateToTString(value, true);
    } else if ((bits & TypeBit::kToggle) != 0) {
        *text = ToggleText(value, {L"0", L"1"}, L"");
    } else if ((bits & (TypeBit::kReal | TypeBit::kReference)) != 0) {
        *text = Text::FixedText(value, kDecimals);
    } else {
        return false;
    }
    return true;
}

} // namespace Kestrona::DataExtraction
