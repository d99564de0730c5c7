#include "expressions/parse_names.h"

#include "expressions/existing_fields.h"

#include <kestrona/classes.h>

#include <algorithm>
#include <cstddef>

namespace Kestrona::Expressions {

namespace {

constexpr const wchar_t* kNoMatrixFields = L"Non-Matrix fields cannot reference matrix fields";
constexpr const wchar_t* kOtherGroup = L"Field is not within Associated Group";

bool IsMatrixField(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return (store.GetDbType(format, field) & TypeBit::kMatrix) != 0;
}

// Null when the context may name the field.
const wchar_t* WhyRefused(IMemoryResidentData& store, std::int32_t format, std::int32_t field, NamingContext context) {
    if (!IsMatrixField(store, format, field)) {
        return nullptr;
    }
    if (!context.matrix) {
        return kNoMatrixFields;
    }
    const bool same_group = store.ClassDefined(format, field, Classes::kAssociate) &&
                            store.GetDbData(format, field, DataSlot::kAssociateField) == context.group;
    return same_group ? nullptr : kOtherGroup;
}

// Of several entries with one name the first stays.
template <typename Entry>
void SortByName(std::vector<Entry>& entries) {
    const auto same_name = [](const Entry& a, const Entry& b) {
        return a.name == b.name;
    };
    std::ranges::stable_sort(entries, {}, &Entry::name);
    entries.erase(std::unique(entries.begin(), entries.end(), same_name), entries.end());
}

} // namespace

NamingContext ContextOf(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    if (field == -1 || !IsMatrixField(store, format, field)) {
        return {};
    }
    const bool grouped = store.ClassDefined(format, field, Classes::kAssociate);
    return {.matrix = true, .group = grouped ? store.GetDbData(format, field, DataSlot::kAssociateField) : -1};
}

FieldNames::FieldNames(IMemoryResidentData& store, std::int32_t format, NamingContext context) {
    const std::int32_t fields = ExistingFields(store, format);
    for (std::int32_t field = 0; field < fields; ++field) {
        std::wstring name = store.GetColumnName(format, field);
        if (const wchar_t* const reason = WhyRefused(store, format, field, context)) {
            refused_.push_back({std::move(name), reason});
        } else if (!name.empty()) {
            allowed_.push_back({std::move(name), field});
        }
    }
    SortByName(allowed_);
    LinkShorterNames();
    SortByName(refused_);
}

// In sorted order the names that begin with a name follow it without a gap, so the way up from an entry's predecessor
// passes every name that the entry begins with.
void FieldNames::LinkShorterNames() {
    for (std::size_t i = 1; i < allowed_.size(); ++i) {
        auto candidate = static_cast<std::int32_t>(i) - 1;
        while (candidate >= 0 && !allowed_[i].name.starts_with(allowed_[static_cast<std::size_t>(candidate)].name)) {
            candidate = allowed_[static_cast<std::size_t>(candidate)].shorter;
        }
        allowed_[i].shorter = candidate;
    }
}

std::int32_t FieldNames::FindPrefix(const wchar_t*& first, const wchar_t* last) const {
    const std::wstring_view text(first, static_cast<std::size_t>(last - first));
    const auto after =
        std::ranges::upper_bound(allowed_, text, {}, [](const Entry& entry) { return std::wstring_view(entry.name); });
    auto index = static_cast<std::int32_t>(after - allowed_.begin()) - 1;
    while (index >= 0) {
        const Entry& entry = allowed_[static_cast<std::size_t>(index)];
        if (text.starts_with(entry.name)) {
            first += entry.name.size();
            return entry.field;
        }
        index = entry.shorter;
    }
    return -1;
}

const wchar_t* FieldNames::RefusalOf(std::wstring_view name) const {
    const auto found = std::ranges::lower_bound(refused_, name, {},
                                                [](const Refusal& refusal) { return std::wstring_view(refusal.name); });
    return found != refused_.end() && found->name == name ? found->reason : nullptr;
}

const FieldNames& FieldNameTables::For(std::int32_t format, std::int32_t field) {
    if (format == -1) {
        static const FieldNames kNone;
        return kNone;
    }
    const NamingContext context = ContextOf(store_, format, field);
    const auto known = tables_.find({format, context});
    if (known != tables_.end()) {
        return known->second;
    }
    return tables_.emplace(std::tuple(format, context), FieldNames(store_, format, context)).first->second;
}

} // namespace Kestrona::Expressions
