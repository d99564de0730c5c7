#include "platform/scan_wide.h"

#include "platform/characters.h"
#include "platform/numbers.h"
#include "platform/scan_format.h"

#include <algorithm>
#include <cassert>
#include <limits>

namespace Kestrona::Platform {

namespace {

using Kind = ScanElement::Kind;

struct Integer {
    std::int64_t value = 0;
    std::size_t length = 0;
};

// The value of a digit of a base up to 16, or 16.
constexpr std::int64_t DigitValue(wchar_t c) {
    const wchar_t lower = LowerAscii(c);
    if (IsDecimalDigit(c)) {
        return c - L'0';
    }
    return lower >= L'a' && lower <= L'f' ? lower - L'a' + 10 : 16;
}

Integer ReadDigits(std::wstring_view text, std::int64_t base) {
    // Above every value that an output can hold, and small enough to go on multiplying.
    constexpr std::int64_t kBeyond = std::int64_t{1} << 40;
    Integer result;
    while (result.length < text.size() && DigitValue(text[result.length]) < base) {
        result.value = std::min(kBeyond, result.value * base + DigitValue(text[result.length]));
        ++result.length;
    }
    return result;
}

Integer ReadUnsigned(std::wstring_view text, bool any_base) {
    if (!any_base || !text.starts_with(L'0')) {
        return ReadDigits(text, 10);
    }
    if (text.size() > 2 && LowerAscii(text[1]) == L'x' && DigitValue(text[2]) < 16) {
        const Integer digits = ReadDigits(text.substr(2), 16);
        return {digits.value, digits.length + 2};
    }
    return ReadDigits(text, 8);
}

// Length 0 when there is no digit.
Integer ReadInteger(std::wstring_view text, bool any_base) {
    const bool negative = text.starts_with(L'-');
    const std::size_t sign = negative || text.starts_with(L'+') ? 1 : 0;
    const Integer digits = ReadUnsigned(text.substr(sign), any_base);
    if (digits.length == 0) {
        return {};
    }
    return {negative ? -digits.value : digits.value, digits.length + sign};
}

template <typename T>
T* OutputOf(const ScanOutput& output) {
    T* const* typed = std::get_if<T*>(&output);
    assert(typed != nullptr && "the output's type does not fit the conversion");
    return typed == nullptr ? nullptr : *typed;
}

// The functions below read one conversion from the beginning of `text`, which is not empty, and store it. They give the
// number of characters read, 0 when the text does not fit.

std::size_t StoreText(std::wstring_view text, std::size_t length, const ScanOutput& output) {
    auto* target = OutputOf<std::wstring>(output);
    if (target == nullptr || length == 0) {
        return 0;
    }
    target->assign(text.substr(0, length));
    return length;
}

std::size_t StoreCharacter(std::wstring_view text, const ScanOutput& output) {
    auto* target = OutputOf<wchar_t>(output);
    if (target == nullptr) {
        return 0;
    }
    *target = text.front();
    return 1;
}

std::size_t StoreInt32(std::wstring_view text, bool any_base, const ScanOutput& output) {
    auto* target = OutputOf<std::int32_t>(output);
    const Integer number = ReadInteger(text, any_base);
    if (target == nullptr || number.length == 0) {
        return 0;
    }
    *target = static_cast<std::int32_t>(std::clamp<std::int64_t>(number.value, std::numeric_limits<std::int32_t>::min(),
                                                                 std::numeric_limits<std::int32_t>::max()));
    return number.length;
}

std::size_t StoreUInt16(std::wstring_view text, const ScanOutput& output) {
    auto* target = OutputOf<std::uint16_t>(output);
    const Integer number = ReadInteger(text, false);
    if (target == nullptr || number.length == 0) {
        return 0;
    }
    // A negative number wraps round to the upper half of the range; the clamp keeps it there, so that neither -65535
    // nor 65537 passes for 1.
    *target = static_cast<std::uint16_t>(std::clamp<std::int64_t>(
        number.value, std::numeric_limits<std::int16_t>::min(), std::numeric_limits<std::uint16_t>::max()));
    return number.length;
}

std::size_t StoreReal(std::wstring_view text, const ScanOutput& output) {
    auto* target = OutputOf<double>(output);
    std::size_t used = 0;
    const double value = ParseDouble(text, &used);
    if (target == nullptr || used == 0) {
        return 0;
    }
    *target = value;
    return used;
}

std::size_t Store(const ScanElement& element, std::wstring_view text, const ScanOutput& output) {
    switch (element.kind) {
    case Kind::Set:
        return StoreText(text, CountWhile(text, [&](wchar_t c) { return element.set.Contains(c); }), output);
    case Kind::Word:
        return StoreText(text, CountWhile(text, [](wchar_t c) { return !IsBlank(c); }), output);
    case Kind::Character:
        return StoreCharacter(text, output);
    case Kind::UInt16:
        return StoreUInt16(text, output);
    case Kind::Decimal:
    case Kind::AnyBase:
        return StoreInt32(text, element.kind == Kind::AnyBase, output);
    case Kind::Real:
        return StoreReal(text, output);
    case Kind::End:
    case Kind::Malformed:
    case Kind::Blanks:
    case Kind::Literal:
    case Kind::Percent:
        break;
    }
    assert(false && "not a conversion");
    return 0;
}

class Scanner {
public:
    Scanner(std::wstring_view text, std::span<const ScanOutput> outputs) : text_(text), outputs_(outputs) {}

