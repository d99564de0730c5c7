// Implements: the loads of DefaultHost.
#include "compiled_file.h"
#include "resolve.h"
#include "snapshot/carried_texts.h"
#include "snapshot/load.h"

#include <kestrona/compilation_state.h>
#include <kestrona/definition_load.h>
#include <kestrona/host/default_host.h>
#include <kestrona/host/snapshot.h>
#include <kestrona/host_settings.h>
#include <kestrona/process.h>
#include <kestrona/unicode.h>

#include <array>
#include <cstddef>

namespace Kestrona::Host {

namespace {

using Configuration::Compiled::CompilationState;
using Configuration::Compiled::ConfigurationCompileType;
using Configuration::Compiled::ConfigurationSource;
using Configuration::Compiled::ConfigurationSourceType;
using Data::MemoryResident::MemoryResidentData;

// The title has room for 11 characters.
constexpr std::size_t kTitleSize = 12;

// The settings of a load, put back afterwards.
class LoadSettings {
public:
    LoadSettings()
        : source_(State().get_Source()),
          source_type_(State().get_SourceType()),
          is_compiling_(State().get_IsCompiling()),
          compile_type_(State().get_CompileType()),
          file_(State().get_CompiledConfigurationFile()) {}

    LoadSettings(const LoadSettings&) = delete;
    LoadSettings& operator=(const LoadSettings&) = delete;

    ~LoadSettings() {
        State().set_Source(source_);
        State().set_SourceType(source_type_);
        State().set_IsCompiling(is_compiling_);
        State().set_CompileType(compile_type_);
        State().set_CompiledConfigurationFile(file_);
    }

    static CompilationState& State() { return CompilationState::Instance(); }

private:
    ConfigurationSource source_;
    ConfigurationSourceType source_type_;
    bool is_compiling_;
    ConfigurationCompileType compile_type_;
    NullValue<std::wstring> file_;
};

} // namespace

LoadOutcome DefaultHost::LoadDefinition(const std::string& path) {
    const bool was_loaded = KSDLL_GetMiscPointer() == 0;
    native_config_->Forget();
    std::array<wchar_t, kTitleSize> title{};
    CarriedTexts texts(*store_, ole_servers_.get());
    const std::int32_t result =
        KSSERVER_LoadTableDefinition(*store_, FromUtf8(path).c_str(), title.data(), native_config_.get(),
                                     feedback_.get(), globalization_, resources_.get(), &texts);
    FinishFeedback();
    if (was_loaded) {
        return LoadOutcome::AlreadyLoaded;
    }
    title_ = title.data();
    if (result == 0) {
        return LoadOutcome::Ok;
    }
    return native_config_->LastOutcome() == LoadOutcome::Unreadable ? LoadOutcome::Unreadable : LoadOutcome::Findings;
}

LoadOutcome DefaultHost::FillAndResolve(const std::string& path, MemoryResidentData& store) {
    const LoadOutcome outcome = native_config_->Load(path, store);
    if (outcome == LoadOutcome::Ok) {
        MarkStringDefaults(store);
    }
    FinishFeedback();
    return outcome;
}

LoadOutcome DefaultHost::LoadCompiled(const std::string& path) {
    const LoadSettings settings;
    LoadSettings::State().set_IsCompiling(false);
    LoadSettings::State().set_Source(ConfigurationSource::CompiledFile);
    LoadSettings::State().set_SourceType(SourceTypeOf(path));
    LoadSettings::State().set_CompiledConfigurationFile(FromUtf8(path));
    const LoadOutcome outcome = LoadDefinition(path);
    const bool failed = outcome == LoadOutcome::Findings;
    return failed && KindOfFile(path) == FileKind::Unreadable ? LoadOutcome::Unreadable : outcome;
}

LoadOutcome DefaultHost::CompileDefinition(const std::string& source, const std::string& target) {
    const LoadSettings settings;
    LoadSettings::State().set_IsCompiling(true);
    LoadSettings::State().set_Source(ConfigurationSource::SourceDefinition);
    LoadSettings::State().set_CompileType(ConfigurationCompileType::Cnf);
    LoadSettings::State().set_CompiledConfigurationFile(FromUtf8(target));
    file_problem_ = {};
    const LoadOutcome outcome = LoadDefinition(source);
    // The library says the same of a target that cannot be written as of a definition that cannot be resolved.
    if (outcome == LoadOutcome::Findings && native_config_->LastOutcome() == LoadOutcome::Ok) {
        file_problem_ = {FileFault::CannotWrite, target, {}, "", ""};
    }
    return outcome;
}

LoadOutcome DefaultHost::FillFromFile(const std::string& path, MemoryResidentData& store, const std::wstring& dataset) {
    file_problem_ = {};
    switch (KindOfFile(path)) {
    case FileKind::Snapshot:
    case FileKind::CompressedSnapshot:
        return FillFromSnapshot(path, store, dataset);
    case FileKind::CompiledDefinition: {
        native_config_->Forget();
        CarriedTexts texts(store, ole_servers_.get());
        const LoadOutcome outcome = FillFromCompiled(path, store, feedback_.get(), texts, file_problem_);
        FinishFeedback();
        return outcome;
    }
    case FileKind::Unreadable: // a definition need not lie in the file system
    case FileKind::Other:
        break;
    }
    return FillAndResolve(path, store);
}

LoadOutcome DefaultHost::FillFromSnapshot(const std::string& path, MemoryResidentData& store,
                                          const std::wstring& dataset) {
    native_config_->Forget();
    const bool loaded = Snapshots::Load(path, store, dataset, feedback_.get(), file_problem_);
    FinishFeedback();
    if (loaded) {
        return LoadOutcome::Ok;
    }
    const FileFault fault = file_problem_.fault;
    if (fault != FileFault::None) {
        MessageManager::getInstance()->ShowMessage(nullptr, FromUtf8(file_problem_.ToString()), GetMessageCaption(),
                                                   kMessageStyleError);
    }
    const bool unreadable = fault == FileFault::CannotOpen || fault == FileFault::CannotRead;
    return unreadable ? LoadOutcome::Unreadable : LoadOutcome::Findings;
}

} // namespace Kestrona::Host
