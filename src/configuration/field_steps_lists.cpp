// Lists of another format's records, and lists of plain values.
#include "configuration/auto_list_chain.h"
#include "configuration/field_steps.h"
#include "configuration/report.h"

#include <kestrona/classes.h>
#include <kestrona/classification_parsers.h>

namespace Kestrona::Configuration {

using Data::MemoryResident::IMemoryResidentData;
using Parsers::ClassificationMatch;

namespace {

// A list remembers the field that it names in Y, and the field at the end of the chain.
void SetList(FieldScope& scope, TableColumn first, TableColumn last) {
    IMemoryResidentData& store = scope.Store();
    store.SetDbTableY(scope.Format(), scope.Field(), first.format);
    store.SetDbSourceY(scope.Format(), scope.Field(), first.field);
    scope.ReferTo(last.format, last.field);
    scope.Add(Classes::kList);
}

} // namespace

bool ResolveAutoList(FieldScope& scope) {
    static const Parsers::ClassificationParser_AUTO_LIST parser;
    const ClassificationMatch match = parser.MatchFirst(scope.Text());
    if (!match.Matched) {
        return true;
    }
    const auto context = [&scope] {
        return AutoListContext(scope.Store(), {scope.Format(), scope.Field()});
    };
    if (!scope.IsMatrix()) {
        return Fail(context());
    }
    TableColumn first;
    TableColumn last;
    if (!scope.Find(ReferenceOf(parser, match), context, Datasets::Own, first) ||
        !scope.Pass().chain.FindEnd(first, last)) {
        return false;
    }
    SetList(scope, first, last);
    return true;
}

bool ResolveDataList(FieldScope& scope) {
    static const Parsers::ClassificationParser_DATA_LIST parser;
    if (parser.IsMatch(scope.Text())) {
        SetList(scope, {}, {});
    }
    return true;
}

} // namespace Kestrona::Configuration
