#pragma once

#include <locale>
#include <string>

namespace Kestrona::Testing {

template <typename Char>
class CommaNumbers : public std::numpunct<Char> {
protected:
    Char do_decimal_point() const override { return Char(','); }

    Char do_thousands_sep() const override { return Char('.'); }

    std::string do_grouping() const override { return "\3"; }
};

class MoreBlanks : public std::ctype<wchar_t> {
protected:
    bool do_is(mask kinds, wchar_t c) const override {
        return c == L'\xa0' ? (kinds & space) != 0 : std::ctype<wchar_t>::do_is(kinds, c);
    }
};

// While it lives, the process has a locale with a decimal comma, grouped digits and U+00A0 among its blanks.
class ForeignLocale {
public:
    ForeignLocale() : before_(std::locale::global(Make())) {}

    ~ForeignLocale() { std::locale::global(before_); }

    ForeignLocale(const ForeignLocale&) = delete;
    ForeignLocale& operator=(const ForeignLocale&) = delete;

private:
    static std::locale Make() {
        const std::locale wide(std::locale::classic(), new CommaNumbers<wchar_t>);
        return std::locale(std::locale(wide, new CommaNumbers<char>), new MoreBlanks);
    }

    std::locale before_;
};

} // namespace Kestrona::Testing
