// Implements: KSDLL_StringToDuration.
#include "platform/scan_wide.h"
#include "text/date_messages.h"

#include <kestrona/durations.h>
#include <kestrona/unicode.h>

#include <cassert>
#include <cmath>
#include <optional>
#include <string_view>

using Kestrona::DurationConversionMode;
using Kestrona::UpperCase;
using Kestrona::Platform::ScanWide;

namespace {

struct Pieces {
    double days = 0.0;
    double hours = 0.0;
    double minutes = 0.0;

    double Value() const { return (minutes / 60.0 + hours) / 24.0 + days; }
};

// The value brought into 0 to 7 by taking weeks off; the end of a week stays 7.
double WithinOneWeek(double value) {
    constexpr double kWeek = 7.0;
    if (value <= kWeek) {
        return value;
    }
    const double rest = std::fmod(value, kWeek);
    return rest == 0.0 ? kWeek : rest;
}

// "Day 3 4:30"
std::optional<Pieces> ReadDayNumber(const wchar_t* text) {
    Pieces pieces;
    std::wstring word;
    std::wstring separator;
    const auto scan = ScanWide(text, L"%[^1234567890]%lf %lf %[^1234567890] %lf", &word, &pieces.days, &pieces.hours,
                               &separator, &pieces.minutes);
    if (scan.items < 2) {
        return std::nullopt;
    }
    pieces.days -= 1.0;
    return pieces;
}

// The first weekday whose name the word holds; -1 for none.
std::int32_t FindWeekday(ITranslationSource& source, const std::wstring& word) {
    const std::wstring upper_word = UpperCase(word);
    std::wstring name;
    for (std::int32_t weekday = 0; weekday < 7; ++weekday) {
        source.GetText(name, Kestrona::Text::kWeekdayNames + weekday);
        if (!name.empty() && upper_word.find(UpperCase(name)) != std::wstring::npos) {
            return weekday;
        }
    }
    return -1;
}

// "Tuesday 4:30"
std::optional<Pieces> ReadWeekday(ITranslationSource& source, const wchar_t* text) {
    Pieces pieces;
    std::wstring word;
    std::wstring separator;
    ScanWide(text, L"%[^1234567890] %lf %[^1234567890] %lf", &word, &pieces.hours, &separator, &pieces.minutes);
    const std::int32_t weekday = FindWeekday(source, word);
    if (weekday < 0) {
        return std::nullopt;
    }
    pieces.days = weekday;
    return pieces;
}

// Whether what stands behind a number tells that it counts hours.
bool MeansHours(ITranslationSource& source, const std::wstring& word) {
    if (word.find(L':') != std::wstring::npos) {
        return true;
    }
    std::wstring hours;
    source.GetText(hours, Kestrona::Text::kHoursWord);
    return !hours.empty() && UpperCase(word).find(UpperCase(hours)) != std::wstring::npos;
}

// "2 Days 4:30", "4 Hours 30 Minutes", "4:30", "2"
std::optional<Pieces> ReadDays(ITranslationSource& source, const wchar_t* text) {
    constexpr std::int32_t kAllItems = 5;
    Pieces pieces;
    std::wstring word;
    std::wstring separator;
    const auto scan = ScanWide(text, L"%lf%[^1234567890]%lf %[^1234567890] %lf", &pieces.days, &word, &pieces.hours,
                               &separator, &pieces.minutes);
    if (scan.items < 1) {
        return std::nullopt;
    }
    if (scan.items < kAllItems && MeansHours(source, word)) {
        return Pieces{.days = 0.0, .hours = pieces.days, .minutes = pieces.hours};
    }
    return pieces;
}

std::optional<Pieces> ReadPieces(ITranslationSource& source, const wchar_t* text, DurationConversionMode mode) {
    switch (mode) {
    case DurationConversionMode::DayNumber:
        return ReadDayNumber(text);
    case DurationConversionMode::Weekday:
        return ReadWeekday(source, text);
    case DurationConversionMode::Days:
        break;
    }
    return ReadDays(source, text);
}

// Nothing also for a sum that is no number, as one of infinite items.
std::optional<double> ReadDuration(ITranslationSource& source, const wchar_t* text, DurationConversionMode mode) {
    const std::optional<Pieces> pieces = ReadPieces(source, text, mode);
    if (!pieces || !std::isfinite(pieces->Value())) {
        return std::nullopt;
    }
    return mode == DurationConversionMode::Weekday ? WithinOneWeek(pieces->Value()) : pieces->Value();
}

} // namespace

std::int32_t KSDLL_StringToDuration(ITranslationSource* source, double* value, const wchar_t* text,
                                    DurationConversionMode mode, bool allow_unspecified) {
    assert(value != nullptr);
    constexpr std::int32_t kGood = 0;
    constexpr std::int32_t kNoDuration = -1;
    constexpr double kUnset = -1.0;
    if (text == nullptr) {
        return kNoDuration;
    }
    TranslationSource messages;
    ITranslationSource& words = *(source != nullptr ? source : &messages);
    if (allow_unspecified && IsUnspecifiedText(&words, text, true)) {
        *value = kUnset;
        return kGood;
    }
    const std::optional<double> duration = ReadDuration(words, text, mode);
    if (!duration) {
        return kNoDuration;
    }
    *value = *duration;
    return kGood;
}

std::int32_t KSDLL_StringToDuration(double* value, const wchar_t* text, DurationConversionMode mode,
                                    bool allow_unspecified) {
    return KSDLL_StringToDuration(nullptr, value, text, mode, allow_unspecified);
}
