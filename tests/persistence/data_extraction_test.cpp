// The reader of snapshots beside a writer in another language, and damaged files.
#include "fixtures/program_output.h"
#include "fixtures/recording_services.h"
#include "fixtures/scratch_files.h"
#include "persistence/snapshot_walk.h"
#include "platform/locale_dates.h"

#include <kestrona/dates.h>
#include <kestrona/matrices.h>
#include <kestrona/record_search.h>
#include <kestrona/table_definition_stream.h>
#include <kestrona/table_storage.h>
#include <kestrona/unicode.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/resource.h>

#include <array>
#include <cstring>
#include <memory>

namespace Kestrona::DataExtraction {

namespace {

using Json = nlohmann::json;

std::wstring Wide(const Json& text) {
    return FromUtf8(text.get<std::string>());
}

ExtractedRows RowsOf(const Json& json) {
    ExtractedRows rows;
    for (const Json& row : json) {
        auto& cells = rows.emplace_back();
        for (const Json& cell : row) {
            cells.emplace_back(Wide(cell[0]), Wide(cell[1]));
        }
    }
    return rows;
}

// A snapshot that another program wrote, what that program expects of it, and an empty store.
class Snapshot : public testing::Test {
protected:
    Snapshot() {
        messages.texts[0x69a1] = L"h";
        messages.texts[0x69a3] = L"min";
        Platform::OverrideLocaleDates({DateLayout::YearMonthDay, 10, L":"});
        const std::string script =
            "python3 '" KESTRONA_SOURCE_DIR "/tests/oracles/snapshot.py' write '" + folder.Path("file") + "'";
        expected = Json::parse(Fixtures::OutputOf(script), nullptr, false);
        bytes = folder.Read("file");
    }

    ~Snapshot() override { Platform::ForgetLocaleDates(); }

    void SetUp() override {
        ASSERT_TRUE(expected.is_object()) << "python3 writes the file; scripts/bootstrap installs it";
    }

    void Save(const std::string& content) { folder.Write("file", content); }

    template <typename Write>
    static std::string Written(const Write& write) {
        const Testing::File out(std::tmpfile());
        write(out.get());
        return Testing::BytesOf(out.get());
    }

