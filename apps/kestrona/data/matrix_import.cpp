#include "data/matrix_import.h"

#include "data/display_text.h"
#include "data/matrix_text.h"
#include "data/reference_texts.h"

#include <kestrona/classes.h>
#include <kestrona/matrices.h>
#include <kestrona/unicode.h>

#include <fmt/format.h>

#include <algorithm>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;

constexpr std::uint64_t kMostElements = 0x7FFFFFFE;

std::uint64_t Elements(const MatrixSize& size) {
    return std::uint64_t{size.rows} * size.columns;
}

/// Gives every record of the format its matrix of the field, filled with defaults.
void CreateMatrices(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    const std::uint64_t elements = Elements(SizeOfMatrix(store, format, field));
    for (std::int32_t record = 0; record < store.GetCurrentDbSize(format); ++record) {
        KSDLL_CreateMatrix(store, static_cast<std::uint32_t>(std::min(elements, kMostElements)), format, field, record);
    }
}

/// Reads the entries of a list or matrix, also those that are the texts of records.
ElementReader ReaderOf(IMemoryResidentData& store, ReferenceTexts& texts, std::int32_t format, std::int32_t field) {
    const ValueForm form = FormOfElement(store, format, field);
    const bool has_texts = form == ValueForm::Reference && TargetOf(store, format, field);
    return [&store, &texts, format, field, form, has_texts](std::string_view text, std::string& problem) {
        if (HasUnset(form) && TrimCell(text) == kUnsetEntry) {
            return std::optional(kUnset);
        }
        const std::optional<double> value = ReadCell(store, format, field, form, text, problem);
        return value || !has_texts ? value : texts.Key(format, field, text, problem);
    };
}

/// Returns what is wrong with the cell, "" for a good one.
std::string FillMatrix(IMemoryResidentData& store, ReferenceTexts& texts, std::int32_t format,
                       const PendingCell& cell) {
    if (store.ClassDefined(format, cell.field, Classes::kCommonMatrix) && cell.record != 0) {
        return "stands below the first record, but the format has one matrix for all";
    }
    const MatrixSize size = SizeOfMatrix(store, format, cell.field);
    if (Elements(size) > kMostElements) {
        return "belongs to a matrix that is too large";
    }
    std::string problem;
    const auto values = ParseMatrix(cell.text, size, ReaderOf(store, texts, format, cell.field), problem);
    if (!values) {
        return problem;
    }
    const std::int32_t matrix =
        KSDLL_CreateMatrix(store, static_cast<std::uint32_t>(values->size()), format, cell.field, cell.record);
    for (std::size_t index = 0; index < values->size(); ++index) {
        KSDLL_SetMatrixValue(matrix, static_cast<std::uint32_t>(index), (*values)[index]);
    }
    return {};
}

} // namespace

std::vector<Rejection> FillMatrices(IMemoryResidentData& store, const std::vector<ImportedFile>& files) {
    std::vector<Rejection> rejections;
    ReferenceTexts texts(store);
    for (const auto& [format, file] : LastFiles(files)) {
        for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
            if (KeepsMatrices(store, format, field) &&
                !store.ClassDefined(format, field, Classes::kAdditionalReference)) {
                CreateMatrices(store, format, field);
            }
        }
        for (const PendingCell& cell : file->matrices) {
            std::string problem = FillMatrix(store, texts, format, cell);
            if (!problem.empty()) {
                rejections.push_back({file->file,
                                      cell.line,
                                      ToUtf8(store.GetColumnName(format, cell.field)),
                                      cell.text,
                                      {Code::BadMatrix, std::move(problem)}});
            }
        }
    }
    return rejections;
}

} // namespace Kestrona::Tool
