#include "configuration/compiled/file_body.h"
#include "platform/files.h"

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
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

// The reader of compiled configurations, from the first byte of the file to the resolved definition.
//
// A changed byte inside a scrambled text spoils every text behind it. So an input is either the file itself, or, when
// it begins with 'T', a recipe for one that is scrambled here: a byte n below 128 copies the next n bytes, n from 128
// on makes a text of the next n - 128 bytes.

namespace {

using namespace Kestrona::Configuration::Compiled;
using Kestrona::Data::MemoryResident::MemoryResidentData;

constexpr char kRecipe = 'T';
constexpr std::uint8_t kTextStart = 128;

void Cook(std::string_view recipe, std::FILE* file) {
    while (!recipe.empty()) {
        const auto token = static_cast<std::uint8_t>(recipe.front());
        const std::string_view part = recipe.substr(1, token % kTextStart);
        if (token < kTextStart) {
            std::fwrite(part.data(), 1, part.size(), file);
        } else {
            KSDLL_WriteBinaryString(file, std::wstring(part.begin(), part.end()).c_str());
        }
        recipe.remove_prefix(1 + part.size());
    }
}

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
    const Kestrona::Platform::FileHandle file(std::fopen("/dev/null", "wb"));
    WriteTableDefinitionToStream(store, nullptr, nullptr, file.get(), nullptr);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Kestrona::ExecutionState::Instance().set_IsRunningHeadless(true);
    CompilationState::Instance().set_SourceType(ConfigurationSourceType::Cnf);
    static const std::unique_ptr<MemoryResidentData> store = Kestrona::Data::MemoryResident::CreateMemoryResidentData();
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    char* buffer = nullptr;
    std::size_t length = 0;
    {
        const Kestrona::Platform::FileHandle cooked(open_memstream(&buffer, &length));
        KSDLL_ResetChecksum();
        if (input.starts_with(kRecipe)) {
            Cook(input.substr(1), cooked.get());
        } else {
            std::fwrite(input.data(), 1, input.size(), cooked.get());
        }
    }
    if (length > 0) {
        const Kestrona::Platform::FileHandle file(fmemopen(buffer, length, "rb"));
        KSDLL_ResetChecksum();
        Read(*store, file.get());
        Write(*store);
    }
    std::free(buffer);
    return 0;
}
