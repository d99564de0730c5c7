#include "commands/import_folders.h"

#include "data/data_import.h"
#include "data/matrix_import.h"
#include "data/reference_import.h"
#include "exit_codes.h"
#include "output/message.h"

#include <kestrona/unicode.h>

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <iterator>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;

/// Rejections that are told one by one for each file; the rest is counted.
constexpr std::size_t kMostRejectionsTold = 50;

void TellRejections(const ImportedFile& file, const std::vector<Rejection>& rejections) {
    std::size_t told = 0;
    std::size_t all = 0;
    for (const Rejection& rejection : rejections) {
        if (rejection.file != file.file || ++all > kMostRejectionsTold) {
            continue;
        }
        ++told;
        const std::string column = rejection.column.empty() ? "row" : fmt::format("column '{}'", rejection.column);
        std::string what = fmt::format("rejected: {}: '{}' {}", column, rejection.value, rejection.reason.what);
        std::ranges::replace_if(
            what, [](char c) { return c >= 0 && c < ' '; }, ' ');
        TellError(Problem{rejection.reason.code, what}, fmt::format("{}:{}", rejection.file, rejection.line));
    }
    if (all > told) {
        fmt::print(stderr, "{}: {} more rejected cells of the same file\n", file.file, all - told);
    }
}

/// Prints what became of each file. Returns the worst exit code.
int TellImport(IMemoryResidentData& store, const std::string& folder, const ImportReport& report) {
    if (!report.error.empty()) {
        TellError(Code::CannotRead, "the folder '{}' cannot be read: {}", folder, report.error);
        return kExitUnreadableInput;
    }
    if (report.files.empty()) {
        TellWarning(Code::NoFileForFormat, "{}: no file bears the name of a format", folder);
    }
    int code = kExitGood;
    for (const ImportedFile& file : report.files) {
        for (const std::string& note : file.notes) {
            fmt::print(stderr, "{}: {}\n", file.file, note);
        }
        for (const Problem& warning : file.warnings) {
            TellWarning(warning, file.file);
        }
        TellRejections(file, report.rejections);
        fmt::print(stderr, "{}: {} records into {}, {} rows rejected\n", file.file, file.rows,
                   ToUtf8(store.GetDbName(file.format)), file.rejected_rows);
        if (file.error) {
            TellError(*file.error, file.file);
            code = std::max<int>(code, file.unreadable ? kExitUnreadableInput : kExitDamagedInput);
        } else if (file.rejected_rows > 0) {
            code = std::max<int>(code, kExitFindings);
        }
    }
    return code;
}

/// Prints the cells that did not fit in the end. Returns whether there are any.
bool TellPending(const std::vector<ImportedFile>& files, const std::vector<Rejection>& rejections) {
    for (const ImportedFile& file : files) {
        TellRejections(file, rejections);
    }
    return !rejections.empty();
}

void TellReferences(IMemoryResidentData& store) {
    for (const DanglingReferences& result : CheckReferences(store)) {
        if (result.dangling > 0) {
            TellWarning(Code::DanglingReferences, "{}.{}: {} of {} references have no target in {}",
                        ToUtf8(store.GetDbName(result.format)),
                        ToUtf8(store.GetColumnName(result.format, result.field)), result.dangling, result.set,
                        ToUtf8(store.GetDbName(store.GetDbTable(result.format, result.field))));
        }
    }
}

} // namespace

int ImportFolders(IMemoryResidentData& store, const std::vector<std::string>& folders, TextEncoding encoding) {
    const auto start = std::chrono::steady_clock::now();
    int code = kExitGood;
    std::vector<ImportedFile> files;
    for (const std::string& folder : folders) {
        ImportReport report = ImportFolder(store, folder, encoding);
        code = std::max(code, TellImport(store, folder, report));
        std::ranges::move(report.files, std::back_inserter(files));
    }
    std::vector<Rejection> rejections = ResolveReferences(store, files);
    std::ranges::move(FillMatrices(store, files), std::back_inserter(rejections));
    if (TellPending(files, rejections)) {
        code = std::max<int>(code, kExitFindings);
    }
    TellReferences(store);
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    fmt::print(stderr, "read in {:.2f} s\n", seconds.count());
    return code;
}

void ReimportFolders(IMemoryResidentData& store, const std::vector<std::string>& folders, TextEncoding encoding) {
    std::vector<ImportedFile> files;
    for (const std::string& folder : folders) {
        std::ranges::move(ImportFolder(store, folder, encoding).files, std::back_inserter(files));
    }
    ResolveReferences(store, files);
    FillMatrices(store, files);
}

} // namespace Kestrona::Tool
