#include "platform/text_order.h"

#include "platform/icu_memory.h"

#include <kestrona/unicode.h>

#include <unicode/ucol.h>
#include <unicode/uloc.h>

#include <array>
#include <map>
#include <memory>

namespace Kestrona::Platform {

namespace {

struct CollatorCloser {
    void operator()(UCollator* collator) const { ucol_close(collator); }
};

using Collator = std::unique_ptr<UCollator, CollatorCloser>;

// What ICU calls a locale identity that names no language, such as 0.
constexpr std::string_view kNoLanguage = "root";

// The name of the locale with this identity; that of the default locale for an identity of none.
std::string LocaleName(std::uint32_t locale) {
    std::array<char, ULOC_FULLNAME_CAPACITY> name{};
    UErrorCode error = U_ZERO_ERROR;
    const std::int32_t length = uloc_getLocaleForLCID(locale, name.data(), ULOC_FULLNAME_CAPACITY, &error);
    const bool is_known = U_SUCCESS(error) && length > 0 && length < ULOC_FULLNAME_CAPACITY;
    return is_known && name.data() != kNoLanguage ? name.data() : uloc_getDefault();
}

Collator OpenCollator(std::uint32_t locale) {
    UErrorCode error = U_ZERO_ERROR;
    Collator collator(ucol_open(LocaleName(locale).c_str(), &error));
    ThrowIfNoMemory(error);
    if (U_FAILURE(error)) {
        return nullptr;
    }
    ucol_setStrength(collator.get(), UCOL_TERTIARY);
    ucol_setAttribute(collator.get(), UCOL_NUMERIC_COLLATION, UCOL_ON, &error);
    ucol_setAttribute(collator.get(), UCOL_ALTERNATE_HANDLING, UCOL_NON_IGNORABLE, &error);
    return collator;
}

// Opened once: opening takes longer than many comparisons. Null where ICU has no collation.
const UCollator* CollatorOf(std::uint32_t locale) {
    static std::map<std::uint32_t, Collator> collators;
    const auto found = collators.find(locale);
    return (found != collators.end() ? found : collators.emplace(locale, OpenCollator(locale)).first)->second.get();
}

void AppendCodeUnits(std::u16string_view units, std::string& key) {
    for (const char16_t unit : units) {
        key += static_cast<char>(unit >> 8);
        key += static_cast<char>(unit & 0xFF);
    }
}

} // namespace

int CompareForPeople(std::uint32_t locale, std::wstring_view left, std::wstring_view right) {
    const UCollator* const collator = CollatorOf(locale);
    if (collator == nullptr) {
        return 0;
    }
    const std::u16string a = ToUtf16(left);
    const std::u16string b = ToUtf16(right);
    return ucol_strcoll(collator, a.data(), static_cast<std::int32_t>(a.size()), b.data(),
                        static_cast<std::int32_t>(b.size()));
}

void AppendSortKeyForPeople(std::uint32_t locale, std::wstring_view text, std::string& keys) {
    const std::u16string units = ToUtf16(text);
    if (const UCollator* const collator = CollatorOf(locale)) {
        const std::size_t begin = keys.size();
        const auto make = [&](std::size_t room) {
            keys.resize(begin + room);
            return static_cast<std::size_t>(
                ucol_getSortKey(collator, units.data(), static_cast<std::int32_t>(units.size()),
                                reinterpret_cast<std::uint8_t*>(keys.data() + begin), static_cast<std::int32_t>(room)));
        };
        const std::size_t room = units.size() * 4 + 16;
        const std::size_t length = make(room);
        if (length > room) {
            make(length);
        }
        keys.resize(begin + length);
    }
    // The key ends with a zero byte and has none inside, so the code units only decide between equal keys.
    AppendCodeUnits(units, keys);
}

void AppendCodeUnitSortKey(std::wstring_view text, std::string& keys) {
    AppendCodeUnits(ToUtf16(text), keys);
}

} // namespace Kestrona::Platform
