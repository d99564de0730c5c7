#include "output/secret_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace Kestrona::Tool {
namespace {

/// A new file beside the one to be written, of mode 0600. Removed at the end.
class SecretDraft {
public:
    explicit SecretDraft(const std::string& path)
        : path_(path + ".XXXXXX"),
          descriptor_(mkostemp(path_.data(), O_CLOEXEC)) {}

    SecretDraft(const SecretDraft&) = delete;
    SecretDraft& operator=(const SecretDraft&) = delete;

    ~SecretDraft() {
        if (descriptor_ >= 0) {
            close(descriptor_);
            unlink(path_.c_str());
        }
    }

    [[nodiscard]] bool Write(std::string_view content) const {
        while (descriptor_ >= 0 && !content.empty()) {
            const ssize_t written = write(descriptor_, content.data(), content.size());
            if (written < 0 && errno != EINTR) {
                return false;
            }
            content.remove_prefix(static_cast<std::size_t>(written < 0 ? 0 : written));
        }
        return descriptor_ >= 0 && fsync(descriptor_) == 0;
    }

    /// A link never replaces a file, a renaming always does.
    [[nodiscard]] bool Publish(const std::string& path, bool replace) const {
        return replace ? std::rename(path_.c_str(), path.c_str()) == 0 : link(path_.c_str(), path.c_str()) == 0;
    }

private:
    std::string path_;
    int descriptor_;
};

} // namespace

Problem FileInTheWay() {
    return {Code::FileInTheWay, "is there already"};
}

std::optional<Problem> WriteSecretFile(std::string_view content, const std::string& path, bool replace) {
    const SecretDraft draft(path);
    if (draft.Write(content) && draft.Publish(path, replace)) {
        return std::nullopt;
    }
    return errno == EEXIST ? FileInTheWay()
                           : Problem{Code::CannotWrite, std::string("cannot be written: ") + std::strerror(errno)};
}

} // namespace Kestrona::Tool
