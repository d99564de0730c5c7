// Implements: KSDLL_SetDefaultFieldValue.
#include "store/class_test.h"
#include "store/list_filling.h"

#include <kestrona/built_in_tables.h>
#include <kestrona/classes.h>
#include <kestrona/dates.h>
#include <kestrona/free_strings.h>
#include <kestrona/matrices.h>
#include <kestrona/records.h>
#include <kestrona/services.h>

namespace {

using namespace Kestrona;
using namespace Kestrona::Data::MemoryResident;

constexpr std::int32_t kMsgUserName = 0x4a67;
constexpr std::int32_t kTopLevel = 1;

bool HoldsNumbers(const field_info& field) {
    return !HasClass(field, Classes::kFreeFormat) && !HasClass(field, Classes::kEvaluate) &&
           (field.type & TypeBit::kFreeString) == 0;
}

bool GetsDefaultOn(std::int32_t level, const field_info& field) {
    return level == kTopLevel || (level > kTopLevel && HasClass(field, Classes::kDeepDefault));
}

void SetDefaultNumber(IMemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t record) {
    const double value = store.GetDbDefaultValue(format, field);
    if ((store.GetDbType(format, field) & TypeBit::kMatrix) == 0) {
        SetReferencedValue(store, format, field, record, value);
        return;
    }
    const std::int32_t id = KSDLL_GetDbMatrix(store, format, field, record);
    const std::int32_t size = KSDLL_GetMatrixSize(id);
    for (std::int32_t i = 0; i < size; ++i) {
        KSDLL_SetMatrixValue(id, static_cast<std::uint32_t>(i), value);
    }
}

void SetDefaultText(IMemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t record) {
    const bool is_user_name = store.ClassDefined(format, field, Classes::kUserNameDefault);
    const std::wstring text = is_user_name ? MessageManager::getInstance()->GetMessage(kMsgUserName)
                                           : KSDLL_GetDefaultFreeFormatStringValue(store, format, field);
    KSDLL_CreateFreeString(store, format, field, record, text);
}

} // namespace

void KSDLL_SetDefaultFieldValue(IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                                std::int32_t record, std::int32_t skip_field1, std::int32_t skip_field2,
                                std::int32_t level, std::int32_t /*auto_list_field*/, double /*auto_list_value*/) {
    const field_info* const info = store.GetFieldInfo(format, field);
    if (info == nullptr) {
        return;
    }
    if (HasClass(*info, Classes::kTimeOfNow)) {
        SetReferencedValue(store, format, field, record, KSDLL_KestronaTime());
    } else if (HasClass(*info, Classes::kAutomaticKey)) {
        double key = 0.0;
        find_next_value(store, format, field, &key);
        SetReferencedValue(store, format, field, record, key);
    } else if (HoldsNumbers(*info)) {
        if (GetsDefaultOn(level, *info) && field != skip_field1 && field != skip_field2) {
            SetDefaultNumber(store, format, field, record);
        }
    } else if (HasClass(*info, Classes::kFreeFormat) && !HasClass(*info, Classes::kEvaluate)) {
        SetDefaultText(store, format, field, record);
    }
    if (HasClass(*info, Classes::kList) && HasClass(*info, Classes::kSelectAll)) {
        SelectAllEntries(store, format, field, record);
    }
}
