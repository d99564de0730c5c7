#include "model/plan.h"

#include <kestrona/expression_parsing.h>
#include <kestrona/process.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace Kestrona::Model {

namespace {

using Fixtures::Field;

enum Format : std::int32_t {
    kMaterials,
    kMachines,
    kOrders,
    kNotes,
    kNodes
};

constexpr std::int32_t kMaxText = 6;
constexpr std::int32_t kStockField = 2;

FieldPlan Matrix(const std::wstring& name, std::vector<Class> classes, double default_value, std::int32_t x,
                 std::int32_t y) {
    return {.field = {.name = name,
                      .type = TypeBit::kMatrix,
                      .classes = std::move(classes),
                      .default_value = default_value,
                      .table = x,
                      .table_y = y}};
}

FieldPlan List(const std::wstring& name, std::int32_t table, std::vector<Class> classes = {}) {
    classes.push_back(Classes::kList);
    return Matrix(name, std::move(classes), -1.0, table, table);
}

FieldPlan Parallel(const std::wstring& name, std::int32_t beside, std::vector<Class> classes = {}) {
    classes.insert(classes.end(), {Classes::kAssociate, Classes::kParallelList});
    FieldPlan plan = Matrix(name, std::move(classes), 0.25, -1, kMaterials);
    plan.beside = beside;
    return plan;
}

FieldPlan Storing(FieldPlan plan, std::int32_t storage) {
    plan.field.classes.push_back(Classes::kStringStorage);
    plan.storage = storage;
    return plan;
}

FieldPlan WithDefaults(FieldPlan plan, std::int32_t field) {
    plan.field.classes.push_back(Classes::kMatrixDefault);
    plan.default_field = field;
    return plan;
}

FormatPlan Materials() {
    return {.name = L"Materials",
            .fields = {{Fixtures::Number(L"Key", 1.0)},
                       {Fixtures::Text(L"Name", kMaxText)},
                       {Fixtures::Integer(L"Stock", 3.0)},
                       {Fixtures::Toggle(L"Active", 1.0)},
                       {Fixtures::Family(L"Parent")}}};
}

FormatPlan Machines() {
    return {.name = L"Machines",
            .fields = {{Fixtures::Number(L"Key", 0.5)},
                       {Fixtures::Number(L"Speed", 1.5)},
                       Matrix(L"Changeover", {Classes::k3DMatrix}, 2.5, kMaterials, kMaterials),
                       WithDefaults(Matrix(L"Rate", {}, 0.75, -1, kMaterials), kStockField),
                       Matrix(L"Yard", {Classes::k3DMatrix, Classes::kCommonMatrix}, 4.0, kMachines, kMaterials),
                       Matrix(L"Tariff", {Classes::kCommonMatrix}, 6.0, -1, kOrders),
                       Matrix(L"Cost", {Classes::kAssociate}, 8.0, -1, kOrders),
                       Matrix(L"Remarks", {Classes::k3DMatrix}, -1.0, kOrders, kNotes)}};
}

FormatPlan Orders() {
    constexpr std::int32_t kUses = 3;
    constexpr std::int32_t kTexts = 8;
    return {.name = L"Orders",
            .fields = {{Fixtures::Number(L"Key", 7.0)},
                       {Fixtures::Reference(L"Material", kMaterials, 0)},
                       {Fixtures::Text(L"Remark")},
                       List(L"Uses", kMaterials),
                       Parallel(L"Amounts", kUses),
                       Parallel(L"Scraps", kUses),
                       List(L"History", kMachines, {Classes::kKeepKeys}),
                       List(L"Next", kOrders),
                       Storing(List(L"Texts", kNotes), kNotes),
                       Storing(Parallel(L"Titles", kTexts), kNotes),
                       List(L"Erased", kMachines, {Classes::kKeepDeletedKeys}),
                       Matrix(L"Machines", {Classes::kList}, -1.0, kMachines, kMaterials)}};
}

FormatPlan Notes() {
    return {.name = L"Notes",
            .fields = {{Fixtures::Number(L"Key", 1.0)},
                       {Fixtures::Text(L"Text", kMaxText)},
                       Matrix(L"Weight", {}, 0.5, -1, kOrders)},
            .has_unique_keys = true};
}

FormatPlan Nodes() {
    return {.name = L"Nodes",
            .fields = {{Fixtures::Number(L"Key", 1.0)},
                       Storing(List(L"Children", kNodes), kNodes),
                       Matrix(L"Distance", {}, 9.0, kNodes, kNodes),
                       Matrix(L"Plan", {Classes::k3DMatrix}, 0.0, kNodes, kOrders)},
            .has_unique_keys = true};
}

FormatPlan Archive() {
    return {.name = L"Archive",
            .fields = {{Fixtures::Number(L"Key", 1.0)},
                       {Fixtures::Text(L"Text")},
                       List(L"Materials", kMaterials),
                       Matrix(L"Levels", {}, 5.0, -1, kMaterials)},
            .has_extension = true};
}

} // namespace

bool FieldPlan::Has(Class c) const {
    return std::ranges::find(field.classes, c) != field.classes.end();
}

double FieldPlan::Stored(double value) const {
    return field.type == TypeBit::kInteger  ? std::trunc(value) + 0.0 // there is no integer -0
           : field.type == TypeBit::kToggle ? (value != 0.0 ? 1.0 : 0.0)
                                            : value;
}

const Plan& ThePlan() {
    static const Plan plan{Materials(), Machines(), Orders(), Notes(), Nodes(), Archive()};
    return plan;
}

void Calculate(Data::MemoryResident::IMemoryResidentData& store, const Plan& plan) {
    for (std::size_t format = 0; format < plan.size(); ++format) {
        for (std::size_t field = 0; field < plan[format].fields.size(); ++field) {
            if (const std::wstring& text = plan[format].fields[field].calculation; !text.empty()) {
                const auto number = static_cast<std::int32_t>(format);
                const auto index = static_cast<std::int32_t>(field);
                store.SetDbEvaluateExpression(number, index,
                                              KSDLL_CreateFieldExpression(store, number, index, text, false, nullptr));
            }
        }
    }
}

void Build(Data::MemoryResident::IMemoryResidentData& store, const Plan& plan) {
    for (const FormatPlan& format : plan) {
        std::vector<Field> fields;
        std::ranges::transform(format.fields, std::back_inserter(fields), &FieldPlan::field);
        const std::int32_t number = Fixtures::AddTable(store, format.name, fields);
        if (format.has_extension) {
            store.SetDbExtension(number, KSDLL_AddText(L"dat"));
        }
        for (std::size_t i = 0; i < fields.size(); ++i) {
            const FieldPlan& field = format.fields[i];
            const auto index = static_cast<std::int32_t>(i);
            if (field.IsMatrix()) {
                store.SetDbData(number, index, DataSlot::kAssociateField, field.beside);
                store.SetDbData(number, index, DataSlot::kStorageFormat, field.storage);
                store.SetDbData(number, index, DataSlot::kMatrixDefaultField, field.default_field);
            }
        }
    }
    Calculate(store, plan);
}

} // namespace Kestrona::Model
