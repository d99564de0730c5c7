// Whole compiled files: written and read by the library, and by a second reader and writer.
#include "configuration/compiled/compiled_fixture.h"
#include "configuration/compiled/definition_description.h"
#include "configuration/compiled/file_body.h"
#include "configuration/definition_fixture.h"
#include "platform/files.h"

#include <kestrona/binary_strings.h>
#include <kestrona/compiled_configuration.h>
#include <kestrona/definition_load.h>
#include <kestrona/host/default_host.h>
#include <kestrona/host_settings.h>
#include <kestrona/process.h>
#include <kestrona/table_definition_stream.h>
#include <kestrona/unicode.h>

#include <algorithm>
#include <limits>
#include <set>
#include <tuple>
#include <utility>

namespace Kestrona::Configuration::Compiled {

namespace {

using ConfigurationTest::CompiledFixture;
using ConfigurationTest::DescribeFormats;
using ConfigurationTest::DescribeSubstitutions;
using ConfigurationTest::Differences;
using ConfigurationTest::TakeSnapshot;
using Data::MemoryResident::CreateMemoryResidentData;
using Data::MemoryResident::MemoryResidentData;
using nlohmann::json;

constexpr const char* kPlant = "examples/plant/plant.ksdef";

class CompiledFile : public CompiledFixture {
protected:
    // A small definition as the second writer takes it.
    json SmallFile() {
        const auto store = CreateMemoryResidentData();
        const std::int32_t format =
            Fixtures::AddFormat(*store, L"Gr\u00f6\u00dfen",
                                {Fixtures::Number(L"Key"), Fixtures::Text(L"\u20ac", 8), Fixtures::Toggle(L"")});
        store->SetDbExtension(format, KSDLL_AddText(L"siz"));
        store->SetDefaultDatasetName(format, KSDLL_AddText(L"Default"));
        store->SetDbMinLength(format, 3);
        store->SetUserMaxRecords(format, 70);
        store->SetDbDialogLevel(format, 1, kHiddenDialogLevel);
        store->SetDbReadOnly(format, 2, static_cast<ReadOnlyType>(200));
        for (std::int32_t field = 0; field < 3; ++field) { // as the resolution leaves them
            store->SetDbData(format, field, DataSlot::kLookupFormat, -1);
            store->SetDbData(format, field, DataSlot::kLookupField, -1);
        }
        return {{"wide", true},
                {"banner", "Made elsewhere\n\r"},
                {"version", {15, 0}},
                {"type", 9},
                {"identity", {"one", "two"}},
                {"flag", 1},
                {"host", {"A", "B"}},
                {"help", "sizes.hlp"},
                {"opaque", {"", "dropped"}},
                {"formats", DescribeFormats(*store)},
                {"substitutions", json::array({{"a", "b"}, {"", "c"}})}};
    }

    // Writes the file and reads it: the boxes, or what differs from the file.
    std::wstring ReadEncoded(const json& file) {
        messages_->boxes.clear();
        first_text_.clear();
        Encode(file);
        const auto store = CreateMemoryResidentData();
        if (!Read(*store)) {
            return Boxes().empty() ? L"fails without a word" : Boxes();
        }
        return Compare(*store, file);
    }

    std::wstring Compare(MemoryResidentData& store, const json& file) const {
        std::wstring differences = DescribeFormats(store) == file["formats"] ? L"" : L"formats ";
        differences += DescribeSubstitutions(store) == file["substitutions"] ? L"" : L"substitutions ";
        differences += ToUtf8(first_text_) + "," + ToUtf8(second_text_) == "A,B" ? L"" : L"host texts ";
        return differences + (Boxes().empty() ? L"" : L"boxes ");
    }

    // An empty store with the string tables of another one, which no stream holds.
    static std::unique_ptr<MemoryResidentData> StoreWithTablesOf(MemoryResidentData& other) {
        auto store = CreateMemoryResidentData();
        store->CreateTablePointer();
        for (std::int32_t table = 0; other.GetTableName(table) != nullptr; ++table) {
            store->CreateTableFields(table);
            store->SetTableName(table, KSDLL_AddText(other.GetTableName(table)));
            store->SetTableFields(table, other.GetTableFields(table));
            for (std::int32_t i = 0; i < other.GetTableFields(table); ++i) {
                store->SetTableText(table, i, KSDLL_AddText(other.GetTableText(table, i)));
                store->SetTableValue(table, i, other.GetTableValue(table, i));
            }
        }
        return store;
    }

