// Implements: KSDLL_DeleteDbItem, KSDLL_DeleteDbItems, KSDLL_Clear.
#include "store/hooks.h"
#include "store/list_cleaning.h"
#include "store/matrix_repacking.h"
#include "store/record_lists.h"
#include "store/sequencer_orders.h"
#include "store/stored_strings.h"

#include <kestrona/matrices.h>
#include <kestrona/records.h>

#include <algorithm>
#include <utility>

namespace {

using namespace Kestrona;
using namespace Kestrona::Data::MemoryResident;

using Records = std::vector<std::int32_t>;

void Call(KsRecordHook hook, std::int32_t format, std::int32_t record) {
    if (hook != nullptr && HasSequencerHooks(format)) {
        hook(record);
    }
}

// The hook may change the list that it gets.
void Call(KsRecordsHook hook, std::int32_t format, Records records) {
    if (hook != nullptr && HasSequencerHooks(format)) {
        hook(records);
    }
}

// Lets go what other formats keep for the records: cells of matrices and keys in lists.
void Detach(MemoryResidentData& store, std::int32_t format, const Records& ascending) {
    std::vector<double> keys;
    std::ranges::transform(ascending, std::back_inserter(keys),
                           [&](std::int32_t record) { return store.GetDbKeyValue(format, record); });
    CloseMatrices(store, {format, ascending});
    RemoveKeysFromLists(store, format, keys);
}

void RemoveRecord(MemoryResidentData& store, std::int32_t format, std::int32_t record) {
    store.EraseDbRow(format, record);
    store.ChangeCurrentDbSize(format, -1);
    Call(GetSequencerHooks().after_delete, format, record);
}

// Deletes one record, which owns nothing any more.
void DeleteAlone(MemoryResidentData& store, std::int32_t format, std::int32_t record) {
    Detach(store, format, {record});
    Call(GetSequencerHooks().before_delete, format, record);
    EmptyStoredLists(store, format, {record});
    RemoveRecord(store, format, record);
}

// Deletes records that own nothing any more.
void DeleteTogether(MemoryResidentData& store, std::int32_t format, const Records& ascending) {
    Detach(store, format, ascending);
    Call(GetSequencerHooks().before_delete_many, format, ascending);
    EmptyStoredLists(store, format, ascending);
    store.EraseDbRows(format, ascending);
    store.ChangeCurrentDbSize(format, -static_cast<std::int32_t>(ascending.size()));
    Call(GetSequencerHooks().after_delete_many, format, ascending);
}

// Owned records count as deleted one by one, which shows in the hooks alone.
void DeleteOwned(MemoryResidentData& store, std::int32_t format, const Records& ascending) {
    if (HasSequencerHooks(format) || ascending.size() == 1) {
        std::for_each(ascending.rbegin(), ascending.rend(),
                      [&](std::int32_t record) { DeleteAlone(store, format, record); });
    } else {
        DeleteTogether(store, format, ascending);
    }
}

// Deletes what the records own. Owned records may stand in the same format: returns the numbers that the records then
// have.
Records DeleteWhatTheyOwn(MemoryResidentData& store, std::int32_t format, Records ascending) {
    for (const auto& [owned_format, owned] : FindOwnedRecords(store, format, ascending)) {
        DeleteOwned(store, owned_format, owned);
        if (owned_format == format) {
            for (std::int32_t& record : ascending) {
                record -= static_cast<std::int32_t>(std::ranges::lower_bound(owned, record) - owned.begin());
            }
        }
    }
    return ascending;
}

} // namespace

void KSDLL_DeleteDbItem(MemoryResidentData& store, std::int32_t format, std::int32_t record) {
    if (record < 0 || record >= store.GetCurrentDbSize(format)) {
        RemoveRecord(store, format, record);
        return;
    }
    DeleteAlone(store, format, DeleteWhatTheyOwn(store, format, {record}).front());
}

void KSDLL_DeleteDbItems(MemoryResidentData& store, std::int32_t format, std::vector<std::int32_t> records) {
    const Records ascending = AscendingRecords(store, format, std::move(records));
    if (!ascending.empty()) {
        DeleteTogether(store, format, DeleteWhatTheyOwn(store, format, ascending));
    }
}

void KSDLL_Clear(IMemoryResidentData& store, std::int32_t format) {
    store.SetCurrentDbSize(format, 0);
    KSDLL_FreeMatrices(store, format);
}
