#pragma once

#include <kestrona/data_extraction.h>

#include <string>
#include <utility>
#include <vector>

namespace Kestrona::Testing {

// Runs every operation of the reader on a file, which may hold anything. Returns the number of characters that came of
// it.
inline std::size_t WalkSnapshot(Data::MemoryResident::MemoryResidentData& store, const std::wstring& path) {
    DataExtraction::DataExtractReader reader(store, nullptr);
    DataExtraction::ExtractionSummary summary;
    std::size_t characters = 0;
    const auto count = [&characters](const DataExtraction::ExtractedRows& rows) {
        for (const auto& row : rows) {
            for (const auto& [name, text] : row) {
                characters += name.size() + text.size();
            }
        }
    };
    (void)reader.IsUncompressedDataExtractionFile(path);
    reader.ReadSummaryDataFromFile(path, summary);
    reader.ReadCompiledTableDefinition(path);
    for (const auto& block : summary.Tables) {
        const std::wstring& table = block.get_Name();
        const std::wstring field = store.GetColumnName(store.FindFormatByName(table.c_str()), 0);
        std::wstring other;
        (void)reader.GetAncillaryTable(table, field, &other);
        try {
            count(reader.GetTableDataFromFile(path, table, block.get_DataOffset(), summary));
            count(reader.GetTableDataFromFile(path, table, summary, {{field, false}, {L"Number", true}}, false));
            count(reader.GetTableDataFromFile(path, table, summary, {}, true));
            characters += reader.ReadFieldDataFromFile(path, table, L"2", block.get_DataOffset(), -1).size();
        } catch (const wchar_t* text) { // a reference that leads nowhere
            characters += std::wstring(text).size();
        }
    }
    std::wstring table;
    std::wstring field;
    reader.FindClassification(L"DATABASE", table, field);
    return characters + table.size() + field.size();
}

} // namespace Kestrona::Testing
