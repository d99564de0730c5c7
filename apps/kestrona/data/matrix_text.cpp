#include "data/matrix_text.h"

#include <kestrona/classes.h>
#include <kestrona/matrices.h>

#include <fmt/format.h>

#include <algorithm>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;

constexpr char kValueEnd = ';';
constexpr char kRowEnd = '|';

std::uint32_t Records(IMemoryResidentData& store, std::int32_t format) {
    return static_cast<std::uint32_t>(std::max(0, store.GetCurrentDbSize(format)));
}

/// An unset value is told, so that a list of one such value is no empty list.
std::string ElementText(double value, ValueForm form) {
    return ValueText(value, value == kUnset ? ValueForm::Number : form);
}

/// Cuts the text up to the next `end` off its front.
std::string_view TakePart(std::string_view& text, char end, bool& last) {
    const std::size_t place = text.find(end);
    last = place == std::string_view::npos;
    const std::string_view part = text.substr(0, place);
    text.remove_prefix(last ? text.size() : place + 1);
    return part;
}

bool ParseRow(std::string_view text, const ElementReader& read, std::vector<double>& values, std::string& problem) {
    for (bool last = false; !last;) {
        const std::string_view part = TakePart(text, kValueEnd, last);
        const std::optional<double> value = read(part, problem);
        if (!value) {
            problem = fmt::format("value {} '{}' {}", values.size() + 1, part, problem);
            return false;
        }
        values.push_back(*value);
    }
    return true;
}

} // namespace

bool KeepsMatrices(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return (store.GetDbType(format, field) & TypeBit::kMatrix) != 0 &&
           !store.ClassDefined(format, field, Classes::kEvaluate);
}

bool KeepsValues(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return KeepsCells(store, format, field) || KeepsMatrices(store, format, field);
}

bool HasValues(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return HasCells(store, format, field) || KeepsMatrices(store, format, field);
}

MatrixSize SizeOfMatrix(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    if (store.ClassDefined(format, field, Classes::kList) ||
        store.ClassDefined(format, field, Classes::kParallelList)) {
        return {};
    }
    const std::uint32_t columns = Records(store, store.GetDbTableY(format, field));
    if (store.ClassDefined(format, field, Classes::k3DMatrix)) {
        return {MatrixShape::Square, Records(store, store.GetDbTable(format, field)), columns};
    }
    return {MatrixShape::Row, 1, columns};
}

ValueForm FormOfElement(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    const ValueForm form = FormOfField(store, format, field);
    // Texts of a list stand in another format; the list has their keys.
    return form == ValueForm::Text ? ValueForm::Reference : form;
}

std::string MatrixText(IMemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t record) {
    const ValueForm form = FormOfElement(store, format, field);
    return JoinMatrix(store, format, field, record,
                      [form](double value, std::int32_t) { return ElementText(value, form); });
}

std::string JoinMatrix(IMemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t record,
                       const ElementWriter& write) {
    const std::int32_t size = KSDLL_GetMatrixSize(KSDLL_GetDbMatrix(store, format, field, record));
    const MatrixSize shape = SizeOfMatrix(store, format, field);
    std::string text;
    for (std::int32_t index = 0; index < size; ++index) {
        if (index > 0) {
            const bool row_begins = shape.shape == MatrixShape::Square && shape.columns > 0 &&
                                    static_cast<std::uint32_t>(index) % shape.columns == 0;
            text += row_begins ? kRowEnd : kValueEnd;
        }
        text += write(KSDLL_GetMatrixValue(store, format, field, record, static_cast<std::uint32_t>(index)), index);
    }
    return text;
}

std::optional<std::vector<double>> ParseMatrix(std::string_view text, const MatrixSize& size, const ElementReader& read,
                                               std::string& problem) {
    std::vector<double> values;
    std::size_t rows = 0;
    for (bool last = false; !last; ++rows) {
        const std::size_t before = values.size();
        if (!ParseRow(TakePart(text, kRowEnd, last), read, values, problem)) {
            return std::nullopt;
        }
        if (size.shape != MatrixShape::List && values.size() - before != size.columns) {
            problem = fmt::format("row {} has {} values and not {}", rows + 1, values.size() - before, size.columns);
            return std::nullopt;
        }
    }
    if (rows != size.rows) {
        problem = fmt::format("has {} rows and not {}", rows, size.rows);
        return std::nullopt;
    }
    return values;
}

} // namespace Kestrona::Tool
