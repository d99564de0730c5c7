// Implements: SplitCommandLine.
#include <kestrona/process.h>

#include <cwchar>

namespace {

constexpr wchar_t kQuote = L'"';
constexpr const wchar_t* kBlanks = L" \t";

wchar_t* SkipBlanks(wchar_t* text) {
    return text + std::wcsspn(text, kBlanks);
}

} // namespace

std::int32_t SplitCommandLine(wchar_t* line, wchar_t** arguments, std::int32_t slots) {
    std::int32_t used = 1;
    wchar_t* next = line != nullptr ? SkipBlanks(line) : nullptr;
    while (next != nullptr && *next != L'\0' && arguments != nullptr && used < slots) {
        const bool quoted = *next == kQuote;
        wchar_t* const start = quoted ? next + 1 : next;
        wchar_t* const end = quoted ? std::wcschr(start, kQuote) : std::wcspbrk(start, kBlanks);
        arguments[used++] = start;
        if (end == nullptr) {
            break;
        }
        *end = L'\0';
        next = SkipBlanks(end + 1);
    }
    return used;
}
