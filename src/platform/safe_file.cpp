// Implements: SafeFile.
#include "platform/files.h"

#include <kestrona/safe_file.h>
#include <kestrona/unicode.h>

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

namespace Kestrona {

namespace {

namespace fs = std::filesystem;

constexpr mode_t kPermissions = 0777;
constexpr mode_t kGroupPermissions = 0070;
constexpr mode_t kOthersPermissions = 0007;
constexpr mode_t kNewFile = 0666;
constexpr mode_t kOwnerOnly = 0600;
constexpr int kLongestChain = 40; // of symbolic links, as in the system
constexpr int kAttempts = 100;

using Descriptor = int;

// A file at the end of a path, as far as a replacement has to know it.
struct Former {
    bool exists = false;
    uid_t owner = 0;
    gid_t group = 0;
    mode_t permissions = kNewFile;
};

// What a chain of symbolic links ends at, which need not be there. errno is set where the answer is empty.
fs::path FollowLinks(const std::string& path) {
    std::error_code error;
    fs::path target = fs::absolute(path, error);
    for (int i = 0; !error && i < kLongestChain; ++i) {
        std::error_code no_link;
        const fs::path link = fs::read_symlink(target, no_link);
        if (no_link) {
            return target;
        }
        target = target.parent_path() / link;
    }
    errno = error ? error.value() : ELOOP;
    return {};
}

// False with errno for what is no ordinary file, or one that may not be written.
bool LookAt(const fs::path& target, Former& former) {
    struct stat status {};

    if (stat(target.c_str(), &status) != 0) {
        return errno == ENOENT;
    }
    if (!S_ISREG(status.st_mode)) {
        errno = S_ISDIR(status.st_mode) ? EISDIR : ENOTSUP;
        return false;
    }
    former = {true, status.st_uid, status.st_gid, status.st_mode & kPermissions};
    return faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) == 0;
}

// From the kernel, which needs no memory of this process for it: a save that runs out of memory shall say so, and the
// cryptographic generator ends the process where it cannot set itself up. False with errno when there is none to give.
bool AppendRandomEnding(std::string& name) {
    constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyz0123456789";
    std::array<unsigned char, 6> bytes{};
    if (getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
        return false;
    }
    name += '.';
    for (const unsigned char byte : bytes) {
        name += kLetters[byte % kLetters.size()];
    }
    return true;
}

// Makes the draft under a name that is not taken. Where it replaces no file, its permissions are those of any new file;
// otherwise only its owner may open it until `TakeOver` gives it the permissions of the former file. -1 with errno.
Descriptor MakeDraft(const std::string& target, const Former& former, std::string& draft) {
    Descriptor descriptor = -1;
    int attempts = 0;
    do {
        draft = target;
        if (!AppendRandomEnding(draft)) {
            return -1;
        }
        descriptor = open(draft.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, former.exists ? kOwnerOnly : kNewFile);
    } while (descriptor < 0 && errno == EEXIST && ++attempts < kAttempts);
    return descriptor;
}

// Gives the draft the owner, the group and the permissions of the file that it replaces. Where the former group cannot
// be kept, the group of the draft gets only the permissions that everybody had. False with errno.
bool TakeOver(Descriptor descriptor, const Former& former) {
    constexpr uid_t kSameOwner = static_cast<uid_t>(-1);
    mode_t permissions = former.permissions;
    if (fchown(descriptor, former.owner, former.group) != 0 && fchown(descriptor, kSameOwner, former.group) != 0) {
        permissions &= ~kGroupPermissions | ((permissions & kOthersPermissions) << 3U);
    }
    return fchmod(descriptor, permissions) == 0;
}

// A stream does not keep the reason of a failed write. A full disk or a limit on the size makes the system refuse more
// room, too, and that refusal tells the reason.
int ReasonOfFailedWrite(Descriptor descriptor) {
    constexpr off_t kMore = off_t{1} << 20U;

    struct stat status {};

    const int reason = fstat(descriptor, &status) == 0 ? posix_fallocate(descriptor, status.st_size, kMore) : errno;
    return reason != 0 ? reason : EIO;
}

} // namespace

struct SafeFile::State {
    State() = default;
    State(const State&) = delete;
    State& operator=(const State&) = delete;

    ~State() { Drop(); }

    Platform::FileHandle file;
    std::string target;
    std::string draft; // empty when there is none to remove
    std::wstring draft_path;
    std::wstring error;

    bool Fail(int reason) {
        error = FromUtf8(std::strerror(reason));
        return false;
    }

    bool FailNow() { return Fail(errno); }

    bool Open(const std::wstring& path) {
        const auto system_path = Platform::SystemPath(path);
        if (!system_path) {
            return Fail(ENOENT);
        }
        target = FollowLinks(*system_path).string();
        Former former;
        if (target.empty() || !LookAt(target, former)) {
            return FailNow();
        }
        std::string name;
        const Descriptor descriptor = MakeDraft(target, former, name);
        if (descriptor < 0) {
            return FailNow();
        }
        draft = std::move(name);
        file.reset(fdopen(descriptor, "w+b"));
        if (file == nullptr) {
            const int reason = errno;
            close(descriptor);
            return Fail(reason);
        }
        draft_path = FromUtf8(draft);
        return !former.exists || TakeOver(descriptor, former) || FailNow();
    }

    bool Flush() {
        if (std::ferror(file.get()) != 0) {
            return Fail(ReasonOfFailedWrite(fileno(file.get())));
        }
        return (std::fflush(file.get()) == 0 && fsync(fileno(file.get())) == 0) || FailNow();
    }

    bool Close() { return std::fclose(file.release()) == 0 || FailNow(); }

    bool Rename() {
        if (rename(draft.c_str(), target.c_str()) != 0) {
            return FailNow();
        }
        draft.clear();
        // Where the folder cannot be flushed, a crash of the machine leaves the former file, which is whole, too.
        Platform::FlushFolder(fs::path(target).parent_path().string());
        return true;
    }

    void Drop() {
        file.reset();
        if (!draft.empty()) {
            unlink(draft.c_str());
            draft.clear();
        }
    }
};

SafeFile::SafeFile(const std::wstring& path) : state_(std::make_unique<State>()) {
    if (!state_->Open(path)) {
        state_->Drop();
    }
}

SafeFile::~SafeFile() = default;

bool SafeFile::IsOpen() const {
    return state_->file != nullptr;
}

std::FILE* SafeFile::File() const {
    return state_->file.get();
}

const std::wstring& SafeFile::DraftPath() const {
    return state_->draft_path;
}

bool SafeFile::Commit() {
    const bool committed = IsOpen() && state_->Flush() && state_->Close() && state_->Rename();
    state_->Drop();
    return committed;
}

const std::wstring& SafeFile::Error() const {
    return state_->error;
}

} // namespace Kestrona
