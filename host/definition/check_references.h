#pragma once

#include "definition/reporter.h"

#include <kestrona/host/definition.h>

// Checks of the names in classifications.

namespace Kestrona::Host::Language {

// Reports formats and fields that classifications name and that are not there.
void CheckReferences(const Definition& definition, Reporter& reporter);

} // namespace Kestrona::Host::Language
