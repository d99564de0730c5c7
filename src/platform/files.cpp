#include "platform/files.h"

#include "platform/code_points.h"

#include <kestrona/unicode.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cassert>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <vector>

namespace Kestrona::Platform {

namespace {

bool IsFaithfulPath(std::wstring_view path) {
    for (std::size_t i = 0; i < path.size();) {
        const wchar_t element = path[i];
        const char32_t c = NextCodePoint(path, i);
        if (c == 0 || IsSurrogate(c) || static_cast<char32_t>(element) > kLastCodePoint) {
            return false;
        }
    }
    return !path.empty();
}

bool IsFolder(std::FILE* file) {
    struct stat status {};

    return fstat(fileno(file), &status) == 0 && S_ISDIR(status.st_mode);
}

} // namespace

std::optional<std::string> SystemPath(const std::wstring& path) {
    return IsFaithfulPath(path) ? std::optional(ToUtf8(path)) : std::nullopt;
}

bool IsSameFile(const std::wstring& first, const std::wstring& second) {
    const auto first_path = SystemPath(first);
    const auto second_path = SystemPath(second);

    struct stat a {};

    struct stat b {};

    return first_path && second_path && stat(first_path->c_str(), &a) == 0 && stat(second_path->c_str(), &b) == 0 &&
           a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

std::FILE* OpenFile(const std::wstring& path, const char* mode) {
    assert(mode != nullptr);
    const auto system_path = SystemPath(path);
    if (!system_path) {
        return nullptr;
    }
    // 'e': a child process does not get the file.
    FileHandle file(std::fopen(system_path->c_str(), (std::string(mode) + 'e').c_str()));
    return file != nullptr && !IsFolder(file.get()) ? file.release() : nullptr;
}

bool FileExists(const std::wstring& path) {
    const auto system_path = SystemPath(path);

    struct stat status {};

    return system_path && stat(system_path->c_str(), &status) == 0 && !S_ISDIR(status.st_mode);
}

std::optional<std::int64_t> LastWriteTime(const std::wstring& path) {
    const auto system_path = SystemPath(path);

    struct stat status {};

    if (!system_path || stat(system_path->c_str(), &status) != 0 || S_ISDIR(status.st_mode)) {
        return std::nullopt;
    }
    // A file may bear any time; far beyond every date, but small enough to go on counting in milliseconds.
    constexpr std::int64_t kFarSeconds = 1'000'000'000'000;
    const std::int64_t seconds = std::clamp<std::int64_t>(status.st_mtim.tv_sec, -kFarSeconds, kFarSeconds);
    return seconds * 1000 + status.st_mtim.tv_nsec / 1000000;
}

bool RemoveFile(const std::wstring& path) {
    const auto system_path = SystemPath(path);
    return system_path && unlink(system_path->c_str()) == 0;
}

std::wstring ProgramFolder() {
    std::vector<char> target(256);
    for (;;) {
        const ssize_t length = readlink("/proc/self/exe", target.data(), target.size());
        if (length < 0) {
            return {};
        }
        const auto count = static_cast<std::size_t>(length);
        // A result that fills the buffer may have been cut.
        if (count < target.size()) {
            return FolderPart(FromUtf8({target.data(), count}));
        }
        target.resize(target.size() * 2);
    }
}

std::wstring CurrentDirectory() {
    const std::unique_ptr<char, decltype(&std::free)> directory(getcwd(nullptr, 0), &std::free);
    return directory == nullptr ? std::wstring() : FromUtf8(directory.get());
}

bool SetCurrentDirectory(const std::wstring& path) {
    const auto system_path = SystemPath(path);
    return system_path && chdir(system_path->c_str()) == 0;
}

void FlushFolder(const std::string& folder) {
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor >= 0) {
        fsync(descriptor);
        close(descriptor);
    }
}

std::wstring FolderPart(const std::wstring& path) {
    const std::size_t slash = path.rfind(L'/');
    if (slash == std::wstring::npos) {
        return {};
    }
    return path.substr(0, slash == 0 ? 1 : slash);
}

} // namespace Kestrona::Platform
