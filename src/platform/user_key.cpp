#include "platform/user_key.h"

#include "platform/cipher.h"
#include "platform/files.h"
#include "platform/random.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <mutex>
#include <system_error>

namespace Kestrona::Platform {

namespace {

namespace fs = std::filesystem;

constexpr mode_t kOwnersFolder = 0700;
constexpr mode_t kOthers = 0077;

// Guards the keys that were read, and the making of one.
std::mutex& Lock() {
    static std::mutex lock;
    return lock;
}

std::map<std::string, SecretBytes>& KnownKeys() {
    static std::map<std::string, SecretBytes> keys;
    return keys;
}

// An open file descriptor, closed at the end.
class File {
public:
    explicit File(int descriptor) : descriptor_(descriptor) {}

    File(const File&) = delete;
    File& operator=(const File&) = delete;

    ~File() {
        if (descriptor_ >= 0) {
            close(descriptor_);
        }
    }

    [[nodiscard]] bool IsOpen() const { return descriptor_ >= 0; }

    [[nodiscard]] int Descriptor() const { return descriptor_; }

private:
    int descriptor_;
};

std::string HomeFolder() {
    if (const char* const home = std::getenv("HOME"); home != nullptr && *home != '\0') {
        return home;
    }
    passwd user{};
    std::array<char, 16384> texts{};
    passwd* found = nullptr;
    const int fault = getpwuid_r(geteuid(), &user, texts.data(), texts.size(), &found);
    return fault == 0 && found != nullptr ? found->pw_dir : "/";
}

fs::path KeyPath() {
    const char* const data = std::getenv("XDG_DATA_HOME");
    const bool given = data != nullptr && *data == '/';
    return (given ? fs::path(data) : fs::path(HomeFolder()) / ".local/share") / "kestrona" / "user.key";
}

// Calls `move(offset, size)`, a read or a write, until all bytes have been moved: one call may move fewer, or be broken
// off by a signal. False with errno, EBADMSG at the end of a file.
template <typename Move>
bool MoveAll(Move move, std::size_t size) {
    for (std::size_t done = 0; done < size;) {
        const ssize_t moved = move(done, size - done);
        if (moved < 0 && errno == EINTR) {
            continue;
        }
        if (moved <= 0) {
            errno = moved == 0 ? EBADMSG : errno;
            return false;
        }
        done += static_cast<std::size_t>(moved);
    }
    return true;
}

bool IsOwnersAlone(int descriptor) {
    struct stat status {};

    if (fstat(descriptor, &status) != 0) {
        return false;
    }
    if (!S_ISREG(status.st_mode) || status.st_uid != geteuid() || (status.st_mode & kOthers) != 0) {
        errno = EACCES;
        return false;
    }
    return true;
}

// False with errno, which is ENOENT where there is no key yet. Does not wait for the other end of a pipe.
bool ReadKey(const fs::path& path, SecretBytes& key) {
    const File file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    return file.IsOpen() && IsOwnersAlone(file.Descriptor()) &&
           MoveAll([&](std::size_t at, std::size_t size) { return read(file.Descriptor(), key.Data() + at, size); },
                   key.Size());
}

bool WriteKey(const File& file, const SecretBytes& key) {
    return MoveAll([&](std::size_t at, std::size_t size) { return write(file.Descriptor(), key.Data() + at, size); },
                   key.Size()) &&
           fsync(file.Descriptor()) == 0;
}

bool MakeFolder(const fs::path& folder) {
    std::error_code error;
    fs::create_directories(folder.parent_path(), error);
    if (error) {
        errno = error.value();
        return false;
    }
    return mkdir(folder.c_str(), kOwnersFolder) == 0 || errno == EEXIST;
}

// The key appears under its name whole or not at all. Where two processes make one, the first wins: a link never
// replaces a file.
bool MakeKey(const fs::path& path, SecretBytes& key) {
    if (!MakeFolder(path.parent_path())) {
        return false;
    }
    SecretBytes fresh(kAes256Key);
    if (!RandomBytes({fresh.Data(), fresh.Size()})) {
        errno = EIO;
        return false;
    }
    std::string draft = path.string() + ".XXXXXX";
    const File file(mkostemp(draft.data(), O_CLOEXEC)); // mode 0600
    if (!file.IsOpen()) {
        return false;
    }
    const bool made = WriteKey(file, fresh) && (link(draft.c_str(), path.c_str()) == 0 || errno == EEXIST);
    const int error = errno;
    unlink(draft.c_str());
    // Without the key, all that was protected with it is lost: its name must outlive a power failure.
    FlushFolder(path.parent_path().string());
    errno = error;
    return made && ReadKey(path, key);
}

} // namespace

std::optional<SecretBytes> UserKey(std::string& error) {
    const std::scoped_lock lock(Lock());
    const fs::path path = KeyPath();
    auto known = KnownKeys().find(path.string());
    if (known == KnownKeys().end()) {
        SecretBytes key(kAes256Key);
        if (!ReadKey(path, key) && (errno != ENOENT || !MakeKey(path, key))) {
            error = std::strerror(errno);
            return std::nullopt;
        }
        known = KnownKeys().emplace(path.string(), std::move(key)).first;
    }
    return SecretBytes(known->second.View());
}

void ForgetUserKeys() {
    const std::scoped_lock lock(Lock());
    KnownKeys().clear();
}

} // namespace Kestrona::Platform
