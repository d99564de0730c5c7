#include "data/compiled_head.h"

#include "data/open_file.h"

#include <kestrona/unicode.h>

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace Kestrona::Tool {
namespace {

using Configuration::Compiled::CommonCompiledConfigFunctions;
using Configuration::Compiled::kConfigurationVersion;
using Configuration::Compiled::VersionCheckResult;
using Host::FileFault;

constexpr std::int64_t kTypeSize = 4;
/// The format version and both parts of the version.
constexpr std::int64_t kVersionSize = 12;

std::int64_t SizeOf(std::FILE* file) {
    std::fseek(file, 0, SEEK_END);
    const std::int64_t size = std::ftell(file);
    std::rewind(file);
    return size;
}

std::wstring Decoded(std::string_view bytes, bool wide) {
    if (!wide) {
        return FromUtf8(bytes);
    }
    std::u16string units(bytes.size() / 2, u'\0');
    std::memcpy(units.data(), bytes.data(), units.size() * 2);
    return FromUtf16(units);
}

/// Line ends and other control characters become single blanks.
std::string OneLine(const std::wstring& text) {
    std::wstring line;
    for (const wchar_t c : text) {
        const wchar_t shown = c < L' ' ? L' ' : c;
        if (shown != L' ' || !(line.empty() || line.back() == L' ')) {
            line += shown;
        }
    }
    line.erase(line.find_last_not_of(L' ') + 1);
    return ToUtf8(line);
}

/// The text before the marker, whose offset the file has just passed.
std::string ReadBanner(std::FILE* file, bool wide) {
    const long behind = std::ftell(file);
    std::string bytes(static_cast<std::size_t>(behind - (wide ? 2 : 1)), '\0');
    std::rewind(file);
    bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file));
    std::fseek(file, behind, SEEK_SET);
    return OneLine(Decoded(bytes, wide));
}

} // namespace

std::optional<CompiledHead> ReadCompiledHead(const std::string& path, Host::FileProblem& problem) {
    const OpenFile file(std::fopen(path.c_str(), "rbe"));
    if (!file) {
        problem = {FileFault::CannotOpen, path, {}, std::strerror(errno), ""};
        return std::nullopt;
    }
    CompiledHead head;
    head.file_size = SizeOf(file.get());
    CommonCompiledConfigFunctions::SeekHeader(file.get(), &head.wide);
    head.version_at = std::ftell(file.get());
    head.banner = ReadBanner(file.get(), head.wide);
    head.version = CommonCompiledConfigFunctions::ReadVersionHeader(file.get());
    head.check = CommonCompiledConfigFunctions::CheckVersionInfo(head.version);
    const bool is_current = head.check == VersionCheckResult::Current;
    const std::int64_t expected = kVersionSize + kTypeSize;
    if ((is_current && std::fread(&head.type, sizeof head.type, 1, file.get()) != 1) ||
        head.check == VersionCheckResult::NoVersion) {
        problem = {FileFault::Truncated, path, head.version_at,
                   fmt::format("{} bytes", head.file_size - head.version_at), fmt::format("{} bytes", expected)};
        return std::nullopt;
    }
    return head;
}

bool CheckCompiledHead(const std::string& path, Host::FileProblem& problem) {
    const auto head = ReadCompiledHead(path, problem);
    if (!head || head->check == VersionCheckResult::Current) {
        return head.has_value();
    }
    const Version version = head->version.FileVersion.HasValue() ? head->version.FileVersion.get_Value() : Version();
    problem = {FileFault::WrongVersion, path, head->version_at,
               head->version.FileVersion.HasValue() ? fmt::format("version {}.{}", version.major, version.minor)
                                                    : fmt::format("format {:.1f}", head->version.FormatVersion),
               fmt::format("version {}.{}", kConfigurationVersion.major, kConfigurationVersion.minor)};
    return false;
}

} // namespace Kestrona::Tool
