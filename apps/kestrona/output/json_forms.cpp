#include "output/json_forms.h"

#include <nlohmann/json.hpp>

#include <charconv>
#include <cmath>
#include <string>

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

std::string Object(const TableSource& source, std::size_t row) {
    Json object = Json::object();
    for (std::size_t c = 0; c < source.Columns().size(); ++c) {
        const OutputColumn& column = source.Columns()[c];
        std::string cell = source.Cell(row, c);
        object[column.name] = column.kind == CellKind::Number ? NumberCell(cell) : Json(std::move(cell));
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
