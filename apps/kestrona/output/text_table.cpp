#include "output/text_table.h"

#include <utf8proc.h>

#include <algorithm>
#include <vector>

namespace Kestrona::Tool {
namespace {

constexpr std::size_t kMaxColumnWidth = 48;
constexpr std::string_view kEllipsis = "\xE2\x80\xA6";

/// Decodes the character at the start of `text` into `code_point`; returns its bytes, 1 for a byte that is no UTF-8.
std::size_t NextCharacter(std::string_view text, utf8proc_int32_t& code_point) {
    const utf8proc_ssize_t used = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                                   static_cast<utf8proc_ssize_t>(text.size()), &code_point);
    if (used < 1) {
        code_point = 0xFFFD;
        return 1;
    }
    return static_cast<std::size_t>(used);
}

bool IsControl(utf8proc_int32_t code_point) {
    return code_point < 0x20 || (code_point >= 0x7F && code_point < 0xA0);
}

std::size_t CharacterWidth(utf8proc_int32_t code_point) {
    return IsControl(code_point) ? 1 : static_cast<std::size_t>(std::max(0, utf8proc_charwidth(code_point)));
}

std::vector<std::size_t> MeasureColumns(const TableSource& source) {
    std::vector<std::size_t> widths;
    for (const OutputColumn& column : source.Columns()) {
        widths.push_back(std::min(kMaxColumnWidth, DisplayWidth(column.name)));
    }
    for (std::size_t r = 0; r < source.RowCount(); ++r) {
        for (std::size_t c = 0; c < widths.size(); ++c) {
            if (widths[c] < kMaxColumnWidth) {
                widths[c] = std::max(widths[c], std::min(kMaxColumnWidth, DisplayWidth(source.Cell(r, c))));
            }
        }
    }
    return widths;
}

void AppendCell(std::string& line, std::string_view cell, std::size_t width, CellKind kind) {
    const std::string text = FitToWidth(cell, width);
    const std::string padding(width - std::min(width, DisplayWidth(text)), ' ');
    line += kind == CellKind::Number ? padding + text : text + padding;
}

void WriteLine(std::string line, std::FILE* out) {
    line.erase(line.find_last_not_of(' ') + 1);
    line += '\n';
    std::fwrite(line.data(), 1, line.size(), out);
}

} // namespace

std::size_t DisplayWidth(std::string_view text) {
    std::size_t width = 0;
    for (std::size_t at = 0; at < text.size();) {
        utf8proc_int32_t code_point = 0;
        at += NextCharacter(text.substr(at), code_point);
        width += CharacterWidth(code_point);
    }
    return width;
}

std::string FitToWidth(std::string_view text, std::size_t width) {
    const bool fits = DisplayWidth(text) <= width;
    const std::size_t room = fits ? width : width - std::min<std::size_t>(width, 1);
    std::string result;
    std::size_t used = 0;
    for (std::size_t at = 0; at < text.size();) {
        utf8proc_int32_t code_point = 0;
        const std::size_t bytes = NextCharacter(text.substr(at), code_point);
        if (used + CharacterWidth(code_point) > room) {
            break;
        }
        used += CharacterWidth(code_point);
        result += IsControl(code_point) ? std::string_view(" ") : text.substr(at, bytes);
        at += bytes;
    }
    return fits ? result : result.append(kEllipsis);
}

void WriteTextTable(const TableSource& source, std::FILE* out) {
    const std::vector<std::size_t> widths = MeasureColumns(source);
    std::string heading;
    std::string rule;
    for (std::size_t c = 0; c < widths.size(); ++c) {
        heading += c == 0 ? "" : "  ";
        rule += c == 0 ? "" : "  ";
        AppendCell(heading, source.Columns()[c].name, widths[c], source.Columns()[c].kind);
        rule += std::string(widths[c], '-');
    }
    WriteLine(heading, out);
    WriteLine(rule, out);
    for (std::size_t r = 0; r < source.RowCount(); ++r) {
        std::string line;
        for (std::size_t c = 0; c < widths.size(); ++c) {
            line += c == 0 ? "" : "  ";
            AppendCell(line, source.Cell(r, c), widths[c], source.Columns()[c].kind);
        }
        WriteLine(std::move(line), out);
    }
}

} // namespace Kestrona::Tool
