#include "soak/plant.h"

#include <algorithm>
#include <string>
#include <utility>

namespace Kestrona::Soak {

using Model::FieldPlan;
using Model::FormatPlan;

namespace {

constexpr std::int32_t kSmallSize = 12;
constexpr std::int32_t kFormatsPerGroup = 50; // one group of small formats to so many
constexpr std::int32_t kNotesEvery = 8;       // one large format in so many owns notes in the one before it
constexpr std::int32_t kBack = 5;             // how far back a reference goes at most

FieldPlan Shifted(FieldPlan field, std::int32_t by) {
    for (std::int32_t* const format : {&field.field.table, &field.field.table_y, &field.storage}) {
        *format += *format >= 0 ? by : 0;
    }
    return field;
}

void AddSmallGroup(Plant& plant) {
    const auto first = static_cast<std::int32_t>(plant.plan.size());
    for (const FormatPlan& model : Model::ThePlan()) {
        FormatPlan& format = plant.plan.emplace_back(model);
        format.name += L" " + std::to_wstring(first);
        for (FieldPlan& field : format.fields) {
            field = Shifted(field, first);
        }
        plant.sizes.push_back(kSmallSize);
    }
    Fixtures::Field secret = Fixtures::Text(L"Secret");
    secret.classes.push_back(Classes::kEncrypted);
    plant.plan[static_cast<std::size_t>(first)].fields.push_back({secret});
}

FieldPlan List(const std::wstring& name, std::int32_t table) {
    return {Fixtures::Matrix(name, {Classes::kList}, table, table, -1.0)};
}

// Formats before it, or itself for the first one: references make no rings.
std::int32_t Earlier(const Plant& plant, std::int32_t number) {
    return std::max(plant.first_large, number - 1 - number % kBack);
}

void AddLarge(Plant& plant) {
    const auto number = static_cast<std::int32_t>(plant.plan.size());
    const std::int32_t other = Earlier(plant, number);
    FieldPlan amounts{Fixtures::Matrix(L"Amounts", {Classes::kAssociate, Classes::kParallelList}, -1, other, 0.25)};
    amounts.beside = kUses;
    FieldPlan twice{Fixtures::Calculated(L"Twice")};
    twice.calculation = L"{#Load} * 2 + {#Stock}";
    twice.field.classification = L"EVALUATE \"" + twice.calculation + L"\"";
    twice.operands = {kLoad, kStock};
    FormatPlan format{.name = L"Plant " + std::to_wstring(number),
                      .fields = {{Fixtures::Number(L"Key", 1.0)},
                                 {Fixtures::Text(L"Name", 6)},
                                 {Fixtures::Integer(L"Stock", 3.0)},
                                 {Fixtures::Toggle(L"Active", 1.0)},
                                 {Fixtures::Number(L"Load", 1.5)},
                                 {Fixtures::Reference(L"Needs", other, kName)},
                                 {Fixtures::Family(L"Parent")},
                                 twice}};
    const bool owns_notes = number % kNotesEvery == 0 && number > plant.first_large;
    if (number % 2 == 0) {
        format.fields.push_back(List(L"Uses", other));
        format.fields.push_back(amounts);
    }
    if (owns_notes) {
        FieldPlan notes = List(L"Notes", number - 1);
        notes.field.classes.push_back(Classes::kStringStorage);
        notes.storage = number - 1;
        format.fields.push_back(notes);
        plant.plan.back().has_unique_keys = true;
    }
    plant.plan.push_back(std::move(format));
}

} // namespace

Plant MakePlant(std::int32_t formats, std::int32_t records) {
    Plant plant;
    for (std::int32_t group = 0; group <= formats / kFormatsPerGroup; ++group) {
        AddSmallGroup(plant);
    }
    plant.first_large = static_cast<std::int32_t>(plant.plan.size());
    while (static_cast<std::int32_t>(plant.plan.size()) < formats) {
        AddLarge(plant);
    }
    // From half the mean to one and a half.
    const std::int32_t large = std::max(1, formats - plant.first_large);
    const std::int32_t mean = records / large;
    for (std::int32_t i = 0; i < large; ++i) {
        plant.sizes.push_back(mean / 2 + static_cast<std::int32_t>(std::int64_t{mean} * (i * 11 % large) / large) + 1);
    }
    return plant;
}

} // namespace Kestrona::Soak
