#include "columns/matrix_table.h"
#include "fuzz.h"

#include <kestrona/classes.h>
#include <kestrona/matrices.h>
#include <kestrona/process.h>
#include <kestrona/table_storage.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <set>
#include <string>

// Any bytes read as the records of a format with every kind of field. No two records share a matrix; what was read is
// written, and comes back as the same bytes from there on.

namespace {

using namespace Kestrona;
using namespace Kestrona::Fuzz;
using namespace Kestrona::Data::MemoryResident;
using Common::TableStorage;

constexpr std::int32_t kFewRecords = 1000;
constexpr std::int32_t kMaxFileId = 1 << 26;

struct Field {
    std::uint32_t type;
    Class field_class;
};

constexpr Class kPlain{0, 0};
constexpr Field kFields[] = {
    {TypeBit::kReal, kPlain},
    {TypeBit::kInteger, kPlain},
    {TypeBit::kToggle, kPlain},
    {TypeBit::kReference, Classes::kFreeFormat},
    {TypeBit::kMatrix, Classes::kList},
    {TypeBit::kMatrix, Classes::kCommonMatrix},
    {TypeBit::kMatrix, Classes::kEvaluate},
};
constexpr auto kFieldCount = static_cast<std::int32_t>(std::size(kFields));
constexpr std::int32_t kListField = 4;

std::unique_ptr<MemoryResidentData> MakeStore() {
    auto store = CreateMemoryResidentData();
    store->SetFormatCount(1);
    store->SetDbName(0, KSDLL_AddText(L"Table"));
    store->SetDbFields(0, kFieldCount);
    store->CreateDbFieldInfo(0, kFieldCount);
    for (std::int32_t field = 0; field < kFieldCount; ++field) {
        store->SetDbType(0, field, kFields[field].type);
        store->SetDbTable(0, field, 0);
        if (kFields[field].field_class != kPlain) {
            store->AddDbClass(0, field, kFields[field].field_class);
        }
    }
    for (std::int32_t field = 0; field < kFieldCount; ++field) {
        store->CreateDbValues(0, field);
        if ((kFields[field].type & TypeBit::kMatrix) != 0) {
            store->CreateDbMatrix(0, field);
        }
        if (kFields[field].field_class == Classes::kFreeFormat) {
            store->CreateDbStrings(0, field);
        }
    }
    return store;
}

void RequireOwnMatrices(MemoryResidentData& store) {
    std::set<std::int32_t> ids;
    for (std::int32_t record = 0; record < store.GetCurrentDbSize(0); ++record) {
        const std::int32_t id = KSDLL_GetDbMatrix(store, 0, kListField, record);
        Require(id == -1 || ids.insert(id).second);
    }
}

std::string LoadAndSave(const void* data, std::size_t size) {
    const auto store = MakeStore();
    const File file(fmemopen(const_cast<void*>(data), size, "rb"));
    TableStorage::ReadTableData(*store, 0, file.get());
    if (store->GetCurrentDbSize(0) > kFewRecords) {
        return {};
    }
    RequireOwnMatrices(*store);
    return BytesOf([&](std::FILE* out) { TableStorage::WriteTableData(*store, 0, out); });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > 0) {
        const std::string first = LoadAndSave(data, size);
        const std::string second = first.empty() ? first : LoadAndSave(first.data(), first.size());
        // Ids beyond what a file may have come back as others.
        Require(first.empty() || LoadAndSave(second.data(), second.size()) == second ||
                GetTotalMatrixCount() >= kMaxFileId);
    }
    MatrixTable::Instance().Reset();
    return 0;
}
