#include "platform/wide_c_string.h"

#include <new>

namespace Kestrona::Platform {

wchar_t* DuplicateWide(const wchar_t* text) {
    return text == nullptr ? nullptr : DuplicateWide(std::wstring_view(text));
}

wchar_t* DuplicateWide(std::wstring_view text) {
    auto* copy = static_cast<wchar_t*>(std::malloc((text.size() + 1) * sizeof(wchar_t)));
    if (copy == nullptr) {
        throw std::bad_alloc();
    }
    text.copy(copy, text.size());
    copy[text.size()] = L'\0';
    return copy;
}

} // namespace Kestrona::Platform
