#include "definition/values.h"

#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <system_error>

namespace Kestrona::Host::Language {

namespace {

constexpr std::size_t kLongestNumber = 400;

struct Unit {
    std::string_view name;
    double in_one_day;
};

constexpr std::array kUnits{Unit{"min", 24.0 * 60.0}, Unit{"d", 1.0}, Unit{"h", 24.0}, Unit{"s", 24.0 * 3600.0}};

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// Numbers are plain ASCII; anything else makes the text no number.
std::optional<std::string> ToAscii(std::wstring_view text) {
    if (text.empty() || text.size() > kLongestNumber) {
        return std::nullopt;
    }
    std::string ascii;
    for (const wchar_t c : text) {
        if (c < 0x20 || c > 0x7e) {
            return std::nullopt;
        }
        ascii += static_cast<char>(c);
    }
    return ascii;
}

template <typename T>
std::optional<T> ParseAll(std::string_view text, int base) {
    T value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(value) : std::nullopt;
}

std::optional<double> ParseDecimal(std::string_view text) {
    const std::string_view digits = text.starts_with('+') ? text.substr(1) : text;
    if (digits.empty() || (text.starts_with('+') && digits.starts_with('-'))) {
        return std::nullopt;
    }
    double value = 0.0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return error == std::errc() && end == digits.data() + digits.size() ? std::optional(value) : std::nullopt;
}

std::optional<double> ParseDuration(std::string_view text) {
    for (const Unit& unit : kUnits) {
        if (text.ends_with(unit.name)) {
            const auto count = ParseDecimal(text.substr(0, text.size() - unit.name.size()));
            return count && std::isfinite(*count) ? std::optional(*count / unit.in_one_day) : std::nullopt;
        }
    }
    return std::nullopt;
}

// A pattern of digits, "dddd-dd-dd", matched against the whole text.
bool Fits(std::string_view text, std::string_view pattern) {
    if (text.size() != pattern.size()) {
        return false;
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (pattern[i] == 'd' ? !IsDigit(text[i]) : text[i] != pattern[i]) {
            return false;
        }
    }
    return true;
}

int Number(std::string_view text, std::size_t from, std::size_t count) {
    return ParseAll<int>(text.substr(from, count), 10).value_or(0);
}

std::optional<double> ParseDay(std::string_view text) {
    if (!Fits(text, "dddd-dd-dd")) {
        return std::nullopt;
    }
    using namespace std::chrono;
    const year_month_day day(year(Number(text, 0, 4)), month(static_cast<unsigned>(Number(text, 5, 2))),
                             std::chrono::day(static_cast<unsigned>(Number(text, 8, 2))));
    if (!day.ok() || day.year() < year(1900)) {
        return std::nullopt;
    }
    constexpr sys_days kFirstDay = year(1899) / 12 / 30;
    return static_cast<double>((sys_days(day) - kFirstDay).count());
}

std::optional<double> ParseTimeOfDay(std::string_view text) {
    if (!Fits(text, "dd:dd") && !Fits(text, "dd:dd:dd")) {
        return std::nullopt;
    }
    const int hours = Number(text, 0, 2);
    const int minutes = Number(text, 3, 2);
    const int seconds = text.size() > 5 ? Number(text, 6, 2) : 0;
    if (hours > 23 || minutes > 59 || seconds > 59) {
        return std::nullopt;
    }
    return (hours * 3600 + minutes * 60 + seconds) / 86400.0;
}

std::optional<double> ParseDate(std::string_view text) {
    constexpr std::size_t kDayLength = 10;
    const auto day = ParseDay(text.substr(0, kDayLength));
    if (!day || text.size() <= kDayLength) {
        return day;
    }
    if (text[kDayLength] != ' ' && text[kDayLength] != 'T') {
        return std::nullopt;
    }
    const auto time = ParseTimeOfDay(text.substr(kDayLength + 1));
    return time ? std::optional(*day + *time) : std::nullopt;
}

} // namespace

std::optional<double> ParseValue(std::wstring_view text) {
    const auto ascii = ToAscii(text);
    if (!ascii) {
        return std::nullopt;
    }
    if (ascii->starts_with("0x")) {
        const auto bits = ParseBits(text);
        return bits ? std::optional<double>(*bits) : std::nullopt;
    }
    for (const auto parse : {ParseDecimal, ParseDate, ParseDuration}) {
        if (const auto value = parse(*ascii)) {
            return value;
        }
    }
    return std::nullopt;
}

std::optional<std::uint32_t> ParseBits(std::wstring_view text) {
    const auto ascii = ToAscii(text);
    if (!ascii) {
        return std::nullopt;
    }
    return ascii->starts_with("0x") ? ParseAll<std::uint32_t>(std::string_view(*ascii).substr(2), 16)
                                    : ParseAll<std::uint32_t>(*ascii, 10);
}

std::optional<std::int32_t> ParseWhole(std::wstring_view text, std::int32_t lowest, std::int32_t highest) {
    const auto ascii = ToAscii(text);
    const auto value = ascii ? ParseAll<std::int32_t>(*ascii, 10) : std::nullopt;
    return value && *value >= lowest && *value <= highest ? value : std::nullopt;
}

bool LooksLikeValue(std::wstring_view text) {
    constexpr std::wstring_view kFirst = L"0123456789+-.";
    return !text.empty() && kFirst.find(text[0]) != std::wstring_view::npos;
}

std::string PrintValue(double value) {
    std::array<char, 64> buffer{};
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    const std::string text(buffer.data(), result.ptr);
    return text.starts_with('i') || text.starts_with('n') ? "+" + text : text;
}

std::string PrintBits(std::uint32_t bits) {
    std::array<char, 16> buffer{};
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), bits, 16);
    return "0x" + std::string(buffer.data(), result.ptr);
}

} // namespace Kestrona::Host::Language
