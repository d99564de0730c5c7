#include "commands/file_problems.h"
#include "commands/key_commands.h"
#include "data/audit_file.h"
#include "exit_codes.h"
#include "output/message.h"
#include "output/text_output.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <optional>
#include <utility>

namespace Kestrona::Tool {
namespace {

/// Faulty lines that are told one by one; the rest is counted.
constexpr std::size_t kMostFaultsTold = 50;

std::optional<std::string> ReadBytes(const std::string& path, std::string& error) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        error = std::strerror(errno);
        return std::nullopt;
    }
    std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    return bytes;
}

void TellFaults(const std::string& path, const std::vector<AuditFault>& faults) {
    for (std::size_t i = 0; i < faults.size() && i < kMostFaultsTold; ++i) {
        TellError(Problem{Code::BadAuditLine, faults[i].problem}, fmt::format("{}:{}", path, faults[i].line));
    }
    if (faults.size() > kMostFaultsTold) {
        fmt::print(stderr, "{}: {} more faulty lines\n", path, faults.size() - kMostFaultsTold);
    }
}

} // namespace

int RunAuditShow(const AuditShowOptions& options) {
    if (const int code = RefuseUnreadable(options.file); code != kExitGood) {
        return code;
    }
    std::string error;
    const std::optional<std::string> bytes = ReadBytes(options.file, error);
    if (!bytes) {
        TellError(Code::CannotRead, "'{}' cannot be read: {}", options.file, error);
        return kExitUnreadableInput;
    }
    AuditFile file = ReadAudit(*bytes);
    ListSource table(
        {{"Record", CellKind::Number}, {"Format"}, {"What"}, {"User"}, {"Time"}, {"Field"}, {"From"}, {"To"}});
    for (AuditRow& row : file.rows) {
        table.AddRow({std::move(row.record), std::move(row.format), std::move(row.what), std::move(row.user),
                      std::move(row.time), std::move(row.field), std::move(row.from), std::move(row.to)});
    }
    TellFaults(options.file, file.faults);
    if (const int code = OutputCode(WriteTable(table, options.form, stdout)); code != kExitGood) {
        return code;
    }
    return file.faults.empty() ? kExitGood : kExitDamagedInput;
}

} // namespace Kestrona::Tool
