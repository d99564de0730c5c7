#include "platform/locale_dates.h"

#include "platform/icu_memory.h"
#include "platform/locale_id.h"

#include <kestrona/unicode.h>

#include <unicode/udatpg.h>
#include <unicode/uloc.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string_view>

namespace Kestrona::Platform {

namespace {

struct GeneratorCloser {
    void operator()(UDateTimePatternGenerator* generator) const { udatpg_close(generator); }
};

using Generator = std::unique_ptr<UDateTimePatternGenerator, GeneratorCloser>;

// One letter field or one literal of a pattern. A literal has no letter.
struct PatternPiece {
    wchar_t letter = 0;
    std::size_t count = 0;
    std::wstring literal = {};
};

bool IsPatternLetter(wchar_t c) {
    return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z');
}

// Takes a quoted literal off the front of `rest`. Two quotes together stand for one.
std::wstring TakeQuoted(std::wstring_view& rest) {
    std::wstring literal = {};
    rest.remove_prefix(1);
    if (rest.starts_with(L'\'')) {
        rest.remove_prefix(1);
        return L"'";
    }
    while (!rest.empty()) {
        const wchar_t c = rest.front();
        rest.remove_prefix(1);
        if (c == L'\'') {
            if (!rest.starts_with(L'\'')) {
                break;
            }
            rest.remove_prefix(1);
        }
        literal += c;
    }
    return literal;
}

PatternPiece TakePiece(std::wstring_view& rest) {
    const wchar_t first = rest.front();
    if (first == L'\'') {
        return {.literal = TakeQuoted(rest)};
    }
    if (!IsPatternLetter(first)) {
        rest.remove_prefix(1);
        return {.literal = std::wstring(1, first)};
    }
    const std::size_t count = std::min(rest.find_first_not_of(first), rest.size());
    rest.remove_prefix(count);
    return {.letter = first, .count = count};
}

// The locale's pattern for a set of fields; "" when ICU has none.
std::wstring BestPattern(UDateTimePatternGenerator* generator, std::u16string_view skeleton) {
    std::array<UChar, 128> units{};
    UErrorCode error = U_ZERO_ERROR;
    const std::int32_t length =
        udatpg_getBestPattern(generator, skeleton.data(), static_cast<std::int32_t>(skeleton.size()), units.data(),
                              static_cast<std::int32_t>(units.size()), &error);
    ThrowIfNoMemory(error);
    return U_SUCCESS(error) ? FromUtf16({units.data(), static_cast<std::size_t>(length)}) : std::wstring();
}

void ReadDatePattern(std::wstring_view pattern, LocaleDates& dates) {
    std::wstring order;
    std::size_t year_digits = 0;
    while (!pattern.empty()) {
        const PatternPiece piece = TakePiece(pattern);
        if (piece.letter == L'y' || piece.letter == L'M' || piece.letter == L'd') {
            order += piece.letter;
            year_digits = piece.letter == L'y' ? piece.count : year_digits;
        } else if (piece.letter == L'L') {
            order += L'M';
        }
    }
    if (order == L"Mdy") {
        dates.layout = DateLayout::MonthDayYear;
    } else if (order == L"dMy") {
        dates.layout = DateLayout::DayMonthYear;
    } else if (order.size() == 3 && order.front() == L'y') {
        dates.layout = DateLayout::YearMonthDay;
    }
    dates.length = year_digits == 2 ? 8 : 10;
}

void ReadTimePattern(std::wstring_view pattern, LocaleDates& dates) {
    std::wstring separator;
    bool behind_hour = false;
    while (!pattern.empty()) {
        const PatternPiece piece = TakePiece(pattern);
        if (piece.letter == L'H' || piece.letter == L'k') {
            behind_hour = true;
        } else if (piece.letter == L'm') {
            break;
        } else if (behind_hour) {
            separator += piece.literal;
        }
    }
    if (behind_hour && !separator.empty()) {
        dates.time_separator = CutUtf16(separator, kMaxTimeSeparator);
    }
}

// The name as ICU knows it, with the calendar that dates are counted in.
std::string GregorianLocale(const std::string& name) {
    constexpr const char* kInvariantIcuName = "en_US_POSIX";
    std::array<char, ULOC_FULLNAME_CAPACITY + 32> locale{};
    const auto capacity = static_cast<std::int32_t>(locale.size());
    const bool invariant = LocaleIdFromName(name) == kInvariantLocale;
    UErrorCode error = U_ZERO_ERROR;
    uloc_canonicalize(invariant ? kInvariantIcuName : name.c_str(), locale.data(), capacity, &error);
    uloc_setKeywordValue("calendar", "gregorian", locale.data(), capacity, &error);
    return error == U_ZERO_ERROR ? locale.data() : kInvariantIcuName;
}

std::string UserLocaleName() {
    for (const char* variable : {"LC_ALL", "LC_TIME", "LANG"}) {
        const char* const value = std::getenv(variable);
        if (value != nullptr && *value != '\0') {
            return value;
        }
    }
    return {};
}

constinit std::optional<LocaleDates> kept;

} // namespace

LocaleDates ReadLocaleDates(const std::string& name) {
    LocaleDates dates;
    UErrorCode error = U_ZERO_ERROR;
    const Generator generator(udatpg_open(GregorianLocale(name).c_str(), &error));
    ThrowIfNoMemory(error);
    if (U_SUCCESS(error)) {
        ReadDatePattern(BestPattern(generator.get(), u"yMd"), dates);
        ReadTimePattern(BestPattern(generator.get(), u"Hm"), dates);
    }
    return dates;
}

const LocaleDates& UserLocaleDates() {
    if (!kept) {
        kept = ReadLocaleDates(UserLocaleName());
    }
    return *kept;
}

void OverrideLocaleDates(const LocaleDates& dates) {
    kept = dates;
    kept->time_separator = CutUtf16(dates.time_separator, kMaxTimeSeparator);
}

void ForgetLocaleDates() {
    kept.reset();
}

} // namespace Kestrona::Platform
