// Implements: CreateDuplicateFormat.
#include "configuration/data_arrays.h"
#include "configuration/expression_phases.h"
#include "store/class_test.h"

#include <kestrona/classes.h>
#include <kestrona/expression_parsing.h>
#include <kestrona/matrices.h>
#include <kestrona/process.h>
#include <kestrona/store.h>

#include <algorithm>
#include <array>
#include <vector>

namespace Kestrona::Data::MemoryResident {

namespace {

constexpr std::int32_t kRefused = -1;
constexpr std::int32_t kGapAtEnd = 2;

// Classes by which table Y names a field, not a format.
constexpr std::array kTableYIsField = {Classes::kAdditionalReference, Classes::kOverride, Classes::kUpdateReference,
                                       Classes::kRelatedList, Classes::kAutoSplit};

bool TableIsFormat(const field_info& field) {
    return !HasClass(field, Classes::kFamily);
}

bool TableYIsFormat(const field_info& field) {
    return std::ranges::none_of(kTableYIsField, [&](Class c) { return HasClass(field, c); });
}

// Copies the definition of a format's fields into that of another format.
class SchemaCopy {
public:
    SchemaCopy(MemoryResidentData& store, std::int32_t from, std::int32_t to) : store_(store), from_(from), to_(to) {}

    void CopyFormat(const wchar_t* name) {
        store_.SetDbName(to_, KSDLL_AddText(name));
        store_.SetDbDisplayName(to_, store_.GetDbDisplayName(from_));
        store_.SetDbExtension(to_, KSDLL_AddText(store_.GetDbExtension(from_)));
        store_.SetDefaultDatasetName(to_, KSDLL_AddText(store_.GetDefaultDatasetName(from_)));
        store_.SetDbMinLength(to_, store_.GetDbMinLength(from_));
        store_.SetDbFields(to_, store_.GetDbFields(from_));
        store_.CreateDbFieldInfo(to_, static_cast<std::int32_t>(store_.GetFormatInfo(from_)->fields.size()));
        store_.SetCurrentDbSize(to_, 0);
        store_.CreateDbUpdate(to_);
        store_.SetDbKey(to_, store_.GetDbKey(from_));
        store_.SetCopiedFormatSource(to_, from_);
    }

    void CopyFields() {
        const std::vector<field_info>& sources = store_.GetFormatInfo(from_)->fields;
        for (std::size_t i = 0; i < sources.size(); ++i) {
            const auto field = static_cast<std::int32_t>(i);
            CopyDefinition(sources[i], *store_.GetFieldInfo(to_, field));
            store_.SetDbClassString(to_, field, sources[i].current.classString);
            KSDLL_SetMatrixXLabel(store_, to_, field, KSDLL_AddText(sources[i].matrixXLabel.get()));
            KSDLL_SetMatrixYLabel(store_, to_, field, KSDLL_AddText(sources[i].matrixYLabel.get()));
        }
    }

private:
    // A reference of the format to itself becomes one of the copy to itself.
    [[nodiscard]] std::int32_t Map(std::int32_t table, bool is_format) const {
        return is_format && table == from_ ? to_ : table;
    }

    void CopyDefinition(const field_info& source, field_info& target) const {
        target.name = source.name;
        target.current.dialogLevel = source.current.dialogLevel;
        target.current.dialogOrder = source.current.dialogOrder;
        target.current.classWords = source.current.classWords;
        target.type = source.type;
        target.table = Map(source.table, TableIsFormat(source));
        target.source = source.source;
        target.sourceS = source.sourceS;
        target.related = source.related;
        target.relatedY = source.relatedY;
        target.matrixField = source.matrixField;
        target.defaultValue = source.defaultValue;
        target.tableY = Map(source.tableY, TableYIsFormat(source));
        target.sourceY = source.sourceY;
        target.readOnly = source.readOnly;
        target.data = source.data;
        target.parentSortEnabled = source.parentSortEnabled;
    }

    MemoryResidentData& store_;
    std::int32_t from_;
    std::int32_t to_;
};

} // namespace

// The number that a duplicate gets. Behind the formats, two numbers are left free so that the duplicate is not found as
// one of them.
std::int32_t MemoryResidentData::DuplicateNumber(bool at_end) {
    if (at_end) {
        return formatCount_ + kGapAtEnd;
    }
    std::int32_t format = 0;
    while (format < formatCount_ && GetDbName(format) != nullptr) {
        ++format;
    }
    return format;
}

std::int32_t MemoryResidentData::CreateDuplicateFormat(std::int32_t format, wchar_t* name, bool at_end) {
    const std::int32_t copy = DuplicateNumber(at_end);
    if (FindFormat(format) == nullptr || FindFormat(copy) == nullptr || copy == format) {
        return kRefused;
    }
    const OwnedText kept_name(KSDLL_AddText(name)); // may be a text of what is reset
    KSDLL_FreeExpressionCache();                    // an earlier duplicate may have been read under this number
    ResetFormat(copy);                              // what it left there
    if (!at_end) {
        SetFormatCount(std::max(formatCount_, copy + 1));
    }
    SchemaCopy schema(*this, format, copy);
    schema.CopyFormat(kept_name.get());
    schema.CopyFields();
    Configuration::MakeColumns(*this, copy); // every field stands by now: one may decide over the columns of another
    Configuration::CompileExpressionsOf(*this, copy);
    if (duplicates_ != nullptr) {
        duplicates_->FormatDuplicated(format, copy);
    }
    return copy;
}

} // namespace Kestrona::Data::MemoryResident
