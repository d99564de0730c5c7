#include "snapshot/table_block.h"

#include <kestrona/classes.h>
#include <kestrona/table_storage.h>
#include <kestrona/unicode.h>

#include <string_view>

namespace Kestrona::Host::Snapshots {

namespace {

using Data::MemoryResident::MemoryResidentData;

template <typename T>
void Write(std::FILE* file, const T& value) {
    std::fwrite(&value, sizeof value, 1, file);
}

void WriteText(std::FILE* file, std::wstring_view text) {
    const std::u16string units = ToUtf16(text);
    Write(file, static_cast<std::int32_t>(units.size()));
    std::fwrite(units.data(), sizeof(char16_t), units.size(), file);
}

bool IsKept(MemoryResidentData& store, std::int32_t format) {
    return !store.ClassDefined(format, store.GetDbKey(format), Classes::kExcludeFromDb);
}

// Whether the field takes a place in the table data even where there are no records.
bool IsStored(MemoryResidentData& store, std::int32_t format, std::int32_t field) {
    const std::uint32_t type = store.GetDbType(format, field);
    return !store.ClassDefined(format, field, Classes::kNotPersisted) && (type & TypeBit::kFreeString) == 0 &&
           !store.ClassDefined(format, field, Classes::kAdditionalReference) &&
           !store.ClassDefined(format, field, Classes::kEvaluate);
}

// The table data of a format without records: a count of 0, and an empty column for each stored field.
void WriteNoRecords(MemoryResidentData& store, std::int32_t format, std::FILE* file) {
    constexpr std::int32_t kNone = 0;
    Write(file, kNone);
    for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
        if (IsStored(store, format, field)) {
            Write(file, kNone);
        }
    }
}

} // namespace

void WriteTable(MemoryResidentData& store, std::int32_t format, const std::wstring& dataset, std::FILE* file) {
    WriteText(file, store.GetDbName(format));
    Write(file, store.GetDbFields(format));
    Write(file, static_cast<std::uint8_t>(dataset.empty() ? 0 : 1));
    if (!dataset.empty()) {
        WriteText(file, dataset);
    }
    if (IsKept(store, format)) {
        Common::TableStorage::WriteTableData(store, format, file);
    } else {
        WriteNoRecords(store, format, file);
    }
}

} // namespace Kestrona::Host::Snapshots
