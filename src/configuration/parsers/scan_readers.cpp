// Implements: the readers of help references and of texts behind a scan format.
#include "platform/numbers.h"
#include "platform/scan_wide.h"

#include <kestrona/classification_readers.h>

#include <string_view>
#include <utility>

using Kestrona::Platform::ScanWide;
using namespace Kestrona::Configuration::Parsers;

namespace {

std::wstring_view ViewOf(const wchar_t* text) {
    return text != nullptr ? std::wstring_view(text) : std::wstring_view();
}

// Scans from the first occurrence of the keyword on. `out` keeps its value unless one was read.
template <typename Value>
bool ScanFromKeyword(const wchar_t* text, std::wstring_view keyword, std::wstring_view format, Value* out) {
    const std::wstring_view whole = ViewOf(text);
    const std::size_t start = whole.find(keyword);
    Value value{};
    if (start == std::wstring_view::npos || ScanWide(whole.substr(start), format, &value).items <= 0) {
        return false;
    }
    *out = std::move(value);
    return true;
}

} // namespace

bool ParseHELPPOPUPID(const wchar_t* text, std::int32_t* id) {
    const ClassificationParser_HELPPOPUPID parser;
    const ClassificationMatch match = parser.MatchFirst(std::wstring(ViewOf(text)));
    if (match.Matched) {
        *id = Kestrona::Platform::ParseInt32(match.Values.at(parser.get_FirstKey()));
    }
    return match.Matched;
}

bool ParseHELPID(const wchar_t* text, std::int32_t* id) {
    return ScanFromKeyword(text, L"HELPID", L"HELPID ( %li", id);
}

bool ParseHELPTEXT(const wchar_t* text, std::wstring* out) {
    return ScanFromKeyword(text, L"HELP TEXT", L"HELP TEXT ( %[^)]", out);
}

bool ParseHELPFILE(const wchar_t* text, std::wstring* out) {
    return ScanFromKeyword(text, L"HELP FILE", L"HELP FILE ( %[^)]", out);
}

std::int32_t Parse1StringParameter(const wchar_t* text, const wchar_t* format, std::wstring* a) {
    std::wstring first; // `text` may be the text of the output
    const std::int32_t items = ScanWide(ViewOf(text), format, &first).items;
    *a = std::move(first);
    return items;
}

std::int32_t Parse2StringParameters(const wchar_t* text, const wchar_t* format, std::wstring* a, std::wstring* b) {
    std::wstring first;
    std::wstring second;
    const std::int32_t items = ScanWide(ViewOf(text), format, &first, &second).items;
    *a = std::move(first);
    *b = std::move(second);
    return items;
}
