#include "configuration/load_state.h"

#include "configuration/compiled/help_file.h"
#include "platform/files.h"

#include <kestrona/definition_load.h>
#include <kestrona/process.h>
#include <kestrona/services.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace Kestrona::Configuration {

namespace {

constexpr std::size_t kMaxFileName = 511;
constexpr double kNotLoaded = 0.0;

// Offsets of save variables that a load resets. Only the host knows what they mean.
constexpr std::int32_t kSvHost60 = 60;
constexpr std::int32_t kSvHost100 = 100;
constexpr std::int32_t kSvHost112 = 112;

struct LoadState {
    bool first_load = true;
    bool from_compiled = false;
    bool resolving_compiled = false;
    bool tables_claimed = false;
    std::array<wchar_t, kMaxFileName + 1> definition_file{};
};

LoadState& State() {
    static LoadState state;
    return state;
}

} // namespace

bool IsFirstLoad() {
    return State().first_load;
}

void ClearFirstLoad() {
    State().first_load = false;
}

void ResetRunState() {
    KSDLL_SetFloatSv(kSvVersionMark, kNotLoaded);
    KSDLL_SetLongSv(kSvHost60, 0);
    KSDLL_SetLongSv(kSvHost100, -1);
    KSDLL_SetLongSv(kSvHost112, 0);
}

const wchar_t* DefinitionFileName() {
    return State().definition_file.data();
}

bool SetDefinitionFileName(const std::wstring& name) {
    if (name.size() > kMaxFileName) {
        return false;
    }
    State().definition_file = {};
    std::copy(name.begin(), name.end(), State().definition_file.begin());
    return true;
}

void SetFromCompiled(bool value) {
    State().from_compiled = value;
}

CompiledResolution::CompiledResolution() {
    State().resolving_compiled = true;
}

CompiledResolution::~CompiledResolution() {
    State().resolving_compiled = false;
}

bool IsResolvingCompiled() {
    return State().resolving_compiled;
}

bool ClaimStringTables() {
    return !std::exchange(State().tables_claimed, true);
}

void ResetLoadStateForTests() {
    ForgetHelpFileName();
    State() = LoadState{};
    ResetRunState();
}

} // namespace Kestrona::Configuration

void init_server() {
    KSDLL_WriteDebug(L"Initialize server");
    KSDLL_SetFloatSv(kSvVersionMark, Kestrona::Configuration::kNotLoaded);
    KSDLL_WriteDebug(L"Finished Initialisation");
}

std::int32_t KSDLL_GetMiscPointer() {
    return Kestrona::Configuration::IsFirstLoad() ? 1 : 0;
}

void KSDLL_CreateMiscPointer() {
    Kestrona::Configuration::ClearFirstLoad();
    Kestrona::Configuration::ResetRunState();
}

bool FromCompiled() {
    return Kestrona::Configuration::State().from_compiled;
}

void SetCurrentDirectoryFromFilename(const wchar_t* path) {
    if (path == nullptr || !Kestrona::Configuration::SetDefinitionFileName(path)) {
        return;
    }
    const std::wstring folder = Kestrona::Platform::FolderPart(path);
    if (!folder.empty()) {
        Kestrona::Platform::SetCurrentDirectory(folder);
    }
}
