// Implements: the messages about a compiled configuration file that cannot be read.
#include "configuration/compiled/version_text.h"
#include "platform/format_text.h"

#include <kestrona/compiled_configuration.h>
#include <kestrona/services.h>

namespace Kestrona::Configuration::Compiled {

namespace {

// Arguments of both: file, its version, this version.
constexpr std::int32_t kMsgTooOld = 19054;
constexpr std::int32_t kMsgNewer = 19076;

constexpr const wchar_t* kFormatVersionText = L"%.1f";
constexpr const wchar_t* kUnexpectedResult = L"Unexpected check result";
constexpr const wchar_t* kExpectedVersion = L"Expected a valid version";

std::wstring FileVersionText(const CompiledVersionInfo& info) {
    if (!info.FileVersion.HasValue()) {
        throw kExpectedVersion;
    }
    return VersionText(info.FileVersion.get_Value());
}

void ShowVersions(WindowHandle owner, std::int32_t message, const std::wstring& file_name, const std::wstring& caption,
                  const std::wstring& file_version) {
    CoreMessage* const messages = MessageManager::getInstance();
    messages->ShowMessage(owner,
                          Platform::FormatText(messages->GetMessage(message), file_name, file_version,
                                               VersionText(kConfigurationVersion)),
                          caption, kMessageStyleWarning);
}

} // namespace

void CommonCompiledConfigFunctions::DisplayCompiledVersionMessages(WindowHandle owner, const std::wstring& file_name,
                                                                   const std::wstring& caption,
                                                                   const CompiledVersionInfo& info,
                                                                   VersionCheckResult result) {
    switch (result) {
    case VersionCheckResult::NoVersion:
        return DisplayGenericUnableToReadCompiledFileMessage(file_name);
    case VersionCheckResult::FormatTooOld:
        return DisplayCompiledFileIsTooOldMessage(owner, file_name, caption,
                                                  Platform::FormatText(kFormatVersionText, double{info.FormatVersion}));
    case VersionCheckResult::Older:
        return DisplayCompiledFileIsTooOldMessage(owner, file_name, caption, FileVersionText(info));
    case VersionCheckResult::Newer:
        return DisplayCompiledFileIsNewerMessage(owner, file_name, caption, FileVersionText(info));
    case VersionCheckResult::Current:
        return;
    }
    throw kUnexpectedResult;
}

void CommonCompiledConfigFunctions::DisplayGenericUnableToReadCompiledFileMessage(const std::wstring& file_name) {
    MessageManager::getInstance()->DisplayGenericUnableToRead(file_name);
}

void CommonCompiledConfigFunctions::DisplayUnableToOpenCompiledFileMessage(const std::wstring& file_name) {
    MessageManager::getInstance()->DisplayUnableToOpen(file_name);
}

void CommonCompiledConfigFunctions::DisplayCompiledFileIsTooOldMessage(WindowHandle owner,
                                                                       const std::wstring& file_name,
                                                                       const std::wstring& caption,
                                                                       const std::wstring& file_version) {
    ShowVersions(owner, kMsgTooOld, file_name, caption, file_version);
}

void CommonCompiledConfigFunctions::DisplayCompiledFileIsNewerMessage(WindowHandle owner, const std::wstring& file_name,
                                                                      const std::wstring& caption,
                                                                      const std::wstring& file_version) {
    ShowVersions(owner, kMsgNewer, file_name, caption, file_version);
}

} // namespace Kestrona::Configuration::Compiled
