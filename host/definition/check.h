#pragma once

#include "definition/reporter.h"

#include <kestrona/host/definition.h>

// Checks of a whole definition, after its last line.

namespace Kestrona::Host::Language {

// Checks names, numbers, keys and associated tables, and puts in what follows from the whole: key fields and defaults.
void CheckDefinition(Definition& definition, Reporter& reporter);

} // namespace Kestrona::Host::Language
