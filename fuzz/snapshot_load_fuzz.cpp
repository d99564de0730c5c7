#include "fuzz.h"
#include "memory_file.h"
#include "quiet_host.h"
#include "recipe.h"

#include <kestrona/host/snapshot.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// The loader of snapshots. An input is either the file itself or, when it begins with 'T', what its parts are made of:
// the recipe of the definition and then each table block, each part behind its length in two bytes. Sizes and offsets
// of the file are true then.

namespace {

using namespace Kestrona;
using namespace Kestrona::Fuzz;

constexpr char kParts = 'T';

void Append(std::string& bytes, std::int32_t number) {
    bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
}

std::string_view TakePart(std::string_view& parts) {
    std::uint16_t size = 0;
    std::memcpy(&size, parts.data(), std::min(parts.size(), sizeof size));
    parts.remove_prefix(std::min(parts.size(), sizeof size));
    const std::string_view part = parts.substr(0, size);
    parts.remove_prefix(part.size());
    return part;
}

std::string Assemble(std::string_view parts) {
    constexpr std::int32_t kLayout = 1;
    const std::string_view recipe = TakePart(parts);
    KSDLL_ResetChecksum();
    const std::string definition = BytesOf([&](std::FILE* file) { Cook(recipe, file); });
    std::vector<std::string_view> blocks;
    while (!parts.empty()) {
        blocks.push_back(TakePart(parts));
    }
    std::string file = "KestronaDataExtraction";
    for (const std::int32_t number : {kLayout, 0, 0, 0, 1, 0, 0}) {
        Append(file, number);
    }
    Append(file, static_cast<std::int32_t>(blocks.size()));
    Append(file, 0);
    Append(file, static_cast<std::int32_t>(definition.size()));
    file += definition;
    std::size_t offset = file.size() + blocks.size() * sizeof(std::int32_t);
    for (const std::string_view block : blocks) {
        Append(file, static_cast<std::int32_t>(offset));
        offset += block.size();
    }
    for (const std::string_view block : blocks) {
        file += block;
    }
    return file;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const MemoryFile file;
    static const std::unique_ptr<Host::DefaultHost> host = MakeQuietHost();
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::string bytes = input.starts_with(kParts) ? Assemble(input.substr(1)) : std::string(input);
    file.Replace(bytes.data(), bytes.size());

    Host::FileProblem problem;
    const auto info = Host::ReadSnapshotInfo(file.Path(), problem);
    Require(info.has_value() == (problem.fault == Host::FileFault::None));
    if (!info) {
        return 0;
    }
    const auto store = host->CreateStore();
    if (Host::LoadSnapshot(file.Path(), *store, L"", problem)) {
        Require(problem.fault == Host::FileFault::None);
        ShowCells(*store);
        for (const Host::SnapshotTable& table : info->tables) {
            Require(store->FindFormatByName(table.name.c_str()) >= 0);
        }
    }
    host->Messages()->Clear();
    return 0;
}
