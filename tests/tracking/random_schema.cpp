#include "tracking/random_schema.h"

#include <kestrona/classes.h>
#include <kestrona/matrices.h>
#include <kestrona/process.h>

#include <algorithm>
#include <array>
#include <numeric>

namespace Kestrona::Fixtures {

using Data::MemoryResident::IMemoryResidentData;

namespace {

constexpr std::int32_t kMaxFields = 6;
constexpr std::int32_t kKeys = 6;

struct Sprinkled {
    Class c;
    std::int32_t percent;
    bool only_matrix;
};

constexpr Sprinkled kSprinkled[] = {
    {Classes::kUnchecked, 4, false},    {Classes::kFamilyTarget, 4, false},  {Classes::kUpdateReference, 5, false},
    {Classes::kFamily, 3, false},       {Classes::kReverseSearch, 8, false}, {Classes::kFreeFormat, 6, false},
    {Classes::kParallelList, 20, true}, {Classes::kRelatedList, 15, true},   {Classes::kKeepKeys, 50, true},
    {Classes::kMatrixDefault, 6, true}, {Classes::kTwoKeyTarget, 60, true},
};

} // namespace

bool FieldsCondition::Test(IMemoryResidentData& /*store*/, std::int32_t format, std::int32_t field) {
    return std::ranges::find(fields_, TableColumn{format, field}) != fields_.end();
}

RandomSchema::RandomSchema(unsigned seed)
    : random_(seed),
      store_(Data::MemoryResident::CreateMemoryResidentData()),
      formats_(2 + Pick(5)) {
    for (std::int32_t format = 0; format < formats_; ++format) {
        MakeFormat(format);
    }
    for (std::int32_t format = 0; format < formats_; ++format) {
        store_->SetCurrentDbSize(format, 1 + Pick(4));
    }
    for (std::int32_t format = 0; format < formats_; ++format) {
        FillRecords(format);
    }
}

std::int32_t RandomSchema::Pick(std::int32_t end) {
    return static_cast<std::int32_t>(random_() % static_cast<std::uint32_t>(end));
}

bool RandomSchema::Chance(std::int32_t percent) {
    return Pick(100) < percent;
}

FieldsCondition RandomSchema::PickTargets() {
    FieldsCondition condition{};
    for (std::int32_t left = Pick(4); left > 0; --left) {
        const std::int32_t format = Pick(formats_);
        const std::int32_t field = Pick(store_->GetDbFields(format));
        // Half of them fields that others refer to.
        condition.Add(Chance(50) ? TableColumn{format, field}
                                 : TableColumn{store_->GetDbTable(format, field), store_->GetDbSource(format, field)});
    }
    return condition;
}

Field RandomSchema::RandomField(std::int32_t format) {
    Field field = Reference(L"Field", Pick(formats_), Pick(kMaxFields));
    switch (Pick(6)) {
    case 0:
        field.table = field.source = -1;
        field.classes = {};
        break;
    case 1:
        field.type |= TypeBit::kMatrix;
        field.classes = {Classes::kList};
        field.table_y = Pick(formats_);
        break;
    case 2:
        field.type |= TypeBit::kMatrix;
        field.classes = {Classes::kList, Classes::kDataList};
        field.table = Chance(50) ? field.table : -1;
        break;
    case 3:
        field.type |= TypeBit::kMatrix;
        field.classes = {Classes::kAutoDimension};
        field.table_y = Pick(formats_);
        if (Chance(30)) {
            field.classes.push_back(Classes::kDatabase);
        }
        if (field.table != format) {
            field.classes.push_back(Classes::k3DMatrix);
        }
        break;
    default:
        break;
    }
    Sprinkle(field);
    return field;
}

void RandomSchema::Sprinkle(Field& field) {
    for (const Sprinkled& extra : kSprinkled) {
        if (Chance(extra.percent) && (!extra.only_matrix || (field.type & TypeBit::kMatrix) != 0)) {
            field.classes.push_back(extra.c);
        }
    }
}

void RandomSchema::MakeFormat(std::int32_t format) {
    std::vector<Field> fields{Integer(L"Key", -1.0)};
    for (std::int32_t left = 1 + Pick(kMaxFields - 1); left > 0; --left) {
        fields.push_back(RandomField(format));
    }
    AddFormat(*store_, L"Format" + std::to_wstring(format), fields);
    for (std::int32_t field = 0; field < store_->GetDbFields(format); ++field) {
        store_->SetDbSourceY(format, field, Pick(kMaxFields));
        store_->SetDbData(format, field, DataSlot::kAssociateField, Pick(kMaxFields));
        store_->SetDbData(format, field, DataSlot::kMatrixFormat, Pick(formats_ + 1));
    }
    if (Chance(15)) {
        store_->SetDbExtension(format, KSDLL_AddText(L"ext"));
    }
    MakeColumns(*store_, format);
}

void RandomSchema::FillRecords(std::int32_t format) {
    std::array<double, kKeys> keys{};
    std::iota(keys.begin(), keys.end(), 0.0);
    std::ranges::shuffle(keys, random_);
    for (std::int32_t record = 0; record < store_->GetCurrentDbSize(format); ++record) {
        store_->SetDbValue(format, 0, record, keys[static_cast<std::size_t>(record)]);
        for (std::int32_t field = 1; field < store_->GetDbFields(format); ++field) {
            store_->SetDbValue(format, field, record, Pick(kKeys + 1) - 1);
            FillMatrix(format, field, record);
        }
    }
}

void RandomSchema::FillMatrix(std::int32_t format, std::int32_t field, std::int32_t record) {
    if ((store_->GetDbType(format, field) & TypeBit::kMatrix) == 0 || Chance(10)) {
        return;
    }
    std::int32_t size = 4;
    if (store_->ClassDefined(format, field, Classes::kAutoDimension)) {
        const bool is_grid = store_->ClassDefined(format, field, Classes::k3DMatrix);
        size = store_->GetCurrentDbSize(store_->GetDbTableY(format, field)) *
               (is_grid ? store_->GetCurrentDbSize(store_->GetDbTable(format, field)) : 1);
    }
    const std::int32_t id = KSDLL_CreateMatrix(*store_, static_cast<std::uint32_t>(size), format, field, record);
    for (std::int32_t i = 0; i < size; ++i) {
        KSDLL_SetMatrixValue(id, static_cast<std::uint32_t>(i), Pick(100) < 50 ? Pick(kKeys) : i);
    }
}

} // namespace Kestrona::Fixtures
