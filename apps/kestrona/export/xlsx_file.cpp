// Implements: WriteXlsxFile.
#include "data/cell_text.h"
#include "export/draft.h"
#include "export/export_table.h"
#include "export/xlsx_text.h"
#include "output/number_cell.h"

#include <fmt/format.h>
#include <xlsxwriter.h>

#include <algorithm>
#include <cmath>

namespace Kestrona::Tool {
namespace {

/// 1 March 1900. Spreadsheets count days as the data module does from here on; before, they have one day too many. What
/// is below 1 is a time of day.
constexpr double kFirstDate = 61.0;
constexpr double kHeadingWidth = 3.0; ///< Room for the button of the filter.
constexpr double kDateWidth = 19.0;
constexpr double kLeastWidth = 10.0;
constexpr double kMostWidth = 40.0;

struct Formats {
    lxw_format* heading;
    lxw_format* date;
    lxw_format* time;
    lxw_format* time_of_day;
};

Formats AddFormats(lxw_workbook* workbook) {
    const Formats formats{workbook_add_format(workbook), workbook_add_format(workbook), workbook_add_format(workbook),
                          workbook_add_format(workbook)};
    format_set_bold(formats.heading);
    format_set_num_format(formats.date, "yyyy-mm-dd");
    format_set_num_format(formats.time, "yyyy-mm-dd hh:mm:ss");
    format_set_num_format(formats.time_of_day, "hh:mm:ss");
    return formats;
}

/// One sheet, whose cells are written row by row.
class Sheet {
public:
    Sheet(lxw_worksheet* sheet, const ExportTable& table, const Formats& formats)
        : sheet_(sheet),
          table_(table),
          formats_(formats) {}

    /// Returns whether everything could be written.
    [[nodiscard]] bool Write() {
        const std::size_t rows = table_.source->RowCount();
        WriteHeading();
        for (std::size_t row = 0; row < rows; ++row) {
            for (std::size_t column = 0; column < table_.columns.size(); ++column) {
                WriteCell(static_cast<lxw_row_t>(row + 1), static_cast<lxw_col_t>(column),
                          table_.source->Cell(row, column), table_.columns[column].type);
            }
        }
        worksheet_freeze_panes(sheet_, 1, 0);
        if (!table_.columns.empty()) {
            Keep(worksheet_autofilter(sheet_, 0, 0, static_cast<lxw_row_t>(rows),
                                      static_cast<lxw_col_t>(table_.columns.size() - 1)));
        }
        // The library does not look whether its temporary file took the rows.
        return sound_ && std::fflush(sheet_->optimize_tmpfile) == 0 && std::ferror(sheet_->optimize_tmpfile) == 0;
    }

    /// The number of texts that are longer than a cell can be.
    [[nodiscard]] std::size_t CutTexts() const { return cut_texts_; }

private:
    void Keep(lxw_error error) { sound_ = sound_ && error == LXW_NO_ERROR; }

    void WriteHeading() {
        for (std::size_t c = 0; c < table_.columns.size(); ++c) {
            const auto column = static_cast<lxw_col_t>(c);
            const std::string& name = table_.source->Columns()[c].name;
            const double wanted = std::max(static_cast<double>(name.size()) + kHeadingWidth,
                                           table_.columns[c].type == ExportType::Date ? kDateWidth : kLeastWidth);
            Keep(worksheet_set_column(sheet_, column, column, std::min(wanted, kMostWidth), nullptr));
            WriteText(0, column, name, formats_.heading);
        }
    }

    void WriteCell(lxw_row_t row, lxw_col_t column, const std::string& cell, ExportType type) {
        if (cell.empty()) {
            return;
        }
        const std::optional<double> date = type == ExportType::Date ? ParseIsoDate(cell) : std::nullopt;
        if (lxw_format* const format = date ? FormatOf(*date) : nullptr; format != nullptr) {
            Keep(worksheet_write_number(sheet_, row, column, *date, format));
            return;
        }
        const bool is_number = type == ExportType::Integer || type == ExportType::Real;
        const std::optional<double> number = is_number ? NumberOfCell(cell) : std::nullopt;
        if (number) {
            Keep(worksheet_write_number(sheet_, row, column, *number, nullptr));
        } else {
            WriteText(row, column, cell, nullptr);
        }
    }

