// References to fields of other formats: DATABASE, SOURCE and the two forms that look for a classification.
#include "configuration/field_steps.h"
#include "configuration/messages.h"
#include "configuration/report.h"
#include "platform/scan_wide.h"

#include <kestrona/classes.h>
#include <kestrona/classification_parsers.h>
#include <kestrona/process.h>

#include <string>
#include <string_view>

namespace Kestrona::Configuration {

using Data::MemoryResident::field_info;
using Data::MemoryResident::IMemoryResidentData;
using Parsers::ClassificationMatch;

namespace {

constexpr std::wstring_view kFindClassification = L"FIND CLASSIFICATION STRING";
constexpr const wchar_t* kInFindClassification = L"FIND CLASSIFICATION STRING reference in Format '%s' Field '%s'";

std::wstring NameOfFormat(IMemoryResidentData& store, std::int32_t format) {
    const wchar_t* name = store.GetDbName(format);
    return name == nullptr ? std::wstring() : std::wstring(name);
}

bool RefuseClassification(const FieldScope& scope, const std::wstring& name) {
    return Fail(Platform::FormatText(Message(kMsgNoClassification), name, scope.Context(kInFindClassification)()));
}

// One FIND CLASSIFICATION STRING(X) at the beginning of a text.
struct FoundForm {
    std::wstring replacement;
    std::size_t length = 0;
};

bool ResolveForm(const FieldScope& scope, std::wstring_view text, FoundForm& out) {
    std::wstring name;
    Platform::ScanWide(text, L"FIND CLASSIFICATION STRING ( %[^)]", &name);
    const std::size_t end = text.find(L')');
    if (name.empty() || end == std::wstring_view::npos) {
        return RefuseClassification(scope, name);
    }
    const TableColumn found = scope.FindClassification(name);
    if (found.format < 0 || found.field < 0) {
        return RefuseClassification(scope, name);
    }
    out.length = end + 1;
    out.replacement = Platform::FormatText(L"%s(%s)", NameOfFormat(scope.Store(), found.format),
                                           scope.Store().GetColumnName(found.format, found.field));
    return true;
}

} // namespace

bool ClearLinks(FieldScope& scope) {
    IMemoryResidentData& store = scope.Store();
    if (field_info* info = store.GetFieldInfo(scope.Format(), scope.Field())) {
        info->matrixXLabel.Reset();
        info->matrixYLabel.Reset();
    }
    store.SetDbRelated(scope.Format(), scope.Field(), -1);
    store.SetDbRelatedY(scope.Format(), scope.Field(), -1);
    // LOOKUP UPDATE tells by the first of them whether there is a LOOKUP SOURCE.
    scope.SetSlots(DataSlot::kLookupFormat, DataSlot::kLookupField, {});
    return true;
}

bool ReplaceDatabaseByClassification(FieldScope& scope) {
    static const Parsers::ClassificationParser_DATABASE_BY_CLASSIFICATION parser;
    const ClassificationMatch match = parser.MatchFirst(scope.Text());
    if (!match.Matched) {
        return true;
    }
    const TableColumn found = scope.FindClassification(match.Values.at(parser.get_FirstKey()));
    std::wstring replacement;
    if (found.format >= 0 && found.field >= 0) {
        replacement = Parsers::ClassificationParser_DATABASE::BuildClassification(
            NameOfFormat(scope.Store(), found.format), scope.Store().GetColumnName(found.format, found.field));
    }
    scope.SetText(KSDLL_TStringSubstitute(scope.Text(), match.Text, replacement));
    return true;
}

// Goes through the string once, so that a name which holds the keyword itself is not replaced again.
bool ReplaceFindClassification(FieldScope& scope) {
    if (!scope.Holds(kFindClassification)) {
        return true;
    }
    std::wstring_view rest = scope.Text();
    std::wstring result;
    for (std::size_t at = rest.find(kFindClassification); at != std::wstring_view::npos;
         at = rest.find(kFindClassification)) {
        FoundForm form;
        if (!ResolveForm(scope, rest.substr(at), form)) {
            return false;
        }
        result.append(rest.substr(0, at)).append(form.replacement);
        rest.remove_prefix(at + form.length);
    }
    scope.SetText(result.append(rest));
    return true;
}

bool ResolveDatabase(FieldScope& scope) {
    static const Parsers::ClassificationParser_DATABASE parser;
    const ClassificationMatch match = parser.MatchFirst(scope.Text());
    if (!match.Matched) {
        return true;
    }
    TableColumn target;
    if (!scope.Find(ReferenceOf(parser, match), scope.Context(kMsgInDatabase), Datasets::Own, target)) {
        return false;
    }
    IMemoryResidentData& store = scope.Store();
    scope.ReferTo(target.format, target.field);
    if (scope.IsMatrix()) {
        scope.SetSlots(DataSlot::kMatrixFormat, DataSlot::kMatrixField, target);
    }
    if (scope.Is(Classes::kUpdateReference)) {
        scope.SetSlot(DataSlot::kSourceFormat, target.format);
        scope.SetSlot(DataSlot::kUpdateSourceFormat, target.format);
        store.SetDbSourceS(scope.Format(), scope.Field(), target.field);
    }
    scope.Add(Classes::kDatabase);
    return true;
}

bool ResolveSource(FieldScope& scope) {
    static const Parsers::ClassificationParser_SOURCE parser;
    if (!scope.Is(Classes::kUpdateReference)) {
        return true;
    }
    const ClassificationMatch match = parser.MatchFirst(scope.Text());
    if (!match.Matched) {
        return true;
    }
    TableColumn target;
    if (!scope.Find(ReferenceOf(parser, match), scope.Context(kMsgInSource), Datasets::Own, target)) {
        return false;
    }
    scope.Add(Classes::kSource);
    scope.SetSlot(DataSlot::kSourceFormat, target.format);
    scope.SetSlot(DataSlot::kUpdateSourceFormat, target.format);
    scope.Store().SetDbSourceS(scope.Format(), scope.Field(), target.field);
    KSDLL_WriteDebug(Platform::FormatText(L"Database No %li Field No %li", target.field, target.format));
    return true;
}

} // namespace Kestrona::Configuration
