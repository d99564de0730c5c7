#include "configuration/compiled_configuration.h"

#include "configuration/compiled/file_body.h"
#include "configuration/compiled/file_head.h"
#include "configuration/load_state.h"
#include "configuration/messages.h"
#include "configuration/report.h"
#include "platform/files.h"
#include "platform/format_text.h"

#include <kestrona/binary_strings.h>
#include <kestrona/compilation_state.h>
#include <kestrona/compiled_configuration.h>
#include <kestrona/definition_load.h>
#include <kestrona/definition_model.h>
#include <kestrona/host_settings.h>
#include <kestrona/process.h>
#include <kestrona/safe_file.h>
#include <kestrona/table_definition_stream.h>

#include <cstdint>
#include <cstdio>

namespace Kestrona::Configuration {

using Compiled::CommonCompiledConfigFunctions;
using Compiled::CompiledVersionInfo;
using Compiled::VersionCheckResult;
using Data::MemoryResident::MemoryResidentData;

namespace {

constexpr const wchar_t* kCannotWrite = L"The configuration file %s cannot be written: %s";

// Always false. Whoever fails the load calls `ErrorExit`.
bool Tell(const std::wstring& text, std::int32_t style) {
    MessageManager::getInstance()->ShowMessage(nullptr, text, GetMessageCaption(), style);
    return false;
}

void TellOrigin(INativeConfigWrapper* native_config, const std::wstring& path) {
    if (native_config == nullptr) {
        return;
    }
    if (const std::int32_t resource = GetConfigurationResource()) {
        native_config->SetCompiledResource(resource);
    } else {
        native_config->SetCompiledFile(path);
    }
}

// Moves behind the version, which must be the current one.
bool ReadFileHead(std::FILE* file, const std::wstring& path, bool& wide) {
    CommonCompiledConfigFunctions::SeekHeader(file, &wide);
    const CompiledVersionInfo info = CommonCompiledConfigFunctions::ReadVersionHeader(file);
    const VersionCheckResult result = CommonCompiledConfigFunctions::CheckVersionInfo(info);
    CommonCompiledConfigFunctions::DisplayCompiledVersionMessages(nullptr, path, GetMessageCaption(), info, result);
    return result == VersionCheckResult::Current;
}

bool ReadDefinition(MemoryResidentData& store, std::FILE* file, const std::wstring& path,
                    IOleServerManager* ole_servers) {
    bool wide = false;
    if (!ReadFileHead(file, path, wide) ||
        !Compiled::ReadFileBody(store, file, wide, Compiled::kConfigurationVersion, path, ole_servers)) {
        return false;
    }
    KSDLL_SetLongSv(kSvDefinitionEnd, static_cast<std::int32_t>(std::ftell(file)));
    KSDLL_WriteDebug(L"Read Compiled File");
    return true;
}

} // namespace

bool ReadCompiledConfiguration(MemoryResidentData& store, const std::wstring& path, INativeConfigWrapper* native_config,
                               IInformationFeedback* feedback, IOleServerManager* ole_servers) {
    KSDLL_ResetChecksum();
    init_server();
    const Platform::FileHandle file(Platform::OpenFile(path, "rb"));
    TellOrigin(native_config, path);
    if (file == nullptr) {
        return Tell(Platform::FormatText(Message(kMsgNoCompiledFile), path), kMessageStyleWarning);
    }
    SetFromCompiled(true);
    const CompiledResolution resolution;
    if (!ReadDefinition(store, file.get(), path, ole_servers) || check_database_access(store, true, feedback) != 0) {
        return false;
    }
    ConfigurationDefinition(store).KeepOriginal();
    return true;
}

bool WriteCompiledConfiguration(MemoryResidentData& store, const std::wstring& path, IOleServerManager* ole_servers) {
    const Compiled::CompilationState& compilation = Compiled::CompilationState::Instance();
    (void)compilation.ResolveSourceType(); // throws while nothing is written yet
    SafeFile file(path);
    if (!file.IsOpen()) {
        CommonCompiledConfigFunctions::DisplayUnableToOpenCompiledFileMessage(path);
        return false;
    }
    KSDLL_ResetChecksum();
    Compiled::WriteFileHead(compilation, file.File());
    WriteTableDefinitionToStream(store, nullptr, nullptr, file.File(), ole_servers);
    return file.Commit() || Tell(Platform::FormatText(kCannotWrite, path, file.Error()), kMessageStyleError);
}

} // namespace Kestrona::Configuration
