#pragma once

#include <kestrona/memory_resident_data.h>

#include <cstdint>

/// \file
/// The audit log: who changed which field of which record from what to what.
///
/// It is off until `SetAuditLogEnabled` (host_settings.h) turns it on. It then goes to "Audit.log" in the current
/// directory, UTF-16 with a byte order mark, opened at the first entry, appended to, and open until the process ends;
/// what was written is buffered. Where it cannot be opened nothing is lost but the entry, and the next call tries
/// again.

/// Compares a record with `old_record`, another record that holds the former state, or with the fields' defaults if
/// `old_record` is -1, and writes an entry if anything differs: a heading with record, format, user (message 0x4a67)
/// and the time of the machine, and a line for each changed field. Of matrices only lists are compared. Constant time
/// while the log is off.
///
/// A new record with an empty text counts as changed in that field.
KS_API void KSDLL_WriteLog(Kestrona::Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                           std::int32_t old_record, std::int32_t record);
