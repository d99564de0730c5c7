#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Kestrona::Platform {

// The standard alphabet, padded, without line ends.
std::wstring EncodeBase64(std::span<const unsigned char> bytes);

// Blanks and line ends are passed over. Nothing for a text with any other character, with a wrong number of characters
// or with bits behind the last byte.
std::optional<std::vector<unsigned char>> DecodeBase64(std::wstring_view text);

} // namespace Kestrona::Platform
