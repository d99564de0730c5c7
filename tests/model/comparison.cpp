#include "model/comparison.h"

#include <kestrona/matrices.h>

#include <vector>

namespace Kestrona::Model {

using Data::MemoryResident::IMemoryResidentData;

namespace {

std::string Instead(double value, double expected) {
    return std::to_string(value) + " instead of " + std::to_string(expected);
}

std::string MatrixDifference(IMemoryResidentData& store, const Twin& twin, std::int32_t format, std::int32_t field,
                             std::int32_t record) {
    const TwinMatrix* const matrix = twin.Matrix(format, field, record);
    const std::size_t expected = matrix != nullptr ? matrix->size : 0;
    const std::int32_t size = KSDLL_GetMatrixSize(KSDLL_GetDbMatrix(store, format, field, record));
    if (static_cast<std::size_t>(size) != expected) {
        return "size " + std::to_string(size) + " instead of " + std::to_string(expected);
    }
    for (std::uint32_t i = 0; i < expected; ++i) {
        const double value = KSDLL_GetMatrixValue(store, format, field, record, i);
        if (value != matrix->At(i)) {
            return "element " + std::to_string(i) + " is " + Instead(value, matrix->At(i));
        }
    }
    return "";
}

std::string TextDifference(const std::wstring& text, const std::wstring& expected, bool is_encrypted) {
    // What was decrypted has zeros behind it.
    return (is_encrypted ? text.substr(0, text.find(L'\0')) : text) == expected ? "" : "another text";
}

std::string CellDifference(IMemoryResidentData& store, const Twin& twin, std::int32_t format, std::int32_t field,
                           std::int32_t record) {
    const FieldPlan& plan = twin.Format(format).plan->fields[static_cast<std::size_t>(field)];
    if (plan.IsMatrix()) {
        return MatrixDifference(store, twin, format, field, record);
    }
    if (plan.IsText()) {
        return TextDifference(store.GetDbString(format, field, record), twin.Text(format, field, record),
                              plan.Has(Classes::kEncrypted));
    }
    const double value = store.GetDbValue(format, field, record);
    const double expected = twin.Number(format, field, record);
    return value == expected ? "" : Instead(value, expected);
}

} // namespace

std::string RecordDifference(IMemoryResidentData& store, const Twin& twin, std::int32_t format, std::int32_t record,
                             bool has_updates) {
    const auto fields = static_cast<std::int32_t>(twin.Format(format).plan->fields.size());
    for (std::int32_t field = 0; field < fields; ++field) {
        if (const std::string difference = CellDifference(store, twin, format, field, record); !difference.empty()) {
            return "format " + std::to_string(format) + " field " + std::to_string(field) + " record " +
                   std::to_string(record) + ": " + difference;
        }
    }
    return !has_updates || store.GetDbUpdate(format, record) == twin.Update(format, record)
               ? ""
               : "format " + std::to_string(format) + " update number of record " + std::to_string(record);
}

std::string SizeDifference(IMemoryResidentData& store, const Twin& twin, std::int32_t format) {
    return store.GetCurrentDbSize(format) == twin.Size(format)
               ? ""
               : "format " + std::to_string(format) + " has " + std::to_string(store.GetCurrentDbSize(format)) +
                     " records instead of " + std::to_string(twin.Size(format));
}

std::string FormatDifference(IMemoryResidentData& store, const Twin& twin, std::int32_t format, bool has_updates) {
    std::string difference = SizeDifference(store, twin, format);
    for (std::int32_t record = 0; difference.empty() && record < twin.Size(format); ++record) {
        difference = RecordDifference(store, twin, format, record, has_updates);
    }
    return difference;
}

std::string StoreDifference(IMemoryResidentData& store, const Twin& twin, bool has_updates) {
    std::string difference;
    for (std::int32_t format = 0; difference.empty() && format < store.GetFormatCount(); ++format) {
        difference = FormatDifference(store, twin, format, has_updates);
    }
    return difference;
}

} // namespace Kestrona::Model
