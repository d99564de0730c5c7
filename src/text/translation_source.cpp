// Implements: where readers take the host's words from, and the word for an unset value.
#include "text/date_messages.h"

#include <kestrona/translation_source.h>
#include <kestrona/unicode.h>

namespace {

constinit void* resources_module = nullptr;

} // namespace

void TranslationSource::GetText(std::wstring& out, std::int32_t id) {
    out = MessageManager::getInstance()->GetMessage(id);
}

void SetResourcesModule(void* module) {
    resources_module = module;
}

void* GetResourcesModule() {
    return resources_module;
}

bool IsUnspecifiedText(ITranslationSource* source, const std::wstring& text, bool ignore_case) {
    if (text.empty()) {
        return false;
    }
    TranslationSource messages;
    std::wstring word;
    (source != nullptr ? *source : messages).GetText(word, Kestrona::Text::kUnsetWord);
    return ignore_case ? Kestrona::EqualIgnoringCase(text, word) : text == word;
}

bool IsUnspecifiedText(const std::wstring& text, bool ignore_case) {
    return IsUnspecifiedText(nullptr, text, ignore_case);
}
