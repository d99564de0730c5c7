// Implements: the box that tells of an expression that does not compile.
#include "platform/format_text.h"

#include <kestrona/expression_parsing.h>
#include <kestrona/memory_resident_data.h>
#include <kestrona/services.h>

#include <string>

namespace {

using Kestrona::Platform::FormatText;

constexpr const wchar_t* kTitle = L"Parse Error!";
constexpr const wchar_t* kPosition = L"At Position %lld\n";
constexpr const wchar_t* kInFormat = L"Parsing failed within format '%s':\n%s\n%sIn Expression \"%s\"";
constexpr const wchar_t* kInField = L"Parsing failed in format '%s' and field '%s':\n%s\n%sIn Expression \"%s\"";

std::wstring FailureText(Kestrona::Data::MemoryResident::IMemoryResidentData& store, const ExpressionErrorInfo& info) {
    const std::wstring position = info.Position < 0 ? std::wstring() : FormatText(kPosition, info.Position);
    const std::wstring& format = store.GetDbDisplayName(info.Format);
    if (info.Field == -1) {
        return FormatText(kInFormat, format, info.Message, position, info.Expression);
    }
    return FormatText(kInField, format, store.GetColumnName(info.Format, info.Field), info.Message, position,
                      info.Expression);
}

} // namespace

void KSDLL_ReportParseErrorToMessageBox(Kestrona::Data::MemoryResident::IMemoryResidentData& store,
                                        ExpressionErrorInfo* info) {
    if (info != nullptr) {
        MessageManager::getInstance()->ShowMessage(nullptr, FailureText(store, *info), std::wstring(kTitle),
                                                   kMessageStyleError);
    }
}
