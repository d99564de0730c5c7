// Checks that need the classes of fields in later formats, and rules about the field itself.
#include "configuration/messages.h"
#include "configuration/relationship_steps.h"
#include "configuration/report.h"

#include <kestrona/classes.h>

#include <string_view>

namespace Kestrona::Configuration {

using Data::MemoryResident::IMemoryResidentData;

namespace {

constexpr const wchar_t* kSourceNotUnique =
    L"LOOKUP SOURCE classification in Format '%s' Field '%s' references a field that is not UNIQUE";
constexpr const wchar_t* kSourceNotInherited =
    L"LOOKUP SOURCE classification in Format '%s' Field '%s' references a field that is not INHERIT FROM PARENT";
constexpr const wchar_t* kUpdateNoReference = L"LOOKUP UPDATE classification in Format '%s' Field '%s' is a DATABASE "
                                              L"reference but the referenced field is not a DATABASE reference";
constexpr const wchar_t* kUpdateOtherTable = L"LOOKUP UPDATE classification in Format '%s' Field '%s' is a DATABASE "
                                             L"reference but the table is different to the table in the referenced "
                                             L"field";

constexpr std::wstring_view kInheritFromParentWord = L"INHERIT FROM PARENT";

// Where LOOKUP SOURCE leads, or LOOKUP UPDATE on a field with both.
TableColumn LookupTarget(const FieldScope& scope) {
    return {scope.Slot(DataSlot::kLookupFormat), scope.Slot(DataSlot::kLookupField)};
}

bool IsClass(const FieldScope& scope, TableColumn place, Class c) {
    return scope.Store().ClassDefined(place.format, place.field, c);
}

bool RefuseSource(const FieldScope& scope, TableColumn source, std::int32_t reason) {
    IMemoryResidentData& store = scope.Store();
    return Fail(Platform::FormatText(JoinedMessages({kMsgSource1, kMsgSource2, kMsgSource3, reason}),
                                     store.GetDbName(source.format), scope.FormatName(),
                                     store.GetColumnName(source.format, source.field), scope.FieldName()));
}

// Whether the field has its class from a FAMILY field that stands behind it. When a definition is resolved for the
// first time, such a field gets the class after its own turn, so that it keeps its parent sort. When the definition is
// resolved again, it has the class from the beginning, and must keep its parent sort all the same.
bool GotClassBehindItsTurn(const FieldScope& scope) {
    if (!scope.Is(Classes::kFamilyTarget) || scope.Holds(kInheritFromParentWord)) {
        return false;
    }
    for (std::int32_t field = 0; field < scope.Field(); ++field) {
        if (IsClass(scope, {scope.Format(), field}, Classes::kFamily) &&
            scope.Store().GetDbTable(scope.Format(), field) == scope.Field()) {
            return false;
        }
    }
    return true;
}

} // namespace

bool CheckLookupSource(FieldScope& scope) {
    if (!scope.Is(Classes::kLookupSource)) {
        return true;
    }
    const TableColumn target = LookupTarget(scope);
    if (!IsClass(scope, target, Classes::kUnique)) {
        return scope.Refuse(kSourceNotUnique);
    }
    if (!IsClass(scope, target, Classes::kInheritFromParent)) {
        return scope.Refuse(kSourceNotInherited);
    }
    return true;
}

bool CheckLookupUpdate(FieldScope& scope) {
    if (!scope.Is(Classes::kLookupUpdate) || !scope.Is(Classes::kDatabase)) {
        return true;
    }
    const TableColumn target = LookupTarget(scope);
    if (!IsClass(scope, target, Classes::kDatabase)) {
        return scope.Refuse(kUpdateNoReference);
    }
    IMemoryResidentData& store = scope.Store();
    if (store.GetDbTable(target.format, target.field) != store.GetDbTable(scope.Format(), scope.Field())) {
        return scope.Refuse(kUpdateOtherTable);
    }
    return true;
}

bool CheckSource(FieldScope& scope) {
    if (!scope.Is(Classes::kSource) || scope.Is(Classes::kUnchecked)) {
        return true;
    }
    IMemoryResidentData& store = scope.Store();
    const TableColumn source{scope.Slot(DataSlot::kSourceFormat), store.GetDbSourceS(scope.Format(), scope.Field())};
    if (!IsClass(scope, source, Classes::kDatabase)) {
        return RefuseSource(scope, source, kMsgSourceNoReference);
    }
    if (scope.Is(Classes::kDatabase) &&
        (store.GetDbTable(source.format, source.field) != store.GetDbTable(scope.Format(), scope.Field()) ||
         store.GetDbSource(source.format, source.field) != store.GetDbSource(scope.Format(), scope.Field()))) {
        return RefuseSource(scope, source, kMsgSourceOther);
    }
    return true;
}

bool CheckReferenceIsNoText(FieldScope& scope) {
    return !scope.Is(Classes::kDatabase) || !scope.Is(Classes::kFreeFormat) || scope.Refuse(Message(kMsgReferenceText));
}

bool ReleaseFromParentSort(FieldScope& scope) {
    if (scope.Is(Classes::kInheritFromParent) && !GotClassBehindItsTurn(scope)) {
        scope.Store().SetParentSortEnabled(scope.Format(), scope.Field(), false);
    }
    return true;
}

bool CheckEncryption(FieldScope& scope) {
    if (!scope.Is(Classes::kEncrypted)) {
        return true;
    }
    if (scope.Is(Classes::kEvaluate)) {
        return scope.Refuse(Message(kMsgEncryptedEvaluate));
    }
    if (scope.Is(Classes::kStringStorage)) {
        return scope.Refuse(Message(kMsgEncryptedStorage));
    }
    if (!scope.Is(Classes::kFreeFormat)) {
        return scope.Refuse(Message(kMsgEncryptedPlain));
    }
    return true;
}

} // namespace Kestrona::Configuration
