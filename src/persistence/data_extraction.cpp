// Implements: the definition and the tables of a snapshot, and the questions about its definition.
#include "persistence/data_extraction.h"

#include "persistence/matrix_storage.h"
#include "persistence/shared_columns.h"
#include "platform/file_reading.h"
#include "platform/files.h"

#include <kestrona/binary_strings.h>
#include <kestrona/classes.h>
#include <kestrona/classification_parsers.h>
#include <kestrona/classification_readers.h>
#include <kestrona/data_extraction.h>
#include <kestrona/definition_load.h>
#include <kestrona/matrices.h>
#include <kestrona/process.h>
#include <kestrona/record_search.h>
#include <kestrona/records.h>
#include <kestrona/table_definition_stream.h>
#include <kestrona/table_storage.h>

#include <algorithm>

namespace Kestrona::DataExtraction {

using Configuration::Parsers::ClassificationMatch;
using Configuration::Parsers::ClassificationParser_DATABASE;
using Data::MemoryResident::MemoryResidentData;

namespace {

std::int32_t FieldByName(MemoryResidentData& store, std::int32_t format, const std::wstring& name) {
    for (std::int32_t field = 0; field < store.GetDbFields(format); ++field) {
        if (store.GetColumnName(format, field) == name) {
            return field;
        }
    }
    return -1;
}

} // namespace

DataExtractReader::DataExtractReader(MemoryResidentData& store, IOleServerManager* ole_servers)
    : store_(store),
      ole_servers_(ole_servers) {}

void DataExtractReader::ReadCompiledTableDefinition(const std::wstring& file) {
    const Platform::FileHandle opened(Platform::OpenFile(file, "rb"));
    if (opened == nullptr || !IsUncompressedDataExtractionFile(opened.get())) {
        return;
    }
    ExtractionSummary summary;
    const int matrices = ReadFileHeader(opened.get(), summary).second;
    std::fseek(opened.get(), sizeof(std::int32_t), SEEK_CUR); // the definition's size
    ResetChecksum();
    if (!ReadTableDefinitionFromStream(store_, opened.get(), nullptr, true, true, true, file, L"", ole_servers_)) {
        KSDLL_InitializeFormats(store_);
        return;
    }
    Persistence::FindSharedColumns(store_);
    KSDLL_CreateDataArrays(store_);
    // A false number must not use up the ids of the process.
    KSDLL_ReserveMatrixIds(std::min(matrices, Persistence::kMaxFileMatrixIds));
}

void DataExtractReader::ReadTableDataFromFile(const std::wstring& file, std::int32_t format, int offset) {
    (void)LoadBlock(file, format, offset);
}

DataExtractReader::LoadedBlock DataExtractReader::LoadBlock(const std::wstring& file, std::int32_t format, int offset) {
    const Platform::FileHandle opened(Platform::OpenFile(file, "rb"));
    if (opened == nullptr || store_.GetFormatInfo(format) == nullptr) {
        return {};
    }
    KSDLL_Clear(store_, format);
    LoadedBlock block{.is_open = true, .file_size = Platform::BytesLeft(opened.get())};
    if (offset >= 0 && std::fseek(opened.get(), offset, SEEK_SET) == 0) {
        ReadTableHeader(opened.get());
        Common::TableStorage::ReadTableData(store_, format, opened.get());
        block.size = static_cast<std::size_t>(std::max(std::ftell(opened.get()) - offset, 0L));
    }
    const std::size_t most = block.file_size + kFreeRecords;
    if (static_cast<std::size_t>(store_.GetCurrentDbSize(format)) > most) {
        store_.SetCurrentDbSize(format, static_cast<std::int32_t>(most));
    }
    return block;
}

bool DataExtractReader::LookupTableAndFieldNames(const std::wstring& table, const std::wstring& field,
                                                 std::int32_t* format, std::int32_t* field_number) {
    *format = KSDLL_FindFormatImpl(store_, table.c_str());
    *field_number = *format >= 0 ? FieldByName(store_, *format, field) : -1;
    return *field_number >= 0;
}

bool DataExtractReader::FindFormatAndField(const std::wstring& table, const std::wstring& field, std::int32_t* format,
                                           std::int32_t* field_number) {
    *format = KSDLL_FindFormatImpl(store_, table.c_str());
    *field_number = *format >= 0 ? KSDLL_FindField(store_, *format, field.c_str(), nullptr) : -1;
    return *field_number >= 0 && *field_number < store_.GetDbFields(*format);
}

void DataExtractReader::FindClassification(const std::wstring& keyword, std::wstring& table, std::wstring& field) {
    const TableColumn found = KSDLL_FindClassificationInstance(store_, keyword);
    if (found.format >= 0 && found.field >= 0) {
        const wchar_t* const name = store_.GetDbName(found.format);
        table = name != nullptr ? name : L"";
        field = GetDialogFieldName(store_, found.format, found.field);
    }
}

bool DataExtractReader::GetAncillaryTable(const std::wstring& table, const std::wstring& field,
                                          std::wstring* ancillary) {
    const ClassificationParser_DATABASE parser;
    std::int32_t format = -1;
    std::int32_t number = -1;
    if (!FindFormatAndField(table, field, &format, &number) ||
        !store_.ClassDefined(format, number, Classes::kDatabase)) {
        return false;
    }
    const ClassificationMatch match = parser.MatchFirst(store_.GetDbClassString(format, number));
    if (match.Matched) {
        *ancillary = match.Values.at(parser.get_TableNameKey());
    }
    return match.Matched;
}

void DataExtractReader::ResetChecksum() {
    KSDLL_ResetChecksum();
}

} // namespace Kestrona::DataExtraction
