#include "output/delimited_forms.h"

#include <string>
#include <string_view>

namespace Kestrona::Tool {
namespace {

constexpr std::string_view kQuotedInCells = ",\"\r\n";
/// A reader may guess the delimiter from the heading, so that no other one may seem to stand there.
constexpr std::string_view kQuotedInHeading = ",;|\t\"\r\n";

void AppendCsvCell(std::string& line, std::string_view cell, std::string_view quoted) {
    if (cell.find_first_of(quoted) == std::string_view::npos) {
        line += cell;
        return;
    }
    line += '"';
    for (const char c : cell) {
        line += c;
        if (c == '"') {
            line += '"';
        }
    }
    line += '"';
}

void AppendMarkdownCell(std::string& line, std::string_view cell) {
    line += ' ';
    for (const char c : cell) {
        if (c == '|' || c == '\\') {
            line += '\\';
        }
        line += c == '\n' || c == '\r' ? ' ' : c;
    }
    line += " |";
}

void Write(const std::string& line, std::FILE* out) {
    std::fwrite(line.data(), 1, line.size(), out);
}

} // namespace

void WriteCsv(const TableSource& source, std::FILE* out) {
    const std::size_t columns = source.Columns().size();
    std::string line;
    for (std::size_t c = 0; c < columns; ++c) {
        line += c == 0 ? "" : ",";
        AppendCsvCell(line, source.Columns()[c].name, kQuotedInHeading);
    }
    Write(line += '\n', out);
    for (std::size_t r = 0; r < source.RowCount(); ++r) {
        line.clear();
        for (std::size_t c = 0; c < columns; ++c) {
            line += c == 0 ? "" : ",";
            AppendCsvCell(line, source.Cell(r, c), kQuotedInCells);
        }
        // A blank line is no row for a reader.
        Write(line.empty() ? "\"\"\n" : line += '\n', out);
    }
}

void WriteMarkdown(const TableSource& source, std::FILE* out) {
    std::string line = "|";
    std::string rule = "|";
    for (const OutputColumn& column : source.Columns()) {
        AppendMarkdownCell(line, column.name);
        rule += column.kind == CellKind::Number ? " ---: |" : " --- |";
    }
    Write(line + '\n' + rule + '\n', out);
    for (std::size_t r = 0; r < source.RowCount(); ++r) {
        line = "|";
        for (std::size_t c = 0; c < source.Columns().size(); ++c) {
            AppendMarkdownCell(line, source.Cell(r, c));
        }
        Write(line += '\n', out);
    }
}

} // namespace Kestrona::Tool
