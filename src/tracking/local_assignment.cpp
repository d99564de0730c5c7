// Implements: the fields that LOCAL ASSIGNMENT names.
#include "tracking/steps.h"

#include <kestrona/classes.h>
#include <kestrona/tracked_values.h>

namespace {

using namespace Kestrona;
using Data::MemoryResident::IMemoryResidentData;

// The field of `format` that the owner names, -1 for none.
std::int32_t FindLocalField(IMemoryResidentData& store, std::int32_t format, TableColumn owner) {
    const auto data = [&](std::int32_t slot) {
        return store.GetDbData(owner.format, owner.field, slot);
    };
    const bool names_format = store.ClassDefined(owner.format, owner.field, Classes::kLocalAssignment) &&
                              data(DataSlot::kAssignmentFormat) == format;
    const std::int32_t field = data(DataSlot::kAssignmentField);
    return names_format && Tracking::IsField(store, {format, field}) ? field : Tracking::kNone;
}

} // namespace

bool GetLocalAssignment(IMemoryResidentData& store, std::int32_t format, std::int32_t owner_format,
                        std::int32_t owner_field, double* value, std::int32_t record) {
    const std::int32_t field = FindLocalField(store, format, {owner_format, owner_field});
    if (field == Tracking::kNone) {
        return false;
    }
    *value = store.GetDbValue(format, field, record);
    return true;
}

bool SetLocalAssignment(IMemoryResidentData& store, std::int32_t format, std::int32_t owner_format,
                        std::int32_t owner_field, double value, std::int32_t record) {
    const std::int32_t field = FindLocalField(store, format, {owner_format, owner_field});
    if (field == Tracking::kNone) {
        return false;
    }
    store.SetDbValue(format, field, record, value);
    return true;
}
