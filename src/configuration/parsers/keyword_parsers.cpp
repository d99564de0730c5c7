// The patterned keywords: DATABASE, AUTO LIST, HELPPOPUPID and the like.
#include "configuration/parsers/pattern_texts.h"

#include <kestrona/classes.h>
#include <kestrona/classification_parsers.h>

#include <string_view>

namespace Kestrona::Configuration::Parsers {

namespace {

constexpr const wchar_t* kId = L"ID";
constexpr const wchar_t* kOrder = L"ORDER";
constexpr const wchar_t* kName = L"NAME";
constexpr const wchar_t* kClassification = L"CLASSIFICATION";
constexpr const wchar_t* kColumn = L"COLUMN";
constexpr const wchar_t* kTable = L"TABLE";

bool Holds(const std::wstring& text, std::wstring_view keyword) {
    return text.find(keyword) != std::wstring::npos;
}

} // namespace

ClassificationParser_HELPPOPUPID::ClassificationParser_HELPPOPUPID()
    : OneKeyClassificationParser(Texts::kHelpPopupId, kId) {}

ClassificationParser_TIP_DISPLAY::ClassificationParser_TIP_DISPLAY()
    : OneKeyClassificationParser(Texts::kTipDisplay, kOrder) {}

ClassificationParser_TABLE::ClassificationParser_TABLE() : OneKeyClassificationParser(Texts::kTable, kName) {}

ClassificationParser_BY_CLASSIFICATION::ClassificationParser_BY_CLASSIFICATION()
    : OneKeyClassificationParser(Texts::kByClassification, kClassification) {}

ClassificationParser_DATABASE_BY_CLASSIFICATION::ClassificationParser_DATABASE_BY_CLASSIFICATION()
    : OneKeyClassificationParser(Texts::kDatabaseByClassification, kClassification) {}

ClassificationParser_FAMILY::ClassificationParser_FAMILY() : OneKeyClassificationParser(Texts::kFamily, kColumn) {}

Class ClassificationParser_FAMILY::get_Class() {
    return Classes::kFamily;
}

ClassificationParser_ASSOCIATE::ClassificationParser_ASSOCIATE()
    : OneKeyClassificationParser(Texts::kAssociate, kColumn) {}

ClassificationParser_ADDITIONAL_REFERENCE::ClassificationParser_ADDITIONAL_REFERENCE()
    : OneKeyClassificationParser(Texts::kAdditionalReference, kColumn) {}

Class ClassificationParser_ADDITIONAL_REFERENCE::get_Class() {
    return Classes::kAdditionalReference;
}

bool ClassificationParser_ADDITIONAL_REFERENCE::HasKeyword(const std::wstring& text) {
    return Holds(text, Texts::kAdditionalReference.keyword);
}

ClassificationParser_OVERRIDE::ClassificationParser_OVERRIDE()
    : OneKeyClassificationParser(Texts::kOverride, kColumn) {}

Class ClassificationParser_OVERRIDE::get_Class() {
    return Classes::kOverride;
}

std::wstring ClassificationParser_OVERRIDE::BuildClassification(const std::wstring& field) {
    return L"OVERRIDE(" + field + L")";
}

ClassificationParser_UPDATE_REFERENCE::ClassificationParser_UPDATE_REFERENCE()
    : OneKeyClassificationParser(Texts::kUpdateReference, kColumn) {}

Class ClassificationParser_UPDATE_REFERENCE::get_Class() {
    return Classes::kUpdateReference;
}

bool ClassificationParser_UPDATE_REFERENCE::HasKeyword(const std::wstring& text) {
    return Holds(text, Texts::kUpdateReference.keyword);
}

ClassificationParser_BUTTON_TEXT::ClassificationParser_BUTTON_TEXT() : NameClassificationParser(Texts::kButtonText) {}

ClassificationParserBase_FIELD_NAME::ClassificationParserBase_FIELD_NAME(const std::wstring& prefix)
    : NameClassificationParser({prefix + std::wstring(Texts::kFieldNameTail),
                                prefix + std::wstring(Texts::kFieldNameKeyword), Texts::kNameOutline}) {}

ClassificationParser_DIALOG_FIELD_NAME::ClassificationParser_DIALOG_FIELD_NAME()
    : ClassificationParserBase_FIELD_NAME(L"DIALOG") {}

ClassificationParser_TIP_FIELD_NAME::ClassificationParser_TIP_FIELD_NAME()
    : ClassificationParserBase_FIELD_NAME(L"TIP") {}

ClassificationParser_EDITOR_FIELD_NAME::ClassificationParser_EDITOR_FIELD_NAME()
    : ClassificationParserBase_FIELD_NAME(L"EDITOR") {}

ClassificationParser_DATABASE::ClassificationParser_DATABASE() : TableFieldClassificationParser(Texts::kDatabase) {}

std::wstring ClassificationParser_DATABASE::BuildClassification(const std::wstring& table, const std::wstring& field) {
    return L"DATABASE(" + table + L"(" + field + L"))";
}

ClassificationParser_AUTO_LIST::ClassificationParser_AUTO_LIST() : TableFieldClassificationParser(Texts::kAutoList) {}

Class ClassificationParser_AUTO_LIST::get_Class() {
    return Classes::kList;
}

ClassificationParser_SOURCE::ClassificationParser_SOURCE() : TableFieldClassificationParser(Texts::kSource) {}

ClassificationParser_REMOTE_DEF::ClassificationParser_REMOTE_DEF()
    : TwoKeyClassificationParser(Texts::kRemoteDef, kTable, kColumn) {}

ClassificationParser_REMOTE::ClassificationParser_REMOTE()
    : TwoKeyClassificationParser(Texts::kRemote, kTable, kColumn) {}

} // namespace Kestrona::Configuration::Parsers
