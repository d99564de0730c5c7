#include "output/text_table.h"

#include "output/terminal.h"

#include <utf8proc.h>

#include <algorithm>
#include <numeric>
#include <utility>

namespace Kestrona::Tool {
namespace {

constexpr std::size_t kLeastTextWidth = 8;
constexpr std::size_t kLeastNumberWidth = 24;
constexpr std::string_view kGap = "  ";
constexpr std::string_view kEllipsis = "\xE2\x80\xA6";

/// Decodes the character at the start of `text` into `code_point`; returns its bytes, 1 for a byte that is no UTF-8.
std::size_t NextCharacter(std::string_view text, utf8proc_int32_t& code_point) {
    if (!text.empty() && static_cast<unsigned char>(text.front()) < 0x80) { // most texts are of such characters alone
        code_point = static_cast<unsigned char>(text.front());
        return 1;
    }
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
    const bool is_single = code_point < 0x80 || IsControl(code_point);
    return is_single ? 1 : static_cast<std::size_t>(std::max(0, utf8proc_charwidth(code_point)));
}

std::vector<std::size_t> MeasureColumns(const TableSource& source) {
    std::vector<std::size_t> widths;
    for (const OutputColumn& column : source.Columns()) {
        widths.push_back(DisplayWidth(column.name));
    }
    for (std::size_t r = 0; r < source.RowCount(); ++r) {
        for (std::size_t c = 0; c < widths.size(); ++c) {
            widths[c] = std::max(widths[c], DisplayWidth(source.Cell(r, c)));
        }
    }
    return widths;
}

/// How far a column may be narrowed: a part of a number misleads where a part of a text does not.
std::size_t LeastWidth(CellKind kind, std::size_t natural) {
    return std::min(natural, kind == CellKind::Number ? kLeastNumberWidth : kLeastTextWidth);
}

std::size_t TotalWidth(const std::vector<std::size_t>& widths) {
    return std::accumulate(widths.begin(), widths.end(), kGap.size() * (widths.size() - 1));
}

/// The widths of the columns, at most `most` each where they can be narrowed that far.
std::vector<std::size_t> Narrowed(const TableSource& source, std::vector<std::size_t> widths, std::size_t most) {
    for (std::size_t c = 0; c < widths.size(); ++c) {
        widths[c] = std::max(std::min(widths[c], most), LeastWidth(source.Columns()[c].kind, widths[c]));
    }
    return widths;
}

/// Narrows the wide columns first, then drops the last ones. One column always stays.
std::vector<std::size_t> Fit(const TableSource& source, std::vector<std::size_t> natural, std::size_t width) {
    if (width == 0 || natural.empty()) {
        return natural;
    }
    while (natural.size() > 1 && TotalWidth(Narrowed(source, natural, 0)) > width) {
        natural.pop_back();
    }
    std::size_t most = width;
    while (most > 0 && TotalWidth(Narrowed(source, natural, most)) > width) {
        --most;
    }
    std::vector<std::size_t> widths = Narrowed(source, std::move(natural), most);
    widths.front() = std::min(widths.front(), width);
    return widths;
}

/// Writes the lines of a table and counts what does not fit.
class TableLines {
public:
    TableLines(const TableSource& source, std::FILE* out, const TableLook& look)
        : source_(source),
          out_(out),
          look_(look),
          widths_(Fit(source, MeasureColumns(source), look.width)) {}

    TableCuts Write() {
        std::string rule;
        for (std::size_t c = 0; c < widths_.size(); ++c) {
            AppendCell(source_.Columns()[c].name, c);
            rule += (c == 0 ? std::string_view() : kGap);
            rule += std::string(widths_[c], '-');
        }
        WriteLine(Paint::None);
        line_ = std::move(rule);
        WriteLine(Paint::None);
        for (std::size_t r = 0; r < source_.RowCount(); ++r) {
            for (std::size_t c = 0; c < widths_.size(); ++c) {
                AppendCell(source_.Cell(r, c), c);
            }
            WriteLine(look_.color ? source_.RowPaint(r) : Paint::None);
        }
        for (std::size_t c = widths_.size(); c < source_.Columns().size(); ++c) {
            cuts_.columns.push_back(source_.Columns()[c].name);
        }
        return std::move(cuts_);
    }

private:
    void AppendCell(std::string_view cell, std::size_t column) {
        const std::size_t full = DisplayWidth(cell);
        const std::size_t width = widths_[column];
        cuts_.cells += full > width ? 1 : 0;
        const std::string text = FitToWidth(cell, width);
        const std::string padding(width - std::min(width, full > width ? DisplayWidth(text) : full), ' ');
        line_ += column == 0 ? std::string_view() : kGap;
        line_ += source_.Columns()[column].kind == CellKind::Number ? padding + text : text + padding;
    }

    void WriteLine(Paint paint) {
        line_.erase(line_.find_last_not_of(' ') + 1);
        const std::string painted = Painted(line_, paint) + '\n';
        std::fwrite(painted.data(), 1, painted.size(), out_);
        line_.clear();
    }

    const TableSource& source_;
    std::FILE* out_;
    TableLook look_;
    std::vector<std::size_t> widths_;
    TableCuts cuts_;
    std::string line_;
};

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

TableCuts WriteTextTable(const TableSource& source, std::FILE* out, const TableLook& look) {
    return TableLines(source, out, look).Write();
}

} // namespace Kestrona::Tool
