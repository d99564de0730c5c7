// Matrices that are dimensioned by formats.
#include "configuration/field_steps.h"
#include "configuration/messages.h"
#include "configuration/report.h"
#include "platform/scan_wide.h"
#include "text/translation_writers.h"

#include <kestrona/classes.h>
#include <kestrona/classification_parsers.h>
#include <kestrona/host_interfaces.h>
#include <kestrona/owned_text.h>
#include <kestrona/process.h>

#include <string_view>

namespace Kestrona::Configuration {

using Data::MemoryResident::field_info;
using Data::MemoryResident::IMemoryResidentData;
using Platform::ScanWide;

namespace {

constexpr std::wstring_view kAutoDimension = L"AUTO DIMENSION";
constexpr std::wstring_view k3DMatrixWord = L"3DMATRIX";
constexpr std::wstring_view kRetired = L"AUTO CALCULATE";
constexpr const wchar_t* kNotSupported = L"%s is not supported. Remove this feature and restart Kestrona.";
constexpr const wchar_t* kNotSupportedCaption = L"Unsupported feature";

// One axis as it is written: label, format(field). A part that is missing reads as an empty text. That is good for a
// label; an empty name fails in the look-up.
struct Axis {
    std::wstring label;
    Reference reference;
    TableColumn target;
};

// Reads an axis and moves `text` behind it.
Axis ReadAxis(std::wstring_view& text, std::size_t keyword) {
    Axis axis;
    axis.reference.position = keyword;
    text.remove_prefix(ScanWide(text, L" %[^,]", &axis.label).position);
    text.remove_prefix(ScanWide(text, L", %[^(]( %[^)])", &axis.reference.format, &axis.reference.field).position);
    return axis;
}

bool FindAxis(const FieldScope& scope, Axis& axis) {
    Text::DefinitionTexts().AddEntry(axis.label); // for a load that lists the texts to translate
    return scope.Find(axis.reference, scope.Context(kMsgInAutoDimension), Datasets::Own, axis.target);
}

void SetAxes(FieldScope& scope, const Axis& x, const Axis& y) {
    IMemoryResidentData& store = scope.Store();
    scope.ReferTo(x.target.format, x.target.field);
    store.SetDbTableY(scope.Format(), scope.Field(), y.target.format);
    store.SetDbSourceY(scope.Format(), scope.Field(), y.target.field);
    if (field_info* info = store.GetFieldInfo(scope.Format(), scope.Field())) {
        info->matrixXLabel.Reset(KSDLL_AddText(x.label.c_str()));
        info->matrixYLabel.Reset(KSDLL_AddText(y.label.c_str()));
    }
}

// A matrix over another format in X must have one in Y, too: the records of this format are the matrix's owners.
bool CheckAxes(FieldScope& scope, const Axis& x, const Axis& y) {
    const bool x_is_here = x.target.format == scope.Format();
    const bool y_is_here = y.target.format == scope.Format();
    if (!x_is_here && !y_is_here) {
        scope.Add(Classes::k3DMatrix);
    }
    if (y_is_here && !x_is_here) {
        return scope.Refuse(JoinedMessages(
            {kMsgFirstAxisWrong1, kMsgFirstAxisWrong2, kMsgFirstAxisWrong3, kMsgFirstAxisWrong4, kMsgFirstAxisWrong5}));
    }
    return true;
}

bool ReadAxes(FieldScope& scope, std::size_t keyword) {
    std::wstring_view text = std::wstring_view(scope.Text()).substr(keyword + kAutoDimension.size());
    const std::size_t bracket = text.find_first_not_of(L" \t\r\n");
    text = bracket != std::wstring_view::npos && text[bracket] == L'(' ? text.substr(bracket + 1) : L"";
    Axis x = ReadAxis(text, keyword);
    text.remove_prefix(ScanWide(text, L" ,").position);
    Axis y = ReadAxis(text, keyword);
    if (!FindAxis(scope, x) || !FindAxis(scope, y)) {
        return false;
    }
    SetAxes(scope, x, y);
    return CheckAxes(scope, x, y);
}

// A field of the format in Y that sizes or fills new cells.
struct CellKeyword {
    std::wstring_view keyword;
    std::wstring_view pattern;
    std::int32_t context;
    std::int32_t slot;
    Class mark;
};

constexpr CellKeyword kMatrixMinimum{L"MATRIX MINIMUM", L"MATRIX MINIMUM ( %[^)]", kMsgInMatrixMinimum,
                                     DataSlot::kMatrixMinimumField, Classes::kMatrixMinimum};
constexpr CellKeyword kMatrixDefault{L"MATRIX DEFAULT", L"MATRIX DEFAULT ( %[^)]", kMsgInMatrixDefault,
                                     DataSlot::kMatrixDefaultField, Classes::kMatrixDefault};

bool ResolveCells(FieldScope& scope, const CellKeyword& cells) {
    if (!scope.Holds(cells.keyword)) {
        return true;
    }
    Reference reference;
    scope.ScanField(cells.keyword, cells.pattern, reference); // a name that is not read fails in the look-up
    IMemoryResidentData& store = scope.Store();
    if (const wchar_t* format = store.GetDbName(store.GetDbTableY(scope.Format(), scope.Field()))) {
        reference.format = format;
    }
    TableColumn target;
    if (!scope.Find(reference, scope.Context(cells.context), Datasets::Own, target)) {
        return false;
    }
    scope.SetSlot(cells.slot, target.field);
    scope.Add(cells.mark);
    return true;
}

} // namespace

bool ResolveAutoDimension(FieldScope& scope) {
    const std::size_t keyword = scope.Text().find(kAutoDimension);
    if (keyword == std::wstring::npos) {
        return true;
    }
    scope.Add(Classes::kAutoDimension);
    return ReadAxes(scope, keyword) && ResolveCells(scope, kMatrixMinimum) && ResolveCells(scope, kMatrixDefault);
}

bool ResolveCommonMatrix(FieldScope& scope) {
    static const Parsers::ClassificationParser_AUTO_CALCULATE retired;
    if (scope.Holds(L"COMMON MATRIX")) {
        scope.Add(Classes::kCommonMatrix);
    }
    if (retired.IsMatch(scope.Text())) {
        return Fail(Platform::FormatText(kNotSupported, kRetired), kNotSupportedCaption, kMessageStyleWarning);
    }
    return true;
}

// Appends the word without a separator: that is how resolved definitions have it. One that is resolved again has it
// already.
bool MarkTwoDimensions(FieldScope& scope) {
    if (scope.Is(Classes::k3DMatrix) && !scope.Text().ends_with(k3DMatrixWord)) {
        scope.SetText(scope.Text() + std::wstring(k3DMatrixWord));
    }
    return true;
}

} // namespace Kestrona::Configuration
