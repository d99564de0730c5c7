#include "configuration/compiled/help_file.h"
#include "configuration/compiled_configuration.h"
#include "configuration/load_state.h"
#include "configuration/messages.h"
#include "configuration/report.h"
#include "platform/files.h"
#include "platform/wide_c_string.h"
#include "text/translation_writers.h"

#include <kestrona/classes.h>
#include <kestrona/compilation_state.h>
#include <kestrona/definition_load.h>
#include <kestrona/execution_state.h>
#include <kestrona/process.h>
#include <kestrona/unicode.h>

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <memory>
#include <string_view>

namespace Kestrona::Configuration {

using Compiled::CompilationState;
using Compiled::ConfigurationSource;
using Compiled::FileManagerResult;
using Compiled::ICompiledFileManager;
using Data::MemoryResident::MemoryResidentData;

namespace {

constexpr const wchar_t* kFirstDefaultFile = L"KESTRONA.KSTDF";
constexpr const wchar_t* kSecondDefaultFile = L"KESTRONA.INF";
constexpr std::wstring_view kFirstTitle = L"Data Server";
constexpr std::size_t kMaxTitle = 11; // without the terminator
constexpr std::wstring_view kStringDefault = L"STRING_DEF";
constexpr double kLoadedVersion = 8.01;
constexpr std::int32_t kProgressTablesReady = 10;

// The host's side of one load.
struct LoadHost {
    INativeConfigWrapper* native_config;
    IInformationFeedback* feedback;
    IGlobalizationHelper* globalization;
    IResourceHandler* resources;
    IOleServerManager* ole_servers;

    void SetStage(std::int32_t message) const {
        if (feedback != nullptr) {
            feedback->SetStage(message);
        }
    }
};

// Ends a load that has failed and been reported. Always false where the process goes on.
bool EndLoad() {
    ErrorExit();
    return false;
}

void WriteTitle(wchar_t* title, std::wstring_view text) {
    if (title != nullptr) {
        const std::wstring_view fitting = CutUtf16(text, kMaxTitle);
        *std::copy(fitting.begin(), fitting.end(), title) = L'\0';
    }
}

// A name of neither file falls back on the first one, which the host then reports as missing.
std::wstring ChooseDefinitionFile(const wchar_t* file_name) {
    if (file_name != nullptr && *file_name != L'\0') {
        return file_name;
    }
    return !Platform::FileExists(kFirstDefaultFile) && Platform::FileExists(kSecondDefaultFile) ? kSecondDefaultFile
                                                                                                : kFirstDefaultFile;
}

bool PassFirstTimeGuard(const wchar_t* title) {
    if (!IsFirstLoad()) {
        return Fail(Message(kMsgLoadedBefore), title == nullptr ? L"" : title, kMessageStyleError);
    }
    ClearFirstLoad();
    return true;
}

const wchar_t* ResultLine(FileManagerResult result) {
    switch (result) {
    case FileManagerResult::OK:
        return L"CreateCompiledFileManager returned OK";
    case FileManagerResult::ExtractionFailed:
        return L"CreateCompiledFileManager returned ExtractionFailed";
    }
    return L"CreateCompiledFileManager returned Unknown";
}

bool LoadCompiled(MemoryResidentData& store, const LoadHost& host) {
    ICompiledFileManager* made = nullptr;
    const FileManagerResult result = CompilationState::Instance().CreateCompiledFileManager(host.resources, &made);
    std::unique_ptr<ICompiledFileManager> manager(made);
    KSDLL_WriteDebug(ResultLine(result));
    if (result != FileManagerResult::OK) {
        host.native_config->ReportExtractionFailed();
        return EndLoad();
    }
    const bool read =
        ReadCompiledConfiguration(store, manager->GetFileName(), host.native_config, host.feedback, host.ole_servers);
    manager.reset(); // removes an extracted file before the process may end
    return read || EndLoad();
}

bool LoadSource(MemoryResidentData& store, const LoadHost& host) {
    if (host.native_config->LoadSource(DefinitionFileName(), store) == -1) {
        return false; // the host has reported
    }
    const CompilationState& compilation = CompilationState::Instance();
    return !compilation.get_IsCompiling() ||
           WriteCompiledConfiguration(store, compilation.get_CompiledConfigurationFile().get_Value(),
                                      host.ole_servers) ||
           EndLoad();
}

bool LoadDefinition(MemoryResidentData& store, const LoadHost& host) {
    const CompilationState& compilation = CompilationState::Instance();
    const bool from_compiled =
        !compilation.get_IsCompiling() && compilation.get_Source() != ConfigurationSource::SourceDefinition;
    return from_compiled ? LoadCompiled(store, host) : LoadSource(store, host);
}

void MarkStringDefaults(MemoryResidentData& store) {
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        const std::int32_t fields = store.GetDbFields(format);
        for (std::int32_t field = 0; field < fields; ++field) {
            const std::wstring_view text = store.GetDbClassString(format, field);
            if (text.find(kStringDefault) != std::wstring_view::npos) {
                store.AddDbClass(format, field, Classes::kStringDefault);
            }
        }
    }
}

void LocalizeHelpFile(IGlobalizationHelper* globalization) {
    const wchar_t* help_file = HelpFileName();
    if (help_file == nullptr || *help_file == L'\0' || globalization == nullptr) {
        return;
    }
    const Platform::OwnedWide localized(globalization->LocalizeFileName(help_file));
    if (localized && Platform::FileExists(localized.get())) {
        SetHelpFileName(localized.get());
    }
}

void PrepareLoad(const LoadHost& host) {
    ResetRunState();
    SetFromCompiled(false);
    if (ExecutionState::Instance().get_ExtractTranslations()) {
        Text::InstallTranslationWriters();
    }
    host.SetStage(kMsgStageDefinition);
    if (host.feedback != nullptr) {
        host.feedback->SetProgress(kProgressTablesReady);
    }
    KSDLL_SetLongSv(kSvDefinitionEnd, 0);
    KSDLL_WriteDebug(L"Initialised String Tables.");
}

bool Load(MemoryResidentData& store, const wchar_t* file_name, wchar_t* title, const LoadHost& host) {
    assert(host.native_config != nullptr);
    WriteTitle(title, kFirstTitle);
    const std::wstring definition_file = ChooseDefinitionFile(file_name);
    const bool is_named = SetDefinitionFileName(definition_file);
    WriteTitle(title, Message(kMsgTitle));
    host.SetStage(kMsgStageStart);
    // A name that no file can have does not use up the one load of the process.
    if (!is_named) {
        MessageManager::getInstance()->DisplayUnableToOpen(definition_file);
        return EndLoad();
    }
    if (!PassFirstTimeGuard(title)) {
        return false;
    }
    PrepareLoad(host);
    if (!LoadDefinition(store, host)) {
        return false;
    }
    MarkStringDefaults(store);
    LocalizeHelpFile(host.globalization);
    KSDLL_SetFloatSv(kSvVersionMark, kLoadedVersion);
    return true;
}

} // namespace

} // namespace Kestrona::Configuration

std::int32_t KSSERVER_LoadTableDefinition(Kestrona::Data::MemoryResident::MemoryResidentData& store,
                                          const wchar_t* file_name, wchar_t* title, INativeConfigWrapper* native_config,
                                          IInformationFeedback* feedback, IGlobalizationHelper* globalization,
                                          IResourceHandler* resources, IOleServerManager* ole_servers) {
    return Kestrona::Configuration::Load(store, file_name, title,
                                         {native_config, feedback, globalization, resources, ole_servers})
               ? 0
               : -1;
}
