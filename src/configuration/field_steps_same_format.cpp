// Keywords that name fields of the same format.
#include "configuration/field_steps.h"
#include "configuration/messages.h"
#include "configuration/report.h"
#include "platform/scan_wide.h"

#include <kestrona/classes.h>

#include <string_view>

namespace Kestrona::Configuration {

using Data::MemoryResident::IMemoryResidentData;
using Platform::ScanWide;

namespace {

constexpr std::wstring_view kSwitch = L"SWITCH";
constexpr std::wstring_view kSwitchOn = L"SWITCH ON";

// Reads the name behind one SWITCH; empty when this is another word that begins with it.
std::wstring SwitchName(std::wstring_view text, bool& on) {
    std::wstring name;
    if (text.starts_with(kSwitchOn)) {
        on = ScanWide(text, L"SWITCH ON ( %[^)]", &name).items > 0 || on;
    } else if (ScanWide(text, L"SWITCH OFF ( %[^)]", &name).items <= 0) {
        ScanWide(text, L"SWITCH ( %[^)]", &name);
    }
    return name;
}

bool ResolveSwitch(FieldScope& scope, const Reference& reference, bool on) {
    const auto context = [&] {
        return scope.Fill(Message(kMsgInSwitch)) + L"\n'" + reference.field + L"'";
    };
    const std::int32_t target = scope.FindHere(reference, context);
    if (target < 0) {
        return false;
    }
    IMemoryResidentData& store = scope.Store();
    store.SetDbData(scope.Format(), target, DataSlot::kSwitchField, scope.Field());
    if (on) {
        store.SetDbData(scope.Format(), target, DataSlot::kSwitchOn, 1);
    }
    scope.Add(Classes::kSwitch);
    return true;
}

} // namespace

// After a SWITCH ON the later ones of the same field count as on, too.
bool ResolveSwitches(FieldScope& scope) {
    const std::wstring_view text = scope.Text();
    bool on = false;
    for (std::size_t at = text.find(kSwitch); at != std::wstring_view::npos;
         at = text.find(kSwitch, at + kSwitch.size())) {
        Reference reference;
        reference.field = SwitchName(text.substr(at), on);
        reference.position = at;
        if (!reference.field.empty() && !ResolveSwitch(scope, reference, on)) {
            return false;
        }
    }
    return true;
}

bool ResolveRelatedField(FieldScope& scope) {
    Reference reference;
    if (!scope.ScanField(L"RELATED FIELD", L"RELATED FIELD ( %[^)]", reference)) {
        return true;
    }
    const std::int32_t target = scope.FindHere(reference, scope.Context(kMsgInRelatedField));
    if (target < 0) {
        return false;
    }
    scope.Store().SetDbRelated(scope.Format(), scope.Field(), target);
    scope.Add(Classes::kRelatedField);
    return true;
}

} // namespace Kestrona::Configuration
