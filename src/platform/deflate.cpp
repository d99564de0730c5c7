#include "platform/deflate.h"

#include <zlib.h>

#include <array>

namespace Kestrona::Platform {

namespace {

constexpr std::size_t kPiece = 16384;

using Piece = std::array<unsigned char, kPiece>;

static_assert(kDeflateDone == Z_OK && kDeflateFileFailed == Z_ERRNO && kDeflateDataDamaged == Z_DATA_ERROR &&
              kDeflateOutOfMemory == Z_MEM_ERROR);

// A stream that is ended when it goes.
class Stream {
public:
    explicit Stream(int (*end)(z_stream*)) : end_(end) {}

    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    ~Stream() { end_(&state_); }

    z_stream* State() { return &state_; }

    // Makes the next piece of the file the input; empty at its end. False when it cannot be read.
    bool Feed(std::FILE* source) {
        state_.next_in = input_.data();
        state_.avail_in = static_cast<uInt>(std::fread(input_.data(), 1, kPiece, source));
        return std::ferror(source) == 0;
    }

    void MakeRoom() {
        state_.next_out = output_.data();
        state_.avail_out = kPiece;
    }

    bool Flush(std::FILE* target) {
        const std::size_t count = kPiece - state_.avail_out;
        return std::fwrite(output_.data(), 1, count, target) == count;
    }

private:
    z_stream state_{};
    int (*end_)(z_stream*);
    Piece input_;
    Piece output_;
};

// Compresses the input that has been fed, and finishes with the last.
bool DeflatePiece(Stream& stream, std::FILE* target, bool is_last) {
    do {
        stream.MakeRoom();
        if (deflate(stream.State(), is_last ? Z_FINISH : Z_NO_FLUSH) == Z_STREAM_ERROR || !stream.Flush(target)) {
            return false;
        }
    } while (stream.State()->avail_out == 0);
    return true;
}

// Takes the input that has been fed apart. kDeflateDone, Z_STREAM_END at the end of the stream, or a failure.
std::int32_t InflatePiece(Stream& stream, std::FILE* target) {
    int result = Z_OK;
    do {
        stream.MakeRoom();
        result = inflate(stream.State(), Z_NO_FLUSH);
        if (result == Z_MEM_ERROR) {
            return kDeflateOutOfMemory;
        }
        if (result == Z_DATA_ERROR || result == Z_NEED_DICT) {
            return kDeflateDataDamaged;
        }
        if (result == Z_STREAM_ERROR || !stream.Flush(target)) {
            return kDeflateFileFailed;
        }
    } while (stream.State()->avail_out == 0);
    return result == Z_STREAM_END ? Z_STREAM_END : kDeflateDone;
}

} // namespace

std::int32_t DeflateFile(std::FILE* source, std::FILE* target) {
    Stream stream(deflateEnd);
    if (const int result = deflateInit(stream.State(), Z_DEFAULT_COMPRESSION); result != Z_OK) {
        return result;
    }
    bool is_last = false;
    while (!is_last) {
        if (!stream.Feed(source)) {
            return kDeflateFileFailed;
        }
        is_last = std::feof(source) != 0;
        if (!DeflatePiece(stream, target, is_last)) {
            return kDeflateFileFailed;
        }
    }
    return kDeflateDone;
}

std::int32_t InflateFile(std::FILE* source, std::FILE* target) {
    Stream stream(inflateEnd);
    if (const int result = inflateInit(stream.State()); result != Z_OK) {
        return result;
    }
    for (;;) {
        if (!stream.Feed(source)) {
            return kDeflateFileFailed;
        }
        if (stream.State()->avail_in == 0) {
            return kDeflateDone;
        }
        if (const std::int32_t result = InflatePiece(stream, target); result != kDeflateDone) {
            return result == Z_STREAM_END ? kDeflateDone : result;
        }
    }
}

} // namespace Kestrona::Platform
