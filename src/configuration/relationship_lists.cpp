// Fields that belong to a list of their format, and families of records.
#include "configuration/messages.h"
#include "configuration/relationship_steps.h"
#include "configuration/report.h"

#include <kestrona/classes.h>
#include <kestrona/classification_parsers.h>
#include <kestrona/process.h>

namespace Kestrona::Configuration {

using Data::MemoryResident::IMemoryResidentData;

namespace {

bool IsList(const FieldScope& scope, std::int32_t field) {
    return scope.Store().ClassDefined(scope.Format(), field, Classes::kList);
}

void HideFromDialogs(FieldScope& scope) {
    scope.Add(Classes::kPrimaryHidden);
    scope.Add(Classes::kHidden);
}

// Dimensions an ASSOCIATE field by the key of its own format and the key of the format that its list lists.
void DimensionByList(FieldScope& scope, std::int32_t list) {
    if (!scope.Is(Classes::kParallelList)) {
        scope.Add(Classes::kAutoDimension);
    }
    IMemoryResidentData& store = scope.Store();
    const std::int32_t listed = store.GetDbTable(scope.Format(), list);
    scope.ReferTo(scope.Format(), store.GetDbKey(scope.Format()));
    store.SetDbTableY(scope.Format(), scope.Field(), listed);
    store.SetDbSourceY(scope.Format(), scope.Field(), store.GetDbKey(listed)); // -1 for a list of plain values
}

} // namespace

bool ResolveRelatedList(FieldScope& scope) {
    Reference reference;
    if (!scope.ScanField(L"RELATED LIST", L"RELATED LIST ( %[^)]", reference)) {
        return true;
    }
    const std::int32_t list = scope.FindHere(reference, scope.Context(kMsgInRelatedList));
    if (list < 0) {
        return false;
    }
    scope.Store().SetDbTableY(scope.Format(), scope.Field(), list);
    scope.Add(Classes::kRelatedList);
    HideFromDialogs(scope);
    if (!IsList(scope, list)) {
        return scope.Refuse(JoinedMessages({kMsgRelatedListTarget, kMsgListTail}), list);
    }
    if (scope.Type() != TypeBit::kMatrix) {
        return scope.Refuse(JoinedMessages({kMsgRelatedListType, kMsgListTail}), list);
    }
    return true;
}

bool ResolveAssociate(FieldScope& scope) {
    static const Parsers::ClassificationParser_ASSOCIATE parser;
    Reference reference;
    if (!FindFieldReference(parser, scope.Text(), reference)) {
        return true;
    }
    if (KSDLL_GetLongSv(kSvAssociatedTableMode) != 0) {
        scope.Add(Classes::kReadOnly);
    }
    const std::int32_t list = scope.FindHere(reference, scope.Context(kMsgInAssociate));
    if (list < 0) {
        return false;
    }
    scope.SetSlot(DataSlot::kAssociateField, list);
    scope.Add(Classes::kAssociate);
    HideFromDialogs(scope);
    if (!IsList(scope, list)) {
        return scope.Refuse(JoinedMessages({kMsgAssociateTarget, kMsgListTail}), list);
    }
    if (!scope.IsMatrix()) {
        return scope.Refuse(JoinedMessages({kMsgAssociateType, kMsgListTail}), list);
    }
    if (!scope.Holds(L"AUTO DIMENSION")) {
        DimensionByList(scope, list);
    }
    return true;
}

bool ResolveAutoRestrict(FieldScope& scope) {
    Reference reference;
    if (!scope.ScanField(L"AUTO RESTRICT", L"AUTO RESTRICT ( %[^)]", reference)) {
        return true;
    }
    const std::int32_t target = scope.FindHere(reference, scope.Context(kMsgInAutoRestrict));
    if (target < 0) {
        return false;
    }
    scope.SetSlot(DataSlot::kRestrictField, target);
    scope.Add(Classes::kAutoRestrict);
    return scope.IsMatrix() || scope.Refuse(JoinedMessages({kMsgAutoRestrictType, kMsgListTail}), target);
}

bool ResolveFamily(FieldScope& scope) {
    static const Parsers::ClassificationParser_FAMILY parser;
    Reference reference;
    if (!FindFieldReference(parser, scope.Text(), reference)) {
        return true;
    }
    IMemoryResidentData& store = scope.Store();
    scope.Add(Classes::kFamily);
    scope.ReferTo(-1, store.GetDbSource(scope.Format(), scope.Field()));
    if (store.GetDbKey(scope.Format()) == -1) {
        return scope.Refuse(JoinedMessages({kMsgFamilyKey, kMsgFamilyKeyTail}));
    }
    const std::int32_t shown = scope.FindHere(reference, scope.Context(kMsgInFamily));
    if (shown < 0) {
        return false;
    }
    // The table of a FAMILY field is a field of its own format.
    scope.ReferTo(shown, store.GetDbSource(scope.Format(), scope.Field()));
    store.AddDbClass(scope.Format(), shown, Classes::kInheritFromParent);
    store.AddDbClass(scope.Format(), shown, Classes::kFamilyTarget);
    return true;
}

} // namespace Kestrona::Configuration
