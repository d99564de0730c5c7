#pragma once

#include <kestrona/export.h>

#include <cstdio>
#include <memory>
#include <string>

/// \file
/// Writing a file so that it is there whole or not at all.

namespace Kestrona {

/// A new file that takes the place of `path` when it is committed. Until then it stands beside it under another name;
/// whatever happens before, a full disk or a kill included, the file that `path` names stays as it is.
///
/// The new file takes over the permissions of the one that it replaces, and its owner and group where the process may
/// give them away. A `path` that is a symbolic link replaces what the link names. What is no ordinary file (a folder, a
/// device) or may not be written is not replaced. A process that is killed can leave the other name behind: the path
/// with a point and six letters or digits.
class KS_API SafeFile {
public:
    /// Makes the file, open for reading and writing in binary. See `IsOpen`.
    explicit SafeFile(const std::wstring& path);
    SafeFile(const SafeFile&) = delete;
    SafeFile& operator=(const SafeFile&) = delete;
    /// Removes a file that was not committed.
    ~SafeFile();

    /// False when it could not be made; `Error` tells why.
    [[nodiscard]] bool IsOpen() const;
    /// The open file, null when there is none. The object owns it.
    [[nodiscard]] std::FILE* File() const;
    /// The full name that the file has until it is committed.
    [[nodiscard]] const std::wstring& DraftPath() const;

    /// Flushes the file to the disk and gives it its name. False, with the former file untouched, when anything has
    /// failed since it was made: a write (`std::ferror`), the flush, the renaming. The file is closed then.
    [[nodiscard]] bool Commit();

    /// What the system says about the last failure, "" when there was none.
    [[nodiscard]] const std::wstring& Error() const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace Kestrona
