#include "export/xlsx_text.h"

#include <kestrona/unicode.h>

#include <algorithm>
#include <string_view>

namespace Kestrona::Tool {
namespace {

constexpr std::wstring_view kForbiddenInNames = L"[]:*?/\\";
/// A name that workbooks keep for themselves.
constexpr std::wstring_view kHistory = L"History";
constexpr std::size_t kEscapeLength = 7; // _x0041_

bool IsHex(wchar_t c) {
    return (c >= L'0' && c <= L'9') || (c >= L'a' && c <= L'f') || (c >= L'A' && c <= L'F');
}

bool BeginsEscape(std::wstring_view text) {
    return text.size() >= kEscapeLength && text.starts_with(L"_x") && text[kEscapeLength - 1] == L'_' &&
           std::ranges::all_of(text.substr(2, 4), IsHex);
}

} // namespace

std::string XlsxText(const std::string& text, bool& was_cut) {
    const std::wstring wide = FromUtf8(text);
    const std::wstring_view kept = CutUtf16(wide, kLongestCell);
    was_cut = kept.size() < wide.size();
    std::wstring result;
    for (std::size_t place = 0; place < kept.size(); ++place) {
        const bool is_character = kept[place] != 0xFFFE && kept[place] != 0xFFFF;
        result += BeginsEscape(kept.substr(place)) ? L"_x005F" : L"";
        result += is_character ? kept[place] : L'\xFFFD';
    }
    return ToUtf8(result);
}

std::string SheetName(const std::string& table, UniqueNames& names) {
    std::wstring name = FromUtf8(table);
    for (wchar_t& c : name) {
        const bool is_allowed =
            c >= L' ' && c != 0xFFFE && c != 0xFFFF && kForbiddenInNames.find(c) == std::wstring_view::npos;
        c = is_allowed ? c : L'_';
    }
    name = CutUtf16(name, kLongestSheetName);
    if (name.empty() || EqualIgnoringCase(name, kHistory)) {
        name += L'_';
    }
    for (wchar_t* const end : {&name.front(), &name.back()}) {
        *end = *end == L'\'' ? L'_' : *end;
    }
    return names.Add(ToUtf8(name));
}

} // namespace Kestrona::Tool