    /// Null for a date that a workbook does not know.
    [[nodiscard]] lxw_format* FormatOf(double date) const {
        if (date >= 0.0 && date < 1.0) {
            return formats_.time_of_day;
        }
        if (date < kFirstDate) {
            return nullptr;
        }
        return date == std::trunc(date) ? formats_.date : formats_.time;
    }

    void WriteText(lxw_row_t row, lxw_col_t column, const std::string& text, lxw_format* format) {
        bool was_cut = false;
        const std::string cell = XlsxText(text, was_cut);
        cut_texts_ += static_cast<std::size_t>(was_cut);
        Keep(worksheet_write_string(sheet_, row, column, cell.c_str(), format));
    }

    lxw_worksheet* sheet_;
    const ExportTable& table_;
    Formats formats_;
    std::size_t cut_texts_ = 0;
    bool sound_ = true;
};

std::optional<Problem> WhatDoesNotFit(const std::vector<ExportTable>& tables) {
    for (const ExportTable& table : tables) {
        const std::size_t rows = table.source->RowCount();
        if (rows >= kSheetRows || table.columns.size() > kSheetColumns) {
            return Problem{
                Code::SheetTooSmall,
                fmt::format("{} has {} records with {} fields, and a sheet holds {} with {}; nothing is written",
                            table.name, rows, table.columns.size(), kSheetRows - 1, kSheetColumns)};
        }
    }
    return {};
}

/// Fills all sheets. Returns whether everything could be written.
bool Fill(lxw_workbook* workbook, const std::vector<ExportTable>& tables, ExportResult& result) {
    const Formats formats = AddFormats(workbook);
    UniqueNames names(kLongestSheetName);
    for (const ExportTable& table : tables) {
        const std::string name = SheetName(table.name, names);
        if (name != table.name) {
            result.notes.push_back(fmt::format("the sheet of '{}' is called '{}'", table.name, name));
        }
        lxw_worksheet* const added = workbook_add_worksheet(workbook, name.c_str());
        if (added == nullptr) {
            return false;
        }
        Sheet sheet(added, table, formats);
        if (!sheet.Write()) {
            return false;
        }
        if (sheet.CutTexts() > 0) {
            result.lossy = true;
            result.warnings.push_back(
                {Code::TextsCut, fmt::format("{}: {} texts are cut off after {} characters, the most that a cell holds",
                                             table.name, sheet.CutTexts(), kLongestCell)});
        }
    }
    return true;
}

} // namespace

ExportResult WriteXlsxFile(const std::vector<ExportTable>& tables, const std::string& path) {
    if (auto problem = WhatDoesNotFit(tables)) {
        return {problem};
    }
    Draft draft(path);
    if (draft.File() == nullptr) {
        return {draft.Failure()};
    }
    lxw_workbook_options options{};
    options.constant_memory = LXW_TRUE;
    const std::string draft_path = draft.Path();
    lxw_workbook* const workbook = workbook_new_opt(draft_path.c_str(), &options);
    ExportResult result;
    const bool filled = workbook != nullptr && Fill(workbook, tables, result);
    const lxw_error error = workbook != nullptr ? workbook_close(workbook) : LXW_ERROR_MEMORY_MALLOC_FAILED;
    if (!filled || error != LXW_NO_ERROR) {
        const char* const reason = error != LXW_NO_ERROR ? lxw_strerror(error) : "a sheet could not be filled";
        result.error = Problem{Code::CannotWrite, fmt::format("'{}' cannot be written: {}", path, reason)};
    } else {
        result.error = draft.Publish();
    }
    return result;
}

} // namespace Kestrona::Tool
