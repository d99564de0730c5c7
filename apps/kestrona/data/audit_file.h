#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// \file
/// Reading what the audit log wrote.

namespace Kestrona::Tool {

/// One changed field of one entry. All texts are UTF-8.
struct AuditRow {
    std::string record; ///< Counted from 1, as it was at that time.
    std::string format;
    std::string what; ///< "Created" or "Changed".
    std::string user;
    std::string time;
    std::string field; ///< "" for an entry without fields.
    std::string from;  ///< "" for a created record. The elements of a list are divided by semicolons.
    std::string to;
};

/// A line that belongs to no entry.
struct AuditFault {
    std::size_t line = 0; ///< From 1.
    std::string problem;
};

struct AuditFile {
    std::vector<AuditRow> rows;
    std::vector<AuditFault> faults;
};

/// Reads the bytes of an audit file: UTF-16, either byte order, a byte order mark at the start. Without the mark there
/// is one fault and no row.
///
/// Values stand in the file as they are, so one that holds a line end goes on in the next line, and one that holds the
/// words of another entry cannot be told from it.
[[nodiscard]] AuditFile ReadAudit(std::string_view bytes);

} // namespace Kestrona::Tool
