#include "data/reference_texts.h"

#include "data/display_text.h"

#include <kestrona/classes.h>
#include <kestrona/unicode.h>

#include <fmt/format.h>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;

ReferenceTarget BySlots(IMemoryResidentData& store, std::int32_t format, std::int32_t field, std::int32_t format_slot,
                        std::int32_t field_slot) {
    return {store.GetDbData(format, field, format_slot), store.GetDbData(format, field, field_slot)};
}

ReferenceTarget Find(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    const bool is_matrix = (store.GetDbType(format, field) & TypeBit::kMatrix) != 0;
    if (store.ClassDefined(format, field, Classes::kStringStorage)) {
        return BySlots(store, format, field, DataSlot::kStorageFormat, DataSlot::kStorageField);
    }
    if (store.ClassDefined(format, field, Classes::kFreeFormat)) {
        return {};
    }
    if (store.ClassDefined(format, field, Classes::kDatabase)) {
        return is_matrix ? BySlots(store, format, field, DataSlot::kMatrixFormat, DataSlot::kMatrixField)
                         : ReferenceTarget{store.GetDbTable(format, field), store.GetDbSource(format, field)};
    }
    return store.ClassDefined(format, field, Classes::kFamily)
               ? ReferenceTarget{format, store.GetDbTable(format, field)}
               : ReferenceTarget{};
}

} // namespace

std::optional<ReferenceTarget> TargetOf(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    if ((store.GetDbType(format, field) & TypeBit::kReference) == 0) {
        return std::nullopt;
    }
    const ReferenceTarget target = Find(store, format, field);
    const bool exists = target.format >= 0 && target.format < store.GetFormatCount() && target.field >= 0 &&
                        target.field < store.GetDbFields(target.format);
    return exists ? std::optional(target) : std::nullopt;
}

std::vector<double> ReferenceTexts::Keys(std::int32_t format, std::int32_t field, std::string_view text) {
    const std::wstring wanted = FromUtf8(TrimCell(text));
    if (EqualIgnoringCase(wanted, UnsetText(format, field))) {
        return {kUnset};
    }
    const auto [first, end] = TextsOf(TargetOf(store_, format, field).value()).equal_range(wanted);
    std::vector<double> keys;
    for (auto entry = first; entry != end; ++entry) {
        keys.push_back(entry->second);
    }
    return keys;
}

std::optional<double> ReferenceTexts::Key(std::int32_t format, std::int32_t field, std::string_view text,
                                          std::string& problem) {
    const std::vector<double> keys = IsValidUtf8(text) ? Keys(format, field, text) : std::vector<double>();
    if (keys.size() == 1) {
        return keys.front();
    }
    const ReferenceTarget target = TargetOf(store_, format, field).value();
    const std::string column = ToUtf8(store_.GetColumnName(target.format, target.field));
    const std::string table = ToUtf8(store_.GetDbName(target.format));
    problem = keys.empty() ? fmt::format("is neither a key nor the {} of a record of {}", column, table)
                           : fmt::format("is the {} of {} records of {}", column, keys.size(), table);
    return std::nullopt;
}

const ReferenceTexts::KeysByText& ReferenceTexts::TextsOf(const ReferenceTarget& target) {
    const auto [place, is_new] = texts_.try_emplace(target);
    if (is_new) {
        const std::int32_t records = store_.GetCurrentDbSize(target.format);
        for (std::int32_t record = 0; record < records; ++record) {
            const std::string text = DisplayText(store_, target.format, target.field, record);
            place->second.emplace(FromUtf8(TrimCell(text)), store_.GetDbKeyValue(target.format, record));
        }
    }
    return place->second;
}

const std::wstring& ReferenceTexts::UnsetText(std::int32_t format, std::int32_t field) {
    const auto [place, is_new] = unset_texts_.try_emplace({format, field});
    if (is_new) {
        place->second = ShownValue(store_, format, field, kUnset);
    }
    return place->second;
}

} // namespace Kestrona::Tool
