#pragma once

#include <cassert>
#include <cwchar>
#include <string>

namespace Kestrona::Text {

// Copies a text with its closing 0 into a caller's buffer, whose size only the caller knows.
inline void CopyOut(const std::wstring& text, wchar_t* buffer) {
    assert(buffer != nullptr);
    std::wmemcpy(buffer, text.c_str(), text.size() + 1);
}

} // namespace Kestrona::Text
