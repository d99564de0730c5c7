#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

// Files and folders by wide path. A path reaches the system as UTF-8 with '/' between its parts. A path that the system
// cannot be given faithfully (empty, with an embedded 0, with a lone surrogate) names no file: every function fails on
// it.
namespace Kestrona::Platform {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

// Closes at its end and drops the result of closing; whoever writes must flush and test before.
using FileHandle = std::unique_ptr<std::FILE, FileCloser>;

// Opens as fopen, not inherited by child processes. Null when that fails or the path is a folder. The caller closes it.
std::FILE* OpenFile(const std::wstring& path, const char* mode);

// The path as the system takes it. Nothing for a path that names no file.
std::optional<std::string> SystemPath(const std::wstring& path);

// Whether both paths lead to one file that is there, by whatever links.
bool IsSameFile(const std::wstring& first, const std::wstring& second);

// Whether the path is there and is not a folder.
bool FileExists(const std::wstring& path);

// When the file was last written: milliseconds since the beginning of 1970 in UTC. Nothing for what is no file.
std::optional<std::int64_t> LastWriteTime(const std::wstring& path);

// Removes a file, never a folder. False when it was not removed.
bool RemoveFile(const std::wstring& path);

// The folder of the running program, without a '/' at its end (except for "/" itself). Empty when it cannot be told.
std::wstring ProgramFolder();

// The current directory, without a '/' at its end (except for "/" itself). Empty when it cannot be told.
std::wstring CurrentDirectory();

// False, and nothing changed, when the path is not a folder that can be entered.
bool SetCurrentDirectory(const std::wstring& path);

// Writes the entries of a folder to the disk, so that a file that was made or renamed in it keeps its name when the
// machine crashes. Some file systems cannot do that; then nothing happens. `folder` is a path as the system takes it.
void FlushFolder(const std::string& folder);

// What stands before the last '/': "a/b" of "a/b/c", "/" of "/c", the empty text when there is no '/'.
std::wstring FolderPart(const std::wstring& path);

} // namespace Kestrona::Platform
