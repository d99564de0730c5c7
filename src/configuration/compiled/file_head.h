#pragma once

#include <kestrona/compilation_state.h>

#include <cstdio>

// What stands in a compiled configuration in front of its definition.
namespace Kestrona::Configuration::Compiled {

// Writes banner, version, configuration type, identity and flag word. Throws the wide text "Unexpected state"
// (`const wchar_t*`) for a compile type that has no file.
void WriteFileHead(const CompilationState& compilation, std::FILE* file);

} // namespace Kestrona::Configuration::Compiled
