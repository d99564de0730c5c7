#pragma once

#include "definition/context.h"

#include <kestrona/host/definition.h>

#include <cstdint>
#include <string>
#include <string_view>

// The files of a definition.

namespace Kestrona::Host::Language {

inline constexpr std::size_t kDeepestInclude = 32;
inline constexpr std::size_t kMostFiles = 1000;

// Parses the text of one file, with all that it includes, into the context's definition.
void ParseFile(ParseContext& context, std::string_view bytes, const std::string& path);

// Parses the file that an include statement names, `name` being relative to the including file. A file that was read
// before is not read again. What cannot be included is reported at `place`.
void ParseInclude(ParseContext& context, std::wstring_view name, const Place& place);

// Turns UTF-8 into wide text and reports the bytes that are none, which become U+FFFD.
[[nodiscard]] std::wstring DecodeText(std::string_view bytes, std::int32_t file, Reporter& reporter);

} // namespace Kestrona::Host::Language
