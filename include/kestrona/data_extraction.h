#pragma once

#include <kestrona/export.h>
#include <kestrona/host_interfaces.h>
#include <kestrona/store.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

/// \file
/// Looking into a saved snapshot without loading it as working data.

namespace Kestrona::DataExtraction {

/// The bytes that a snapshot begins with; no terminator.
inline constexpr char kSnapshotMarker[] = "KestronaDataExtraction";
inline constexpr std::size_t kSnapshotMarkerSize = sizeof kSnapshotMarker - 1;

/// One table block of a snapshot: the records of a table, or of one dataset of it.
class KS_API TableExtractionSummary {
public:
    explicit TableExtractionSummary(int data_offset) : data_offset_(data_offset) {}

    /// Where the block begins in the file, in bytes.
    [[nodiscard]] int get_DataOffset() const { return data_offset_; }

    void set_DataOffset(int value) { data_offset_ = value; }

    [[nodiscard]] int get_FieldCount() const { return field_count_; }

    void set_FieldCount(int value) { field_count_ = value; }

    /// The number of records.
    [[nodiscard]] int get_RowCount() const { return row_count_; }

    void set_RowCount(int value) { row_count_ = value; }

    /// Bytes of the records, without names and counts.
    [[nodiscard]] int get_DataSize() const { return data_size_; }

    void set_DataSize(int value) { data_size_ = value; }

    [[nodiscard]] const std::wstring& get_Name() const { return name_; }

    void set_Name(std::wstring value) { name_ = std::move(value); }

    /// "" for a table without datasets.
    [[nodiscard]] const std::wstring& get_DataSetName() const { return data_set_name_; }

    void set_DataSetName(std::wstring value) { data_set_name_ = std::move(value); }

private:
    int data_offset_;
    int field_count_ = 0;
    int row_count_ = 0;
    int data_size_ = 0;
    std::wstring name_;
    std::wstring data_set_name_;
};

/// What the header and the directory of a snapshot tell.
struct ExtractionSummary {
    std::wstring Version;                       ///< Four numbers, joined with ".".
    std::int32_t HeaderValue = 0;               ///< The host's.
    std::int32_t DefinitionSize = 0;            ///< In bytes.
    std::array<std::uint8_t, 8> HeaderStamp{};  ///< The host's, as it stands in the file.
    std::vector<TableExtractionSummary> Tables; ///< In the order of the file.
};

/// For each record a list of (field name, text).
using ExtractedRows = std::vector<std::vector<std::pair<std::wstring, std::wstring>>>;

/// Reads snapshots into a store that the caller made for the purpose.
///
/// First `ReadSummaryDataFromFile`, which needs no schema, then `ReadCompiledTableDefinition` once, then any number of
/// reads. The store holds at most one block of each table; a later read replaces it. The reader keeps nothing of a
/// file.
///
/// A file that cannot be opened does nothing and reports nothing, one with another marker has no tables. A damaged file
/// gives what can be had from it; nothing is allocated for more than what the file holds. Compressed files are
/// decompressed by the caller (data_compressor.h).
class KS_API DataExtractReader {
public:
    /// Both are borrowed; `ole_servers` may be null.
    DataExtractReader(Data::MemoryResident::MemoryResidentData& store, IOleServerManager* ole_servers);

    /// Tells whether a file begins with the marker.
    [[nodiscard]] bool IsUncompressedDataExtractionFile(const std::wstring& file);
    /// The same for an open file, which is left behind the bytes read.
    [[nodiscard]] bool IsUncompressedDataExtractionFile(std::FILE* file);

    /// Reads header and directory, no column data.
    void ReadSummaryDataFromFile(const std::wstring& file, ExtractionSummary& summary);
    /// Fills the store's schema and makes its columns. Where the definition is damaged, which is reported, the store is
    /// left without formats.
    void ReadCompiledTableDefinition(const std::wstring& file);
    /// Loads the block at `offset` into `format`, in the place of whatever the format held. Takes at most 4096
    /// records more than the file has bytes.
    void ReadTableDataFromFile(const std::wstring& file, std::int32_t format, int offset);

    /// Returns one field of the block at `data_offset` as text, one element for each record. The table that a DATABASE
    /// field refers to is loaded from `reference_data_offset`. Empty where the store has no such table or field.
    ///
    /// Like the two `GetTableDataFromFile`, throws a text (`const wchar_t*`) when a reference names no table or field.
    [[nodiscard]] std::vector<std::wstring> ReadFieldDataFromFile(const std::wstring& file, const std::wstring& table,
                                                                  const std::wstring& field, int data_offset,
                                                                  int reference_data_offset);
    /// Returns all fields of the block at `offset`. Empty where the store has no such table.
    [[nodiscard]] ExtractedRows GetTableDataFromFile(const std::wstring& file, const std::wstring& table, int offset,
                                                     const ExtractionSummary& summary);
    /// Returns the records of every block of a table. With `all_fields` their display texts, else those of `fields`, in
    /// the order of the table: with true beside the name the display text, with false the stored value. A field called
    /// "Number" comes as "Id"; the name of a dataset comes last, as "dataset".
    [[nodiscard]] ExtractedRows GetTableDataFromFile(const std::wstring& file, const std::wstring& table,
                                                     const ExtractionSummary& summary,
                                                     const std::vector<std::pair<std::wstring, bool>>& fields,
                                                     bool all_fields);

    /// Finds the first field with a classification keyword. Both texts stay as they are when there is none.
    void FindClassification(const std::wstring& keyword, std::wstring& table, std::wstring& field);
    /// Stores the name of the table that a DATABASE field refers to. Returns false, with `*ancillary` as it was, for
    /// any other field.
    [[nodiscard]] bool GetAncillaryTable(const std::wstring& table, const std::wstring& field, std::wstring* ancillary);
    /// `KSDLL_ResetChecksum`.
    void ResetChecksum();

private:
    class Extraction;
    struct LoadedBlock;

    // The number of tables and that of matrices; 0 and 0, and nothing read, when the file has another marker.
    [[nodiscard]] std::pair<int, int> ReadFileHeader(std::FILE* file, ExtractionSummary& summary);
    void ReadTableSummaryDataFromFile(long file_size, int table_count, std::FILE* file,
                                      std::vector<TableExtractionSummary>& tables);
    [[nodiscard]] static std::wstring ReadFormatName(std::FILE* file);
    [[nodiscard]] static std::wstring ReadString(std::FILE* file);
    [[nodiscard]] static bool ReadBool(std::FILE* file);
    [[nodiscard]] static int ReadRowCount(std::FILE* file);
    [[nodiscard]] static int ReadFieldCount(std::FILE* file);
    static void ReadTableHeader(std::FILE* file);
    // Goes by name alone.
    [[nodiscard]] bool LookupTableAndFieldNames(const std::wstring& table, const std::wstring& field,
                                                std::int32_t* format, std::int32_t* field_number);
    // Goes by name or, for a field, by number, and accepts no field that the format does not have.
    [[nodiscard]] bool FindFormatAndField(const std::wstring& table, const std::wstring& field, std::int32_t* format,
                                          std::int32_t* field_number);
    [[nodiscard]] static bool GetDisplayStringFromStorageValue(double value, int type, std::wstring* text);
    [[nodiscard]] static bool GetRawDisplayStringFromStorageValue(double value, int type, std::wstring* text);

    [[nodiscard]] LoadedBlock LoadBlock(const std::wstring& file, std::int32_t format, int offset);

    Data::MemoryResident::MemoryResidentData& store_;
    IOleServerManager* ole_servers_;
};

} // namespace Kestrona::DataExtraction
