#pragma once

#include "file_handle.h"

#include <sys/types.h>

#include <cstdint>
#include <vector>

namespace Kestrona::Host::Snapshots {

// A part of a file as a stream of its own, for readers that know no bounds. It ends where the part ends, and remembers
// whether more was asked for. It neither uses nor moves the position of the file itself.
class FileWindow {
public:
    // `file` is borrowed. `Stream` is null when there is no memory.
    FileWindow(std::FILE* file, std::int64_t begin, std::int64_t end);
    FileWindow(const FileWindow&) = delete;
    FileWindow& operator=(const FileWindow&) = delete;

    [[nodiscard]] std::FILE* Stream() const { return stream_.get(); }

    [[nodiscard]] std::int64_t Size() const { return size_; }

    // Where the reader stands.
    [[nodiscard]] std::int64_t Position() const { return std::ftell(stream_.get()); }

    // Whether the reader wanted more than the part holds.
    [[nodiscard]] bool WasTooShort() const { return was_too_short_; }

private:
    static ssize_t Read(void* window, char* target, std::size_t size);
    static int Seek(void* window, off64_t* position, int from);

    int descriptor_;
    std::int64_t begin_;
    std::int64_t size_;
    std::int64_t position_ = 0;
    bool was_too_short_ = false;
    std::vector<char> buffer_; // of the stream, which is destroyed first
    FileHandle stream_;
};

} // namespace Kestrona::Host::Snapshots
