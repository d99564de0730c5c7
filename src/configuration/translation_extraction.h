#pragma once

#include <string>

// Where the definition load hands texts to a translator's list files.
namespace Kestrona::Configuration {

// Opens the list files of a load that extracts translations and installs their writers.
void InstallTranslationWriters();

// Lists a text for translation; does nothing while no writer is installed.
void ExtractTranslation(const std::wstring& text);

} // namespace Kestrona::Configuration
