#include "configuration/compiled/file_body.h"
#include "fuzz.h"
#include "recipe.h"

#include <kestrona/binary_strings.h>
#include <kestrona/compilation_state.h>
#include <kestrona/compiled_configuration.h>
#include <kestrona/definition_load.h>
#include <kestrona/execution_state.h>
#include <kestrona/services.h>
#include <kestrona/store.h>
#include <kestrona/table_definition_stream.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

// The reader of compiled configurations, from the first byte of the file to the resolved definition.
//
// An input is either the file itself or, when it begins with 'T', the recipe of one.

namespace {

using namespace Kestrona::Configuration::Compiled;
using namespace Kestrona::Fuzz;
using Kestrona::Data::MemoryResident::MemoryResidentData;

constexpr char kRecipe = 'T';

// Old layouts are read, too: which one, the file says.
void Read(MemoryResidentData& store, std::FILE* file) {
    bool wide = false;
    CommonCompiledConfigFunctions::SeekHeader(file, &wide);
    const CompiledVersionInfo info = CommonCompiledConfigFunctions::ReadVersionHeader(file);
    const VersionCheckResult result = CommonCompiledConfigFunctions::CheckVersionInfo(info);
    CommonCompiledConfigFunctions::DisplayCompiledVersionMessages(nullptr, L"file", L"", info, result);
    if (info.FileVersion.HasValue() &&
        ReadFileBody(store, file, wide, info.FileVersion.get_Value(), L"file", nullptr)) {
        check_database_access(store, true, nullptr);
    }
}

// What was read can be written.
void Write(MemoryResidentData& store) {
    KSDLL_ResetChecksum();
    const File file(std::fopen("/dev/null", "wb"));
    WriteTableDefinitionToStream(store, nullptr, nullptr, file.get(), nullptr);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Kestrona::ExecutionState::Instance().set_IsRunningHeadless(true);
    CompilationState::Instance().set_SourceType(ConfigurationSourceType::Cnf);
    static const std::unique_ptr<MemoryResidentData> store = Kestrona::Data::MemoryResident::CreateMemoryResidentData();
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    KSDLL_ResetChecksum();
    std::string bytes = BytesOf([&](std::FILE* cooked) {
        if (input.starts_with(kRecipe)) {
            Cook(input.substr(1), cooked);
        } else {
            std::fwrite(input.data(), 1, input.size(), cooked);
        }
    });
    if (!bytes.empty()) {
        const File file(fmemopen(bytes.data(), bytes.size(), "rb"));
        KSDLL_ResetChecksum();
        Read(*store, file.get());
        Write(*store);
    }
    return 0;
}
