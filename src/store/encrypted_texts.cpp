// Implements: moving encrypted texts as they are.
#include <kestrona/encrypted_string_column.h>

namespace {

using Kestrona::Data::MemoryResident::EncryptedStringColumn;
using Kestrona::Data::MemoryResident::MemoryResidentData;

EncryptedStringColumn* FindEncrypted(MemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return dynamic_cast<EncryptedStringColumn*>(store.GetDbStringArray(format, field));
}

} // namespace

std::wstring KSDLL_GetEncryptedStringValue(MemoryResidentData& store, std::int32_t format, std::int32_t field,
                                           std::int32_t record) {
    const EncryptedStringColumn* const column = FindEncrypted(store, format, field);
    return column != nullptr ? column->GetStoredValue(record) : std::wstring();
}

void KSDLL_SetEncryptedStringValue(MemoryResidentData& store, std::int32_t format, std::int32_t field,
                                   std::int32_t record, const std::wstring& encrypted) {
    if (EncryptedStringColumn* const column = FindEncrypted(store, format, field)) {
        column->Guard();
        column->SetStoredValue(record, encrypted);
    }
}
