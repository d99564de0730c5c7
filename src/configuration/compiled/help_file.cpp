#include "configuration/compiled/help_file.h"

#include <kestrona/owned_text.h>
#include <kestrona/process.h>

#include <utility>

namespace Kestrona::Configuration {

namespace {

OwnedText& Owned() {
    static OwnedText name;
    return name;
}

} // namespace

const wchar_t* HelpFileName() {
    return static_cast<const wchar_t*>(KSDLL_GetPointerSv(kSvHelpFile));
}

void SetHelpFileName(const std::wstring& name) {
    OwnedText copy(name.empty() ? nullptr : KSDLL_AddText(name.c_str()));
    KSDLL_SetPointerSv(kSvHelpFile, copy.get());
    Owned() = std::move(copy);
}

void ForgetHelpFileName() {
    if (Owned() && KSDLL_GetPointerSv(kSvHelpFile) == Owned().get()) {
        KSDLL_SetPointerSv(kSvHelpFile, nullptr);
    }
    Owned().Reset();
}

} // namespace Kestrona::Configuration
