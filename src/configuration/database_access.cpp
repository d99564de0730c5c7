// Resolving a whole definition: check_database_access.
#include "configuration/expression_phases.h"
#include "configuration/field_count.h"
#include "configuration/field_pass.h"
#include "configuration/messages.h"
#include "configuration/relationship_pass.h"
#include "configuration/report.h"
#include "platform/format_text.h"

#include <kestrona/definition_load.h>

namespace Kestrona::Configuration {

using Data::MemoryResident::MemoryResidentData;

namespace {

constexpr std::int32_t kProgressArraysMade = 50;

bool ResolveDefinition(MemoryResidentData& store) {
    if (!RunFieldPass(store)) {
        return false;
    }
    KSDLL_WriteDebug(L"About to Check DB Relationships");
    return RunRelationshipPass(store) && CompileExpressions(store) && ValidateExpressions(store);
}

bool CheckPrimaryKeys(MemoryResidentData& store) {
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        const std::int32_t key = store.GetDbKey(format);
        if (key < 0 || key >= FieldCount(store, format)) { // a key that names no field counts as none
            return Fail(Platform::FormatText(Message(kMsgNoPrimaryKey), store.GetDbName(format)));
        }
    }
    return true;
}

bool CheckDatabaseAccess(MemoryResidentData& store, bool create_arrays, IInformationFeedback* feedback) {
    if (feedback != nullptr) {
        feedback->SetStage(kMsgStageCheck);
    }
    KSDLL_WriteDebug(L"About to Check DB Access");
    if (!ResolveDefinition(store)) {
        return false;
    }
    KSDLL_WriteDebug(L"About to create data arrays");
    if (create_arrays) {
        KSDLL_CreateDataArrays(store);
    }
    if (feedback != nullptr) {
        feedback->SetProgress(kProgressArraysMade);
    }
    KSDLL_WriteDebug(L"About to check Primary key existance");
    if (!CheckPrimaryKeys(store)) {
        return false;
    }
    KSDLL_WriteDebug(L"DB Integrety checked out OK");
    return true;
}

} // namespace

} // namespace Kestrona::Configuration

std::int32_t check_database_access(Kestrona::Data::MemoryResident::MemoryResidentData& store, bool create_arrays,
                                   IInformationFeedback* feedback) {
    return Kestrona::Configuration::CheckDatabaseAccess(store, create_arrays, feedback) ? 0 : -1;
}
