#pragma once

#include "definition/context.h"
#include "definition/lexer.h"
#include "definition/token_parser.h"

// The statements of a file.

namespace Kestrona::Host::Language {

// Parses all statements of a file.
void ParseStatements(ParseContext& context, Lexer& lexer);

// Whether a block has no end: the file ends here, or a word follows that begins a statement. Also true when the
// reporter takes no more errors, so that parsing stops.
[[nodiscard]] bool SeesEndOfBlock(const TokenParser& parser);

} // namespace Kestrona::Host::Language
