#include "data/cell_text.h"

#include "output/number_cell.h"

#include <kestrona/classes.h>
#include <kestrona/unicode.h>

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <limits>

namespace Kestrona::Tool {
namespace {

using std::chrono::sys_days;

constexpr std::chrono::year_month_day kEpoch{std::chrono::year{1899}, std::chrono::December, std::chrono::day{30}};
constexpr std::int64_t kSecondsPerDay = 86400;
/// Days from the epoch to 1 January 10000, where the ISO form ends.
constexpr double kLastDay = 2958466.0;
/// Days from the epoch to 1 January of the year 1.
constexpr double kFirstDay = -693593.0;
/// Ten decimals tell all times from one another whose days have three digits or more.
constexpr int kMostDecimals = 10;

std::optional<double> ParseNumber(std::string_view text) {
    if (text.substr(0, 1) == "+") {
        text.remove_prefix(1);
    }
    return NumberOfCell(text);
}

std::optional<double> ParseToggle(std::string_view text) {
    for (const std::string_view yes : {"1", "true", "TRUE", "True", "yes", "Yes", "YES"}) {
        if (text == yes) {
            return 1.0;
        }
    }
    for (const std::string_view no : {"0", "false", "FALSE", "False", "no", "No", "NO"}) {
        if (text == no) {
            return 0.0;
        }
    }
    return std::nullopt;
}

bool IsInt32(double value) {
    return value == std::trunc(value) && value >= std::numeric_limits<std::int32_t>::min() &&
           value <= std::numeric_limits<std::int32_t>::max();
}

std::string NumberText(double value) {
    return fmt::format("{}", value == 0.0 ? 0.0 : value);
}

/// Reads exactly `digits` digits at the start of `text` and removes them.
bool TakeDigits(std::string_view& text, std::size_t digits, int& value) {
    if (text.size() < digits) {
        return false;
    }
    const auto [end, error] = std::from_chars(text.data(), text.data() + digits, value);
    if (error != std::errc{} || end != text.data() + digits || text[0] == '-') {
        return false;
    }
    text.remove_prefix(digits);
    return true;
}

bool TakeCharacter(std::string_view& text, char c) {
    if (text.empty() || text[0] != c) {
        return false;
    }
    text.remove_prefix(1);
    return true;
}

/// Reads `hh:mm[:ss[.fff]]` as seconds.
std::optional<double> ParseClock(std::string_view text) {
    int hours = 0;
    int minutes = 0;
    double seconds = 0.0;
    if (!TakeDigits(text, 2, hours) || !TakeCharacter(text, ':') || !TakeDigits(text, 2, minutes)) {
        return std::nullopt;
    }
    if (!text.empty()) {
        if (!TakeCharacter(text, ':') || text.size() < 2 || text[0] < '0' || text[0] > '9') {
            return std::nullopt;
        }
        const std::optional<double> parsed = ParseNumber(text);
        if (!parsed) {
            return std::nullopt;
        }
        seconds = *parsed;
    }
    if (hours > 23 || minutes > 59 || !(seconds >= 0.0 && seconds < 60.0)) {
        return std::nullopt;
    }
    return hours * 3600.0 + minutes * 60.0 + seconds;
}

/// A time whose seconds have this many decimals; "" where it would round up to the next minute.
std::string DateWithDecimals(double days, int decimals) {
    const double whole = std::trunc(days);
    const double seconds = std::abs(days - whole) * static_cast<double>(kSecondsPerDay);
    const double minutes = std::floor(seconds / 60.0);
    const std::string rest = fmt::format("{:0{}.{}f}", seconds - minutes * 60.0, decimals + 3, decimals);
    if (rest.starts_with("60")) {
        return {};
    }
    return fmt::format("{} {:02.0f}:{:02.0f}:{}", IsoDate(whole), std::floor(minutes / 60.0), std::fmod(minutes, 60.0),
                       rest);
}

std::string ExactDate(double days) {
    std::string text = IsoDate(days);
    for (int decimals = 1; decimals <= kMostDecimals && ParseIsoDate(text) != days; ++decimals) {
        text = DateWithDecimals(days, decimals);
    }
    return ParseIsoDate(text) == days ? text : NumberText(days);
}

} // namespace

ValueForm FormOfField(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    const std::uint32_t type = store.GetDbType(format, field);
    if (store.ClassDefined(format, field, Classes::kFreeFormat)) {
        return ValueForm::Text;
    }
    constexpr std::array<std::pair<std::uint32_t, ValueForm>, 5> kForms{{{TypeBit::kInteger, ValueForm::Integer},
                                                                         {TypeBit::kToggle, ValueForm::Toggle},
                                                                         {TypeBit::kDateTime, ValueForm::Date},
                                                                         {TypeBit::kDuration, ValueForm::Duration},
                                                                         {TypeBit::kReference, ValueForm::Reference}}};
    for (const auto& [bit, form] : kForms) {
        if ((type & bit) != 0) {
            return form;
        }
    }
    return ValueForm::Number;
}

bool KeepsCells(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return (store.GetDbType(format, field) & TypeBit::kMatrix) == 0 && store.HasStorage(format, field);
}

bool HasCells(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    if ((store.GetDbType(format, field) & (TypeBit::kMatrix | TypeBit::kFreeString)) != 0) {
        return false;
    }
    return FormOfField(store, format, field) == ValueForm::Text ? store.GetDbStringArray(format, field) != nullptr
                                                                : store.GetDbColumn(format, field) != nullptr;
}

std::string CellText(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                     std::int32_t record, ValueForm form) {
    if (form == ValueForm::Text) {
        return ToUtf8(store.GetDbString(format, field, record));
    }
    return ValueText(store.GetDbValue(format, field, record), form);
}

std::string_view TrimCell(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t\r");
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

std::string ValueText(double value, ValueForm form) {
    if (HasUnset(form) && value == kUnset) {
        return {};
    }
    return form == ValueForm::Date ? ExactDate(value) : NumberText(value);
}

std::optional<double> ParseCell(std::string_view text, ValueForm form, std::string& problem) {
    text = TrimCell(text);
    if (text.empty() && HasUnset(form)) {
        return kUnset;
    }
    if (form == ValueForm::Toggle) {
        const std::optional<double> value = ParseToggle(text);
        problem = value ? "" : "is neither 0, 1, yes nor no";
        return value;
    }
    if (form == ValueForm::Date) {
        if (const std::optional<double> value = ParseIsoDate(text)) {
            return value;
        }
    }
    const std::optional<double> value = ParseNumber(text);
    if (!value) {
        problem = form == ValueForm::Date ? "is no date (YYYY-MM-DD, with a time hh:mm:ss if wanted)" : "is no number";
        return std::nullopt;
    }
    if (form == ValueForm::Integer && !IsInt32(*value)) {
        problem = "is no whole number of 32 bits";
        return std::nullopt;
    }
    return value;
}

std::optional<double> ParseIsoDate(std::string_view text) {
    int year = 0;
    int month = 0;
    int day = 0;
    if (!TakeDigits(text, 4, year) || !TakeCharacter(text, '-') || !TakeDigits(text, 2, month) ||
        !TakeCharacter(text, '-') || !TakeDigits(text, 2, day)) {
        return std::nullopt;
    }
    const std::chrono::year_month_day date{std::chrono::year{year}, std::chrono::month{static_cast<unsigned>(month)},
                                           std::chrono::day{static_cast<unsigned>(day)}};
    if (!date.ok()) {
        return std::nullopt;
    }
    const auto days = static_cast<double>((sys_days{date} - sys_days{kEpoch}).count());
    if (text.empty()) {
        return days;
    }
    if (!TakeCharacter(text, ' ') && !TakeCharacter(text, 'T')) {
        return std::nullopt;
    }
    const std::optional<double> seconds = ParseClock(text);
    if (!seconds) {
        return std::nullopt;
    }
    // Times before the epoch count away from zero within their day.
    const double fraction = *seconds / static_cast<double>(kSecondsPerDay);
    return days < 0.0 ? days - fraction : days + fraction;
}

std::string IsoDate(double days) {
    if (!(days > kFirstDay && days < kLastDay)) {
        return NumberText(days);
    }
    auto whole = static_cast<std::int64_t>(std::trunc(days));
    std::int64_t seconds = std::llround(std::abs(days - std::trunc(days)) * static_cast<double>(kSecondsPerDay));
    if (seconds == kSecondsPerDay) {
        ++whole;
        seconds = 0;
    }
    const std::chrono::year_month_day date{sys_days{kEpoch} + std::chrono::days{whole}};
    std::string text = fmt::format("{:04}-{:02}-{:02}", static_cast<int>(date.year()),
                                   static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
    if (seconds != 0) {
        text += fmt::format(" {:02}:{:02}:{:02}", seconds / 3600, seconds / 60 % 60, seconds % 60);
    }
    return text;
}

} // namespace Kestrona::Tool
