#include "commands/print_records.h"

#include "commands/session.h"

#include <kestrona/unicode.h>

#include <fmt/format.h>

#include <utility>

namespace Kestrona::Tool {

bool PrintRecords(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format, RecordPrint print) {
    std::vector<std::int32_t> records = print.filter.Find();
    const std::size_t found = records.size();
    if (print.limit > 0 && print.limit < found) {
        records.resize(print.limit);
    }
    const AddedColumns source(store, format, print.fields, std::move(print.added), records);
    if (!WriteTable(source, print.form, stdout)) {
        fmt::print(stderr, "kestrona: error: the output cannot be written\n");
        return false;
    }
    const std::string matching = print.filter.IsEmpty() ? "" : fmt::format(" ({} match)", found);
    fmt::print(stderr, "{} of {} records of {}{}; peak memory {:.1f} MB\n", source.RowCount(),
               store.GetCurrentDbSize(format), ToUtf8(store.GetDbName(format)), matching,
               static_cast<double>(PeakMemory()) / 1.0e6);
    return true;
}

} // namespace Kestrona::Tool
