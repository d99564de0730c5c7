#pragma once

// What the process keeps beside its stores, and how each piece is put back.
namespace Kestrona {

// Puts everything that the library keeps for the process back to where it was when the library was loaded: services,
// settings, hooks, save variables, user strings, paths, log flags, the run state of the definition load, and the
// matrices. Stores of before have lost their matrices then.
void ResetProcessStateForTests();

void FreeUserStrings();
void ResetDebugLog();
void ResetExecutionState();
void ResetLibraryEntry();
void ResetModule();
void ResetSaveVariables();
void ResetSettings();

} // namespace Kestrona
