#pragma once

#include <array>
#include <concepts>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

namespace Kestrona::Platform {

template <typename T>
concept FormatInteger =
    std::integral<T> && !std::same_as<T, char> && !std::same_as<T, wchar_t> && !std::same_as<T, bool>;

// One argument of FormatText. Text is viewed, so an argument lives no longer than what it was made of.
class FormatArgument {
public:
    // Integers keep their size, which shows in "%x" of a negative number.
    using Value =
        std::variant<std::int32_t, std::uint32_t, std::int64_t, std::uint64_t, double, wchar_t, std::wstring_view>;

    template <FormatInteger T>
    FormatArgument(T value) : value_(Widen(value)) {}

    FormatArgument(double value) : value_(value) {}

    FormatArgument(wchar_t value) : value_(value) {}

    FormatArgument(std::wstring_view value) : value_(value) {}

    FormatArgument(const std::wstring& value) : value_(std::wstring_view(value)) {}

    // A null pointer is shown as the empty text.
    FormatArgument(const wchar_t* value) : value_(value == nullptr ? std::wstring_view() : std::wstring_view(value)) {}

    const Value& Get() const { return value_; }

private:
    template <FormatInteger T>
    static Value Widen(T value) {
        if constexpr (sizeof(T) > sizeof(std::int32_t)) {
            return static_cast<std::conditional_t<std::signed_integral<T>, std::int64_t, std::uint64_t>>(value);
        } else {
            return static_cast<std::conditional_t<std::signed_integral<T>, std::int32_t, std::uint32_t>>(value);
        }
    }

    Value value_;
};

// Non-template half of FormatText.
std::wstring FormatTextWith(std::wstring_view text, std::span<const FormatArgument> arguments);

// Fills the placeholders of `text` ("%s", "%li", "%.2lf", "%1$02i" and the like) with the arguments, numbers in the "C"
// locale. The text comes from a host or a user, so nothing about it is an error: arguments that are left over are
// dropped, placeholders without an argument show nothing, and a text that is no format at all (a lone '%', numbered and
// plain placeholders mixed, a width of more than three digits, the flag "_") is the result itself. The placeholder's
// type does not have to fit the argument's. Widths that are themselves arguments ("%*d") are not understood.
template <typename... Arguments>
std::wstring FormatText(std::wstring_view text, const Arguments&... arguments) {
    const std::array<FormatArgument, sizeof...(Arguments)> list{FormatArgument(arguments)...};
    return FormatTextWith(text, list);
}

// Fills the one placeholder of `text` likewise. Nothing when the text is no format for exactly one argument.
std::optional<std::wstring> TryFormatText(std::wstring_view text, const FormatArgument& argument);

} // namespace Kestrona::Platform
