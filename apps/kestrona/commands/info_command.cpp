#include "commands/file_commands.h"
#include "commands/file_problems.h"
#include "data/compiled_head.h"
#include "output/message.h"
#include "output/property_sheet.h"
#include "output/text_output.h"

#include <kestrona/compilation_state.h>
#include <kestrona/host/snapshot.h>
#include <kestrona/unicode.h>

#include <fmt/chrono.h>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cstdio>
#include <ctime>
#include <optional>
#include <string>

namespace Kestrona::Tool {
namespace {

using Configuration::Compiled::ConfigurationSourceType;
using Configuration::Compiled::VersionCheckResult;
using Host::FileKind;
using Host::SnapshotInfo;
using Host::SnapshotTable;

constexpr std::int64_t kMillisecondsPerSecond = 1000;
/// The end of the year 9999; whatever a file says beyond is no time.
constexpr std::int64_t kLastSecond = 253402300799;

std::string TimeText(std::int64_t milliseconds) {
    const std::int64_t seconds = milliseconds / kMillisecondsPerSecond;
    if (milliseconds < 0 || seconds > kLastSecond) {
        return fmt::format("{} ms after the beginning of 1970", milliseconds);
    }
    return fmt::format("{:%Y-%m-%d %H:%M:%S} UTC", fmt::gmtime(static_cast<std::time_t>(seconds)));
}

std::string BytesText(std::int64_t size) {
    return fmt::format("{} bytes", size);
}

std::int64_t RecordsOf(const SnapshotInfo& info) {
    std::int64_t records = 0;
    for (const SnapshotTable& table : info.tables) {
        records += table.records;
    }
    return records;
}

void Describe(const SnapshotInfo& info, PropertySheet& sheet) {
    sheet.Add("Kind", info.compressed ? "compressed snapshot" : "snapshot");
    sheet.Add("Layout", std::to_string(info.layout));
    sheet.Add("Saved at", TimeText(info.saved_at));
    sheet.Add("Written by version", fmt::format("{}", fmt::join(info.version, ".")));
    sheet.Add("Tables", std::to_string(info.tables.size()));
    sheet.Add("Records", std::to_string(RecordsOf(info)));
    sheet.Add("Matrix numbers", std::to_string(info.matrix_count));
    sheet.Add("Definition", BytesText(info.definition_size));
    sheet.Add("File", BytesText(info.file_size));
    sheet.Add("Decompressed", info.compressed ? BytesText(info.uncompressed_size) : "");
}

std::string ReadableText(VersionCheckResult check) {
    switch (check) {
    case VersionCheckResult::Current:
        return "yes";
    case VersionCheckResult::Newer:
        return "no, newer than this program";
    case VersionCheckResult::Older:
    case VersionCheckResult::FormatTooOld:
        return "no, too old";
    case VersionCheckResult::NoVersion:
        break;
    }
    return "no";
}

std::string TypeText(std::int32_t type) {
    switch (static_cast<ConfigurationSourceType>(type)) {
    case ConfigurationSourceType::Cnf:
        return "configuration (CNF)";
    case ConfigurationSourceType::Runtime:
        return "runtime";
    case ConfigurationSourceType::Oem:
        return "OEM";
    case ConfigurationSourceType::None:
        break;
    }
    return std::to_string(type);
}

void Describe(const CompiledHead& head, PropertySheet& sheet) {
    sheet.Add("Kind", "compiled definition");
    sheet.Add("Banner", head.banner);
    sheet.Add("Texts", head.wide ? "16-bit" : "8-bit");
    sheet.Add("Format version", fmt::format("{:.1f}", head.version.FormatVersion));
    if (head.version.FileVersion.HasValue()) {
        const Version version = head.version.FileVersion.get_Value();
        sheet.Add("Version", fmt::format("{}.{}", version.major, version.minor));
    }
    sheet.Add("Can be read", ReadableText(head.check));
    if (head.check == VersionCheckResult::Current) {
        sheet.Add("Type", TypeText(head.type));
    }
    sheet.Add("File", BytesText(head.file_size));
}

class TableList : public ListSource {
public:
    explicit TableList(const SnapshotInfo& info)
        : ListSource({{"Table"},
                      {"Dataset"},
                      {"Fields", CellKind::Number},
                      {"Records", CellKind::Number},
                      {"Offset", CellKind::Number},
                      {"Size", CellKind::Number}}) {
        for (const SnapshotTable& table : info.tables) {
            AddRow({ToUtf8(table.name), ToUtf8(table.dataset), std::to_string(table.fields),
                    std::to_string(table.records), std::to_string(table.offset), std::to_string(table.size)});
        }
    }
};

int Print(const char* report, const TableSource& table, OutputForm form) {
    return OutputCode(WriteReport(report, table, form, stdout));
}

/// People get sheet and list in one go; programs get one table.
int PrintSnapshot(const SnapshotInfo& info, const InfoOptions& options) {
    const TableList list(info);
    if (options.tables) {
        return Print("tables", list, options.form);
    }
    PropertySheet sheet;
    Describe(info, sheet);
    if (const int code = Print("info", sheet, options.form); code != kExitGood) {
        return code;
    }
    if (options.form != OutputForm::Table && options.form != OutputForm::Markdown) {
        return kExitGood;
    }
    fmt::print("\n");
    return Print("tables", list, options.form);
}

int InfoOfCompiled(const InfoOptions& options) {
    if (options.tables) {
        TellError(Code::NoTableList, "'{}' is a compiled definition and has no list of tables", options.file);
        return kExitUsage;
    }
    Host::FileProblem problem;
    const auto head = ReadCompiledHead(options.file, problem);
    if (!head) {
        return TellProblem(problem);
    }
    PropertySheet sheet;
    Describe(*head, sheet);
    return Print("info", sheet, options.form);
}

} // namespace

int RunInfo(const InfoOptions& options) {
    if (Host::KindOfFile(options.file) == FileKind::CompiledDefinition) {
        return InfoOfCompiled(options);
    }
    Host::FileProblem problem;
    const auto info = Host::ReadSnapshotInfo(options.file, problem);
    if (problem.fault == Host::FileFault::WrongMarker) {
        problem.expected += " or a compiled definition";
    }
    return info ? PrintSnapshot(*info, options) : TellProblem(problem);
}

} // namespace Kestrona::Tool
