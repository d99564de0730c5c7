// Implements: KSDLL_LookupRecordsIntersect.
#include <kestrona/record_search.h>

#include <algorithm>
#include <iterator>
#include <memory>

namespace {

using namespace Kestrona;
using Kestrona::Data::MemoryResident::IMemoryResidentData;

using Result = std::unique_ptr<FindResult>;

// Of several values, the hits of one stand behind those of the other.
Result FindAny(IMemoryResidentData& store, std::int32_t format, const FieldMatchCriteria& criteria,
               const std::vector<double>& values) {
    store.AddIndexToColumn(format, criteria.field);
    if (values.size() == 1) {
        return Result(store.LookupRecords(format, criteria.field, values.front(), criteria.comparison));
    }
    RecordNumbers records;
    for (const double value : values) {
        const Result hits(store.LookupRecords(format, criteria.field, value, criteria.comparison));
        records.insert(records.end(), hits->begin(), hits->end());
    }
    return std::make_unique<FindResult>(std::move(records));
}

RecordNumbers Ascending(const FindResult& result) {
    RecordNumbers records(result.begin(), result.end());
    if (!std::ranges::is_sorted(records)) {
        std::ranges::sort(records);
    }
    records.erase(std::unique(records.begin(), records.end()), records.end());
    return records;
}

// The records that both have. Where one is much shorter, its records are looked up in the other.
RecordNumbers Intersection(const RecordNumbers& few, const FindResult& many) {
    constexpr std::size_t kMuchLonger = 16;
    RecordNumbers both;
    if (!std::ranges::is_sorted(many)) {
        std::ranges::set_intersection(few, Ascending(many), std::back_inserter(both));
    } else if (many.Size() / kMuchLonger > few.size()) {
        std::ranges::copy_if(few, std::back_inserter(both),
                             [&](std::int32_t record) { return std::ranges::binary_search(many, record); });
    } else {
        std::ranges::set_intersection(few, many, std::back_inserter(both));
    }
    return both;
}

} // namespace

FindResult* KSDLL_LookupRecordsIntersect(IMemoryResidentData& store, std::int32_t format,
                                         std::vector<std::pair<FieldMatchCriteria, std::vector<double>>>& numbers,
                                         std::vector<std::pair<FieldMatchCriteria, wchar_t*>>& texts) {
    std::vector<Result> results;
    results.reserve(numbers.size() + texts.size());
    for (const auto& [criteria, values] : numbers) {
        results.push_back(FindAny(store, format, criteria, values));
    }
    for (const auto& [criteria, text] : texts) {
        store.AddIndexToColumn(format, criteria.field);
        results.emplace_back(store.LookupRecords(format, criteria.field, text, criteria.comparison));
    }
    if (results.empty()) {
        return new FindResult();
    }
    if (results.size() == 1) {
        return new FindResult(RecordNumbers(results.front()->begin(), results.front()->end()));
    }
    std::ranges::stable_sort(results, {}, [](const Result& result) { return result->Size(); });
    RecordNumbers kept = Ascending(*results.front());
    for (auto result = results.begin() + 1; result != results.end() && !kept.empty(); ++result) {
        kept = Intersection(kept, **result);
    }
    return new FindResult(std::move(kept));
}
