// Implements: the replacing of a text within a text.
#include <kestrona/process.h>

#include <cwchar>
#include <string>

namespace {

// `to` before every character and at the end.
std::wstring Interleave(const std::wstring& text, const std::wstring& to) {
    std::wstring result = to;
    result.reserve(text.size() + (text.size() + 1) * to.size());
    for (const wchar_t c : text) {
        result += c;
        result += to;
    }
    return result;
}

} // namespace

std::wstring KSDLL_TStringSubstitute(std::wstring text, const std::wstring& from, const std::wstring& to) {
    if (from.empty()) {
        return Interleave(text, to);
    }
    std::size_t found = text.find(from);
    if (found == std::wstring::npos) {
        return text;
    }
    std::wstring result;
    std::size_t start = 0;
    for (; found != std::wstring::npos; found = text.find(from, start)) {
        result.append(text, start, found - start);
        result += to;
        start = found + from.size();
    }
    return result.append(text, start, std::wstring::npos);
}

void KSDLL_StringSubstitute(wchar_t* text, const std::wstring& from, const std::wstring& to) {
    if (text == nullptr) {
        return;
    }
    const std::wstring result = KSDLL_TStringSubstitute(text, from, to);
    if (result != text) {
        std::wmemcpy(text, result.c_str(), result.size() + 1);
    }
}
