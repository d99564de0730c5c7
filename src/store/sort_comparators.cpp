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
      keys_(static_cast<std::size_t>(store.GetCurrentDbSize(format))) {}

CachedTextSort::~CachedTextSort() = default;

const std::string& CachedTextSort::Key(std::int32_t record) {
    std::unique_ptr<std::string>& key = keys_.at(static_cast<std::size_t>(record));
    if (!key) {
        key = std::make_unique<std::string>(MakeKey(record));
    }
    return *key;
}

bool CachedTextSort::Compare(std::int32_t reverse, const std::int32_t& first, const std::int32_t& second) {
    return Answer(reverse, ascending_, Key(first), Key(second));
}

void CachedTextSort::SortStably(std::vector<std::int32_t>& records) {
    std::vector<NumberedText> texts(records.size());
    std::ranges::transform(records, texts.begin(), [&](std::int32_t r) {
        const std::string& key = Key(r);
        return NumberedText{HeadOf(key), &key, r};
    });
    MemoryResident::SortStably(texts, ascending_);
    std::ranges::transform(texts, records.begin(), &NumberedText::record);
}

StringSort::StringSort(IMemoryResidentData& store, std::int32_t format, std::int32_t field, bool ascending)
    : CachedTextSort(store, format, field, ascending) {}

std::string StringSort::MakeKey(std::int32_t record) {
    return Platform::CodeUnitSortKey(KSDLL_FieldToTString(store_, format_, field_, record));
}

FreeFormatSort::FreeFormatSort(IMemoryResidentData& store, std::int32_t format, std::int32_t field, bool ascending)
    : CachedTextSort(store, format, field, ascending),
      locale_(store.GetLCID()) {}

std::string FreeFormatSort::MakeKey(std::int32_t record) {
    return Platform::SortKeyForPeople(locale_, store_.GetDbString(format_, field_, record));
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
