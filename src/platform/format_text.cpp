#include "platform/format_text.h"

#include "platform/characters.h"

#include <boost/format.hpp>

#include <locale>
#include <ostream>

namespace Kestrona::Platform {

namespace {

// Boost computes widths, precisions and argument numbers in int without a bound and pads to any width. A number of more
// than three digits in a placeholder has no honest use, so such a text is not taken for a format. Nor is one with the
// flag '_', which together with '-' and '0' fails an assertion of Boost, or with the conversion 'n', whose flags Boost
// adds to those of the placeholder behind it, with the same end. The conversion 'T' takes the character behind it:
// where that is a '%', Boost counts its items wrong and writes beyond them.
bool HasTamePlaceholders(std::wstring_view text) {
    constexpr std::size_t kMostDigits = 3;
    constexpr std::wstring_view kBetween = L"+-#. '$|*=_<>hljzLwI";
    for (std::size_t i = text.find(L'%'); i != std::wstring_view::npos; i = text.find(L'%', i)) {
        std::size_t digits = 0;
        for (++i; i < text.size() && (IsDecimalDigit(text[i]) || kBetween.find(text[i]) != kBetween.npos); ++i) {
            digits = IsDecimalDigit(text[i]) ? digits + 1 : 0;
            if (digits > kMostDigits || text[i] == L'_') {
                return false;
            }
        }
        if (i < text.size() && (text[i] == L'T' || text[i] == L'n')) {
            return false;
        }
    }
    return true;
}

// A stream without memory would keep quiet and cut the text short.
template <typename T>
struct Whole {
    const T& value;

    friend std::wostream& operator<<(std::wostream& stream, const Whole& whole) {
        stream.exceptions(std::ios_base::badbit);
        return stream << whole.value;
    }
};

void Feed(boost::wformat& formatter, const FormatArgument& argument) {
    std::visit([&](const auto& value) { formatter % Whole<std::decay_t<decltype(value)>>{value}; }, argument.Get());
}

} // namespace

std::wstring FormatTextWith(std::wstring_view text, std::span<const FormatArgument> arguments) {
    if (text.find(L'%') == std::wstring_view::npos || !HasTamePlaceholders(text)) {
        return std::wstring(text);
    }
    boost::wformat formatter(L"", std::locale::classic());
    formatter.exceptions(boost::io::bad_format_string_bit);
    try {
        formatter.parse(std::wstring(text));
    } catch (const boost::io::bad_format_string&) {
        return std::wstring(text);
    }
    formatter.exceptions(boost::io::no_error_bits);
    for (const FormatArgument& argument : arguments) {
        Feed(formatter, argument);
    }
    return formatter.str();
}

std::optional<std::wstring> TryFormatText(std::wstring_view text, const FormatArgument& argument) {
    if (!HasTamePlaceholders(text)) {
        return std::nullopt;
    }
    boost::wformat formatter(L"", std::locale::classic());
    try {
        formatter.parse(std::wstring(text));
        Feed(formatter, argument);
        return formatter.str();
    } catch (const boost::io::format_error&) {
        return std::nullopt;
    }
}

} // namespace Kestrona::Platform
