// A plant model made by hand: two formats, a reference between them, a search. Needs the library alone.

#include <kestrona/kestrona.h>

#include <cstdio>
#include <memory>

namespace {

using Kestrona::Class;
using Kestrona::Data::MemoryResident::MemoryResidentData;

/// Adds a field of a type, and of one class unless its mask is 0.
void AddField(MemoryResidentData& store, std::int32_t format, std::int32_t field, const wchar_t* name,
              std::uint32_t type, Class c = {}) {
    store.SetColumnName(format, field, name);
    store.SetDbType(format, field, type);
    store.AddDbClass(format, field, c);
}

void AddFormat(MemoryResidentData& store, std::int32_t format, const wchar_t* name, std::int32_t fields) {
    store.SetFormatCount(format + 1);
    store.SetDbName(format, KSDLL_AddText(name));
    store.CreateDbFieldInfo(format, fields);
    store.SetDbFields(format, fields);
    store.SetDbKey(format, 0);
    store.CreateDbUpdate(format);
}

} // namespace

int main() {
    namespace TypeBit = Kestrona::TypeBit;
    constexpr std::int32_t kProducts = 0;
    constexpr std::int32_t kOrders = 1;

    const std::unique_ptr<MemoryResidentData> store = Kestrona::Data::MemoryResident::CreateMemoryResidentData();
    AddFormat(*store, kProducts, L"Products", 2);
    AddField(*store, kProducts, 0, L"Number", TypeBit::kInteger);
    AddField(*store, kProducts, 1, L"Name", TypeBit::kReference, Kestrona::Classes::kFreeFormat);
    AddFormat(*store, kOrders, L"Orders", 3);
    AddField(*store, kOrders, 0, L"Number", TypeBit::kInteger);
    AddField(*store, kOrders, 1, L"Product", TypeBit::kReference);
    AddField(*store, kOrders, 2, L"Quantity", TypeBit::kReal);
    KSDLL_CreateDataArrays(*store);

    store->SetCurrentDbSize(kProducts, 2);
    const wchar_t* const names[] = {L"Wheel", L"Frame"};
    for (std::int32_t record = 0; record < 2; ++record) {
        store->SetDbValue(kProducts, 0, record, 100.0 + record);
        store->SetDbString(kProducts, 1, record, names[record]);
    }
    store->SetCurrentDbSize(kOrders, 1000);
    for (std::int32_t record = 0; record < 1000; ++record) {
        store->SetDbValue(kOrders, 0, record, record + 1.0);
        store->SetDbValue(kOrders, 1, record, 100.0 + record % 2);
        store->SetDbValue(kOrders, 2, record, record * 0.5);
    }

    // References hold key values: look the product of order 42 up.
    const std::int32_t order = store->LookupKeyRecord(kOrders, 42.0);
    const std::int32_t product = store->LookupKeyRecord(kProducts, store->GetDbValue(kOrders, 1, order));
    store->AddIndexToColumn(kOrders, 1);
    const std::unique_ptr<Kestrona::FindResult> same(
        store->LookupRecords(kOrders, 1, store->GetDbValue(kOrders, 1, order), Kestrona::FindOperator::Equal));
    std::printf("kestrona %s: order 42 makes %.1f of %ls, as %zu of %d orders do\n", Kestrona::LibraryVersion(),
                store->GetDbValue(kOrders, 2, order), store->GetDbString(kProducts, 1, product).c_str(), same->Size(),
                store->GetCurrentDbSize(kOrders));
}
