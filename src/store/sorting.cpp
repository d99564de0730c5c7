// Implements: the sorts of a format.
#include "store/class_test.h"
#include "store/hooks.h"
#include "store/sequencer_orders.h"

#include <kestrona/classes.h>
#include <kestrona/concrete_columns.h>
#include <kestrona/record_search.h>
#include <kestrona/record_state_strategy.h>
#include <kestrona/sorting.h>

#include <algorithm>
#include <numeric>
#include <utility>

namespace Kestrona::Data::MemoryResident {

namespace {

constexpr double kFirstSequence = 1.0;

using Comparators = std::vector<std::unique_ptr<ISort>>;
using Records = std::vector<std::int32_t>;

Records AllRecords(IMemoryResidentData& store, std::int32_t format) {
    Records records(static_cast<std::size_t>(store.GetCurrentDbSize(format)));
    std::iota(records.begin(), records.end(), 0);
    return records;
}

// Null for a field without values.
std::unique_ptr<ISort> MakeComparator(IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                                      bool ascending) {
    const field_info* const info = store.GetFieldInfo(format, field);
    if (info == nullptr) {
        return nullptr;
    }
    if (HasClass(*info, Classes::kFreeFormat)) {
        return std::make_unique<FreeFormatSort>(store, format, field, ascending);
    }
    if ((info->type & TypeBit::kReference) != 0 && HasClass(*info, Classes::kDatabase)) {
        return std::make_unique<StringSort>(store, format, field, ascending);
    }
    return info->column != nullptr ? std::make_unique<NumericSort>(*info->column, ascending) : nullptr;
}

void AddComparator(IMemoryResidentData& store, std::int32_t format, const SortDetails& details,
                   Comparators& comparators) {
    if (std::unique_ptr<ISort> comparator = MakeComparator(store, format, details.field, details.ascending)) {
        comparators.push_back(std::move(comparator));
    }
}

// Null in a format without families.
std::unique_ptr<ISort> MakeParentComparator(IMemoryResidentData& store, std::int32_t format) {
    const field_info* const family =
        store.GetFieldInfo(format, FindFirstColumnWithClassification(store, format, Classes::kFamily));
    store.AddIndexToColumn(format, store.GetDbKey(format));
    const field_info* const key = store.GetFieldInfo(format, store.GetDbKey(format));
    if (family == nullptr || family->column == nullptr || key == nullptr || key->column == nullptr) {
        return nullptr;
    }
    return std::make_unique<ParentSort>(*key->column, *family->column);
}

// The first comparator decides, the second where that finds records equal, and so on: stable sorts from the last to the
// first give just that.
Records Sorted(IMemoryResidentData& store, std::int32_t format, const Comparators& comparators) {
    Records records = AllRecords(store, format);
    std::for_each(comparators.rbegin(), comparators.rend(),
                  [&](const std::unique_ptr<ISort>& comparator) { comparator->SortStably(records); });
    return records;
}

// The place of each record in a sorted list.
Records Places(const Records& sorted) {
    Records places(sorted.size());
    for (std::size_t place = 0; place < sorted.size(); ++place) {
        places[static_cast<std::size_t>(sorted[place])] = static_cast<std::int32_t>(place);
    }
    return places;
}

void WriteSequence(const Records& sorted, IColumn<double>& sequence) {
    for (std::size_t place = 0; place < sorted.size(); ++place) {
        sequence.SetValue(sorted[place], static_cast<double>(place));
    }
}

// Exchanges rows until each stands at its place. `at` tells where a row stands now, `row` which row stands at a place.
void MoveRows(MemoryResidentData& store, std::int32_t format, const Records& sorted) {
    Records at(sorted.size());
    std::iota(at.begin(), at.end(), 0);
    Records row = at;
    for (std::size_t place = 0; place < sorted.size(); ++place) {
        const auto wanted = static_cast<std::size_t>(sorted[place]);
        const auto from = static_cast<std::size_t>(at[wanted]);
        if (from != place) {
            store.SwapItemInfo(static_cast<std::int32_t>(place), static_cast<std::int32_t>(from), format);
            std::swap(row[place], row[from]);
            at[static_cast<std::size_t>(row[from])] = static_cast<std::int32_t>(from);
        }
    }
    const SequencerHooks& hooks = GetSequencerHooks();
    if (hooks.after_sort != nullptr && HasSequencerHooks(format)) {
        Records places = Places(sorted);
        hooks.after_sort(places);
    }
}

void Apply(MemoryResidentData& store, std::int32_t format, const Records& sorted, IColumn<double>* sequence) {
    if (sequence != nullptr) {
        WriteSequence(sorted, *sequence);
    } else {
        MoveRows(store, format, sorted);
    }
}

} // namespace

} // namespace Kestrona::Data::MemoryResident

