#include "diff/table_diff.h"

#include "data/field_names.h"
#include "data/matrix_text.h"
#include "diff/cell_comparison.h"
#include "diff/key_matches.h"
#include "output/progress.h"

#include <kestrona/classes.h>
#include <kestrona/unicode.h>

#include <algorithm>
#include <unordered_map>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;

using FieldsByName = std::unordered_map<std::string, std::int32_t>;

bool IsSaved(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return !store.ClassDefined(format, field, Classes::kNotPersisted);
}

bool AreCompared(const DiffSides& sides, const TableDiff& diff, std::int32_t old_field, std::int32_t new_field) {
    return !sides.only_saved || (IsSaved(sides.old_store, diff.old_format, old_field) &&
                                 IsSaved(sides.new_store, diff.new_format, new_field));
}

/// The fields with values of their own; of several with one name the first.
FieldsByName ListFields(IMemoryResidentData& store, std::int32_t format) {
    FieldsByName fields;
    for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
        if (KeepsValues(store, format, field)) {
            fields.emplace(ToUtf8(store.GetColumnName(format, field)), field);
        }
    }
    return fields;
}

void PairFields(const DiffSides& sides, TableDiff& diff) {
    const FieldsByName old_fields = ListFields(sides.old_store, diff.old_format);
    const FieldsByName new_fields = ListFields(sides.new_store, diff.new_format);
    for (std::int32_t field = 0; field < sides.old_store.GetDbFields(diff.old_format); ++field) {
        const std::string name = ToUtf8(sides.old_store.GetColumnName(diff.old_format, field));
        const auto own = old_fields.find(name);
        if (own == old_fields.end() || own->second != field) {
            continue;
        }
        const auto other = new_fields.find(name);
        if (other == new_fields.end()) {
            diff.removed_fields.push_back(name);
        } else if (AreCompared(sides, diff, field, other->second)) {
            diff.fields.push_back({DescribeField(sides.old_store, diff.old_format, field),
                                   DescribeField(sides.new_store, diff.new_format, other->second)});
        }
    }
    for (std::int32_t field = 0; field < sides.new_store.GetDbFields(diff.new_format); ++field) {
        const std::string name = ToUtf8(sides.new_store.GetColumnName(diff.new_format, field));
        const auto own = new_fields.find(name);
        if (own != new_fields.end() && own->second == field && old_fields.count(name) == 0) {
            diff.added_fields.push_back(name);
        }
    }
}

/// A matrix that the records of a side have in common is compared once.
void CompareRecords(const DiffSides& sides, std::int32_t old_record, std::int32_t new_record, bool is_first,
                    TableDiff& diff) {
    const std::size_t before = diff.changes.size();
    for (std::size_t place = 0; place < diff.fields.size(); ++place) {
        const FieldPair& pair = diff.fields[place];
        const bool is_compared = is_first || !(pair.old_field.common && pair.new_field.common);
        if (is_compared && !SameCell(sides, pair, old_record, new_record)) {
            diff.changes.push_back({old_record, new_record, place});
        }
    }
    diff.changed_records += static_cast<std::size_t>(diff.changes.size() > before);
}

KeyColumn Keys(IMemoryResidentData& store, std::int32_t format, std::int32_t records) {
    return {store, DescribeField(store, format, store.GetDbKey(format)), records};
}

TableDiff OnlyOneSide(IMemoryResidentData& store, std::int32_t format, bool is_old) {
    TableDiff diff;
    diff.name = ToUtf8(store.GetDbName(format));
    (is_old ? diff.old_format : diff.new_format) = format;
    (is_old ? diff.old_records : diff.new_records) = std::max(0, store.GetCurrentDbSize(format));
    return diff;
}

bool IsWanted(IMemoryResidentData& store, std::int32_t format, const std::vector<std::string>& names) {
    return names.empty() ||
           std::ranges::any_of(names, [&](const std::string& name) { return FormatNamed(store, name) == format; });
}

/// The formats by name; of several with one name the first.
FieldsByName ListFormats(IMemoryResidentData& store) {
    FieldsByName formats;
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        formats.emplace(ToUtf8(store.GetDbName(format)), format);
    }
    return formats;
}

} // namespace

TableDiff CompareTables(const DiffSides& sides, std::int32_t old_format, std::int32_t new_format) {
    TableDiff diff;
    diff.name = ToUtf8(sides.old_store.GetDbName(old_format));
    diff.old_format = old_format;
    diff.new_format = new_format;
    diff.old_records = std::max(0, sides.old_store.GetCurrentDbSize(old_format));
    diff.new_records = std::max(0, sides.new_store.GetCurrentDbSize(new_format));
    PairFields(sides, diff);
    const KeyMatches matches = MatchKeys(Keys(sides.old_store, old_format, diff.old_records),
                                         Keys(sides.new_store, new_format, diff.new_records));
    diff.old_repeats = matches.old_repeats;
    diff.new_repeats = matches.new_repeats;
    bool is_first = true;
    for (std::int32_t record = 0; record < diff.old_records; ++record) {
        const std::int32_t partner = matches.new_of_old[static_cast<std::size_t>(record)];
        if (partner < 0) {
            diff.removed.push_back(record);
        } else {
            CompareRecords(sides, record, partner, is_first, diff);
            is_first = false;
        }
    }
    for (std::int32_t record = 0; record < diff.new_records; ++record) {
        if (matches.old_of_new[static_cast<std::size_t>(record)] < 0) {
            diff.added.push_back(record);
        }
    }
    return diff;
}

std::vector<TableDiff> CompareStores(const DiffSides& sides, const std::vector<std::string>& names) {
    const FieldsByName old_formats = ListFormats(sides.old_store);
    const FieldsByName new_formats = ListFormats(sides.new_store);
    std::vector<TableDiff> diffs;
    Progress progress("comparing", old_formats.size());
    for (std::int32_t format = 0; format < sides.old_store.GetFormatCount(); ++format) {
        progress.Advance(1);
        const std::string name = ToUtf8(sides.old_store.GetDbName(format));
        if (old_formats.at(name) != format || !IsWanted(sides.old_store, format, names)) {
            continue;
        }
        const auto other = new_formats.find(name);
        diffs.push_back(other == new_formats.end() ? OnlyOneSide(sides.old_store, format, true)
                                                   : CompareTables(sides, format, other->second));
    }
    for (std::int32_t format = 0; format < sides.new_store.GetFormatCount(); ++format) {
        const std::string name = ToUtf8(sides.new_store.GetDbName(format));
        if (old_formats.count(name) == 0 && new_formats.at(name) == format &&
            IsWanted(sides.new_store, format, names)) {
            diffs.push_back(OnlyOneSide(sides.new_store, format, false));
        }
    }
    return diffs;
}

} // namespace Kestrona::Tool
