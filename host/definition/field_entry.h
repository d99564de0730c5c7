#pragma once

#include "definition/token_parser.h"

#include <kestrona/host/definition.h>

// The fields of a format.

namespace Kestrona::Host::Language {

// Parses a field behind its first word. False when it was given up; what was understood is in `field`.
bool ParseField(TokenParser& parser, FieldDefinition& field);

} // namespace Kestrona::Host::Language
