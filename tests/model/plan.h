#pragma once

#include "fixtures/schema.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

// The formats that the model test and its twin both work on.
namespace Kestrona::Model {

struct FieldPlan {
    Fixtures::Field field;
    std::int32_t beside = -1;        // of a parallel list: the list that it runs beside
    std::int32_t storage = -1;       // with STRING STORAGE: the format of the stored strings
    std::int32_t default_field = -1; // with MATRIX DEFAULT: the field of the Y format that gives new cells

    std::wstring calculation = {};             // of a calculated field, see `Calculated`
    std::array<std::int32_t, 2> operands = {}; // the fields that it reads

    [[nodiscard]] bool Has(Class c) const;

    // What the calculation gives.
    [[nodiscard]] static double Calculated(double first, double second) { return 2.0 * first + second; }

    [[nodiscard]] bool IsMatrix() const { return (field.type & TypeBit::kMatrix) != 0; }

    // A number as the field keeps it.
    [[nodiscard]] double Stored(double value) const;

    [[nodiscard]] bool IsText() const { return Has(Classes::kFreeFormat); }

    // A list, or a list beside one: of any length.
    [[nodiscard]] bool IsAnyList() const { return Has(Classes::kList) || Has(Classes::kParallelList); }
};

struct FormatPlan {
    std::wstring name;
    std::vector<FieldPlan> fields;
    bool has_extension = false;
    bool has_unique_keys = false; // its records are found by key when a record that owns them is deleted
};

using Plan = std::vector<FormatPlan>;

// Materials, machines, orders, notes that orders own, nodes that own each other, and an archive that nothing keeps in
// step. The key of every format is field 0.
const Plan& ThePlan();

// Compiles the calculations of a store that has the formats of the plan.
void Calculate(Data::MemoryResident::IMemoryResidentData& store, const Plan& plan);

void Build(Data::MemoryResident::IMemoryResidentData& store, const Plan& plan);

} // namespace Kestrona::Model
