#include <kestrona/host/resource_directory.h>
#include <kestrona/unicode.h>

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <utility>

namespace Kestrona::Host {

namespace {

struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

using File = std::unique_ptr<std::FILE, Close>;

// A new file under a name of its own. Removed unless it is kept.
class TemporaryFile {
public:
    TemporaryFile() {
        std::error_code error;
        path_ = (std::filesystem::temp_directory_path(error) / "kestrona-XXXXXX").string();
        const int descriptor = error ? -1 : mkostemp(path_.data(), O_CLOEXEC);
        is_there_ = descriptor >= 0;
        if (is_there_) {
            file_.reset(fdopen(descriptor, "wb"));
            if (file_ == nullptr) {
                close(descriptor);
            }
        }
    }

    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    ~TemporaryFile() {
        if (is_there_) {
            std::remove(path_.c_str());
        }
    }

    [[nodiscard]] std::FILE* Stream() const { return file_.get(); }

    // Writes everything out and leaves the file in place. The path must not change on its way through wide text.
    bool Keep(std::wstring& path) {
        if (!IsValidUtf8(path_) || std::fclose(file_.release()) != 0) {
            return false;
        }
        path = FromUtf8(path_);
        is_there_ = false;
        return true;
    }

private:
    std::string path_;
    File file_;
    bool is_there_ = false;
};

bool Copy(std::FILE* from, std::FILE* to) {
    std::array<char, 65536> block{};
    for (;;) {
        const std::size_t count = std::fread(block.data(), 1, block.size(), from);
        if (count == 0) {
            return std::ferror(from) == 0;
        }
        if (std::fwrite(block.data(), 1, count, to) != count) {
            return false;
        }
    }
}

} // namespace

ResourceDirectory::ResourceDirectory(std::string folder) : folder_(std::move(folder)) {}

bool ResourceDirectory::ExtractConfiguration(std::int32_t resource, std::wstring& path) {
    if (folder_.empty()) {
        return false;
    }
    const std::string name = folder_ + "/" + std::to_string(resource) + ".cnf";
    std::error_code error;
    // A pipe of that name would keep the reader waiting.
    if (!std::filesystem::is_regular_file(name, error)) {
        return false;
    }
    const File from(std::fopen(name.c_str(), "rbe"));
    if (from == nullptr) {
        return false;
    }
    TemporaryFile to;
    return to.Stream() != nullptr && Copy(from.get(), to.Stream()) && to.Keep(path);
}

} // namespace Kestrona::Host
