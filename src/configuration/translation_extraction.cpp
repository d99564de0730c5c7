#include "configuration/translation_extraction.h"

#include "text/translation_writers.h"

namespace Kestrona::Configuration {

void InstallTranslationWriters() {
    Text::InstallTranslationWriters();
}

void ExtractTranslation(const std::wstring& text) {
    Text::DefinitionTexts().AddEntry(text);
}

} // namespace Kestrona::Configuration
