#include "data/followed_field.h"

#include "data/cell_text.h"
#include "data/field_names.h"
#include "data/matrix_text.h"
#include "output/there_are.h"

#include <kestrona/classes.h>
#include <kestrona/unicode.h>

#include <fmt/format.h>

namespace Kestrona::Tool {
namespace {

using Data::MemoryResident::IMemoryResidentData;

bool IsReference(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    const std::int32_t target = store.GetDbTable(format, field);
    return store.ClassDefined(format, field, Classes::kDatabase) && HasCells(store, format, field) &&
           FormOfField(store, format, field) != ValueForm::Text && target >= 0 && target < store.GetFormatCount();
}

std::vector<std::string> KnownFields(IMemoryResidentData& store, std::int32_t format) {
    std::vector<std::string> known;
    for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
        if (HasValues(store, format, field)) {
            known.push_back(ToUtf8(store.GetColumnName(format, field)));
        }
    }
    return known;
}

Problem Wrong(IMemoryResidentData& store, std::int32_t format, std::string_view rest) {
    const std::string_view first = rest.substr(0, rest.find('.'));
    if (first != rest && FieldNamed(store, format, first) >= 0) {
        return {Code::UnknownField, fmt::format("'{}' of {} is no reference", first, ToUtf8(store.GetDbName(format))),
                "Follow a field with DATABASE only."};
    }
    return {Code::UnknownField,
            fmt::format("'{}' is no field with values to show of {}", first, ToUtf8(store.GetDbName(format))),
            ThereAre(KnownFields(store, format)).text};
}

/// The reference whose name and a dot the text begins with, the longest name of several. `length` is 0 where there is
/// none.
struct Piece {
    std::int32_t field = -1;
    std::size_t length = 0;
};

Piece TakeReference(IMemoryResidentData& store, std::int32_t format, std::string_view text) {
    Piece longest;
    for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
        const std::string name = ToUtf8(store.GetColumnName(format, field)) + '.';
        if (name.size() > longest.length + 1 && text.starts_with(name) && IsReference(store, format, field)) {
            longest = {field, name.size() - 1};
        }
    }
    return longest;
}

} // namespace

FollowedField OwnField(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return {ToUtf8(store.GetColumnName(format, field)), {}, format, field};
}

std::optional<FollowedField> ParseFollowedField(IMemoryResidentData& store, std::int32_t format, std::string_view name,
                                                Problem& problem) {
    FollowedField followed{std::string(name), {}, format, -1};
    for (std::string_view rest = name;;) {
        followed.field = FieldNamed(store, followed.format, rest);
        if (followed.field >= 0 && HasValues(store, followed.format, followed.field)) {
            return followed;
        }
        const Piece piece = TakeReference(store, followed.format, rest);
        if (piece.length == 0) {
            problem = Wrong(store, followed.format, rest);
            return std::nullopt;
        }
        followed.references.push_back({followed.format, piece.field});
        followed.format = store.GetDbTable(followed.format, piece.field);
        rest.remove_prefix(piece.length + 1);
    }
}

void IndexReferences(IMemoryResidentData& store, const FollowedField& field) {
    for (const auto& [format, reference] : field.references) {
        const std::int32_t target = store.GetDbTable(format, reference);
        store.AddIndexToColumn(target, store.GetDbKey(target));
    }
}

std::int32_t FollowReferences(IMemoryResidentData& store, const FollowedField& field, std::int32_t record) {
    for (const auto& [format, reference] : field.references) {
        const double key = store.GetDbValue(format, reference, record);
        record = key == kUnset ? -1 : store.LookupKeyRecord(store.GetDbTable(format, reference), key);
        if (record < 0) {
            return -1;
        }
    }
    return record;
}

} // namespace Kestrona::Tool
