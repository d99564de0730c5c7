// The field that chooses the record of another format whose list or matrix a field refers to.
#include "configuration/messages.h"
#include "configuration/relationship_steps.h"
#include "configuration/report.h"

#include <kestrona/classes.h>

namespace Kestrona::Configuration {

using Data::MemoryResident::field_info;
using Data::MemoryResident::IMemoryResidentData;

namespace {

bool HasMatrixType(IMemoryResidentData& store, TableColumn place) {
    return (store.GetDbType(place.format, place.field) & TypeBit::kMatrix) != 0;
}

// The list or matrix that the field refers to; -1 in either number when it refers to none.
TableColumn TargetOf(const FieldScope& scope) {
    IMemoryResidentData& store = scope.Store();
    if (scope.Is(Classes::kList)) {
        return {store.GetDbTableY(scope.Format(), scope.Field()), store.GetDbSourceY(scope.Format(), scope.Field())};
    }
    return {store.GetDbTable(scope.Format(), scope.Field()), store.GetDbSource(scope.Format(), scope.Field())};
}

// A single reference to a UNIQUE field of the target's format tells one record of it.
bool ChoosesRecord(const FieldScope& scope, std::int32_t field, std::int32_t target_format) {
    IMemoryResidentData& store = scope.Store();
    const TableColumn place{scope.Format(), field};
    return store.ClassDefined(place.format, place.field, Classes::kDatabase) && !HasMatrixType(store, place) &&
           !(scope.Format() != target_format &&
             store.ClassDefined(place.format, place.field, Classes::kAdditionalReference)) &&
           store.GetDbTable(place.format, place.field) == target_format &&
           store.ClassDefined(target_format, store.GetDbSource(place.format, place.field), Classes::kUnique);
}

bool RefuseAmbiguity(const FieldScope& scope, std::int32_t target_format, std::int32_t field, std::int32_t earlier) {
    IMemoryResidentData& store = scope.Store();
    return Fail(Platform::FormatText(
        JoinedMessages({kMsgAmbiguousRelated, kMsgAmbiguousTail}), store.GetDbName(target_format), scope.FormatName(),
        store.GetColumnName(scope.Format(), field), store.GetColumnName(scope.Format(), earlier), scope.FieldName()));
}

struct Search {
    std::int32_t target_format = -1;
    bool skip_unchecked = true;     // leave out fields of the class kUnchecked
    bool ambiguity_is_error = true; // else the first hit stays
};

bool SearchFields(const FieldScope& scope, const Search& search, std::int32_t& related) {
    IMemoryResidentData& store = scope.Store();
    const std::int32_t fields = store.GetDbFields(scope.Format());
    for (std::int32_t field = 0; field < fields; ++field) {
        if (!ChoosesRecord(scope, field, search.target_format) ||
            (search.skip_unchecked && store.ClassDefined(scope.Format(), field, Classes::kUnchecked))) {
            continue;
        }
        if (related == -1) {
            related = field;
        } else if (search.ambiguity_is_error) {
            return RefuseAmbiguity(scope, search.target_format, field, related);
        }
    }
    return true;
}

// Leaves `related` at -1 when no field of the format chooses the record.
bool SearchRelated(const FieldScope& scope, std::int32_t target_format, std::int32_t& related) {
    const bool is_here = scope.Format() == target_format;
    if (!scope.Is(Classes::kRelatedField)) {
        if (!SearchFields(scope, {target_format, true, true}, related)) {
            return false;
        }
        if (related == -1 && !SearchFields(scope, {target_format, false, !is_here}, related)) {
            return false;
        }
    }
    if (related == -1 && is_here) {
        related = scope.Store().GetDbKey(scope.Format());
    }
    return true;
}

bool RefuseUnrelated(const FieldScope& scope, std::int32_t target_format) {
    return Fail(Platform::FormatText(JoinedMessages({kMsgNoRelated, kMsgNoRelatedTail}),
                                     scope.Store().GetDbName(target_format), scope.FormatName(), scope.FieldName()));
}

// The field's own source lives on as its matrix field.
void TakeOverDimensions(FieldScope& scope, TableColumn target) {
    IMemoryResidentData& store = scope.Store();
    if (field_info* info = store.GetFieldInfo(scope.Format(), scope.Field())) {
        info->matrixField = info->source;
    }
    store.SetDbTable(scope.Format(), scope.Field(), store.GetDbTable(target.format, target.field));
    store.SetDbSource(scope.Format(), scope.Field(), store.GetDbSource(target.format, target.field));
}

} // namespace

bool FindRelatedField(FieldScope& scope) {
    if (!scope.Is(Classes::kDatabase) && !scope.Is(Classes::kList)) {
        return true;
    }
    IMemoryResidentData& store = scope.Store();
    const TableColumn target = TargetOf(scope);
    if (target.format == -1 || target.field == -1 || !HasMatrixType(store, target)) {
        return true;
    }
    std::int32_t related = store.GetDbRelated(scope.Format(), scope.Field());
    if (!SearchRelated(scope, target.format, related)) {
        return false;
    }
    store.SetDbRelated(scope.Format(), scope.Field(), related);
    if (related == -1) {
        return RefuseUnrelated(scope, target.format);
    }
    TakeOverDimensions(scope, target);
    return true;
}

} // namespace Kestrona::Configuration
