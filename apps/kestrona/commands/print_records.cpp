#include "commands/print_records.h"

#include "commands/session.h"

#include <kestrona/unicode.h>

#include <fmt/format.h>

#include <utility>

namespace Kestrona::Tool {

std::optional<RecordOrder> ParseOrder(Data::MemoryResident::MemoryResidentData& store, std::int32_t format,
                                      const std::vector<std::string>& texts, bool group_families) {
    std::string problem;
    auto order = RecordOrder::Parse(store, format, texts, group_families, problem);
    if (!order) {
        fmt::print(stderr, "kestrona: error: --order: {}\n", problem);
    }
    return order;
}

std::vector<std::int32_t> ChooseRecords(const RecordFilter& filter, const RecordOrder& order, std::size_t limit,
                                        std::size_t* found) {
    std::vector<std::int32_t> records = filter.Find();
    order.Arrange(records);
    if (found != nullptr) {
        *found = records.size();
    }
    if (limit > 0 && limit < records.size()) {
        records.resize(limit);
    }
    return records;
}

bool PrintRecords(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format, RecordPrint print) {
    std::size_t found = 0;
    const std::vector<std::int32_t> records = ChooseRecords(print.filter, print.order, print.limit, &found);
    const AddedColumns source(store, print.fields, std::move(print.added), records, print.style);
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
