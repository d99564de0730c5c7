#include "configuration/expression_phases.h"

#include "platform/format_text.h"
#include "platform/wide_c_string.h"

#include <kestrona/classes.h>
#include <kestrona/classification_readers.h>
#include <kestrona/services.h>

#include <cstdint>

namespace Kestrona::Configuration {

using Data::MemoryResident::IMemoryResidentData;
using Platform::OwnedWide;

namespace {

void KeepAsText(IMemoryResidentData& store, std::int32_t format, std::int32_t field, const wchar_t* keyword,
                const OwnedWide& expression) {
    if (expression) {
        KSDLL_WriteDebug(Platform::FormatText(L"%s of Format %s Field %s is kept as text", keyword,
                                              store.GetDbName(format), store.GetColumnName(format, field)));
    }
}

void ClearExpressions(IMemoryResidentData& store, std::int32_t format, std::int32_t field) {
    store.SetDbEvaluateExpression(format, field, nullptr);
    if (store.ClassDefined(format, field, Classes::kEvaluate)) {
        const OwnedWide text(Parse_EVALUATE(store.GetDbClassString(format, field)));
        KeepAsText(store, format, field, L"EVALUATE", text);
    }
    store.SetDbHiddenIfExpression(format, field, nullptr);
    if (store.ClassDefined(format, field, Classes::kHiddenIf)) {
        const OwnedWide text(Parse_HIDDEN_IF(store.GetDbClassString(format, field)));
        KeepAsText(store, format, field, L"HIDDEN IF", text);
    }
}

} // namespace

bool CompileExpressions(IMemoryResidentData& store) {
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        const std::int32_t fields = store.GetDbFields(format);
        for (std::int32_t field = 0; field < fields; ++field) {
            ClearExpressions(store, format, field);
        }
    }
    return true;
}

bool ValidateExpressions(IMemoryResidentData&) {
    return true;
}

} // namespace Kestrona::Configuration
