// LOOKUP UPDATE: a field that is filled from the record that its LOOKUP SOURCE finds.
#include "configuration/field_steps.h"
#include "platform/scan_wide.h"

#include <kestrona/classes.h>

#include <string_view>

namespace Kestrona::Configuration {

using Data::MemoryResident::IMemoryResidentData;

namespace {

constexpr std::wstring_view kLookupUpdate = L"LOOKUP UPDATE";
constexpr const wchar_t* kInLookupUpdate = L"LOOKUP UPDATE reference in Format '%s' Field '%s'";
constexpr const wchar_t* kNoLookupSource =
    L"No LOOKUP SOURCE classification exists to be used with the LOOKUP UPDATE in Format '%s' Field '%s'";
constexpr const wchar_t* kWithEvaluate =
    L"LOOKUP UPDATE classification exists together with EVALUATE in Format '%s' Field '%s'";
constexpr const wchar_t* kOtherType =
    L"LOOKUP UPDATE classification in Format '%s' Field '%s' references a field that is not the same type";
constexpr const wchar_t* kNotFreeFormat = L"LOOKUP UPDATE classification in Format '%s' Field '%s' is not FREE FORMAT "
                                          L"but the referenced field is FREE FORMAT";
constexpr const wchar_t* kStoredStrings = L"LOOKUP UPDATE classification in Format '%s' Field '%s' can not reference a "
                                          L"MATRIX field with STRING STORAGE";

bool CheckTarget(const FieldScope& scope, TableColumn target) {
    IMemoryResidentData& store = scope.Store();
    if (store.GetDbType(target.format, target.field) != scope.Type()) {
        return scope.Refuse(kOtherType);
    }
    if (!scope.Is(Classes::kFreeFormat) && store.ClassDefined(target.format, target.field, Classes::kFreeFormat)) {
        return scope.Refuse(kNotFreeFormat);
    }
    if (store.ClassDefined(target.format, target.field, Classes::kStringStorage)) {
        return scope.Refuse(kStoredStrings);
    }
    return true;
}

// Without a name the field of the same name is meant.
Reference ReadReference(const FieldScope& scope, std::size_t keyword) {
    Reference reference;
    reference.position = keyword;
    Platform::ScanWide(std::wstring_view(scope.Text()).substr(keyword + kLookupUpdate.size()), L" (%[^)\n] ) ",
                       &reference.field);
    if (reference.field.empty()) {
        reference.field = scope.FieldName();
    }
    return reference;
}

} // namespace

bool ResolveLookupUpdate(FieldScope& scope) {
    const std::size_t keyword = scope.Text().find(kLookupUpdate);
    if (keyword == std::wstring::npos) {
        return true;
    }
    TableColumn target{scope.Slot(DataSlot::kLookupFormat), -1};
    if (target.format == -1) {
        return scope.Refuse(kNoLookupSource);
    }
    if (scope.Is(Classes::kEvaluate)) {
        return scope.Refuse(kWithEvaluate);
    }
    target.field = scope.FindIn(target.format, ReadReference(scope, keyword), scope.Context(kInLookupUpdate));
    if (target.field < 0 || !CheckTarget(scope, target)) {
        return false;
    }
    scope.SetSlots(DataSlot::kLookupFormat, DataSlot::kLookupField, target);
    scope.Add(Classes::kLookupUpdate);
    return true;
}

} // namespace Kestrona::Configuration
