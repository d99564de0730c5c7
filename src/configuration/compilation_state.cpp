#include "platform/files.h"

#include <kestrona/compilation_state.h>
#include <kestrona/execution_state.h>
#include <kestrona/host_interfaces.h>
#include <kestrona/host_settings.h>

namespace Kestrona::Configuration::Compiled {

namespace {

struct CompiledKind {
    ConfigurationCompileType compile_type;
    const wchar_t* default_file;
    ConfigurationSourceType source_type;
};

// The numbers of the source types stand in compiled files, so they must not change.
constexpr CompiledKind kCompiledKinds[] = {
    {ConfigurationCompileType::Cnf, L"KESTRONA.CNF", ConfigurationSourceType::Cnf},
    {ConfigurationCompileType::Oem, L"KESTRONA.OEM", ConfigurationSourceType::Oem},
    {ConfigurationCompileType::Runtime, L"KESTRONA.KS_RT", ConfigurationSourceType::Runtime},
};

const CompiledKind& KindOf(ConfigurationCompileType compile_type) {
    for (const CompiledKind& kind : kCompiledKinds) {
        if (kind.compile_type == compile_type) {
            return kind;
        }
    }
    throw static_cast<const wchar_t*>(L"Unexpected state");
}

} // namespace

EmbeddedFileManager::~EmbeddedFileManager() {
    Platform::RemoveFile(path_);
}

CompilationState& CompilationState::Instance() {
    static CompilationState state;
    return state;
}

bool CompilationState::get_IsCommandLineCompilation() const {
    return is_compiling_ && ExecutionState::Instance().get_IsRunningHeadless();
}

std::wstring CompilationState::ResolveDefaultOutputFile() const {
    return KindOf(compile_type_).default_file;
}

ConfigurationSourceType CompilationState::ResolveSourceType() const {
    return KindOf(compile_type_).source_type;
}

FileManagerResult CompilationState::CreateCompiledFileManager(IResourceHandler* resources,
                                                              ICompiledFileManager** out) const {
    *out = nullptr;
    if (source_ != ConfigurationSource::EmbeddedResource) {
        *out = new CompiledFileManager(file_.get_Value());
        return FileManagerResult::OK;
    }
    std::wstring path;
    if (resources == nullptr || !resources->ExtractConfiguration(GetConfigurationResource(), path)) {
        return FileManagerResult::ExtractionFailed;
    }
    *out = new EmbeddedFileManager(path);
    return FileManagerResult::OK;
}

} // namespace Kestrona::Configuration::Compiled
