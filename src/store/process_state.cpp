// Implements: ResetProcessStateForTests.
#include "store/process_state.h"

#include "configuration/load_state.h"
#include "store/process_services.h"
#include "text/translation_writers.h"

#include <kestrona/process.h>
#include <kestrona/translation.h>

namespace Kestrona {

void ResetProcessStateForTests() {
    Configuration::ResetLoadStateForTests(); // before the save variables, where it keeps a pointer
    ClearSequencerFunctions();
    FreeUserStrings();
    Text::RemoveTranslationWriters();
    FreeTranslationTable();
    ResetSaveVariables();
    ResetSettings();
    ResetModule();
    override_system_path(nullptr);
    ResetExecutionState();
    ResetDebugLog();
    ResetLibraryEntry();
    FreeProcessServices();
}

} // namespace Kestrona
