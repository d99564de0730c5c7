#include "output/json_forms.h"

#include "output/number_cell.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Kestrona::Tool {
namespace {

using Json = nlohmann::ordered_json;

/// Below it a whole number is written without an exponent.
constexpr double kLargestWhole = 9.0e15;

Json NumberCell(const std::string& cell) {
    if (cell.empty()) {
        return nullptr;
    }
    const std::optional<double> value = NumberOfCell(cell);
    if (!value) {
        return cell;
    }
    // Whole numbers keep their form without a decimal point.
    if (cell.find_first_of(".eE") == std::string::npos && std::abs(*value) < kLargestWhole) {
        return static_cast<std::int64_t>(*value);
    }
    return *value;
}

/// What `make` makes of each piece of the text between the dividers, as an array.
Json Pieces(std::string_view text, char divider, Json (*make)(std::string_view piece)) {
    Json pieces = Json::array();
    for (std::size_t end = 0; end != std::string_view::npos;) {
        end = text.find(divider);
        pieces.push_back(make(text.substr(0, end)));
        text.remove_prefix(end == std::string_view::npos ? 0 : end + 1);
    }
    return pieces;
}

Json RowCell(std::string_view text) {
    return Pieces(text, ';', [](std::string_view cell) { return NumberCell(std::string(cell)); });
}

// One row makes an array of values, several an array of arrays.
Json MatrixCell(std::string_view text) {
    if (text.empty()) {
        return Json::array();
    }
    return text.find('|') == std::string_view::npos ? RowCell(text) : Pieces(text, '|', RowCell);
}

Json CellValue(CellKind kind, std::string cell) {
    switch (kind) {
    case CellKind::Number:
        return NumberCell(cell);
    case CellKind::Matrix:
        return MatrixCell(cell);
    case CellKind::Text:
        break;
    }
    return cell;
}

std::string Object(const TableSource& source, std::size_t row) {
    Json object = Json::object();
    for (std::size_t c = 0; c < source.Columns().size(); ++c) {
        const OutputColumn& column = source.Columns()[c];
        object[column.name] = CellValue(column.kind, source.Cell(row, c));
    }
    return object.dump(-1, ' ', false, Json::error_handler_t::replace);
}

void WriteRows(const TableSource& source, std::FILE* out, const char* separator, const char* end) {
    for (std::size_t r = 0; r < source.RowCount(); ++r) {
        const std::string line = Object(source, r) + (r + 1 < source.RowCount() ? separator : end);
        std::fwrite(line.data(), 1, line.size(), out);
    }
}

} // namespace

void WriteJson(const TableSource& source, std::FILE* out) {
    std::fputs("[\n", out);
    WriteRows(source, out, ",\n", "\n");
    std::fputs("]\n", out);
}

void WriteJsonLines(const TableSource& source, std::FILE* out) {
    WriteRows(source, out, "\n", "\n");
}

} // namespace Kestrona::Tool
