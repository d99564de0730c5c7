// Implements: the header, the directory and the heads of the table blocks of a snapshot.
//
//   0   marker, 22 bytes                       50  int32 number of tables
//   22  int32 header value                     54  int32 number of matrix ids
//   26  header stamp, 8 bytes                  58  int32 size of the definition
//   34  four int32: the version                62  the definition
//
// Then the directory, one int32 offset for each table block, ascending, and the blocks. A block is a text (the format's
// name), int32 number of fields, one byte that tells whether a second text follows (the dataset's name), and table
// data. A text is int32 length in UTF-16 code units and 2 bytes for each unit.
#include "platform/file_reading.h"
#include "platform/files.h"

#include <kestrona/data_extraction.h>
#include <kestrona/unicode.h>

#include <algorithm>
#include <array>
#include <bit>
#include <limits>
#include <string_view>

namespace Kestrona::DataExtraction {

namespace {

static_assert(std::endian::native == std::endian::little, "numbers are read as they lie in memory");

// 0 where the file ends.
std::int32_t ReadNumber(std::FILE* file) {
    std::int32_t number = 0;
    return std::fread(&number, sizeof number, 1, file) == 1 ? number : 0;
}

// Passes over `size` bytes. False when the file does not hold them.
bool Skip(std::FILE* file, std::int32_t size) {
    return size >= 0 && static_cast<std::size_t>(size) <= Platform::BytesLeft(file) &&
           std::fseek(file, size, SEEK_CUR) == 0;
}

int ToInt(long value) {
    return static_cast<int>(std::clamp(value, 0L, static_cast<long>(std::numeric_limits<int>::max())));
}

std::vector<std::int32_t> ReadOffsets(std::FILE* file, int count) {
    if (count <= 0 || static_cast<std::size_t>(count) > Platform::BytesLeft(file) / sizeof(std::int32_t)) {
        return {};
    }
    std::vector<std::int32_t> offsets(static_cast<std::size_t>(count));
    offsets.resize(std::fread(offsets.data(), sizeof(std::int32_t), offsets.size(), file));
    return offsets;
}

} // namespace

bool DataExtractReader::IsUncompressedDataExtractionFile(const std::wstring& file) {
    const Platform::FileHandle opened(Platform::OpenFile(file, "rb"));
    return opened != nullptr && IsUncompressedDataExtractionFile(opened.get());
}

bool DataExtractReader::IsUncompressedDataExtractionFile(std::FILE* file) {
    std::array<char, kSnapshotMarkerSize> bytes{};
    return std::fseek(file, 0, SEEK_SET) == 0 && std::fread(bytes.data(), bytes.size(), 1, file) == 1 &&
           std::string_view(bytes.data(), bytes.size()) == kSnapshotMarker;
}

std::pair<int, int> DataExtractReader::ReadFileHeader(std::FILE* file, ExtractionSummary& summary) {
    constexpr int kVersionParts = 4;
    if (!IsUncompressedDataExtractionFile(file)) {
        return {0, 0};
    }
    summary.HeaderValue = ReadNumber(file);
    if (std::fread(summary.HeaderStamp.data(), summary.HeaderStamp.size(), 1, file) != 1) {
        summary.HeaderStamp.fill(0);
    }
    summary.Version.clear();
    for (int part = 0; part < kVersionParts; ++part) {
        summary.Version += (part > 0 ? L"." : L"") + std::to_wstring(ReadNumber(file));
    }
    const int tables = ReadNumber(file);
    return {tables, ReadNumber(file)};
}

void DataExtractReader::ReadSummaryDataFromFile(const std::wstring& file, ExtractionSummary& summary) {
    const Platform::FileHandle opened(Platform::OpenFile(file, "rb"));
    if (opened == nullptr) {
        return;
    }
    summary = {};
    const auto file_size = static_cast<long>(Platform::BytesOf(opened.get()));
    if (!IsUncompressedDataExtractionFile(opened.get())) {
        return;
    }
    const int tables = ReadFileHeader(opened.get(), summary).first;
    summary.DefinitionSize = ReadNumber(opened.get());
    if (Skip(opened.get(), summary.DefinitionSize)) {
        ReadTableSummaryDataFromFile(file_size, tables, opened.get(), summary.Tables);
    }
}

// Blocks do not overlap in a sound file, so their heads together are no longer than the file. The walk through a
// damaged directory, in which many offsets lead to one long name, ends when as many bytes of heads as the file has were
// read.
void DataExtractReader::ReadTableSummaryDataFromFile(long file_size, int table_count, std::FILE* file,
                                                     std::vector<TableExtractionSummary>& tables) {
    const std::vector<std::int32_t> offsets = ReadOffsets(file, table_count);
    const long directory_end = std::ftell(file);
    long heads_left = file_size;
    for (std::size_t i = 0; i < offsets.size(); ++i) {
        TableExtractionSummary& table = tables.emplace_back(offsets[i]);
        const bool ascends = i == 0 || offsets[i] > offsets[i - 1];
        if (!ascends || offsets[i] < directory_end || offsets[i] >= file_size || heads_left <= 0) {
            continue;
        }
        std::fseek(file, offsets[i], SEEK_SET);
        table.set_Name(ReadFormatName(file));
        table.set_FieldCount(ReadFieldCount(file));
        table.set_DataSetName(ReadBool(file) ? ReadString(file) : std::wstring());
        table.set_RowCount(ReadRowCount(file));
        const long end = i + 1 < offsets.size() ? std::min(long{offsets[i + 1]}, file_size) : file_size;
        table.set_DataSize(ToInt(end - std::ftell(file)));
        heads_left -= std::ftell(file) - offsets[i];
    }
}

std::wstring DataExtractReader::ReadFormatName(std::FILE* file) {
    return ReadString(file);
}

std::wstring DataExtractReader::ReadString(std::FILE* file) {
    const std::int32_t length = ReadNumber(file);
    if (length <= 0 || static_cast<std::size_t>(length) > Platform::BytesLeft(file) / sizeof(char16_t)) {
        return {};
    }
    std::u16string units(static_cast<std::size_t>(length), u'\0');
    units.resize(std::fread(units.data(), sizeof(char16_t), units.size(), file));
    units.resize(std::min(units.find(u'\0'), units.size()));
    return FromUtf16(units);
}

bool DataExtractReader::ReadBool(std::FILE* file) {
    const int byte = std::fgetc(file);
    return byte != EOF && byte != 0;
}

// A count that no format can have is 0, as it is where the block is loaded.
int DataExtractReader::ReadRowCount(std::FILE* file) {
    const std::int32_t count = ReadNumber(file);
    return count < kFirstScratchRecord ? std::max(count, 0) : 0;
}

int DataExtractReader::ReadFieldCount(std::FILE* file) {
    return std::max(ReadNumber(file), 0);
}

void DataExtractReader::ReadTableHeader(std::FILE* file) {
    (void)ReadFormatName(file);
    (void)ReadFieldCount(file);
    if (ReadBool(file)) {
        (void)ReadString(file);
    }
}

} // namespace Kestrona::DataExtraction
