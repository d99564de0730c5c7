#pragma once

#include <kestrona/export.h>
#include <kestrona/services.h>

#include <cstdint>
#include <string>

/// \file
/// Where the readers of typed text take the user's words from.

/// Gives the text of a numbered message.
class KS_API ITranslationSource {
public:
    /// Sets `out` to the text of the message; to "" when there is none.
    virtual void GetText(std::wstring& out, std::int32_t id) = 0;
    virtual ~ITranslationSource() = default;
};

/// Asks the process's message service (`MessageManager`).
class KS_API TranslationSource : public ITranslationSource {
public:
    void GetText(std::wstring& out, std::int32_t id) override;
};

/// Keeps the module that holds a host's text resources. The library does not read it: every text comes from the message
/// service.
KS_API void SetResourcesModule(void* module);
/// Returns what `SetResourcesModule` was given last; null at first.
[[nodiscard]] KS_API void* GetResourcesModule();

/// Whether the text is the word for an unset value (message 0x698a), as a whole. An empty text is not, and nothing is
/// while the host has no such word. `source` is null for `TranslationSource`.
KS_API bool IsUnspecifiedText(ITranslationSource* source, const std::wstring& text, bool ignore_case);
KS_API bool IsUnspecifiedText(const std::wstring& text, bool ignore_case);
