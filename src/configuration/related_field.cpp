// The field that chooses the record of another format whose list or matrix a field refers to.
#include "configuration/messages.h"
#include "configuration/relationship_steps.h"
#include "configuration/report.h"

#include <kestrona/classes.h>

#include <iterator>

namespace Kestrona::Configuration {

using Data::MemoryResident::field_info;
using Data::MemoryResident::IMemoryResidentData;

namespace {

// The list or matrix that the field refers to; -1 in either number when it refers to none.
TableColumn TargetOf(const FieldScope& scope) {
    IMemoryResidentData& store = scope.Store();
    if (scope.Is(Classes::kList)) {
        return {store.GetDbTableY(scope.Format(), scope.Field()), store.GetDbSourceY(scope.Format(), scope.Field())};
    }
    return {store.GetDbTable(scope.Format(), scope.Field()), store.GetDbSource(scope.Format(), scope.Field())};
}

bool RefersToMatrix(IMemoryResidentData& store, TableColumn target) {
    return target.format != -1 && target.field != -1 &&
           (store.GetDbType(target.format, target.field) & TypeBit::kMatrix) != 0;
}

bool RefuseAmbiguity(const FieldScope& scope, std::int32_t target_format, std::int32_t field, std::int32_t earlier) {
    IMemoryResidentData& store = scope.Store();
    return Fail(Platform::FormatText(
        JoinedMessages({kMsgAmbiguousRelated, kMsgAmbiguousTail}), store.GetDbName(target_format), scope.FormatName(),
        store.GetColumnName(scope.Format(), field), store.GetColumnName(scope.Format(), earlier), scope.FieldName()));
}

bool RefuseUnrelated(const FieldScope& scope, std::int32_t target_format) {
    return Fail(Platform::FormatText(JoinedMessages({kMsgNoRelated, kMsgNoRelatedTail}),
                                     scope.Store().GetDbName(target_format), scope.FormatName(), scope.FieldName()));
}

// Takes the first field. More than one is ambiguous, except among the unchecked ones of the target's own format.
bool TakeChooser(const FieldScope& scope, std::int32_t target_format, std::int32_t& related) {
    const RecordChoosers::Choosers& choosers = scope.Pass().choosers.Of(scope.Format(), target_format);
    const bool is_checked = !choosers.checked.empty();
    const RecordChoosers::Fields& fields = is_checked ? choosers.checked : choosers.unchecked;
    if (fields.empty()) {
        return true;
    }
    if (fields.size() > 1 && (is_checked || scope.Format() != target_format)) {
        return RefuseAmbiguity(scope, target_format, *std::next(fields.begin()), *fields.begin());
    }
    related = *fields.begin();
    return true;
}

// Leaves `related` at -1 when no field of the format chooses the record.
bool SearchRelated(const FieldScope& scope, std::int32_t target_format, std::int32_t& related) {
    if (!scope.Is(Classes::kRelatedField) && !TakeChooser(scope, target_format, related)) {
        return false;
    }
    if (related == -1 && scope.Format() == target_format) {
        related = scope.Store().GetDbKey(scope.Format());
    }
    return true;
}

// Gives the field the table and source of the list or matrix that it refers to. The source that it had becomes its
// matrix field.
void TakeOverDimensions(FieldScope& scope, TableColumn target) {
    IMemoryResidentData& store = scope.Store();
    if (field_info* info = store.GetFieldInfo(scope.Format(), scope.Field())) {
        info->matrixField = info->source;
    }
    scope.ReferTo(store.GetDbTable(target.format, target.field), store.GetDbSource(target.format, target.field));
}

} // namespace

bool FindRelatedField(FieldScope& scope) {
    if (!scope.Is(Classes::kDatabase) && !scope.Is(Classes::kList)) {
        return true;
    }
    IMemoryResidentData& store = scope.Store();
    const TableColumn target = TargetOf(scope);
    if (!RefersToMatrix(store, target)) {
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
