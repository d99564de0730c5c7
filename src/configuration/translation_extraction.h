#pragma once

#include <string>

// Where the definition load hands texts to a translator's list files.
namespace Kestrona::Configuration {

// Opens the list files of a load that extracts translations and installs their writers. False when they cannot be had;
// the debug log then says so. The module has no writers yet, so a load that is asked for the lists fails here.
bool InstallTranslationWriters();

// Lists a text for translation; does nothing while no writer is installed.
void ExtractTranslation(const std::wstring& text);

} // namespace Kestrona::Configuration
