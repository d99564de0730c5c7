#include "fuzz.h"
#include "recipe.h"

#include <kestrona/execution_state.h>
#include <kestrona/store.h>
#include <kestrona/table_definition_stream.h>

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

// The reader of definition streams. The first byte tells which kind of stream, the rest is a recipe for it. What was
// read is written, and comes back as the same bytes from there on.

namespace {

using namespace Kestrona;
using namespace Kestrona::Fuzz;
using Data::MemoryResident::CreateMemoryResidentData;
using Data::MemoryResident::MemoryResidentData;

struct Kind {
    bool wide = true;
    bool has_common_dataset_flag = true;
    bool has_trailer_texts = true;
};

// The stream of what was read; nothing where it cannot be read.
std::optional<std::string> ReadAndWrite(const std::string& bytes, const Kind& kind) {
    const auto store = CreateMemoryResidentData();
    const File file(fmemopen(const_cast<char*>(bytes.data()), bytes.size(), "rb"));
    KSDLL_ResetChecksum();
    if (!ReadTableDefinitionFromStream(*store, file.get(), nullptr, kind.wide, kind.has_common_dataset_flag,
                                       kind.has_trailer_texts, L"file", L"", nullptr)) {
        return std::nullopt;
    }
    KSDLL_ResetChecksum();
    return BytesOf([&](std::FILE* out) { WriteTableDefinitionToStream(*store, L"one", L"", out, nullptr); });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) {
        return 0;
    }
    ExecutionState::Instance().set_IsRunningHeadless(true);
    const Kind kind{(data[0] & 1U) == 0, (data[0] & 2U) == 0, (data[0] & 4U) == 0};
    const std::string_view recipe(reinterpret_cast<const char*>(data) + 1, size - 1);
    KSDLL_ResetChecksum();
    const std::string bytes = BytesOf([&](std::FILE* out) { Cook(recipe, out); });
    if (bytes.empty()) {
        return 0;
    }
    if (const auto written = ReadAndWrite(bytes, kind)) {
        const auto again = ReadAndWrite(*written, {});
        Require(again.has_value());
        Require(ReadAndWrite(*again, {}) == again);
    }
    return 0;
}