    // Whether the text fits; false ends the scan.
    bool Match(const ScanElement& element) {
        switch (element.kind) {
        case Kind::Malformed:
            assert(false && "malformed scan format");
            return false;
        case Kind::Blanks:
            SkipBlanks();
            return true;
        case Kind::Percent:
            SkipBlanks();
            return MatchLiteral(element.literal);
        case Kind::Literal:
            return MatchLiteral(element.literal);
        default:
            return MatchConversion(element);
        }
    }

    ScanResult Result() const {
        const std::int32_t items = items_ == 0 && hit_end_ ? -1 : items_;
        return {items, position_};
    }

private:
    void SkipBlanks() { position_ += CountWhile(text_.substr(position_), IsBlank); }

    bool MatchLiteral(wchar_t literal) {
        hit_end_ = position_ == text_.size();
        if (hit_end_ || text_[position_] != literal) {
            return false;
        }
        ++position_;
        return true;
    }

    bool MatchConversion(const ScanElement& element) {
        const auto index = static_cast<std::size_t>(items_);
        assert(index < outputs_.size() && "a conversion without an output");
        if (index >= outputs_.size()) {
            return false;
        }
        const bool skips = element.kind != Kind::Set && element.kind != Kind::Character;
        const std::size_t begin = position_ + (skips ? CountWhile(text_.substr(position_), IsBlank) : 0);
        hit_end_ = begin == text_.size();
        const std::size_t used = hit_end_ ? 0 : Store(element, text_.substr(begin, element.width), outputs_[index]);
        if (used == 0) {
            return false;
        }
        position_ = begin + used;
        ++items_;
        return true;
    }

    std::wstring_view text_;
    std::span<const ScanOutput> outputs_;
    std::size_t position_ = 0;
    std::int32_t items_ = 0;
    bool hit_end_ = false;
};

} // namespace

ScanResult ScanWideTo(std::wstring_view text, std::wstring_view format, std::span<const ScanOutput> outputs) {
    for (const ScanOutput& output : outputs) {
        std::visit([](auto* target) { *target = {}; }, output);
    }
    ScanFormatReader reader(format);
    Scanner scanner(text, outputs);
    for (ScanElement element = reader.Next(); element.kind != Kind::End && scanner.Match(element);) {
        element = reader.Next();
    }
    return scanner.Result();
}

} // namespace Kestrona::Platform
