#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// The order of texts for people, with runs of digits as numbers. `locale` is a locale identity; one that names no
// locale stands for the default one. The collations that were asked for are kept. Threads: one at a time.
namespace Kestrona::Platform {

// Negative, 0 or positive; 0 also for texts that the collation does not tell apart.
int CompareForPeople(std::uint32_t locale, std::wstring_view left, std::wstring_view right);

// Appends bytes whose order is that of CompareForPeople; where that finds texts equal, the order of their UTF-16 code
// units.
void AppendSortKeyForPeople(std::uint32_t locale, std::wstring_view text, std::string& keys);

// Appends bytes whose order is that of the text's UTF-16 code units.
void AppendCodeUnitSortKey(std::wstring_view text, std::string& keys);

} // namespace Kestrona::Platform
