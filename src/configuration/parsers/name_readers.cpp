// Implements: the readers of button texts and of names for one place of display.
#include <kestrona/classification_readers.h>

#include <utility>

using Kestrona::Data::MemoryResident::IMemoryResidentData;
using namespace Kestrona::Configuration::Parsers;

namespace {

bool ReadName(const NameClassificationParser& parser, const std::wstring& text, std::wstring* out) {
    ClassificationMatch match = parser.MatchFirst(text);
    if (match.Matched) {
        *out = std::move(match.Values[parser.get_FirstKey()]);
    }
    return match.Matched;
}

std::wstring NameOrColumn(const NameClassificationParser& parser, const std::wstring& text, IMemoryResidentData& store,
                          std::int32_t format, std::int32_t field) {
    std::wstring name;
    return ReadName(parser, text, &name) ? name : store.GetColumnName(format, field);
}

} // namespace

std::wstring ParseClassification_BUTTON_TEXT(const wchar_t* text) {
    std::wstring name;
    if (text != nullptr) {
        ReadName(ClassificationParser_BUTTON_TEXT(), text, &name);
    }
    return name;
}

std::wstring ParseClassification_BUTTON_TEXT(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return ParseClassification_BUTTON_TEXT(store.GetDbClassString(format, field));
}

bool ParseFieldName(const std::wstring& text, const std::wstring& prefix, std::wstring* out) {
    return ReadName(ClassificationParserBase_FIELD_NAME(prefix), text, out);
}

std::wstring KSDLL_GetFieldName(IMemoryResidentData& store, std::int32_t format, std::int32_t field,
                                const std::wstring& prefix) {
    return NameOrColumn(ClassificationParserBase_FIELD_NAME(prefix), store.GetDbClassString(format, field), store,
                        format, field);
}

std::wstring GetDialogFieldName(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return GetDialogFieldName(store, store.GetDbClassString(format, field), format, field);
}

std::wstring GetDialogFieldName(IMemoryResidentData& store, const std::wstring& text, std::int32_t format,
                                std::int32_t field) {
    return NameOrColumn(ClassificationParser_DIALOG_FIELD_NAME(), text, store, format, field);
}

std::wstring GetToolTipFieldName(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return NameOrColumn(ClassificationParser_TIP_FIELD_NAME(), store.GetDbClassString(format, field), store, format,
                        field);
}

std::wstring GetEditorFieldName(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    return NameOrColumn(ClassificationParser_EDITOR_FIELD_NAME(), store.GetDbClassString(format, field), store, format,
                        field);
}
