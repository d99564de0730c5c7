#include "fuzz.h"
#include "quiet_host.h"

#include <kestrona/binary_strings.h>
#include <kestrona/definition_load.h>
#include <kestrona/host/definition.h>
#include <kestrona/records.h>
#include <kestrona/table_definition_stream.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

// Source texts all the way into a resolved store. The store prints as a text that gives the same store, and so does its
// definition stream; its cells can be shown.

namespace {

using namespace Kestrona;
using namespace Kestrona::Fuzz;

std::string& Source() {
    static std::string source;
    return source;
}

std::string ReadSource(const std::string&) {
    return Source();
}

Host::DefaultHost& TheHost() {
    static const std::unique_ptr<Host::DefaultHost> host = MakeQuietHost(ReadSource);
    return *host;
}

// Null where the text is no definition. Most are not, and a store costs more than the parser.
std::unique_ptr<MemoryResidentData> Load(const std::string& text) {
    Source() = text;
    if (Host::ParseDefinition(text, "main.ksdef", ReadSource).HasErrors()) {
        return nullptr;
    }
    auto store = TheHost().CreateStore();
    const bool is_loaded = TheHost().FillAndResolve("main.ksdef", *store) == Host::LoadOutcome::Ok;
    TheHost().Messages()->Clear();
    return is_loaded ? std::move(store) : nullptr;
}

std::unique_ptr<MemoryResidentData> LoadStream(MemoryResidentData& store) {
    KSDLL_ResetChecksum();
    std::string bytes = BytesOf([&](std::FILE* out) { WriteTableDefinitionToStream(store, L"", L"", out, nullptr); });
    const File in(fmemopen(bytes.data(), bytes.size(), "rb"));
    KSDLL_ResetChecksum();
    auto read = TheHost().CreateStore();
    Require(ReadTableDefinitionFromStream(*read, in.get(), nullptr, true, true, true, L"file", L"", nullptr));
    Require(check_database_access(*read, true, nullptr) == 0);
    return read;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto store = Load(std::string(reinterpret_cast<const char*>(data), size));
    if (store == nullptr) {
        return 0;
    }
    const std::string text = Host::PrintDefinition(*store);
    const auto again = Load(text);
    Require(again != nullptr && Host::PrintDefinition(*again) == text);
    const auto read = LoadStream(*store);
    for (std::int32_t format = 0; format < store->GetFormatCount(); ++format) {
        for (MemoryResidentData* const each : {store.get(), read.get()}) {
            KSDLL_CreateRecord(*each, format);
            KSDLL_CreateRecord(*each, format);
        }
    }
    Require(ShowCells(*store) == ShowCells(*read));
    return 0;
}
