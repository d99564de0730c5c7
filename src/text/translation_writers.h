#pragma once

#include <kestrona/translation_writer.h>

// The process's writers of translation lists.
namespace Kestrona::Text {

// Opens both list files and installs their writers in place of earlier ones, which are closed before.
void InstallTranslationWriters();

// Closes both lists and frees their writers.
void RemoveTranslationWriters();

// The installed writers; one that drops everything where none is. Valid until installed, removed or closed.
ITranslationWriter& DefinitionTexts();
ITranslationWriter& DatabaseTexts();

} // namespace Kestrona::Text
