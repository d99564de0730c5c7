#pragma once

#include <cstddef>
#include <string_view>

namespace Kestrona::Platform {

// The characters between the brackets of a %[...] conversion. Views the format.
class ScanSet {
public:
    ScanSet() = default;

    ScanSet(std::wstring_view members, bool negated) : members_(members), negated_(negated) {}

    bool Contains(wchar_t c) const { return Lists(c) != negated_; }

private:
    bool Lists(wchar_t c) const;

    std::wstring_view members_;
    bool negated_ = false;
};

struct ScanElement {
    enum class Kind {
        End,
        Malformed,
        Blanks,
        Literal,
        Percent,
        // Conversions. The first two take blanks as they take any character.
        Set,
        Character,
        Word,
        UInt16,
        Decimal,
        AnyBase,
        Real,
    };

    Kind kind = Kind::End;
    wchar_t literal = 0;
    std::size_t width = std::wstring_view::npos;
    ScanSet set = {};
};

// Takes a scan format apart, element by element.
class ScanFormatReader {
public:
    explicit ScanFormatReader(std::wstring_view format) : rest_(format) {}

    // Kind::End at the end, again and again. Nothing sensible follows Kind::Malformed.
    ScanElement Next();

private:
    ScanElement ReadConversion();
    std::size_t ReadWidth();
    ScanElement ReadSet();

    std::wstring_view rest_;
};

} // namespace Kestrona::Platform
