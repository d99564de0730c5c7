// Implements: the searches that give record numbers.
#include <kestrona/classes.h>
#include <kestrona/record_search.h>

#include <algorithm>
#include <memory>

namespace {

using namespace Kestrona;
using Kestrona::Data::MemoryResident::IMemoryResidentData;

using Result = std::unique_ptr<FindResult>;

Result Lookup(IMemoryResidentData& store, std::int32_t format, std::int32_t field, double value) {
    store.AddIndexToColumn(format, field);
    return Result(store.LookupRecords(format, field, value, FindOperator::Equal));
}

Result Lookup(IMemoryResidentData& store, std::int32_t format, std::int32_t field, const wchar_t* text) {
    store.AddIndexToColumn(format, field);
    return Result(store.LookupRecords(format, field, text, FindOperator::Equal));
}

std::int32_t FirstBehind(const FindResult& found, std::int32_t record) {
    const auto hit = std::upper_bound(found.begin(), found.end(), record);
    return hit != found.end() ? *hit : -1;
}

std::int32_t LastBefore(const FindResult& found, std::int32_t record) {
    const auto hit = std::lower_bound(found.begin(), found.end(), record);
    return hit != found.begin() ? *(hit - 1) : -1;
}

} // namespace

std::vector<std::int32_t> KSDLL_GetRecords(IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                                           const wchar_t* text) {
    const Result found = Lookup(store, format, field, text);
    return {found->begin(), found->end()};
}

std::vector<std::int32_t> KSDLL_GetRecords(IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                                           double value) {
    const Result found = Lookup(store, format, field, value);
    return {found->begin(), found->end()};
}

std::vector<std::int32_t> KSDLL_GetChildRecords(IMemoryResidentData& store, std::int32_t format, double parent_key) {
    const std::int32_t field = FindFirstColumnWithClassification(store, format, Classes::kFamily);
    return field != -1 ? KSDLL_GetRecords(store, format, field, parent_key) : std::vector<std::int32_t>();
}

std::vector<std::int32_t> KSDLL_GetFamilyRecords(IMemoryResidentData& store, std::int32_t format, double key) {
    const std::int32_t parent = store.LookupKeyRecord(format, key);
    if (parent == -1) {
        return {};
    }
    std::vector<std::int32_t> records = KSDLL_GetChildRecords(store, format, key);
    records.insert(records.begin(), parent);
    return records;
}

std::int32_t KSDLL_FindNextNumeric(IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                                   std::int32_t record, double value) {
    return FirstBehind(*Lookup(store, format, field, value), record);
}

std::int32_t KSDLL_FindPreviousNumeric(IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                                       std::int32_t record, double value) {
    return LastBefore(*Lookup(store, format, field, value), record);
}

std::int32_t KSDLL_FindNextString(IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                                  std::int32_t record, const wchar_t* text) {
    return FirstBehind(*Lookup(store, format, field, text), record);
}

std::int32_t KSDLL_FindPreviousString(IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                                      std::int32_t record, const wchar_t* text) {
    return LastBefore(*Lookup(store, format, field, text), record);
}

std::int32_t KSDLL_FindNextNumericMany(IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                                       std::int32_t record, std::vector<double>& values) {
    std::int32_t next = kFirstScratchRecord;
    for (const double value : values) {
        const std::int32_t found = KSDLL_FindNextNumeric(store, format, field, record, value);
        next = found != -1 ? std::min(next, found) : next;
    }
    return next != kFirstScratchRecord ? next : -1;
}

std::int32_t KSDLL_FindPreviousNumericMany(IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                                           std::int32_t record, std::vector<double>& values) {
    std::int32_t previous = -1;
    for (const double value : values) {
        previous = std::max(previous, KSDLL_FindPreviousNumeric(store, format, field, record, value));
    }
    return previous;
}

std::int32_t KSDLL_AreTablesAssociated(IMemoryResidentData& store, std::int32_t a, std::int32_t b) {
    const std::int32_t root = store.GetAssociateTableNumber(a);
    if (root == -1) {
        return store.IsFormatChildOfParent(a, b) ? 1 : 0;
    }
    return root == b || store.IsFormatChildOfParent(root, b) ? 1 : 0;
}
