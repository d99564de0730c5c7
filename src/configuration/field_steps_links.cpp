// Keywords that name a field of another format and keep its numbers in two slots.
#include "configuration/field_steps.h"
#include "configuration/messages.h"

#include <kestrona/classes.h>
#include <kestrona/record_search.h>
#include <kestrona/services.h>

#include <optional>
#include <string_view>

namespace Kestrona::Configuration {

namespace {

struct LinkKeyword {
    std::wstring_view keyword;
    std::wstring_view pattern;
    std::int32_t message; // of the context, 0 where `context` has the text
    const wchar_t* context;
    std::int32_t format_slot;
    std::int32_t field_slot;
    std::optional<Class> mark; // set on the field
    std::optional<Class> gate; // without this class the keyword means nothing
};

constexpr LinkKeyword kLocalAssignment{
    L"LOCAL ASSIGNMENT",         L"LOCAL ASSIGNMENT ( %[^(] ( %[^)]", kMsgInLocalAssignment,     nullptr,
    DataSlot::kAssignmentFormat, DataSlot::kAssignmentField,          Classes::kLocalAssignment, std::nullopt};
constexpr LinkKeyword kSetupOverrideMatch{L"SETUP OVERRIDE MATCH",
                                          L"SETUP OVERRIDE MATCH ( %[^(] ( %[^)]",
                                          kMsgInSetupOverride,
                                          nullptr,
                                          DataSlot::kSetupMatchFormat,
                                          DataSlot::kSetupMatchField,
                                          std::nullopt,
                                          Classes::kSetupOverrideMatch};
constexpr LinkKeyword kMatchField{
    L"MATCH FIELD",          L"MATCH FIELD ( %[^(] ( %[^)]", kMsgInMatchField,     nullptr,
    DataSlot::kMatrixFormat, DataSlot::kMatrixField,         Classes::kMatchField, std::nullopt};
constexpr LinkKeyword kSourceOrder{
    L"SOURCE ORDER",         L"SOURCE ORDER ( %[^(] ( %[^)]", kMsgInSourceOrder,     nullptr,
    DataSlot::kMatrixFormat, DataSlot::kMatrixField,          Classes::kSourceOrder, std::nullopt};
constexpr LinkKeyword kMatchDuration{L"MATCH DURATION FIELD",      L"MATCH DURATION FIELD ( %[^(] ( %[^)]",
                                     kMsgInMatchDuration,          nullptr,
                                     DataSlot::kAssignmentFormat,  DataSlot::kAssignmentField,
                                     Classes::kMatchDurationField, std::nullopt};
constexpr LinkKeyword kLookupSource{L"LOOKUP SOURCE",
                                    L"LOOKUP SOURCE ( %[^(] ( %[^)]",
                                    0,
                                    L"LOOKUP SOURCE reference in Format '%s' Field '%s'",
                                    DataSlot::kLookupFormat,
                                    DataSlot::kLookupField,
                                    Classes::kLookupSource,
                                    std::nullopt};
constexpr LinkKeyword kExpandMatch{L"EXPAND MATCH",
                                   L"EXPAND MATCH ( %[^(] ( %[^)]",
                                   0,
                                   L"EXPAND MATCH reference in Format '%s' Field '%s'",
                                   DataSlot::kExpandFormat,
                                   DataSlot::kExpandField,
                                   Classes::kExpandMatch,
                                   std::nullopt};
constexpr LinkKeyword kExpandReference{L"EXPAND REFERENCE",
                                       L"EXPAND REFERENCE ( %[^(] ( %[^)]",
                                       0,
                                       L"EXPAND REFERENCE reference in Format '%s' Field '%s'",
                                       DataSlot::kExpandFormat,
                                       DataSlot::kExpandField,
                                       Classes::kExpandReference,
                                       std::nullopt};

constexpr const wchar_t* kInOrderMatch = L"ORDER MATCH reference in Format '%s' Field '%s'";
constexpr const wchar_t* kNoParentForOrderMatch =
    L"No Associated table for ORDER MATCH reference in Format '%s' Field '%s'";
constexpr std::uint32_t kOrderMatchLogFlags = 0x20 | 1; // forced where the debug categories have bit 5

// `target` stays unset where the keyword does not stand.
bool Resolve(FieldScope& scope, const LinkKeyword& link, std::optional<TableColumn>& target) {
    Reference reference;
    if ((link.gate && !scope.Is(*link.gate)) || !scope.ScanFormatField(link.keyword, link.pattern, reference)) {
        return true;
    }
    TableColumn found;
    const ContextText context = link.message != 0 ? scope.Context(link.message) : scope.Context(link.context);
    if (!scope.Find(reference, context, Datasets::Any, found)) {
        return false;
    }
    if (link.mark) {
        scope.Add(*link.mark);
    }
    scope.SetSlots(link.format_slot, link.field_slot, found);
    target = found;
    return true;
}

bool Resolve(FieldScope& scope, const LinkKeyword& link) {
    std::optional<TableColumn> target;
    return Resolve(scope, link, target);
}

// Replaces the end of the match, which the caller has set to its beginning. An end in another format is ignored.
bool ResolveMatchEnd(FieldScope& scope, TableColumn begin) {
    Reference reference;
    if (!scope.ScanFormatField(L"MATCH END DURATION FIELD", L"MATCH END DURATION FIELD ( %[^(] ( %[^)]", reference)) {
        return true;
    }
    TableColumn end;
    if (!scope.Find(reference, scope.Context(kMsgInMatchDuration), Datasets::Any, end)) {
        return false;
    }
    if (end.format == begin.format) {
        scope.SetSlot(DataSlot::kMatchEndField, end.field);
    }
    return true;
}

} // namespace

bool ResolveLocalAssignment(FieldScope& scope) {
    std::optional<TableColumn> target;
    if (!Resolve(scope, kLocalAssignment, target)) {
        return false;
    }
    if (target) {
        scope.Store().AddDbClass(target->format, target->field, Classes::kLocalAssignmentTarget);
    }
    return true;
}

bool ResolveSetupOverrideMatch(FieldScope& scope) {
    return Resolve(scope, kSetupOverrideMatch);
}

bool ResolveMatchField(FieldScope& scope) {
    return Resolve(scope, kMatchField);
}

bool ResolveSourceOrder(FieldScope& scope) {
    return Resolve(scope, kSourceOrder);
}

bool ResolveMatchDurationField(FieldScope& scope) {
    std::optional<TableColumn> begin;
    if (!Resolve(scope, kMatchDuration, begin)) {
        return false;
    }
    if (!begin) {
        return true;
    }
    scope.SetSlot(DataSlot::kMatchEndField, begin->field);
    return ResolveMatchEnd(scope, *begin);
}

bool ResolveLookupSource(FieldScope& scope) {
    return Resolve(scope, kLookupSource);
}

bool ResolveOrderMatch(FieldScope& scope) {
    Reference reference;
    if (!scope.ScanField(L"ORDER MATCH", L"ORDER MATCH ( %[^)(]", reference)) {
        return true;
    }
    reference.format = KSDLL_GetAssociatedTableTSTRING(scope.Store(), scope.Format());
    if (reference.format.empty()) {
        KSDLL_WriteDebugEx(scope.Fill(kNoParentForOrderMatch), kOrderMatchLogFlags);
        return true;
    }
    TableColumn target;
    if (!scope.Find(reference, scope.Context(kInOrderMatch), Datasets::Any, target)) {
        return false;
    }
    scope.Add(Classes::kOrderMatch);
    scope.SetSlot(DataSlot::kOrderMatchField, target.field);
    return true;
}

bool ResolveExpandMatch(FieldScope& scope) {
    return Resolve(scope, kExpandMatch);
}

bool ResolveExpandReference(FieldScope& scope) {
    return Resolve(scope, kExpandReference);
}

} // namespace Kestrona::Configuration