using namespace Kestrona::Data::MemoryResident;

void KSDLL_SortToVector(MemoryResidentData& store, std::int32_t format, std::vector<SortDetails>& details,
                        std::vector<std::int32_t>& records) {
    if (details.empty()) {
        return;
    }
    Comparators comparators;
    for (const SortDetails& entry : details) {
        AddComparator(store, format, entry, comparators);
    }
    records = Sorted(store, format, comparators);
}

std::vector<std::int32_t> KSDLL_SingleColumnSortVector(IMemoryResidentData& store, std::int32_t format,
                                                       std::int32_t field, bool sort) {
    Comparators comparators;
    if (sort) {
        AddComparator(store, format, {field, true}, comparators);
    }
    return Sorted(store, format, comparators);
}

void KSDLL_MulticolumnSort(MemoryResidentData& store, std::int32_t format, std::vector<SortDetails>& details,
                           bool parent_sort, bool ignore_parent_sort_enabled, IColumn<double>* sequence) {
    if (details.empty()) {
        return;
    }
    const auto goes_behind_families = [&](const SortDetails& entry) {
        return ignore_parent_sort_enabled || store.GetParentSortEnabled(format, entry.field);
    };
    Comparators comparators;
    for (const SortDetails& entry : details) {
        if (!goes_behind_families(entry)) {
            AddComparator(store, format, entry, comparators);
        }
    }
    if (parent_sort) {
        if (std::unique_ptr<ISort> families = MakeParentComparator(store, format)) {
            comparators.push_back(std::move(families));
        }
    }
    for (const SortDetails& entry : details) {
        if (goes_behind_families(entry)) {
            AddComparator(store, format, entry, comparators);
        }
    }
    Apply(store, format, Sorted(store, format, comparators), sequence);
}

std::int32_t KSDLL_ParentSort(MemoryResidentData& store, std::int32_t format, std::int32_t* record,
                              IColumn<double>* sequence) {
    Comparators comparators;
    comparators.push_back(MakeParentComparator(store, format));
    if (comparators.front() == nullptr) {
        return 0;
    }
    const Records sorted = Sorted(store, format, comparators);
    comparators.clear();
    Apply(store, format, sorted, sequence);
    if (record != nullptr && *record >= 0 && static_cast<std::size_t>(*record) < sorted.size()) {
        *record = Places(sorted)[static_cast<std::size_t>(*record)];
    }
    return 0;
}

void KSDLL_RankSort(MemoryResidentData& store, std::int32_t format, std::int32_t field1, std::int32_t field2,
                    IColumn<double>* sequence) {
    std::vector<SortDetails> details{{field1, true}, {field2, true}};
    KSDLL_MulticolumnSort(store, format, details, false, true, sequence);
}

IColumn<double>* KSDLL_CreateDisplaySequenceColumn() {
    return new DoubleColumn(new NullRecordStateStrategy(), kFirstSequence);
}

IColumn<double>* KSDLL_FindDisplaySequenceColumn(MemoryResidentData& store, std::int32_t format) {
    const std::int32_t field = FindFirstColumnWithClassification(store, format, Kestrona::Classes::kDisplaySequence);
    return field >= 0 ? store.GetDbColumn(format, field) : nullptr;
}
