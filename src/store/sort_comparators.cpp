// Implements: NumericSort, StringSort, FreeFormatSort, ParentSort.
#include "platform/text_order.h"
#include "store/stable_sort.h"

#include <kestrona/sorting.h>
#include <kestrona/unicode.h>
#include <kestrona/value_text.h>

#include <algorithm>

namespace Kestrona::Data::MemoryResident {

namespace {

// Gives each record its key and sorts the records by it.
template <typename KeyOf>
void SortByKeys(std::vector<std::int32_t>& records, KeyOf key_of) {
    std::vector<NumberedKey> keys(records.size());
    std::ranges::transform(records, keys.begin(), [&](std::int32_t r) { return NumberedKey{key_of(r), r}; });
    SortStably(keys);
    std::ranges::transform(keys, records.begin(), &NumberedKey::record);
}

template <typename Key>
bool Answer(std::int32_t reverse, bool ascending, const Key& first, const Key& second) {
    return (reverse == 0) == ascending ? first < second : second < first;
}

// All values of the records, read in one call where they stand side by side.
std::vector<double> ReadValues(const IColumn<double>& column, const std::vector<std::int32_t>& records) {
    const std::int32_t last = records.empty() ? -1 : *std::ranges::max_element(records);
    std::vector<double> values(static_cast<std::size_t>(last + 1));
    column.ReadBlock(0, last + 1, values.data());
    return values;
}

} // namespace

bool NumericSort::Compare(std::int32_t reverse, const std::int32_t& first, const std::int32_t& second) {
    return Answer(reverse, ascending_, OrderedBits(column_[first]), OrderedBits(column_[second]));
}

void NumericSort::SortStably(std::vector<std::int32_t>& records) {
    const std::vector<double> values = ReadValues(column_, records);
    const std::uint64_t flip = ascending_ ? 0 : ~std::uint64_t{0};
    SortByKeys(records, [&](std::int32_t r) { return OrderedBits(values[static_cast<std::size_t>(r)]) ^ flip; });
}

CachedTextSort::CachedTextSort(IMemoryResidentData& store, std::int32_t format, std::int32_t field, bool ascending)
    : store_(store),
      format_(format),
      field_(field),
      ascending_(ascending),
      places_(static_cast<std::size_t>(store.GetCurrentDbSize(format))) {}

CachedTextSort::~CachedTextSort() = default;

void CachedTextSort::MakeKey(std::int32_t record) {
    Place& place = places_.at(static_cast<std::size_t>(record));
    if (place.size == std::string::npos) {
        place.begin = keys_.size();
        AppendKey(record, keys_);
        place.size = keys_.size() - place.begin;
    }
}

std::string_view CachedTextSort::Key(std::int32_t record) const {
    const Place& place = places_[static_cast<std::size_t>(record)];
    return std::string_view(keys_).substr(place.begin, place.size);
}

bool CachedTextSort::Compare(std::int32_t reverse, const std::int32_t& first, const std::int32_t& second) {
    MakeKey(first);
    MakeKey(second);
    return Answer(reverse, ascending_, Key(first), Key(second));
}

void CachedTextSort::SortStably(std::vector<std::int32_t>& records) {
    std::ranges::for_each(records, [this](std::int32_t r) { MakeKey(r); });
    std::vector<NumberedText> texts(records.size());
    std::ranges::transform(records, texts.begin(), [this](std::int32_t r) { return NumberedText{0, Key(r), r}; });
    MemoryResident::SortStably(texts, ascending_);
    std::ranges::transform(texts, records.begin(), &NumberedText::record);
}

StringSort::StringSort(IMemoryResidentData& store, std::int32_t format, std::int32_t field, bool ascending)
    : CachedTextSort(store, format, field, ascending) {}

void StringSort::AppendKey(std::int32_t record, std::string& keys) {
    Platform::AppendCodeUnitSortKey(KSDLL_FieldToTString(store_, format_, field_, record), keys);
}

FreeFormatSort::FreeFormatSort(IMemoryResidentData& store, std::int32_t format, std::int32_t field, bool ascending)
    : CachedTextSort(store, format, field, ascending),
      locale_(store.GetLCID()) {}

void FreeFormatSort::AppendKey(std::int32_t record, std::string& keys) {
    Platform::AppendSortKeyForPeople(locale_, store_.GetDbString(format_, field_, record), keys);
}

std::int32_t ParentSort::Parent(std::int32_t record) const {
    const double family = family_column_[record];
    return family >= 0.0 ? key_column_.Find(family) : record;
}

bool ParentSort::Compare(std::int32_t reverse, const std::int32_t& first, const std::int32_t& second) {
    return Answer(reverse, true, Parent(first), Parent(second));
}

void ParentSort::SortStably(std::vector<std::int32_t>& records) {
    // A family key that no record has gives -1, which comes first.
    SortByKeys(records, [&](std::int32_t r) { return static_cast<std::uint64_t>(std::int64_t{Parent(r)} + 1); });
}

} // namespace Kestrona::Data::MemoryResident

bool KSDLL_FirstFilesFirst(std::uint32_t locale, const std::wstring& a, const std::wstring& b) {
    const int order = Kestrona::Platform::CompareForPeople(locale, a, b);
    return order != 0 ? order < 0 : Kestrona::CompareUtf16(a, b) < 0;
}
