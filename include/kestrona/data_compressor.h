#pragma once

#include <kestrona/export.h>

#include <cstdint>
#include <string>

/// \file
/// Compressing whole files.

namespace Kestrona::DataCompressor {

/// Turns a file into a zlib stream and back, in pieces of 16 KiB, whatever the size of the file.
class KS_API DataCompressor {
public:
    static constexpr std::int32_t kDone = 0;
    static constexpr std::int32_t kFileFailed = -1;  ///< A file could not be opened, read, written or closed.
    static constexpr std::int32_t kDataDamaged = -3; ///< The source is no zlib stream, or wants a dictionary.
    static constexpr std::int32_t kOutOfMemory = -4;

    /// Compresses `source` into `target`, which is replaced. Returns one of the constants, or what zlib answered when
    /// it could not begin. Both files are closed whatever happens; a target that failed stays as far as it was written.
    /// No target is made for a source that cannot be opened, and none that is the source itself.
    [[nodiscard]] std::int32_t CompressFile(const std::wstring& source, const std::wstring& target);

    /// Takes a compressed file apart likewise. A source that ends too early gives `kDone` and what it held.
    [[nodiscard]] std::int32_t DecompressFile(const std::wstring& source, const std::wstring& target);
};

} // namespace Kestrona::DataCompressor
