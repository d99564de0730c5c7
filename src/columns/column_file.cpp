#include "columns/column_file.h"

#include "platform/file_reading.h"

#include <kestrona/unicode.h>

#include <algorithm>
#include <bit>
#include <cassert>
#include <span>
#include <string_view>

namespace Kestrona::Data::MemoryResident {

namespace {

static_assert(std::endian::native == std::endian::little, "blocks are written as the values lie in memory");

// Values read in one step. Storage grows by as much, so a false count costs no more than this.
constexpr std::size_t kChunk = std::size_t{1} << 16;
// Bytes of texts that are gathered before they are written.
constexpr std::size_t kWriteBuffer = std::size_t{1} << 16;

// Appends up to `count` elements, fewer where the file ends.
template <typename Container>
void ReadElements(std::FILE* file, std::size_t count, Container& elements) {
    while (count > 0) {
        const std::size_t before = elements.size();
        const std::size_t wanted = std::min(count, kChunk);
        elements.resize(before + wanted);
        const std::size_t got = std::fread(elements.data() + before, sizeof(elements[0]), wanted, file);
        elements.resize(before + got);
        if (got < wanted) {
            return;
        }
        count -= got;
    }
}

void AppendBytes(std::string& buffer, const void* data, std::size_t size) {
    buffer.append(static_cast<const char*>(data), size);
}

void AppendCount(std::string& buffer, std::size_t count) {
    assert(count <= std::size_t{0x7FFFFFFF});
    const auto word = static_cast<std::int32_t>(count);
    AppendBytes(buffer, &word, sizeof word);
}

} // namespace

std::int32_t ReadCount(std::FILE* file) {
    std::int32_t count = 0;
    return std::fread(&count, sizeof count, 1, file) == 1 ? std::max(count, 0) : 0;
}

template <typename T>
void WriteNumbers(std::FILE* file, const std::vector<T>& values) {
    const auto count = static_cast<std::int32_t>(values.size());
    std::fwrite(&count, sizeof count, 1, file);
    if (!values.empty()) {
        std::fwrite(values.data(), sizeof(T), values.size(), file);
    }
}

template <typename T>
std::vector<T> ReadNumbers(std::FILE* file, std::size_t limit) {
    const auto count = static_cast<std::size_t>(ReadCount(file));
    std::vector<T> values;
    if (count > kChunk) {
        values.reserve(std::min(count, Platform::BytesLeft(file) / sizeof(T)));
    }
    ReadElements(file, count, values);
    if (values.size() > limit) {
        values.resize(limit);
    }
    return values;
}

void WriteTexts(std::FILE* file, const std::vector<std::wstring>& texts) {
    std::string buffer;
    AppendCount(buffer, texts.size());
    for (const std::wstring& text : texts) {
        const std::u16string units = ToUtf16(text);
        AppendCount(buffer, units.size());
        AppendBytes(buffer, units.data(), units.size() * sizeof(char16_t));
        if (buffer.size() >= kWriteBuffer) {
            std::fwrite(buffer.data(), 1, buffer.size(), file);
            buffer.clear();
        }
    }
    std::fwrite(buffer.data(), 1, buffer.size(), file);
}

bool ReadText(std::FILE* file, std::wstring& text) {
    std::int32_t length = 0;
    if (std::fread(&length, sizeof length, 1, file) != 1) {
        return false;
    }
    std::u16string units;
    const auto count = static_cast<std::size_t>(std::max(length, 0));
    ReadElements(file, count, units);
    if (units.size() < count) {
        return false;
    }
    const std::u16string_view all = units;
    text = FromUtf16(all.substr(0, all.find(u'\0')));
    return true;
}

template void WriteNumbers(std::FILE*, const std::vector<double>&);
template void WriteNumbers(std::FILE*, const std::vector<char>&);
template void WriteNumbers(std::FILE*, const std::vector<std::int32_t>&);
template std::vector<double> ReadNumbers(std::FILE*, std::size_t);
template std::vector<char> ReadNumbers(std::FILE*, std::size_t);
template std::vector<std::int32_t> ReadNumbers(std::FILE*, std::size_t);

} // namespace Kestrona::Data::MemoryResident
