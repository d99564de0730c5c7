#include "platform/scan_format.h"

#include "platform/characters.h"

#include <algorithm>
#include <array>

namespace Kestrona::Platform {

namespace {

using Kind = ScanElement::Kind;

struct ConversionName {
    std::wstring_view name;
    Kind kind;
};

constexpr std::array kConversions{
    ConversionName{L"s", Kind::Word},     ConversionName{L"c", Kind::Character}, ConversionName{L"hu", Kind::UInt16},
    ConversionName{L"ld", Kind::Decimal}, ConversionName{L"d", Kind::Decimal},   ConversionName{L"li", Kind::AnyBase},
    ConversionName{L"i", Kind::AnyBase},  ConversionName{L"lf", Kind::Real},
};

ScanElement Malformed() {
    return {.kind = Kind::Malformed};
}

} // namespace

bool ScanSet::Lists(wchar_t c) const {
    for (std::size_t i = 0; i < members_.size(); ++i) {
        if (i + 2 < members_.size() && members_[i + 1] == L'-') {
            if (c >= members_[i] && c <= members_[i + 2]) {
                return true;
            }
            i += 2;
        } else if (c == members_[i]) {
            return true;
        }
    }
    return false;
}

ScanElement ScanFormatReader::Next() {
    if (rest_.empty()) {
        return {};
    }
    const wchar_t first = rest_.front();
    rest_.remove_prefix(1);
    if (IsBlank(first)) {
        return {.kind = Kind::Blanks};
    }
    if (first != L'%') {
        return {.kind = Kind::Literal, .literal = first};
    }
    return ReadConversion();
}

ScanElement ScanFormatReader::ReadConversion() {
    if (rest_.starts_with(L'%')) {
        rest_.remove_prefix(1);
        return {.kind = Kind::Percent, .literal = L'%'};
    }
    ScanElement element;
    const std::size_t width = ReadWidth();
    if (rest_.starts_with(L'[')) {
        rest_.remove_prefix(1);
        element = ReadSet();
    } else {
        const auto* known = std::find_if(kConversions.begin(), kConversions.end(),
                                         [&](const ConversionName& entry) { return rest_.starts_with(entry.name); });
        if (known == kConversions.end()) {
            return Malformed();
        }
        rest_.remove_prefix(known->name.size());
        element.kind = known->kind;
    }
    element.width = width;
    // One character is all that a character output holds.
    const bool fits = width > 0 && (element.kind != Kind::Character || width == 1 || width == std::wstring_view::npos);
    return fits ? element : Malformed();
}

// No digits mean no bound.
std::size_t ScanFormatReader::ReadWidth() {
    constexpr std::size_t kWidest = 1'000'000'000;
    if (rest_.empty() || !IsDecimalDigit(rest_.front())) {
        return std::wstring_view::npos;
    }
    std::size_t width = 0;
    while (!rest_.empty() && IsDecimalDigit(rest_.front())) {
        width = std::min(kWidest, width * 10 + static_cast<std::size_t>(rest_.front() - L'0'));
        rest_.remove_prefix(1);
    }
    return width;
}

ScanElement ScanFormatReader::ReadSet() {
    const bool negated = rest_.starts_with(L'^');
    if (negated) {
        rest_.remove_prefix(1);
    }
    // A bracket in the first place is a member.
    const std::size_t end = rest_.find(L']', 1);
    if (end == std::wstring_view::npos) {
        return Malformed();
    }
    const ScanElement element{.kind = Kind::Set, .set = ScanSet(rest_.substr(0, end), negated)};
    rest_.remove_prefix(end + 1);
    return element;
}

} // namespace Kestrona::Platform