    static std::set<std::wstring> Children(MemoryResidentData& store) {
        std::set<std::wstring> pairs;
        for (std::int32_t parent = 0; parent < store.GetFormatCount(); ++parent) {
            for (std::int32_t child = 0; child < store.GetFormatCount(); ++child) {
                if (store.IsFormatChildOfParent(parent, child)) {
                    pairs.insert(store.GetDbName(parent) + (L"/" + std::wstring(store.GetDbName(child))));
                }
            }
        }
        return pairs;
    }
};

// Stores that hold the same, links and labels of the resolution included.
void ExpectAlike(MemoryResidentData& left, MemoryResidentData& right) {
    EXPECT_EQ(json::diff(DescribeFormats(left), DescribeFormats(right)), json::array());
    EXPECT_EQ(Differences(TakeSnapshot(left), TakeSnapshot(right)), L"");
    EXPECT_EQ(Differences(TakeSnapshot(right), TakeSnapshot(left)), L"");
    EXPECT_EQ(DescribeSubstitutions(left), DescribeSubstitutions(right));
}

TEST_F(CompiledFile, HoldsADefinitionForBothReadersAndComesBack) {
    for (const char* name : {kPlant, "examples/adventureworks/adventureworks.ksdef"}) {
        const auto source = LoadDefinition(name);
        const ConfigurationTest::Snapshot resolved = TakeSnapshot(*source);
        source->SetDbDisplayName(0, L"\U0001F30D");
        source->SetStringSubstitution(KSDLL_AddText(std::wstring(300, L'\u4e16').c_str()), KSDLL_AddText(L""));
        KSDLL_SetLongSv(kSvFlagWord, 7);
        first_text_ = L"first";
        second_text_ = L"second";
        ASSERT_TRUE(Write(*source));
        const std::string bytes = Bytes();

        json found = Decode(1);
        EXPECT_EQ(found["banner"].get<std::string>().substr(34), "\n\rVersion 15.0 Compiled with Build 59698\n\r\n\r");
        for (const char* part : {"banner", "wide", "help", "opaque", "end"}) {
            found.erase(part);
        }
        const json expected = {{"version", {15, 0}},
                               {"type", 1},
                               {"identity", {"", ""}},
                               {"flag", 7},
                               {"host", {"first", "second"}},
                               {"formats", DescribeFormats(*source)},
                               {"substitutions", DescribeSubstitutions(*source)}};
        EXPECT_EQ(json::diff(found, expected), json::array());

        first_text_.clear();
        log_->lines.clear();
        const auto store = StoreWithTablesOf(*source);
        ASSERT_TRUE(Read(*store)) << ToUtf8(Boxes());
        ExpectAlike(*store, *source);
        EXPECT_EQ(Children(*store), Children(*source));
        EXPECT_EQ(origin_ + first_text_ + second_text_, path_ + L"firstsecond");
        EXPECT_EQ(KSDLL_GetLongSv(kSvAssociatedTableMode), 0);
        EXPECT_EQ(KSDLL_GetLongSv(kSvDefinitionEnd), static_cast<std::int32_t>(bytes.size()));
        EXPECT_TRUE(FromCompiled() && store->GetFieldInfo(0, 0)->originalTaken && store->GetDbColumn(0, 0) != nullptr);
        auto line = log_->lines.begin();
        for (const wchar_t* text : {L"Initialize server", L"Loaded Help File Name", L"Configure Format 1",
                                    L"Read Format data", L"Read Compiled File", L"About to Check DB Access"}) {
            line = std::find(line, log_->lines.end(), text);
            EXPECT_NE(line, log_->lines.end()) << ToUtf8(text);
        }

        EXPECT_EQ(Differences(resolved, TakeSnapshot(*LoadDefinition(name))), L"") << "a source is resolved as before";
        EXPECT_EQ(check_database_access(*store, true, nullptr), 0);
        ExpectAlike(*store, *source);
        ASSERT_TRUE(Write(*store));
        EXPECT_TRUE(Bytes() == bytes);
    }
}

TEST_F(CompiledFile, FromTheSecondWriterIsReadOrRefused) {
    struct Case {
        const char* place;
        json value;
        std::wstring outcome;
    };

    const json good = SmallFile();
    const Case cases[] = {
        {"/wide", true, L""},
        {"/wide", false, L""},
        {"/formats", json::array(), L""},
        {"/opaque", json(100, "text"), L""},
        {"/version/1", -1, L"old 15.-1 15.0\n"},
        {"/version/0", 14, L"old 14.0 15.0\n"},
        {"/version/1", 1, L"new 15.1 15.0\n"},
        {"/version/0", 16, L"new 16.0 15.0\n"},
        {"/format_version", 11.5, L"old 11.5 15.0\n"},
        {"/formats/0/name", "", L"unreadable\n"},
        {"/format_count", 1001, L"unreadable\n"},
        {"/format_count", -1, L"unreadable\n"},
        {"/formats/0/field_count", -1, L"unreadable\n"},
        {"/formats/0/field_count", 0x7fffffff, L"unreadable\n"},
        // Beyond the limits of what is kept.
        {"/formats/0/maximum", 999900000, L"formats "},
        {"/substitutions", json(10000, {"a", "b"}), L""},
        {"/substitutions", json(10001, {"a", "b"}), L"substitutions "},
        {"/host", {"A", ""}, L"host texts "},
        {"/formats/0/associated", "Nowhere", L"21069 Gr\u00f6\u00dfen \n"},
    };
    for (const Case& each : cases) {
        json file = good;
        file[json::json_pointer(each.place)] = each.value;
        EXPECT_EQ(ReadEncoded(file), each.outcome) << each.place << ' ' << each.value;
    }
    EXPECT_EQ(
        CommonCompiledConfigFunctions::CheckVersionInfo({std::numeric_limits<float>::quiet_NaN(), Version{15, 0}}),
        VersionCheckResult::FormatTooOld);
    ReadEncoded(good);
    EXPECT_EQ(KSDLL_GetLongSv(kSvFlagWord), 1);
    EXPECT_EQ(KSDLL_GetLongSv(kSvAssociatedTableMode), 2);
    EXPECT_EQ(std::wstring(static_cast<const wchar_t*>(KSDLL_GetPointerSv(kSvHelpFile))), L"sizes.hlp");
}

TEST_F(CompiledFile, ShowsItsIdentity) {
    CompilationState& state = CompilationState::Instance();
    state.set_CompileType(ConfigurationCompileType::Oem);
    ASSERT_TRUE(Write(*LoadDefinition(kPlant)));
    EXPECT_EQ(Decode(2)["identity"], (json{"Kestrona Compiled Configuration"}));
    EXPECT_EQ(Decode(2)["type"], 3);

    const std::tuple<std::int32_t, json, std::wstring> cases[] = {
        {1, {"x", "y"}, L""},
        {3, {"x", "y"}, L""},
        {0, json::array(), L""},
        {2, {"Kestrona Compiled Configuration"}, L""},
        {2, {"Kestrona compiled configuration"}, L"foreign 'Kestrona compiled configuration'\n"}};
    for (const auto& [source_type, identity, outcome] : cases) {
        json file = SmallFile();
        file["identity"] = identity;
        state.set_SourceType(static_cast<ConfigurationSourceType>(source_type));
        EXPECT_EQ(ReadEncoded(file), outcome) << identity;
    }
}

TEST_F(CompiledFile, IsReadByTheDefaultHostWhateverItsKind) {
    const auto source = LoadDefinition(kPlant);
    for (const auto kind :
         {ConfigurationCompileType::Cnf, ConfigurationCompileType::Oem, ConfigurationCompileType::Runtime}) {
        CompilationState::Instance().set_CompileType(kind);
        ASSERT_TRUE(Write(*source));
        const auto store = StoreWithTablesOf(*source);
        EXPECT_EQ(Host::DefaultHost(Host::DefaultHostOptions()).FillFromFile(ToUtf8(path_), *store),
                  Host::LoadOutcome::Ok);
        EXPECT_EQ(Children(*store), Children(*source));
    }
}

TEST_F(CompiledFile, OfAnOlderLayoutIsUnderstoodBehindItsVersion) {
    for (const Version version : {Version{14, 2}, Version{14, 3}, Version{13, 9}}) {
        json file = SmallFile();
        file["version"] = {version.major, version.minor};
        json& field = file["formats"][0]["fields"][1];
        for (std::int32_t slot = 0; slot < kDataSlots; ++slot) {
            field["slots"][static_cast<std::size_t>(slot)] = 100 + slot;
        }
        field["slot0"] = 100;
        Encode(file);
        const Platform::FileHandle handle(Platform::OpenFile(path_, "rb"));
        bool wide = false;
        CommonCompiledConfigFunctions::SeekHeader(handle.get(), &wide);
        EXPECT_EQ(CommonCompiledConfigFunctions::ReadVersionHeader(handle.get()).FileVersion.get_Value(), version);
        KSDLL_ResetChecksum();
        const auto store = CreateMemoryResidentData();
        EXPECT_TRUE(ReadFileBody(*store, handle.get(), wide, version, path_, this));
        EXPECT_EQ(Compare(*store, file), L"");
    }
}

// Reading is over in any case, and what was read can be looked at and written.
TEST_F(CompiledFile, DamagedAnywhereIsRefusedOrHarmless) {
    Encode(SmallFile());
    const std::string good = Bytes();
    const auto store = CreateMemoryResidentData();
    const auto try_bytes = [&](const std::string& bytes) {
        SetBytes(bytes);
        messages_->boxes.clear();
        log_->lines.clear();
        const bool read = Read(*store);
        EXPECT_TRUE(read || !messages_->boxes.empty());
        DescribeSubstitutions(*store);
        EXPECT_LE(store->GetFormatCount(), 1);
        return read;
    };
    for (std::size_t size = 0; size < good.size(); ++size) {
        ASSERT_FALSE(try_bytes(good.substr(0, size))) << size;
    }
    std::size_t harmless = 0;
    for (std::size_t at = 0; at < good.size(); ++at) {
        for (const int change : {1, 16, 128, 255}) {
            std::string bytes = good;
            bytes[at] = static_cast<char>(bytes[at] ^ change);
            harmless += try_bytes(bytes) ? 1U : 0U;
        }
    }
    EXPECT_GT(harmless, good.size()); // numbers have no checksum
    EXPECT_TRUE(try_bytes(good));
}

TEST_F(CompiledFile, ThatCannotBeOpenedOrNamedIsReportedAndKept) {
    const auto store = CreateMemoryResidentData();
    SetConfigurationResource(12);
    EXPECT_FALSE(Read(*store));
    EXPECT_EQ(origin_, L"12");
    EXPECT_FALSE(FromCompiled());
    SetBytes("old");
    const std::wstring path = std::exchange(path_, folder_.WidePath("nowhere/plant.ks"));
    EXPECT_FALSE(Write(*store));
    EXPECT_EQ(Boxes(), L"missing\nnot opened\n");
    path_ = path;
    CompilationState::Instance().set_CompileType(ConfigurationCompileType::None);
    EXPECT_THROW(Write(*store), const wchar_t*);
    EXPECT_EQ(Bytes(), "old");
}

TEST_F(CompiledFile, IsFoundUnderItsDefaultNames) {
    const Testing::CurrentFolder folder;
    std::wstring name = L"as it was";
    EXPECT_FALSE(CommonCompiledConfigFunctions::FindInputFileEx(&name));
    EXPECT_EQ(name, L"as it was");
    for (const wchar_t* file : {L"KESTRONA.CNF", L"KESTRONA.OEM", L"KESTRONA.KS_RT"}) { // a later one goes first
        path_ = file;
        EXPECT_TRUE(Write(*CreateMemoryResidentData()));
        EXPECT_TRUE(CommonCompiledConfigFunctions::FindInputFileEx(&name));
        EXPECT_EQ(name, file);
    }
}

class RecordingWriter : public NullTranslationWriter {
public:
    void AddEntry(const wchar_t* text, std::int32_t minimum_length) override {
        entries += text + (L"/" + std::to_wstring(minimum_length)) + L" ";
    }

    std::wstring entries;
};

// That a stream comes back as it was is shown by its fuzz target.
TEST_F(CompiledFile, GivesItsTextsToAWriterOfTranslations) {
    const auto source = LoadDefinition(kPlant);
    const Platform::FileHandle file(std::tmpfile());
    KSDLL_ResetChecksum();
    WriteTableDefinitionToStream(*source, L"", L"trailer", file.get(), nullptr);
    std::rewind(file.get());
    KSDLL_ResetChecksum();
    const auto store = CreateMemoryResidentData();
    RecordingWriter writer;
    ASSERT_TRUE(ReadTableDefinitionFromStream(*store, file.get(), &writer, true, true, true, L"f", L"", nullptr));
    EXPECT_EQ(std::getc(file.get()), EOF);
    EXPECT_TRUE(writer.entries.starts_with(L"/2 /2 /2 " + source->GetDbDisplayName(0) + L"/2 " +
                                           source->GetColumnName(0, 0) + L"/2 "));
}

} // namespace

} // namespace Kestrona::Configuration::Compiled
