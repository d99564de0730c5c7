// Implements: DataCompressor.
#include "platform/deflate.h"
#include "platform/files.h"

#include <kestrona/data_compressor.h>

namespace Kestrona::DataCompressor {

namespace {

static_assert(DataCompressor::kDone == Platform::kDeflateDone &&
              DataCompressor::kFileFailed == Platform::kDeflateFileFailed &&
              DataCompressor::kDataDamaged == Platform::kDeflateDataDamaged &&
              DataCompressor::kOutOfMemory == Platform::kDeflateOutOfMemory);

// The target is opened only once the source is known to be there and to be another file: opening empties it.
template <typename Convert>
std::int32_t ConvertFile(const std::wstring& source, const std::wstring& target, Convert convert) {
    const Platform::FileHandle in(Platform::OpenFile(source, "rb"));
    if (in == nullptr || Platform::IsSameFile(source, target)) {
        return DataCompressor::kFileFailed;
    }
    Platform::FileHandle out(Platform::OpenFile(target, "wb"));
    if (out == nullptr) {
        return DataCompressor::kFileFailed;
    }
    const std::int32_t result = convert(in.get(), out.get());
    const bool is_closed = std::fclose(out.release()) == 0;
    return result == DataCompressor::kDone && !is_closed ? DataCompressor::kFileFailed : result;
}

} // namespace

std::int32_t DataCompressor::CompressFile(const std::wstring& source, const std::wstring& target) {
    return ConvertFile(source, target, Platform::DeflateFile);
}

std::int32_t DataCompressor::DecompressFile(const std::wstring& source, const std::wstring& target) {
    return ConvertFile(source, target, Platform::InflateFile);
}

} // namespace Kestrona::DataCompressor
