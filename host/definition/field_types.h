#pragma once

#include "definition/reporter.h"

#include <kestrona/host/definition.h>

#include <cstdint>

// Types of fields and what follows from them.

namespace Kestrona::Host::Language {

// Whether the type is more than one type word, or MATRIX and one more, can say.
[[nodiscard]] bool HasSeveralTypes(std::uint32_t type);

// Reports a field without a type, with two types, or a matrix that nothing gives its dimensions.
void CheckFieldType(const FieldDefinition& field, Reporter& reporter);

// The default of a field for which the source gives none: 1 for a key, so that keys count up, -1 (unset) for
// references, dates and durations, 0 otherwise.
[[nodiscard]] double ImpliedDefault(const FieldDefinition& field, bool is_key);

// Reports a default that the field's type cannot hold.
void CheckDefault(const FieldDefinition& field, Reporter& reporter);

} // namespace Kestrona::Host::Language
