// REMOTE_DEF and REMOTE: fields that are named as values of another field.
#include "configuration/field_steps.h"
#include "configuration/messages.h"
#include "configuration/remote_value.h"
#include "configuration/report.h"
#include "platform/numbers.h"

#include <kestrona/classes.h>
#include <kestrona/classification_parsers.h>
#include <kestrona/classification_readers.h>
#include <kestrona/definition_load.h>

#include <algorithm>
#include <string>
#include <vector>

namespace Kestrona::Configuration {

using Parsers::ClassificationMatch;

namespace {

// A default from here down must be one of the remote values; -9999 itself is an ordinary value.
constexpr double kAboveRemoteDefaults = -9999.0;

template <typename Parser>
bool FindRemote(const FieldScope& scope, const Parser& parser, const ClassificationMatch& match, std::int32_t context,
                Reference& reference, TableColumn& target) {
    reference = {match.Values.at(parser.get_FirstKey()), match.Values.at(parser.get_SecondKey()),
                 static_cast<std::size_t>(match.Start)};
    return scope.Find(reference, scope.Context(context), Datasets::Any, target);
}

// The entries that let the value be shown and read as the field's name.
std::wstring SubstitutesFor(const FieldScope& scope, const Reference& reference, TableColumn target) {
    static const Parsers::ClassificationParser_SUBSTITUTX by_column_name;
    static const Parsers::ClassificationParser_SUBSTITUTE by_dialog_name;
    const std::int32_t value =
        Platform::TruncateToInt32(ConvertTableColumnIndexToRemoteValue(target.format, target.field));
    return L" | " + by_column_name.BuildClassification(value, reference.field) + L" | " +
           by_dialog_name.BuildClassification(value, GetDialogFieldName(scope.Store(), target.format, target.field));
}

// A compiled definition holds the entries already, and so does one that is resolved again.
void AppendSubstitutes(const FieldScope& scope, const Reference& reference, TableColumn target, std::wstring& text) {
    if (FromCompiled()) {
        return;
    }
    const std::wstring entries = SubstitutesFor(scope, reference, target);
    if (text.find(entries) == std::wstring::npos) {
        text += entries;
    }
}

bool CheckDefault(FieldScope& scope, const std::vector<double>& values) {
    const double value = scope.Store().GetDbDefaultValue(scope.Format(), scope.Field());
    if (values.empty() || value >= kAboveRemoteDefaults ||
        std::find(values.begin(), values.end(), value) != values.end()) {
        return true;
    }
    return Fail(Platform::FormatText(Message(kMsgDefaultNotRemote), Platform::DoubleToText17(value), scope.FormatName(),
                                     scope.FieldName()));
}

} // namespace

bool ResolveRemoteDefault(FieldScope& scope) {
    static const Parsers::ClassificationParser_REMOTE_DEF parser;
    for (const ClassificationMatch& match : parser.MatchAll(scope.Text())) {
        Reference reference;
        TableColumn target;
        if (!FindRemote(scope, parser, match, kMsgInRemoteDefault, reference, target)) {
            return false;
        }
        scope.Store().SetDbDefaultValue(scope.Format(), scope.Field(),
                                        ConvertTableColumnIndexToRemoteValue(target.format, target.field));
    }
    return true;
}

bool ResolveRemote(FieldScope& scope) {
    static const Parsers::ClassificationParser_REMOTE parser;
    std::vector<double> values;
    std::wstring text = scope.Text();
    for (const ClassificationMatch& match : parser.MatchAll(scope.Text())) {
        Reference reference;
        TableColumn target;
        if (!FindRemote(scope, parser, match, kMsgInRemote, reference, target)) {
            return false;
        }
        values.push_back(ConvertTableColumnIndexToRemoteValue(target.format, target.field));
        scope.Add(Classes::kSubstitute);
        scope.Add(Classes::kSubstitutx);
        AppendSubstitutes(scope, reference, target, text);
    }
    if (text.size() != scope.Text().size()) {
        scope.SetText(text);
    }
    return CheckDefault(scope, values);
}

} // namespace Kestrona::Configuration
