#include "columns/column_file.h"
#include "persistence/matrix_storage.h"
#include "platform/file_reading.h"

#include <kestrona/classes.h>
#include <kestrona/table_storage.h>

namespace Kestrona::Common {

using Data::MemoryResident::field_info;
using Data::MemoryResident::MemoryResidentData;

namespace {

// What stands in a block for a field.
enum class Form {
    Nothing,
    Numbers,
    Texts,
    Matrices,
};

bool IsPersisted(MemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return !store.ClassDefined(format, field, Classes::kNotPersisted) &&
           (store.GetDbType(format, field) & TypeBit::kFreeString) == 0 &&
           !store.ClassDefined(format, field, Classes::kAdditionalReference);
}

Form FormOf(MemoryResidentData& store, std::int32_t format, std::int32_t field) {
    if (!IsPersisted(store, format, field)) {
        return Form::Nothing;
    }
    // A list of stored strings is free text by its class, yet what the field itself holds is the list.
    if ((store.GetDbType(format, field) & TypeBit::kMatrix) != 0) {
        return Form::Matrices;
    }
    return store.ClassDefined(format, field, Classes::kFreeFormat) ? Form::Texts : Form::Numbers;
}

// A column that was never made is written like one without values; what a file holds for it is read and dropped.

void WriteNumbers(const field_info& field, std::FILE* file) {
    if (field.column != nullptr) {
        field.column->WriteToFile(file);
    } else {
        Data::MemoryResident::WriteNumbers<double>(file, {});
    }
}

void WriteTexts(const field_info& field, std::FILE* file) {
    if (field.stringColumn != nullptr) {
        field.stringColumn->WriteToFile(file);
    } else {
        Data::MemoryResident::WriteTexts(file, {});
    }
}

void ReadTexts(const field_info& field, std::FILE* file) {
    if (field.stringColumn != nullptr) {
        field.stringColumn->ReadFromFile(file);
        return;
    }
    std::wstring dropped;
    for (std::int32_t left = Data::MemoryResident::ReadCount(file);
         left > 0 && Data::MemoryResident::ReadText(file, dropped); --left) {
    }
}

void ReadNumbers(const field_info& field, std::FILE* file) {
    if (field.column != nullptr) {
        field.column->ReadFromFile(file);
    } else {
        Data::MemoryResident::ReadNumbers<double>(file, kFirstScratchRecord);
    }
}

void WriteField(MemoryResidentData& store, std::int32_t format, std::int32_t field, std::FILE* file) {
    const Form form = FormOf(store, format, field);
    if (form == Form::Nothing || store.ClassDefined(format, field, Classes::kEvaluate)) {
        return;
    }
    const field_info& info = *store.GetFieldInfo(format, field);
    switch (form) {
    case Form::Texts:
        WriteTexts(info, file);
        break;
    case Form::Numbers:
        WriteNumbers(info, file);
        break;
    case Form::Matrices:
        Persistence::WriteMatrices(store, format, field, file);
        break;
    case Form::Nothing:
        break;
    }
}

void ReadField(MemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t records,
               std::FILE* file) {
    const Form form = FormOf(store, format, field);
    const bool is_calculated = store.ClassDefined(format, field, Classes::kEvaluate);
    if (form == Form::Matrices) {
        // A block holds nothing of calculated matrices, yet each record must have one to calculate with.
        if (is_calculated) {
            Persistence::MakeCalculatedMatrices(store, format, field, records, file);
        } else {
            Persistence::ReadMatrices(store, format, field, records, file);
        }
    } else if (form != Form::Nothing && !is_calculated) {
        const field_info& info = *store.GetFieldInfo(format, field);
        if (form == Form::Texts) {
            ReadTexts(info, file);
        } else {
            ReadNumbers(info, file);
        }
    }
}

// Records of defaults take no bytes, so the size of a file bounds their number only beyond what any table has.
bool IsPlausible(std::int32_t records, std::FILE* file) {
    constexpr std::int32_t kMostRecords = 1 << 24;
    return records >= 0 && records < kFirstScratchRecord &&
           (records <= kMostRecords || static_cast<std::size_t>(records) <= Platform::BytesOf(file));
}

// False for a count that no format can have.
bool ReadRecordCount(std::FILE* file, std::int32_t& records) {
    return std::fread(&records, sizeof records, 1, file) == 1 && IsPlausible(records, file);
}

} // namespace

void TableStorage::WriteTableData(MemoryResidentData& store, std::int32_t format, std::FILE* file) {
    if (store.GetFormatInfo(format) == nullptr) {
        return;
    }
    const std::int32_t records = store.GetCurrentDbSize(format);
    std::fwrite(&records, sizeof records, 1, file);
    for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
        WriteField(store, format, field, file);
    }
}

void TableStorage::ReadTableData(MemoryResidentData& store, std::int32_t format, std::FILE* file) {
    Data::MemoryResident::formats_info* const info = store.GetFormatInfo(format);
    if (info == nullptr) {
        return;
    }
    std::int32_t records = 0;
    if (ReadRecordCount(file, records)) {
        for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
            ReadField(store, format, field, records, file);
        }
    } else {
        records = 0;
    }
    store.SetCurrentDbSize(format, records);
    if (info->timestampSuspendCount == 0) {
        ++info->timestamp;
    }
}

} // namespace Kestrona::Common
