#include "data/shown_times.h"

#include "data/display_text.h"

#include <kestrona/classes.h>
#include <kestrona/dates.h>
#include <kestrona/durations.h>
#include <kestrona/unicode.h>

#include <algorithm>
#include <cstddef>
#include <set>
#include <string_view>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;

// The most numbers that a text of each kind has: year, month, day, hours, minutes, seconds, and so on.
constexpr std::size_t kNumbersOfDate = 6;
constexpr std::size_t kNumbersOfTime = 2;
constexpr std::size_t kNumbersOfDuration = 3;
constexpr std::size_t kNumbersOfWeekTime = 2;

bool IsDigit(wchar_t c) {
    return c >= L'0' && c <= L'9';
}

bool IsLetter(wchar_t c) {
    return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') || c > 0x7F;
}

/// The runs of letters, in capitals.
std::set<std::wstring> Words(std::wstring_view text) {
    std::set<std::wstring> words;
    for (auto at = text.begin(); at != text.end();) {
        const auto first = std::find_if(at, text.end(), IsLetter);
        at = std::find_if_not(first, text.end(), IsLetter);
        if (first != at) {
            words.insert(UpperCase(std::wstring(first, at)));
        }
    }
    return words;
}

std::size_t CountNumbers(std::wstring_view text) {
    std::size_t count = 0;
    bool inside = false;
    for (const wchar_t c : text) {
        count += IsDigit(c) && !inside ? 1U : 0U;
        inside = IsDigit(c) || (inside && c == L'.');
    }
    return count;
}

bool HasOnlyWordsOf(std::wstring_view text, const std::wstring& shown) {
    const std::set<std::wstring> words = Words(text);
    const std::set<std::wstring> known = Words(shown);
    return std::ranges::includes(known, words);
}

/// All words that durations of the field are shown with.
std::wstring DurationWords(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    std::wstring words = ShownValue(store, format, field, 0.5);
    for (int days = 0; days <= 7; ++days) {
        words += L' ' + ShownValue(store, format, field, days);
    }
    return words;
}

bool IsOfDuration(wchar_t c) {
    return IsDigit(c) || IsLetter(c) || c == L' ' || c == L':' || c == L'.';
}

DurationConversionMode ModeOf(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    if (store.ClassDefined(format, field, Classes::kDurationMode3)) {
        return DurationConversionMode::Weekday;
    }
    return store.ClassDefined(format, field, Classes::kTimeForm) ? DurationConversionMode::DayNumber
                                                                 : DurationConversionMode::Days;
}

} // namespace

std::optional<double> ReadShownDate(IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                                    const std::wstring& text) {
    const bool is_time = store.ClassDefined(format, field, Classes::kTimeForm);
    double value = 0.0;
    const std::int32_t result = is_time ? KSDLL_StringToTime(&value, text.c_str()) : KSDLL_StringToOADate(&value, text);
    if (result != 0 || CountNumbers(text) > (is_time ? kNumbersOfTime : kNumbersOfDate)) {
        return std::nullopt;
    }
    const std::wstring shown = is_time ? KSDLL_TimeToTString(value) : KSDLL_OADateToTString(value, true);
    return HasOnlyWordsOf(text, shown) ? std::optional(value) : std::nullopt;
}

std::optional<double> ReadShownDuration(IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                                        const std::wstring& text) {
    const DurationConversionMode mode = ModeOf(store, format, field);
    double value = 0.0;
    if (KSDLL_StringToDuration(&value, text.c_str(), mode, true) != 0 || !std::ranges::all_of(text, IsOfDuration) ||
        CountNumbers(text) > (mode == DurationConversionMode::Weekday ? kNumbersOfWeekTime : kNumbersOfDuration)) {
        return std::nullopt;
    }
    if (text.find(L':') == std::wstring::npos && Words(text).empty()) {
        return std::nullopt;
    }
    const bool known = HasOnlyWordsOf(text, ShownValue(store, format, field, value)) ||
                       HasOnlyWordsOf(text, DurationWords(store, format, field));
    return known ? std::optional(value) : std::nullopt;
}

} // namespace Kestrona::Tool
