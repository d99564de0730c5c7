// Looks into a snapshot without loading it as working data: extract SNAPSHOT lists its tables, extract SNAPSHOT TABLE
// the records of one. Needs the library alone, and no definition: the snapshot holds it. What is calculated is not in
// it.

#include <kestrona/kestrona.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>

namespace {

using Kestrona::DataExtraction::DataExtractReader;
using Kestrona::DataExtraction::ExtractionSummary;

std::string Utf8(const std::wstring& text) {
    return Kestrona::ToUtf8(text);
}

void ListTables(const ExtractionSummary& summary) {
    std::printf("written by kestrona %s\n", Utf8(summary.Version).c_str());
    for (const auto& table : summary.Tables) {
        const std::string dataset = table.get_DataSetName().empty() ? "" : " (" + Utf8(table.get_DataSetName()) + ")";
        std::printf("%s%s: %d records, %d fields\n", Utf8(table.get_Name()).c_str(), dataset.c_str(),
                    table.get_RowCount(), table.get_FieldCount());
    }
}

void PrintRecords(const Kestrona::DataExtraction::ExtractedRows& rows) {
    for (const auto& row : rows) {
        const char* separator = "";
        for (const auto& [field, text] : row) {
            std::printf("%s%s=%s", separator, Utf8(field).c_str(), Utf8(text).c_str());
            separator = ", ";
        }
        std::printf("\n");
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2 && argc != 3) {
        std::fputs("usage: extract SNAPSHOT [TABLE]\n", stderr);
        return 2;
    }
    const std::wstring file = Kestrona::FromUtf8(argv[1]);
    const std::unique_ptr<Kestrona::Data::MemoryResident::MemoryResidentData> store =
        Kestrona::Data::MemoryResident::CreateMemoryResidentData();
    DataExtractReader reader(*store, nullptr);
    if (!reader.IsUncompressedDataExtractionFile(file)) {
        std::fprintf(stderr, "extract: %s is no uncompressed snapshot\n", argv[1]);
        return 1;
    }
    ExtractionSummary summary;
    reader.ReadSummaryDataFromFile(file, summary);
    if (argc == 2) {
        ListTables(summary);
        return 0;
    }
    const std::wstring table = Kestrona::FromUtf8(argv[2]);
    if (std::ranges::none_of(summary.Tables, [&](const auto& block) { return block.get_Name() == table; })) {
        std::fprintf(stderr, "extract: %s has no table %s\n", argv[1], argv[2]);
        return 1;
    }
    reader.ReadCompiledTableDefinition(file);
    PrintRecords(reader.GetTableDataFromFile(file, table, summary, {}, true));
}
