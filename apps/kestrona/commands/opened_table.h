#pragma once

#include "commands/added_columns.h"
#include "commands/record_commands.h"
#include "commands/record_filter.h"
#include "commands/session.h"
#include "data/followed_field.h"
#include "data/record_order.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

/// \file
/// What the commands that print records begin and end with.

namespace Kestrona::Tool {

/// Whether a command goes on where there are no records to print.
enum class NoRecords {
    Refused,
    Allowed
};

/// A format of a loaded definition, and which of its records are to be printed.
class OpenedTable {
public:
    /// Loads what `choice`, which is borrowed, names, and reads its conditions and its order. Says on stderr what is
    /// wrong. Returns an exit code.
    int Open(const RecordChoice& choice, NoRecords without = NoRecords::Refused);

    /// The operations below require that `Open` gave `kExitGood`.
    [[nodiscard]] Data::MemoryResident::MemoryResidentData& Store() { return session_.Store(); }

    [[nodiscard]] std::int32_t Format() const { return format_; }

    /// Tells whether the choice names any records.
    [[nodiscard]] bool HasRecords() const { return session_.HasRecords() || !choice_->folders.empty(); }

    /// Reads the folders of the choice. Returns the worst exit code of a file.
    int ReadFolders();

    /// Returns the chosen records in their order. `found`, if given, receives how many there were without the limit.
    [[nodiscard]] std::vector<std::int32_t> Records(std::size_t* found = nullptr) const;

    [[nodiscard]] CellStyle Style() const { return StyleFor(choice_->form, choice_->raw, choice_->text); }

    /// Prints a table to stdout in the form of the choice. Says on stderr that the output cannot be written.
    [[nodiscard]] bool Write(const TableSource& source) const;

    /// Prints the chosen records, and says on stderr how many of the format's they are.
    [[nodiscard]] bool Print(const std::vector<FollowedField>& fields, std::vector<NamedExpression> added);

private:
    [[nodiscard]] int CheckSource(NoRecords without) const;

    const RecordChoice* choice_ = nullptr;
    Session session_;
    std::int32_t format_ = -1;
    std::optional<RecordFilter> filter_;
    std::optional<RecordOrder> order_;
};

} // namespace Kestrona::Tool
