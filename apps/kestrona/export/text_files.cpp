// Implements: WriteCsvFolder, WriteCsvTable, WriteJsonFile, WriteJsonTables.
#include "export/draft.h"
#include "export/export_table.h"
#include "output/delimited_forms.h"
#include "output/json_forms.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <cstdio>
#include <filesystem>
#include <system_error>

namespace Kestrona::Tool {
namespace {

namespace fs = std::filesystem;

std::optional<Problem> WriteCsvFile(const ExportTable& table, const fs::path& path) {
    Draft draft(path.string());
    if (draft.File() == nullptr) {
        return draft.Failure();
    }
    WriteCsv(*table.source, draft.File());
    return draft.Publish();
}

void WriteTables(const std::vector<ExportTable>& tables, std::FILE* out) {
    std::fputs("{\"version\":1,\"tables\":{", out);
    const char* separator = "\n";
    for (const ExportTable& table : tables) {
        std::fputs((separator + nlohmann::json(table.name).dump() + ':').c_str(), out);
        WriteJson(*table.source, out);
        separator = ",";
    }
    std::fputs("}}\n", out);
}

ExportResult Flushed(std::FILE* out) {
    if (std::fflush(out) == 0 && std::ferror(out) == 0) {
        return {};
    }
    return {Problem{Code::OutputFailed, "the output cannot be written"}};
}

} // namespace

ExportResult WriteCsvFolder(const std::vector<ExportTable>& tables, const std::string& folder) {
    for (const ExportTable& table : tables) {
        if (table.name.find('/') != std::string::npos) {
            return {Problem{Code::NoFileName, fmt::format("'{}' cannot be the name of a file", table.name)}};
        }
    }
    std::error_code failure;
    fs::create_directories(folder, failure);
    if (failure) {
        return {
            Problem{Code::CannotWrite, fmt::format("the folder '{}' cannot be made: {}", folder, failure.message())}};
    }
    for (const ExportTable& table : tables) {
        if (auto error = WriteCsvFile(table, fs::path(folder) / (table.name + ".csv"))) {
            return {error};
        }
    }
    return {};
}

ExportResult WriteJsonTables(const std::vector<ExportTable>& tables, std::FILE* out) {
    WriteTables(tables, out);
    return Flushed(out);
}

ExportResult WriteCsvTable(const ExportTable& table, std::FILE* out) {
    WriteCsv(*table.source, out);
    return Flushed(out);
}

ExportResult WriteJsonFile(const std::vector<ExportTable>& tables, const std::string& path) {
    Draft draft(path);
    if (draft.File() == nullptr) {
        return {draft.Failure()};
    }
    WriteTables(tables, draft.File());
    return {draft.Publish()};
}

} // namespace Kestrona::Tool
