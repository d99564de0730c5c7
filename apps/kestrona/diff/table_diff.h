#pragma once

#include "data/exact_cell.h"

#include <kestrona/memory_resident_data.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// \file
/// What differs between the tables of two stores.

namespace Kestrona::Tool {

/// A field that both sides have under the same name.
struct FieldPair {
    ExactField old_field;
    ExactField new_field;
};

struct CellChange {
    std::int32_t old_record = -1;
    std::int32_t new_record = -1;
    std::size_t field = 0; ///< Place in `TableDiff::fields`.
};

/// A table that at least one side has.
struct TableDiff {
    std::string name;             ///< UTF-8, as are the names of fields.
    std::int32_t old_format = -1; ///< -1 on the side that does not have it.
    std::int32_t new_format = -1;
    std::int32_t old_records = 0;
    std::int32_t new_records = 0;
    std::vector<std::string> removed_fields;
    std::vector<std::string> added_fields;
    std::vector<FieldPair> fields;
    std::vector<std::int32_t> removed; ///< Old records without a partner.
    std::vector<std::int32_t> added;   ///< New records without a partner.
    std::vector<CellChange> changes;   ///< In the order of the old records, and of the fields in each.
    std::size_t changed_records = 0;
    std::size_t old_repeats = 0; ///< Records whose key an earlier one of the same side has.
    std::size_t new_repeats = 0;

    [[nodiscard]] bool Differs() const {
        return old_format < 0 || new_format < 0 || !removed_fields.empty() || !added_fields.empty() ||
               !removed.empty() || !added.empty() || !changes.empty();
    }
};

/// Two stores, borrowed, and how their values are compared.
struct DiffSides {
    Data::MemoryResident::IMemoryResidentData& old_store;
    Data::MemoryResident::IMemoryResidentData& new_store;
    double tolerance = 0.0;  ///< Numbers, dates and durations that are no further apart count as equal.
    bool only_saved = false; ///< Leaves out fields that snapshots do not hold (NOT SAVED).
};

/// Compares the records of a table that both sides have by their keys, and the fields that keep values. Costs time in
/// step with the number of cells.
[[nodiscard]] TableDiff CompareTables(const DiffSides& sides, std::int32_t old_format, std::int32_t new_format);

/// Compares all tables, or those with the given names (UTF-8): in the order of the old side, then those that only the
/// new one has.
[[nodiscard]] std::vector<TableDiff> CompareStores(const DiffSides& sides, const std::vector<std::string>& names);

} // namespace Kestrona::Tool
