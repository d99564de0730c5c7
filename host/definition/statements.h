#pragma once

#include "definition/context.h"
#include "definition/lexer.h"
#include "definition/token_parser.h"

// The statements of a file.

namespace Kestrona::Host::Language {

// Parses all statements of a file.
void ParseStatements(ParseContext& context, Lexer& lexer);

// At the end of the file or at a word that begins a statement: a block was not closed. Also when reading on is of no
// use.
[[nodiscard]] bool SeesEndOfBlock(const TokenParser& parser);

} // namespace Kestrona::Host::Language
