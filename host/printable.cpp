#include "printable.h"

#include <kestrona/unicode.h>

namespace Kestrona::Host {

namespace {

bool NeedsEscape(wchar_t c) {
    return (c >= 0 && c < 0x20 && c != L'\t') || (c >= 0x7f && c < 0xa0);
}

void AppendEscape(std::wstring& out, wchar_t c) {
    constexpr std::wstring_view kDigits = L"0123456789abcdef";
    if (c == L'\n') {
        out += L"\\n";
    } else if (c == L'\r') {
        out += L"\\r";
    } else {
        out += L"\\x";
        out += kDigits[static_cast<std::size_t>(c) / 16];
        out += kDigits[static_cast<std::size_t>(c) % 16];
    }
}

} // namespace

std::string PrintableLine(std::wstring_view text) {
    std::wstring out;
    out.reserve(text.size());
    for (const wchar_t c : text) {
        if (NeedsEscape(c)) {
            AppendEscape(out, c);
        } else {
            out += c;
        }
    }
    return ToUtf8(out);
}

std::string PrintableLines(std::wstring_view text, std::string_view indent) {
    text = text.substr(0, text.find_last_not_of(L'\n') + 1);
    std::string out;
    for (std::size_t begin = 0;;) {
        const std::size_t end = text.find(L'\n', begin);
        out += PrintableLine(text.substr(begin, end - begin));
        if (end == std::wstring_view::npos) {
            return out;
        }
        out += '\n';
        out += indent;
        begin = end + 1;
    }
}

} // namespace Kestrona::Host
