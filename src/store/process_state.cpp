// Implements: ResetProcessStateForTests.
#include "store/process_state.h"

#include "columns/matrix_table.h"
#include "configuration/load_state.h"
#include "store/process_services.h"

#include <kestrona/matrices.h>
#include <kestrona/process.h>

namespace Kestrona {

void ResetProcessStateForTests() {
    Configuration::ResetLoadStateForTests(); // before the save variables, where it keeps a pointer
    ClearSequencerFunctions();
    FreeUserStrings();
    ResetSaveVariables();
    ResetSettings();
    ResetModule();
    override_system_path(nullptr);
    ResetExecutionState();
    ResetDebugLog();
    ResetLibraryEntry();
    matrixDialogInfo = {};
    Data::MemoryResident::MatrixTable::Instance().Reset();
    FreeProcessServices();
}

} // namespace Kestrona
