#pragma once

#include <string>
#include <string_view>

namespace Kestrona::Platform {

// Turns 8-bit text into wide text. `code_page` is a name that ICU knows, such as "windows-1252"; an unknown one counts
// as "windows-1252". Bytes without a meaning become U+FFFD.
std::wstring DecodeBytes(std::string_view bytes, const std::string& code_page);

} // namespace Kestrona::Platform
