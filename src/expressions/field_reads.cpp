#include "expressions/field_reads.h"

#include "expressions/matrix_access.h"
#include "expressions/text_access.h"
#include "platform/numbers.h"
#include "text/value_forms.h"

#include <kestrona/services.h>

namespace Kestrona::Expressions {

namespace {

constexpr const wchar_t* kNoNumber = L"Evaluation Error: Could not convert field string to double";

// The stored or display text of a field that is read as text.
void ReadFieldText(IMemoryResidentData& store, const FieldReference& reference, std::int32_t record,
                   std::int32_t matrix_index, std::wstring* text) {
    const Data::MemoryResident::field_info* const info = store.GetFieldInfo(reference.format, reference.field);
    if (info != nullptr && Text::HasClass(*info, Classes::kFreeFormat)) {
        // Into the memory that the text has, unlike `GetDbString`.
        if (info->stringColumn != nullptr) {
            info->stringColumn->ReadBlock(record, 1, text);
        } else {
            text->clear();
        }
        return;
    }
    const double value = ReadRaw(store, reference.format, reference.field, record, matrix_index);
    DisplayText(store, reference.format, reference.field, record, value, matrix_index, text);
}

bool AreRecords(IMemoryResidentData& store, std::int32_t format, std::int32_t first, std::int32_t count) {
    return first >= 0 && count <= store.GetCurrentDbSize(format) - first;
}

} // namespace

double ReadElement(IMemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t record,
                   std::int32_t matrix_index) {
    if (HasMatrix(store, format, field, record)) {
        return MatrixElement(store, format, field, record, matrix_index);
    }
    return store.GetDbValue(format, field, record);
}

void ReadRawBlock(IMemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t first,
                  std::int32_t count, double* out) {
    const Data::MemoryResident::IColumn<double>* const column = store.GetDbColumn(format, field);
    if (column != nullptr && AreRecords(store, format, first, count)) {
        column->ReadBlock(first, count, out);
        return;
    }
    for (std::int32_t i = 0; i < count; ++i) {
        out[i] = store.GetDbValue(format, field, first + i);
    }
}

double ReadNumber(IMemoryResidentData& store, const FieldReference& reference, std::int32_t record,
                  std::int32_t matrix_index) {
    if (!ReadsText(store, reference)) {
        return ReadRaw(store, reference.format, reference.field, record, matrix_index);
    }
    std::wstring text;
    ReadFieldText(store, reference, record, matrix_index, &text);
    return ToNumber(text).value_or(0.0);
}

void ReadText(IMemoryResidentData& store, const FieldReference& reference, std::int32_t record,
              std::int32_t matrix_index, std::wstring* text) {
    if (ReadsText(store, reference)) {
        ReadFieldText(store, reference, record, matrix_index, text);
    } else {
        *text = Platform::DoubleToText17(ReadRaw(store, reference.format, reference.field, record, matrix_index));
    }
}

std::optional<double> ToNumber(const std::wstring& text) {
    const std::optional<double> number = Platform::TextToDouble(text);
    if (!number.has_value()) {
        KSDLL_WriteDebug(kNoNumber);
    }
    return number;
}

} // namespace Kestrona::Expressions
