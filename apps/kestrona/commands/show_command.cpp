#include "commands/commands.h"
#include "commands/session.h"
#include "data/cell_text.h"
#include "data/data_import.h"
#include "exit_codes.h"

#include <kestrona/unicode.h>

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <limits>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;

/// Rejections that are told one by one for each file; the rest is counted.
constexpr std::size_t kMostRejectionsTold = 50;

/// The records of a format, straight from the store.
class RecordSource : public TableSource {
public:
    RecordSource(IMemoryResidentData& store, std::int32_t format, std::size_t limit) : store_(store), format_(format) {
        for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
            if (!KeepsCells(store, format, field)) {
                left_out_ += (left_out_.empty() ? "" : ", ") + ToUtf8(store.GetColumnName(format, field));
                continue;
            }
            const ValueForm form = FormOfField(store, format, field);
            const bool is_text = form == ValueForm::Text || form == ValueForm::Date;
            fields_.push_back({field, form});
            columns_.push_back(
                {ToUtf8(store.GetColumnName(format, field)), is_text ? CellKind::Text : CellKind::Number});
        }
        const auto records = static_cast<std::size_t>(store.GetCurrentDbSize(format));
        rows_ = limit == 0 ? records : std::min(limit, records);
    }

    [[nodiscard]] const std::vector<OutputColumn>& Columns() const override { return columns_; }

    [[nodiscard]] std::size_t RowCount() const override { return rows_; }

    [[nodiscard]] std::string Cell(std::size_t row, std::size_t column) const override {
        const auto& [field, form] = fields_[column];
        return CellText(store_, format_, field, static_cast<std::int32_t>(row), form);
    }

    /// Names of the fields without values of their own.
    [[nodiscard]] const std::string& LeftOut() const { return left_out_; }

private:
    struct Field {
        std::int32_t field;
        ValueForm form;
    };

    IMemoryResidentData& store_;
    std::int32_t format_;
    std::vector<Field> fields_;
    std::vector<OutputColumn> columns_;
    std::size_t rows_ = 0;
    std::string left_out_;
};

void TellRejections(const ImportedFile& file, const std::vector<Rejection>& rejections) {
    std::size_t told = 0;
    std::size_t all = 0;
    for (const Rejection& rejection : rejections) {
        if (rejection.file != file.file || ++all > kMostRejectionsTold) {
            continue;
        }
        ++told;
        const std::string column = rejection.column.empty() ? "row" : fmt::format("column '{}'", rejection.column);
        fmt::print(stderr, "{}:{}: rejected: {}: '{}' {}\n", rejection.file, rejection.line, column, rejection.value,
                   rejection.reason);
    }
    if (all > told) {
        fmt::print(stderr, "{}: {} more rejected cells of the same file\n", file.file, all - told);
    }
}

/// Prints what became of each file. Returns the worst exit code.
int TellImport(IMemoryResidentData& store, const std::string& folder, const ImportReport& report) {
    if (!report.error.empty()) {
        fmt::print(stderr, "kestrona: error: {}: {}\n", folder, report.error);
        return kExitUnreadableInput;
    }
    if (report.files.empty()) {
        fmt::print(stderr, "kestrona: warning: {}: no file bears the name of a format\n", folder);
    }
    int code = kExitGood;
    for (const ImportedFile& file : report.files) {
        for (const std::string& note : file.notes) {
            fmt::print(stderr, "{}: {}\n", file.file, note);
        }
        TellRejections(file, report.rejections);
        fmt::print(stderr, "{}: {} records into {}, {} rows rejected\n", file.file, file.rows,
                   ToUtf8(store.GetDbName(file.format)), file.rejected_rows);
        if (!file.error.empty()) {
            fmt::print(stderr, "kestrona: error: {}: {}\n", file.file, file.error);
            code = std::max<int>(code, file.unreadable ? kExitUnreadableInput : kExitDamagedInput);
        } else if (file.rejected_rows > 0) {
            code = std::max<int>(code, kExitFindings);
        }
    }
    return code;
}

void TellReferences(IMemoryResidentData& store) {
    for (const DanglingReferences& result : CheckReferences(store)) {
        if (result.dangling > 0) {
            fmt::print(stderr, "{}.{}: {} of {} references have no target in {}\n",
                       ToUtf8(store.GetDbName(result.format)), ToUtf8(store.GetColumnName(result.format, result.field)),
                       result.dangling, result.set,
                       ToUtf8(store.GetDbName(store.GetDbTable(result.format, result.field))));
        }
    }
}

int ImportFolders(IMemoryResidentData& store, const std::vector<std::string>& folders) {
    const auto start = std::chrono::steady_clock::now();
    int code = kExitGood;
    for (const std::string& folder : folders) {
        code = std::max(code, TellImport(store, folder, ImportFolder(store, folder)));
    }
    TellReferences(store);
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    fmt::print(stderr, "read in {:.2f} s\n", seconds.count());
    return code;
}

} // namespace

int RunShow(const ShowOptions& options) {
    Session session;
    if (const int code = session.Load(options.definition); code != kExitGood) {
        return code;
    }
    auto& store = session.Store();
    const std::int32_t format = session.FindFormat(options.table);
    if (format < 0) {
        return kExitUsage;
    }
    const int code = ImportFolders(store, options.folders);
    if (code == kExitUnreadableInput) {
        return code;
    }
    const RecordSource source(store, format, options.limit);
    if (!WriteTable(source, options.form, stdout)) {
        fmt::print(stderr, "kestrona: error: the output cannot be written\n");
        return kExitUnreadableInput;
    }
    if (!source.LeftOut().empty()) {
        fmt::print(stderr, "fields without stored values of their own are left out: {}\n", source.LeftOut());
    }
    fmt::print(stderr, "{} of {} records of {}; peak memory {:.1f} MB\n", source.RowCount(),
               store.GetCurrentDbSize(format), options.table, static_cast<double>(PeakMemory()) / 1.0e6);
    return code;
}

} // namespace Kestrona::Tool