    Fixtures::FreshProcess process;
    Fixtures::RecordingMessages& messages = Fixtures::InstallRecordingMessages();
    Testing::ScratchFolder folder;
    std::wstring path = folder.WidePath("file");
    Json expected;
    std::string bytes;
    std::unique_ptr<Data::MemoryResident::MemoryResidentData> store = Data::MemoryResident::CreateMemoryResidentData();
    DataExtractReader reader{*store, nullptr};
    ExtractionSummary summary;
};

TEST_F(Snapshot, HeaderAndDirectoryAreWhatWasWritten) {
    reader.ReadSummaryDataFromFile(path, summary);
    EXPECT_EQ(summary.Version, Wide(expected["version"]));
    EXPECT_EQ(summary.HeaderValue, expected["header_value"].get<int>());
    EXPECT_EQ(std::memcmp(summary.HeaderStamp.data(), "stamp\0\xff!", 8), 0);
    ASSERT_EQ(summary.Tables.size(), expected["blocks"].size());
    for (std::size_t i = 0; i < summary.Tables.size(); ++i) {
        const TableExtractionSummary& table = summary.Tables[i];
        const Json found{{"offset", table.get_DataOffset()},
                         {"table", ToUtf8(table.get_Name())},
                         {"dataset", ToUtf8(table.get_DataSetName())},
                         {"fields", table.get_FieldCount()},
                         {"records", table.get_RowCount()},
                         {"size", table.get_DataSize()}};
        EXPECT_EQ(found, expected["blocks"][i]);
    }
}

TEST_F(Snapshot, RowsAreWhatTheirWriterExpects) {
    reader.ReadSummaryDataFromFile(path, summary);
    reader.ReadCompiledTableDefinition(path);
    ASSERT_EQ(messages.boxes.size(), 0U);
    EXPECT_GE(GetTotalMatrixCount(), 128);
    const int plan = summary.Tables.at(1).get_DataOffset();
    const int archive = summary.Tables.at(2).get_DataOffset();
    EXPECT_EQ(reader.GetTableDataFromFile(path, L"Orders", plan, summary), RowsOf(expected["plan"]));
    EXPECT_EQ(reader.GetTableDataFromFile(path, L"Orders", archive, summary), RowsOf(expected["archive"]));
    EXPECT_EQ(reader.GetTableDataFromFile(path, L"Orders", plan, summary), RowsOf(expected["plan"])) << "once more";
    EXPECT_EQ(reader.GetTableDataFromFile(path, L"Orders", summary, {}, true), RowsOf(expected["all"]));

    std::vector<std::pair<std::wstring, bool>> as_stored{{L"None", true}};
    for (const Json& name : expected["stored_fields"]) {
        as_stored.emplace_back(Wide(name), false);
    }
    EXPECT_EQ(reader.GetTableDataFromFile(path, L"Orders", summary, as_stored, false), RowsOf(expected["stored"]));

    const auto rows = RowsOf(expected["plan"]);
    for (std::size_t field = 0; field < rows.front().size(); ++field) {
        std::vector<std::wstring> column;
        for (const auto& row : rows) {
            column.push_back(row[field].second);
        }
        const auto name = rows.front()[field].first;
        const int target = name == L"Missing" ? -1 : summary.Tables.front().get_DataOffset();
        EXPECT_EQ(reader.ReadFieldDataFromFile(path, L"Orders", name, plan, target), column) << ToUtf8(name);
    }
}

TEST_F(Snapshot, QuestionsAboutTheDefinitionAreAnswered) {
    reader.ReadCompiledTableDefinition(path);
    std::wstring table = L"?";
    std::wstring field = L"?";
    reader.FindClassification(L"NOWHERE", table, field);
    EXPECT_EQ(table + field, L"??");
    reader.FindClassification(L"OVERRIDE", table, field);
    EXPECT_EQ(table + L'.' + field, L"Orders.Fixed");
    std::wstring other = L"?";
    EXPECT_FALSE(reader.GetAncillaryTable(L"Orders", L"Parent", &other));
    EXPECT_FALSE(reader.GetAncillaryTable(L"Orders", L"99", &other));
    EXPECT_EQ(other, L"?");
    EXPECT_TRUE(reader.GetAncillaryTable(L"Orders", L"Pace", &other));
    EXPECT_EQ(other, L"Machines");
    EXPECT_EQ(reader.ReadFieldDataFromFile(path, L"Orders", L"99", 0, 0).size(), 0U);
    EXPECT_EQ(reader.GetTableDataFromFile(path, L"Nowhere", 0, summary).size(), 0U);
}

TEST_F(Snapshot, ReferencesThatLeadNowhereThrowTheirText) {
    const std::array<std::array<const wchar_t*, 3>, 3> cases{{{L"Pace", L"DATABASE(Machines(Length))", L"DATABASE"},
                                                              {L"Pace", L"DATABASE(Orders", L"DATABASE"},
                                                              {L"Parent", L"FAMILY(Length)", L"FAMILY"}}};
    for (const auto& [field, classification, keyword] : cases) {
        reader.ReadCompiledTableDefinition(path);
        reader.ReadSummaryDataFromFile(path, summary);
        const std::int32_t number = KSDLL_FindField(*store, 1, field, nullptr);
        store->SetDbClassString(1, number, classification);
        const auto read = [&, &column = field](bool display) -> std::wstring {
            try {
                return std::to_wstring(
                    reader.GetTableDataFromFile(path, L"Orders", summary, {{column, display}}, false).size());
            } catch (const wchar_t* text) {
                return text;
            }
        };
        EXPECT_EQ(read(true),
                  L"Unrecognised table or field name referred to by a " + std::wstring(keyword) + L" classification");
        EXPECT_EQ(read(false), std::to_wstring(expected["all"].size()));
    }
}

// Once in the store, the plant is written again as it was.
TEST_F(Snapshot, DefinitionAndBlocksAreWrittenBackByteForByte) {
    reader.ReadSummaryDataFromFile(path, summary);
    reader.ReadCompiledTableDefinition(path);
    const std::string definition = Written([&](std::FILE* out) {
        reader.ResetChecksum();
        WriteTableDefinitionToStream(*store, L"opaque", L"", out, nullptr);
    });
    EXPECT_TRUE(definition == bytes.substr(62, static_cast<std::size_t>(summary.DefinitionSize)));
    for (const TableExtractionSummary& table : summary.Tables) {
        const std::int32_t format = store->FindFormatByName(table.get_Name().c_str());
        reader.ReadTableDataFromFile(path, format, table.get_DataOffset());
        const std::string block =
            Written([&](std::FILE* out) { Common::TableStorage::WriteTableData(*store, format, out); });
        EXPECT_NE(bytes.find(block, static_cast<std::size_t>(table.get_DataOffset())), std::string::npos)
            << ToUtf8(table.get_Name());
        EXPECT_EQ(block.size(), static_cast<std::size_t>(table.get_DataSize()) + 4);
    }
}

TEST_F(Snapshot, WhatIsNoSnapshotHasNothing) {
    for (const std::string& content :
         {std::string(), bytes.substr(0, 21), "kestronaDataExtraction" + bytes.substr(22)}) {
        Save(content);
        EXPECT_FALSE(reader.IsUncompressedDataExtractionFile(path));
        summary.Tables.emplace_back(1);
        reader.ReadSummaryDataFromFile(path, summary);
        EXPECT_EQ(summary.Tables.size(), 0U);
        reader.ReadCompiledTableDefinition(path);
        EXPECT_EQ(store->GetFormatCount(), 0);
    }
    EXPECT_FALSE(reader.IsUncompressedDataExtractionFile(path + L".none"));
    EXPECT_EQ(messages.boxes.size(), 0U);
}

TEST_F(Snapshot, DamageAnywhereIsSurvivedWithLittleMemory) {
#ifdef __SANITIZE_ADDRESS__               // keeps freed memory for a while, and takes its time
    constexpr long kMostGrowth = 1 << 20; // KiB
    constexpr std::size_t kStep = 3;
#else
    constexpr long kMostGrowth = 1 << 19;
    constexpr std::size_t kStep = 1;
#endif
    constexpr std::array kFlips{0xFF, 0x01, 0x80};
    const auto used = [] {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss;
    };
    const std::size_t sound = Testing::WalkSnapshot(*store, path);
    ASSERT_GT(sound, 2000U);
    const long before = used();
    for (std::size_t at = 0; at < bytes.size(); at += kStep) {
        std::string damaged = bytes;
        damaged[at] = static_cast<char>(damaged[at] ^ kFlips[at / kStep % kFlips.size()]);
        Save(damaged);
        Testing::WalkSnapshot(*store, path);
        Save(bytes.substr(0, at));
        Testing::WalkSnapshot(*store, path);
        messages.boxes.clear();
    }
    EXPECT_LT(used() - before, kMostGrowth);
    Save(bytes);
    EXPECT_EQ(Testing::WalkSnapshot(*store, path), sound);
}

} // namespace

} // namespace Kestrona::DataExtraction
