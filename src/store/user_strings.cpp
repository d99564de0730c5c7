// Implements: the user strings, and copies of texts on the C heap.
#include "platform/wide_c_string.h"
#include "store/process_state.h"

#include <kestrona/owned_text.h>
#include <kestrona/process.h>

#include <array>
#include <cstddef>
#include <cwchar>
#include <new>

namespace {

constexpr std::int32_t kUserStrings = 400;
constexpr std::size_t kSpareCharacters = 10;

constinit std::array<Kestrona::OwnedText, static_cast<std::size_t>(kUserStrings)> strings{};

Kestrona::OwnedText* FindString(std::int32_t index) {
    return index >= 0 && index < kUserStrings ? &strings[static_cast<std::size_t>(index)] : nullptr;
}

wchar_t* CopyWithSpareRoom(const wchar_t* text) {
    const std::size_t length = std::wcslen(text);
    auto* const copy = static_cast<wchar_t*>(std::malloc((length + kSpareCharacters + 1) * sizeof(wchar_t)));
    if (copy == nullptr) {
        throw std::bad_alloc();
    }
    std::wmemcpy(copy, text, length + 1);
    return copy;
}

} // namespace

wchar_t* KSDLL_AddText(const wchar_t* text) {
    return Kestrona::Platform::DuplicateWide(text);
}

void KSDLL_SetUserString(std::int32_t index, const wchar_t* text) {
    if (Kestrona::OwnedText* const string = FindString(index)) {
        string->Reset(text != nullptr ? CopyWithSpareRoom(text) : nullptr); // `text` may be the string itself
    }
}

wchar_t* KSDLL_GetUserString(std::int32_t index) {
    const Kestrona::OwnedText* const string = FindString(index);
    return string != nullptr ? string->get() : nullptr;
}

namespace Kestrona {

void FreeUserStrings() {
    for (OwnedText& string : strings) {
        string.Reset();
    }
}

} // namespace Kestrona
