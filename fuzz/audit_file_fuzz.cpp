#include "data/audit_file.h"
#include "fuzz.h"

#include <kestrona/unicode.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

// Any bytes read as an audit file. Rows and faults belong to lines of the file, rows are texts as they go to the
// output, and a file behind whose last entry another one is appended keeps the rows that it had.

namespace {

using namespace Kestrona;
using namespace Kestrona::Fuzz;
using namespace Kestrona::Tool;

bool SameRow(const AuditRow& a, const AuditRow& b) {
    return a.record == b.record && a.format == b.format && a.what == b.what && a.user == b.user && a.time == b.time &&
           a.field == b.field && a.from == b.from && a.to == b.to;
}

void CheckRow(const AuditRow& row) {
    Require(!row.record.empty() && row.record.find_first_not_of("0123456789") == std::string::npos);
    Require(row.what == "Created" || row.what == "Changed");
    for (const std::string* text : {&row.format, &row.user, &row.time, &row.field, &row.from, &row.to}) {
        Require(IsValidUtf8(*text));
    }
}

void CheckFile(const AuditFile& file, std::size_t units) {
    Require(file.rows.size() <= units && file.faults.size() <= units + 1);
    std::ranges::for_each(file.rows, CheckRow);
    for (const AuditFault& fault : file.faults) {
        Require(fault.line >= 1 && fault.line <= units + 1 && !fault.problem.empty());
    }
    Require(std::ranges::is_sorted(file.faults, {}, &AuditFault::line));
}

void CheckAppended(const AuditFile& file, std::string bytes, bool little) {
    const auto append = [&](std::string_view text) {
        for (const char c : text) {
            bytes += little ? c : '\0';
            bytes += little ? '\0' : c;
        }
    };
    const std::string_view line_end = little ? std::string_view("\n\0", 2) : std::string_view("\0\n", 2);
    if (!bytes.ends_with(line_end)) {
        append("\n");
    }
    append("Record 1 in format 'F' Created by 'U' at T\n");
    const AuditFile longer = ReadAudit(bytes);
    Require(longer.rows.size() == file.rows.size() + 1 && longer.rows.back().user == "U");
    Require(std::equal(file.rows.begin(), file.rows.end(), longer.rows.begin(), SameRow));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const AuditFile file = ReadAudit(bytes);
    CheckFile(file, size / 2);
    const bool little = bytes.starts_with("\xFF\xFE");
    if (little || bytes.starts_with("\xFE\xFF")) {
        CheckAppended(file, std::string(bytes.substr(0, size / 2 * 2)), little);
    } else {
        Require(file.rows.empty() && file.faults.size() == 1);
    }
    return 0;
}
