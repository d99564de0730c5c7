// Implements: ResetProcessStateForTests.
#include "store/process_state.h"

#include "columns/matrix_table.h"
#include "configuration/load_state.h"
#include "store/process_services.h"
#include "text/time_seconds.h"
#include "text/translation_writers.h"

#include <kestrona/expression_parsing.h>
#include <kestrona/matrices.h>
#include <kestrona/process.h>
#include <kestrona/translation.h>
#include <kestrona/translation_source.h>

namespace Kestrona {

void ResetProcessStateForTests() {
    Configuration::ResetLoadStateForTests(); // before the save variables, where it keeps a pointer
    ClearSequencerFunctions();
    FreeUserStrings();
    Text::RemoveTranslationWriters();
    Text::ResetIncludeSeconds();
    SetResourcesModule(nullptr);
    FreeTranslationTable();
    ResetSaveVariables();
    ResetSettings();
    ResetModule();
    override_system_path(nullptr);
    ResetExecutionState();
    ResetDebugLog();
    ResetLibraryEntry();
    KSDLL_FreeExpressionCache();
    matrixDialogInfo = {};
    Data::MemoryResident::MatrixTable::Instance().Reset();
    FreeProcessServices();
}

} // namespace Kestrona
