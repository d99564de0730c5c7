// Fields that share, override or update another field of their format.
#include "configuration/field_count.h"
#include "configuration/messages.h"
#include "configuration/relationship_steps.h"
#include "configuration/report.h"

#include <kestrona/classes.h>
#include <kestrona/classification_parsers.h>

namespace Kestrona::Configuration {

using Data::MemoryResident::IMemoryResidentData;

namespace {

// Reads the field that the keyword names, an empty name where the keyword stands without one: its look-up fails. False
// where not even the keyword stands.
template <typename Parser>
bool ReadName(const FieldScope& scope, const Parser& parser, Reference& out) {
    return FindFieldReference(parser, scope.Text(), out) || Parser::HasKeyword(scope.Text());
}

// 0 when the field may override the other one, else the number of the text that tells why not.
std::int32_t OverrideFault(const FieldScope& scope, std::int32_t target) {
    IMemoryResidentData& store = scope.Store();
    if (store.GetDbType(scope.Format(), target) != scope.Type()) {
        return kMsgOverrideType;
    }
    if (scope.Is(Classes::kFreeFormat) || scope.IsMatrix()) {
        return kMsgOverrideKind;
    }
    if (store.ClassDefined(scope.Format(), target, Classes::kFreeFormat)) {
        return kMsgOverrideText;
    }
    return scope.Is(Classes::kUpdateReference) ? kMsgOverrideUpdate : 0;
}

bool RefuseNamed(const FieldScope& scope, std::int32_t message, std::int32_t target) {
    return scope.Refuse(JoinedMessages({message, kMsgNameTail}), target);
}

} // namespace

bool ResolveAdditionalReference(FieldScope& scope) {
    static const Parsers::ClassificationParser_ADDITIONAL_REFERENCE parser;
    if (!scope.Is(Classes::kAdditionalReference)) {
        return true;
    }
    Reference reference;
    if (!ReadName(scope, parser, reference)) {
        return scope.Refuse(Message(kMsgNoAdditional));
    }
    const std::int32_t target = scope.FindHere(reference, scope.Context(kMsgInAdditionalReference));
    if (target < 0) {
        return false;
    }
    ColumnSharing& sharing = scope.Pass().sharing;
    sharing.Begin(scope.Format(), FieldCount(scope.Store(), scope.Format()));
    if (!sharing.Enter(scope.Field(), target)) {
        return RefuseNamed(scope, kMsgSharesItself, target);
    }
    scope.Store().SetDbTableY(scope.Format(), scope.Field(), target);
    return true;
}

bool ResolveOverride(FieldScope& scope) {
    static const Parsers::ClassificationParser_OVERRIDE parser;
    if (!scope.Is(Classes::kOverride)) {
        return true;
    }
    Reference reference;
    if (!FindFieldReference(parser, scope.Text(), reference)) {
        return true;
    }
    const auto context = [&] {
        return Parsers::ClassificationParser_OVERRIDE::BuildClassification(reference.field);
    };
    const std::int32_t target = scope.FindHere(reference, context);
    if (target < 0) {
        return false;
    }
    if (const std::int32_t fault = OverrideFault(scope, target)) {
        return scope.Refuse(Message(fault), target);
    }
    scope.Store().SetDbTableY(scope.Format(), scope.Field(), target);
    return true;
}

bool ResolveUpdateReference(FieldScope& scope) {
    static const Parsers::ClassificationParser_UPDATE_REFERENCE parser;
    if (!scope.Is(Classes::kUpdateReference)) {
        return true;
    }
    Reference reference;
    if (!ReadName(scope, parser, reference)) {
        return scope.Refuse(Message(kMsgNoUpdateReference));
    }
    const std::int32_t target = scope.FindHere(reference, scope.Context(kMsgInUpdateReference));
    if (target < 0) {
        return false;
    }
    if (target == scope.Field()) {
        return RefuseNamed(scope, kMsgUpdatesItself, target);
    }
    if (!scope.Is(Classes::kDatabase) && !scope.Is(Classes::kSource)) {
        return RefuseNamed(scope, kMsgUpdateNeedsSource, target);
    }
    scope.Store().SetDbTableY(scope.Format(), scope.Field(), target);
    return true;
}

bool ResolveAutoSplit(FieldScope& scope) {
    Reference reference;
    if (!scope.Is(Classes::kAutoSplit) || !scope.ScanField(L"AUTO SPLIT", L"AUTO SPLIT ( %[^):]", reference)) {
        return true;
    }
    IMemoryResidentData& store = scope.Store();
    const std::int32_t target = scope.FindHere(reference, scope.Context(kMsgInAutoSplit));
    if (target < 0) {
        return false;
    }
    if (target == scope.Field()) {
        return RefuseNamed(scope, kMsgSplitsItself, target);
    }
    // One kind of number and nothing else.
    const std::uint32_t type = store.GetDbType(scope.Format(), target);
    if (type != TypeBit::kReal && type != TypeBit::kInteger) {
        return RefuseNamed(scope, kMsgSplitType, target);
    }
    store.SetDbTableY(scope.Format(), scope.Field(), target);
    return true;
}

} // namespace Kestrona::Configuration
