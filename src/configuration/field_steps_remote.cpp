// REMOTE_DEF and REMOTE: fields that are named as values of another field.
#include "configuration/field_steps.h"
#include "configuration/load_state.h"
#include "configuration/messages.h"
#include "configuration/remote_value.h"
#include "configuration/report.h"
#include "platform/numbers.h"

#include <kestrona/classes.h>
#include <kestrona/classification_parsers.h>
#include <kestrona/classification_readers.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace Kestrona::Configuration {

using Parsers::ClassificationMatch;

namespace {

// A default from here down must be one of the remote values; -9999 itself is an ordinary value.
constexpr double kAboveRemoteDefaults = -9999.0;

bool FindRemote(const FieldScope& scope, const Reference& reference, std::int32_t context, TableColumn& target) {
    return scope.Find(reference, scope.Context(context), Datasets::Any, target);
}

constexpr std::wstring_view kEntryStart = L" | SUBSTITUTX(";
constexpr std::wstring_view kEntryValueEnd = L"->";
constexpr std::size_t kMaxHeading = 40;

// The entries that let the value be shown and read as the field's name.
std::wstring SubstitutesFor(const FieldScope& scope, const Reference& reference, TableColumn target) {
    static const Parsers::ClassificationParser_SUBSTITUTX by_column_name;
    static const Parsers::ClassificationParser_SUBSTITUTE by_dialog_name;
    const std::int32_t value =
        Platform::TruncateToInt32(ConvertTableColumnIndexToRemoteValue(target.format, target.field));
    return L" | " + by_column_name.BuildClassification(value, reference.field) + L" | " +
           by_dialog_name.BuildClassification(value, GetDialogFieldName(scope.Store(), target.format, target.field));
}

// Collects the entries that a classification string needs and does not hold. A definition that is resolved again holds
// them already.
class MissingSubstitutes {
public:
    // `text` is viewed.
    explicit MissingSubstitutes(std::wstring_view text) : text_(text) {
        for (std::size_t at = text.find(kEntryStart); at != std::wstring_view::npos;
             at = text.find(kEntryStart, at + 1)) {
            held_.emplace(Heading(text.substr(at)), at);
        }
    }

    // Entries with the same value are the same.
    void Need(const std::wstring& entries) {
        if (!settled_.insert(std::wstring(Heading(entries))).second) {
            return;
        }
        const auto [first, last] = held_.equal_range(Heading(entries));
        if (std::none_of(first, last,
                         [&](const auto& held) { return text_.substr(held.second).starts_with(entries); })) {
            added_ += entries;
        }
    }

    [[nodiscard]] const std::wstring& Added() const { return added_; }

private:
    // An entry up to its value, or as much as any entry has before that.
    static std::wstring_view Heading(std::wstring_view entry) {
        const std::wstring_view beginning = entry.substr(0, kMaxHeading);
        return beginning.substr(0, beginning.find(kEntryValueEnd));
    }

    std::wstring_view text_;
    std::unordered_multimap<std::wstring_view, std::size_t> held_; // positions by heading
    std::unordered_set<std::wstring> settled_;                     // headings
    std::wstring added_;
};

bool CheckDefault(FieldScope& scope, const std::vector<double>& values) {
    const double value = scope.Store().GetDbDefaultValue(scope.Format(), scope.Field());
    const bool is_remote = value < kAboveRemoteDefaults; // no number is none
    if (!is_remote || std::find(values.begin(), values.end(), value) != values.end()) {
        return true;
    }
    return Fail(Platform::FormatText(Message(kMsgDefaultNotRemote), Platform::DoubleToText17(value), scope.FormatName(),
                                     scope.FieldName()));
}

} // namespace

bool ResolveRemoteDefault(FieldScope& scope) {
    static const Parsers::ClassificationParser_REMOTE_DEF parser;
    for (const ClassificationMatch& match : parser.MatchAll(scope.Text())) {
        TableColumn target;
        if (!FindRemote(scope, ReferenceOf(parser, match), kMsgInRemoteDefault, target)) {
            return false;
        }
        scope.Store().SetDbDefaultValue(scope.Format(), scope.Field(),
                                        ConvertTableColumnIndexToRemoteValue(target.format, target.field));
    }
    return true;
}

bool ResolveRemote(FieldScope& scope) {
    static const Parsers::ClassificationParser_REMOTE parser;
    const std::vector<ClassificationMatch> matches = parser.MatchAll(scope.Text());
    if (matches.empty()) {
        return true;
    }
    std::vector<double> values;
    MissingSubstitutes missing(scope.Text());
    for (const ClassificationMatch& match : matches) {
        const Reference reference = ReferenceOf(parser, match);
        TableColumn target;
        if (!FindRemote(scope, reference, kMsgInRemote, target)) {
            return false;
        }
        values.push_back(ConvertTableColumnIndexToRemoteValue(target.format, target.field));
        scope.Add(Classes::kSubstitute);
        scope.Add(Classes::kSubstitutx);
        missing.Need(SubstitutesFor(scope, reference, target));
    }
    // A compiled definition holds the entries as they were made.
    if (!missing.Added().empty() && !IsResolvingCompiled()) {
        scope.SetText(scope.Text() + missing.Added());
    }
    return CheckDefault(scope, values);
}

} // namespace Kestrona::Configuration
