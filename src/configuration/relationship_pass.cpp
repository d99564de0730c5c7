#include "configuration/relationship_pass.h"

#include "configuration/field_count.h"
#include "configuration/relationship_steps.h"
#include "configuration/resolution.h"

#include <kestrona/services.h>

#include <cstdint>
#include <string>

namespace Kestrona::Configuration {

using Data::MemoryResident::MemoryResidentData;

namespace {

using RelationshipStep = bool (*)(FieldScope&);

constexpr RelationshipStep kSteps[] = {
    CheckLookupSource,      CheckLookupUpdate,      CheckSource,
    ResolveRelatedList,     ResolveAssociate,       ResolveAutoRestrict,
    ResolveFamily,          FindRelatedField,       ResolveAdditionalReference,
    ResolveOverride,        ResolveUpdateReference, ResolveAutoSplit,
    CheckReferenceIsNoText, ReleaseFromParentSort,  CheckEncryption,
};

bool ResolveField(Resolution& resolution, std::int32_t format, std::int32_t field) {
    // Put together by hand: a formatted text for every field would cost more than most of the steps.
    KSDLL_WriteDebug(L"Format " + std::to_wstring(format) + L" Field " + std::to_wstring(field));
    FieldScope scope(resolution, format, field);
    for (const RelationshipStep step : kSteps) {
        if (!step(scope)) {
            return false;
        }
    }
    return true;
}

} // namespace

bool RunRelationshipPass(MemoryResidentData& store) {
    Resolution resolution(store);
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        const std::int32_t fields = FieldCount(store, format);
        for (std::int32_t field = 0; field < fields; ++field) {
            if (!ResolveField(resolution, format, field)) {
                return false;
            }
        }
    }
    return true;
}

} // namespace Kestrona::Configuration
