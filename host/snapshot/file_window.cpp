#include "snapshot/file_window.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace Kestrona::Host::Snapshots {

namespace {

constexpr std::size_t kBufferSize = std::size_t{1} << 16;

} // namespace

FileWindow::FileWindow(std::FILE* file, std::int64_t begin, std::int64_t end)
    : descriptor_(fileno(file)),
      begin_(begin),
      size_(end - begin),
      buffer_(kBufferSize),
      stream_(fopencookie(this, "rb", {Read, nullptr, Seek, nullptr})) {
    if (stream_ != nullptr) {
        // Without memory of ours, the stream would ignore the size.
        std::setvbuf(stream_.get(), buffer_.data(), _IOFBF, buffer_.size());
    }
}

// A stream asks again only where what it got was not enough, so a call at the end means that the reader wants more.
ssize_t FileWindow::Read(void* window, char* target, std::size_t size) {
    auto& self = *static_cast<FileWindow*>(window);
    const std::int64_t left = std::max<std::int64_t>(self.size_ - self.position_, 0);
    if (left == 0) {
        self.was_too_short_ = true;
        return 0;
    }
    const std::size_t wanted = std::min(size, static_cast<std::size_t>(left));
    const ssize_t count = pread(self.descriptor_, target, wanted, self.begin_ + self.position_);
    self.was_too_short_ = self.was_too_short_ || count <= 0;
    self.position_ += std::max<ssize_t>(count, 0);
    return count;
}

int FileWindow::Seek(void* window, off64_t* position, int from) {
    auto& self = *static_cast<FileWindow*>(window);
    const std::int64_t base = from == SEEK_SET ? 0 : from == SEEK_CUR ? self.position_ : self.size_;
    if (base + *position < 0) {
        errno = EINVAL;
        return -1;
    }
    self.position_ = base + *position;
    *position = self.position_;
    return 0;
}

} // namespace Kestrona::Host::Snapshots
