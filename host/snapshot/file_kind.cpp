#include "file_handle.h"
#include "snapshot/layout.h"
#include "snapshot/zlib_stream.h"

#include <kestrona/compiled_configuration.h>
#include <kestrona/host/snapshot.h>

#include <algorithm>
#include <cstring>

namespace Kestrona::Host {

namespace {

using Configuration::Compiled::CommonCompiledConfigFunctions;

// What is looked at. The banner of a compiled definition is much shorter.
constexpr std::size_t kStart = 4096;
// Versions of the format that a compiled definition can have.
constexpr float kFirstFormat = 1.0F;
constexpr float kLastFormat = 1000.0F;

// A banner, the mark at its end, and a version behind it. A banner of 16-bit text has a mark of two bytes.
bool LooksCompiled(std::string_view start) {
    const auto mark = static_cast<char>(CommonCompiledConfigFunctions::get_VersionStartMarker());
    const std::size_t end = start.find(mark);
    if (end == std::string_view::npos) {
        return false;
    }
    const bool is_wide = start.substr(0, end).find('\0') != std::string_view::npos;
    const std::string_view behind = start.substr(std::min(end + (is_wide ? 2 : 1), start.size()));
    float version = 0.0F;
    if (behind.size() < sizeof version) {
        return false;
    }
    std::memcpy(&version, behind.data(), sizeof version);
    return version >= kFirstFormat && version <= kLastFormat;
}

} // namespace

FileKind KindOfFile(const std::string& path) {
    const FileHandle file = OpenRegularFile(path);
    if (file == nullptr) {
        return FileKind::Unreadable;
    }
    std::string start(kStart, '\0');
    start.resize(std::fread(start.data(), 1, start.size(), file.get()));
    if (std::ferror(file.get()) != 0) {
        return FileKind::Unreadable;
    }
    const std::string_view marker(start.data(), std::min(start.size(), Snapshots::kMarker.size()));
    if (!marker.empty() && Snapshots::kMarker.starts_with(marker)) { // perhaps only the beginning of one
        return FileKind::Snapshot;
    }
    if (Snapshots::LooksLikeZlib(start)) {
        return FileKind::CompressedSnapshot;
    }
    return LooksCompiled(start) ? FileKind::CompiledDefinition : FileKind::Other;
}

} // namespace Kestrona::Host
