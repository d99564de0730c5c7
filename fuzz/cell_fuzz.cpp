#include "data/cell_text.h"
#include "data/exact_cell.h"
#include "data/matrix_text.h"
#include "fuzz.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Cells of imported files: any text as a cell of each form, and as a list, a row and a matrix of such values. What was
// read is written and read again.

namespace {

using namespace Kestrona;
using namespace Kestrona::Fuzz;
using namespace Kestrona::Tool;

constexpr std::array kForms{ValueForm::Number, ValueForm::Integer,  ValueForm::Toggle,
                            ValueForm::Date,   ValueForm::Duration, ValueForm::Reference};

void CheckWritten(double value, ValueForm form) {
    Require(std::isfinite(value));
    std::string problem;
    Require(ParseCell(ValueText(value, form), form, problem) == value);
}

void CheckCell(std::string_view text, ValueForm form) {
    std::string problem;
    const std::optional<double> value = ParseCell(text, form, problem);
    Require(value.has_value() == problem.empty());
    Require(ParseCell(" \t" + std::string(text) + "\r", form, problem) == value);
    if (value) {
        CheckWritten(*value, form);
    }
}

// The cell that holds these values.
std::string Join(const std::vector<double>& values, const MatrixSize& size, ValueForm form) {
    std::string text;
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (i > 0) {
            text += size.columns > 0 && i % size.columns == 0 ? '|' : ';';
        }
        text += values[i] == kUnset ? "-1" : ValueText(values[i], form);
    }
    return text;
}

void CheckMatrix(std::string_view text, const MatrixSize& size, ValueForm form) {
    const auto read = [form](std::string_view part, std::string& problem) {
        return ParseCell(part, form, problem);
    };
    std::string problem;
    const auto values = ParseMatrix(text, size, read, problem);
    if (!values) {
        Require(!problem.empty());
        return;
    }
    Require(size.shape == MatrixShape::List || values->size() == std::size_t{size.rows} * size.columns);
    Require(ParseMatrix(Join(*values, size, form), size, read, problem) == values);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
    for (const ValueForm form : kForms) {
        CheckCell(text, form);
    }
    const ValueForm form = kForms[data[0] % kForms.size()];
    const std::uint32_t columns = 1 + (data[0] >> 3U & 3U);
    CheckMatrix(text, {}, form);
    CheckMatrix(text, {MatrixShape::Row, 1, columns}, form);
    CheckMatrix(text, {MatrixShape::Square, 1 + (data[0] >> 5U & 3U), columns}, form);
    return 0;
}
