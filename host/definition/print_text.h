#pragma once

#include <string>
#include <string_view>

// Texts as the language writes them.

namespace Kestrona::Host::Language {

// The text in double quotes with escapes: any text at all reads back the same, lone surrogates included.
[[nodiscard]] std::string PrintText(std::wstring_view text);

// A name: bare where it is made of letters, digits and '_' and begins with no digit, else in quotes.
[[nodiscard]] std::string PrintName(std::wstring_view name);

// Whether UTF-8 can hold the text.
[[nodiscard]] bool FitsUtf8(std::wstring_view text);

} // namespace Kestrona::Host::Language
