#pragma once

#include <string>

// Process-wide state of the definition load.
namespace Kestrona::Configuration {

// The first-time guard: set until a load begins.
bool IsFirstLoad();
void ClearFirstLoad();

// Puts the save variables of a load back to where a load begins.
void ResetRunState();

// The file name of the definition's source. A name of more than 511 characters is not kept: false, and nothing changed.
// The text stays where it is, so that the host may set the name while it reads the file.
const wchar_t* DefinitionFileName();
bool SetDefinitionFileName(const std::wstring& name);

void SetFromCompiled(bool value);

// Lives while the definition of a compiled file is resolved. Unlike `FromCompiled`, which stays, it says nothing of
// other definitions that the process resolves later.
class CompiledResolution {
public:
    CompiledResolution();
    CompiledResolution(const CompiledResolution&) = delete;
    CompiledResolution& operator=(const CompiledResolution&) = delete;
    ~CompiledResolution();
};

bool IsResolvingCompiled();

// True at the first call in a process: whoever asks then sets the built-in string tables up.
bool ClaimStringTables();

// Puts everything here back to the state of a fresh process.
void ResetLoadStateForTests();

} // namespace Kestrona::Configuration
