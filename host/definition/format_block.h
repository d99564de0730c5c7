#pragma once

#include "definition/token_parser.h"

#include <cstddef>

// The blocks of formats.

namespace Kestrona::Host::Language {

inline constexpr std::size_t kMostFields = 10000;

// Parses a format statement behind its first word.
void ParseFormat(TokenParser& parser);

} // namespace Kestrona::Host::Language
