#include "data/import_plan.h"

#include "data/matrix_text.h"
#include "data/reference_texts.h"

#include <kestrona/classes.h>
#include <kestrona/unicode.h>

#include <fmt/format.h>

#include <algorithm>
#include <unordered_map>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;

std::unordered_map<std::string, std::int32_t> FieldsByName(IMemoryResidentData& store, std::int32_t format) {
    std::unordered_map<std::string, std::int32_t> fields;
    for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
        fields.emplace(ToUtf8(store.GetColumnName(format, field)), field);
    }
    return fields;
}

PlannedColumn ColumnFor(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    PlannedColumn column{field, FormOfField(store, format, field), 0, ToUtf8(store.GetColumnName(format, field))};
    column.matrix = KeepsMatrices(store, format, field);
    column.has_texts =
        column.form == ValueForm::Reference && field != store.GetDbKey(format) && TargetOf(store, format, field);
    if (column.form == ValueForm::Text && !column.matrix) {
        column.max_length =
            static_cast<std::size_t>(std::max(0, store.GetDbData(format, field, DataSlot::kMaxTextLength)));
    }
    return column;
}

void PlanByHeading(IMemoryResidentData& store, std::int32_t format, const std::vector<std::string>& heading,
                   const std::unordered_map<std::string, std::int32_t>& fields, ImportPlan& plan) {
    std::vector<bool> taken(static_cast<std::size_t>(store.GetDbFields(format)));
    const auto leave_out = [&plan](const std::string& name) {
        plan.columns.push_back({-1, ValueForm::Text, 0, name});
    };
    for (const std::string& name : heading) {
        const auto found = fields.find(name);
        if (found == fields.end()) {
            leave_out(name);
            plan.warnings.push_back(
                {Code::UnknownColumn, fmt::format("column '{}' belongs to no field and is left out", name)});
        } else if (taken[static_cast<std::size_t>(found->second)]) {
            leave_out(name);
            plan.warnings.push_back(
                {Code::RepeatedColumn, fmt::format("column '{}' stands twice; the first one is taken", name)});
        } else if (!KeepsValues(store, format, found->second)) {
            leave_out(name);
            plan.notes.push_back(fmt::format("field '{}' keeps no value of its own; the column is left out", name));
        } else {
            taken[static_cast<std::size_t>(found->second)] = true;
            plan.columns.push_back(ColumnFor(store, format, found->second));
        }
    }
}

/// Lists and matrices need a heading. A file with one column less than the fields is taken to have no key column.
void PlanByOrder(IMemoryResidentData& store, std::int32_t format, std::size_t cells, ImportPlan& plan) {
    for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
        if (KeepsCells(store, format, field)) {
            plan.columns.push_back(ColumnFor(store, format, field));
        }
    }
    if (plan.columns.size() == cells + 1) {
        std::erase_if(plan.columns, [&](const auto& column) { return column.field == store.GetDbKey(format); });
    }
    plan.notes.emplace_back("no heading; the columns are taken in the order of the fields");
}

} // namespace

ImportPlan PlanImport(IMemoryResidentData& store, std::int32_t format, const std::vector<std::string>& first_row) {
    const auto fields = FieldsByName(store, format);
    ImportPlan plan;
    plan.has_heading =
        std::any_of(first_row.begin(), first_row.end(), [&](const auto& cell) { return fields.count(cell) != 0; });
    if (plan.has_heading) {
        PlanByHeading(store, format, first_row, fields, plan);
    } else {
        PlanByOrder(store, format, first_row.size(), plan);
    }
    const std::int32_t key = store.GetDbKey(format);
    plan.has_key =
        std::any_of(plan.columns.begin(), plan.columns.end(), [&](const auto& column) { return column.field == key; });
    return plan;
}

} // namespace Kestrona::Tool
