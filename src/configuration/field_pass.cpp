#include "configuration/field_pass.h"

#include "configuration/field_count.h"
#include "configuration/field_steps.h"
#include "configuration/resolution.h"

#include <cstdint>

namespace Kestrona::Configuration {

using Data::MemoryResident::MemoryResidentData;

namespace {

using FieldStep = bool (*)(FieldScope&);

constexpr FieldStep kSteps[] = {
    ClearLinks,
    ReplaceDatabaseByClassification,
    ReplaceFindClassification,
    ResolveDatabase,
    ResolveSource,
    CheckStringsHaveStorage,
    ResolveStringStorage,
    ResolveRemoteDefault,
    ResolveRemote,
    ResolveAutoList,
    ResolveDataList,
    ResolveAutoDimension,
    ResolveCommonMatrix,
    ResolveSwitches,
    ResolveRelatedField,
    ResolveLocalAssignment,
    ResolveSetupOverrideMatch,
    ResolveMatchField,
    ResolveSourceOrder,
    ResolveMatchDurationField,
    MarkTwoDimensions,
    ResolveLookupSource,
    ResolveOrderMatch,
    ResolveExpandMatch,
    ResolveExpandReference,
};

bool ResolveKeywords(FieldScope& scope) {
    for (const FieldStep step : kSteps) {
        if (!step(scope)) {
            return false;
        }
    }
    return true;
}

bool ResolveFields(Resolution& resolution, std::int32_t format, FieldStep step) {
    const std::int32_t fields = FieldCount(resolution.store, format);
    for (std::int32_t field = 0; field < fields; ++field) {
        FieldScope scope(resolution, format, field);
        if (!step(scope)) {
            return false;
        }
    }
    return true;
}

} // namespace

bool RunFieldPass(MemoryResidentData& store) {
    Resolution resolution(store);
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        // LOOKUP UPDATE reads what LOOKUP SOURCE of the same field has left.
        if (!ResolveFields(resolution, format, ResolveKeywords) ||
            !ResolveFields(resolution, format, ResolveLookupUpdate)) {
            return false;
        }
    }
    return true;
}

} // namespace Kestrona::Configuration
