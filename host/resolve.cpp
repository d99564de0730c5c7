#include "resolve.h"

#include <kestrona/classes.h>
#include <kestrona/definition_load.h>
#include <kestrona/definition_model.h>

#include <cstdint>
#include <string_view>

namespace Kestrona::Host {

namespace {

using Data::MemoryResident::MemoryResidentData;

constexpr std::wstring_view kStringDefaultKeyword = L"STRING_DEF";

} // namespace

void MarkStringDefaults(MemoryResidentData& store) {
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
            const std::wstring_view classification = store.GetDbClassString(format, field);
            if (classification.find(kStringDefaultKeyword) != std::wstring_view::npos) {
                store.AddDbClass(format, field, Classes::kStringDefault);
            }
        }
    }
}

bool ResolveRead(MemoryResidentData& store, IInformationFeedback* feedback) {
    if (check_database_access(store, true, feedback) != 0) {
        return false;
    }
    Configuration::ConfigurationDefinition(store).KeepOriginal();
    MarkStringDefaults(store);
    return true;
}

} // namespace Kestrona::Host
