#include "output/json_forms.h"

#include <nlohmann/json.hpp>

#include <charconv>
#include <cmath>
#include <string>
#include <string_view>

namespace Kestrona::Tool {
namespace {

using Json = nlohmann::ordered_json;

Json NumberCell(const std::string& cell) {
    if (cell.empty()) {
        return nullptr;
    }
    double value = 0.0;
    const auto [end, error] = std::from_chars(cell.data(), cell.data() + cell.size(), value);
    if (error != std::errc{} || end != cell.data() + cell.size() || !std::isfinite(value)) {
        return cell;
    }
    // Whole numbers keep their form without a decimal point.
    if (cell.find_first_of(".eE") == std::string::npos && std::abs(value) < 9.0e15) {
        return static_cast<std::int64_t>(value);
    }
    return value;
}

Json RowCell(std::string_view text) {
    Json values = Json::array();
    for (std::size_t end = 0; end != std::string_view::npos;) {
        end = text.find(';');
        values.push_back(NumberCell(std::string(text.substr(0, end))));
        text.remove_prefix(end == std::string_view::npos ? 0 : end + 1);
    }
    return values;
}

// One row makes an array of values, several an array of arrays.
Json MatrixCell(std::string_view text) {
    if (text.empty()) {
        return Json::array();
    }
    if (text.find('|') == std::string_view::npos) {
        return RowCell(text);
    }
    Json rows = Json::array();
    for (std::size_t end = 0; end != std::string_view::npos;) {
        end = text.find('|');
        rows.push_back(RowCell(text.substr(0, end)));
        text.remove_prefix(end == std::string_view::npos ? 0 : end + 1);
    }
    return rows;
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
