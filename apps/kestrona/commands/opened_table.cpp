#include "commands/opened_table.h"

#include "commands/import_folders.h"
#include "exit_codes.h"
#include "output/message.h"
#include "output/peak_memory.h"
#include "output/text_output.h"

#include <kestrona/unicode.h>

#include <fmt/format.h>

#include <cstdio>
#include <utility>

namespace Kestrona::Tool {
namespace {

std::optional<RecordOrder> ParseOrder(Data::MemoryResident::MemoryResidentData& store, std::int32_t format,
                                      const RecordChoice& choice) {
    Problem problem;
    auto order = RecordOrder::Parse(store, format, choice.order, choice.group_families, problem);
    if (!order) {
        problem.what = "--order: " + problem.what;
        TellError(problem);
    }
    return order;
}

} // namespace

int OpenedTable::CheckSource(NoRecords without) const {
    if (const int code = session_.RefuseFolders(choice_->folders); code != kExitGood) {
        return code;
    }
    if (without == NoRecords::Refused && !HasRecords()) {
        TellError(Code::NoRecords, "'{}' is a definition without records", choice_->source);
        return kExitUsage;
    }
    return kExitGood;
}

int OpenedTable::Open(const RecordChoice& choice, NoRecords without) {
    choice_ = &choice;
    if (const int code = session_.Load(choice.source, choice.key, choice.dataset); code != kExitGood) {
        return code;
    }
    if (const int code = CheckSource(without); code != kExitGood) {
        return code;
    }
    format_ = session_.FindFormat(choice.table);
    if (format_ < 0) {
        return kExitUsage;
    }
    filter_ = RecordFilter::Parse(Store(), format_, choice.conditions);
    order_ = ParseOrder(Store(), format_, choice);
    return filter_ && order_ ? kExitGood : kExitUsage;
}

int OpenedTable::ReadFolders() {
    return choice_->folders.empty() ? kExitGood : ImportFolders(Store(), choice_->folders, choice_->encoding);
}

std::vector<std::int32_t> OpenedTable::Records(std::size_t* found) const {
    std::vector<std::int32_t> records = filter_->Find();
    order_->Arrange(records);
    if (found != nullptr) {
        *found = records.size();
    }
    if (choice_->limit > 0 && choice_->limit < records.size()) {
        records.resize(choice_->limit);
    }
    return records;
}

bool OpenedTable::Write(const TableSource& source) const {
    return OutputCode(WriteTable(source, choice_->form, stdout)) == kExitGood;
}

bool OpenedTable::Print(const std::vector<FollowedField>& fields, std::vector<NamedExpression> added) {
    std::size_t found = 0;
    const std::vector<std::int32_t> records = Records(&found);
    const AddedColumns source(Store(), fields, std::move(added), records, Style());
    if (!Write(source)) {
        return false;
    }
    const std::string matching = filter_->IsEmpty() ? "" : fmt::format(" ({} match)", found);
    fmt::print(stderr, "{} of {} records of {}{}; {}\n", source.RowCount(), Store().GetCurrentDbSize(format_),
               ToUtf8(Store().GetDbName(format_)), matching, PeakMemoryText());
    return true;
}

} // namespace Kestrona::Tool
