#pragma once

#include "fixtures/schema.h"

#include <kestrona/store.h>
#include <kestrona/tracking.h>

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <random>
#include <vector>

namespace Kestrona::Fixtures {

// Passes the fields that it is given.
class FieldsCondition : public Tracking::Conditions::ITrackingCondition {
public:
    FieldsCondition(std::initializer_list<TableColumn> fields) : fields_(fields) {}

    void Add(TableColumn field) { fields_.push_back(field); }

    bool Test(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format, std::int32_t field) override;

private:
    std::vector<TableColumn> fields_;
};

// A few formats whose fields refer to each other in every way that a path knows, in rings too, with records. Every cell
// and every matrix element is a small number, as are the keys, so that many but not all of them name a record.
class RandomSchema {
public:
    explicit RandomSchema(unsigned seed);

    [[nodiscard]] Data::MemoryResident::IMemoryResidentData& Store() const { return *store_; }

    // A number below `end`.
    std::int32_t Pick(std::int32_t end);
    // A condition that up to three fields pass.
    FieldsCondition PickTargets();

private:
    bool Chance(std::int32_t percent);
    Field RandomField(std::int32_t format);
    void Sprinkle(Field& field);
    void MakeFormat(std::int32_t format);
    void FillRecords(std::int32_t format);
    void FillMatrix(std::int32_t format, std::int32_t field, std::int32_t record);

    std::mt19937 random_;
    std::unique_ptr<Data::MemoryResident::MemoryResidentData> store_;
    std::int32_t formats_;
};

} // namespace Kestrona::Fixtures
