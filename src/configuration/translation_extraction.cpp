#include "configuration/translation_extraction.h"

#include <kestrona/services.h>

namespace Kestrona::Configuration {

bool InstallTranslationWriters() {
    KSDLL_WriteDebug(L"The translation lists cannot be written: no writer is installed.");
    return false;
}

void ExtractTranslation(const std::wstring&) {}

} // namespace Kestrona::Configuration
