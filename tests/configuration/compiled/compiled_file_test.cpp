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

        const json found = Decode(1);
        EXPECT_EQ(found["banner"].get<std::string>().substr(34), "\n\rVersion 15.0 Compiled with Build 59698\n\r\n\r")
            << found["banner"];
        EXPECT_EQ(found["version"], (json{15, 0}));
        EXPECT_EQ(found["type"], 1);
        EXPECT_EQ(found["identity"], (json{"", ""}));
        EXPECT_EQ(found["flag"], 7);
        EXPECT_EQ(found["host"], (json{"first", "second"}));
        EXPECT_EQ(json::diff(found["formats"], DescribeFormats(*source)), json::array());
        EXPECT_EQ(found["substitutions"], DescribeSubstitutions(*source));

        first_text_.clear();
        log_->lines.clear();
        const auto store = StoreWithTablesOf(*source);
        ASSERT_TRUE(Read(*store)) << ToUtf8(Boxes());
        ExpectAlike(*store, *source);
        EXPECT_EQ(Children(*store), Children(*source));
        EXPECT_EQ(origin_, path_);
        EXPECT_EQ(first_text_ + second_text_, L"firstsecond");
        EXPECT_EQ(KSDLL_GetLongSv(kSvAssociatedTableMode), 0);
        EXPECT_EQ(KSDLL_GetLongSv(kSvDefinitionEnd), static_cast<std::int32_t>(bytes.size()));
        EXPECT_TRUE(FromCompiled());
        EXPECT_TRUE(store->GetFieldInfo(0, 0)->originalTaken);
        EXPECT_NE(store->GetDbColumn(0, 0), nullptr);
        const std::vector<std::wstring> told = {L"Initialize server",  L"Loaded Help File Name",
                                                L"Configure Format 1", L"Read Format data",
                                                L"Read Compiled File", L"About to Check DB Access"};
        auto line = log_->lines.begin();
        for (const std::wstring& text : told) {
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
        {"/formats/0/associated", "Nowhere", L"21069 Gr\u00f6\u00dfen \n"},
    };
    for (const Case& each : cases) {
        json file = good;
        file[json::json_pointer(each.place)] = each.value;
        EXPECT_EQ(ReadEncoded(file), each.outcome) << each.place << ' ' << each.value;
    }
    ReadEncoded(good);
    EXPECT_EQ(KSDLL_GetLongSv(kSvFlagWord), 1);
    EXPECT_EQ(KSDLL_GetLongSv(kSvAssociatedTableMode), 2);
    EXPECT_EQ(std::wstring(static_cast<const wchar_t*>(KSDLL_GetPointerSv(kSvHelpFile))), L"sizes.hlp");
}

TEST_F(CompiledFile, KeepsItsLimits) {
    json file = SmallFile();
    file["formats"][0]["maximum"] = 999900000; // means that no limit is set
    file["substitutions"] = json(10001, {"a", "b"});
    file["host"] = {"A", ""};
    EXPECT_EQ(ReadEncoded(file), L"formats substitutions host texts ");
    file["formats"][0]["maximum"] = 0;
    file["substitutions"].erase(0);
    EXPECT_EQ(ReadEncoded(file), L"host texts ");
    EXPECT_EQ(first_text_ + second_text_, L"");
}

TEST_F(CompiledFile, ShowsItsIdentity) {
    CompilationState& state = CompilationState::Instance();
    state.set_CompileType(ConfigurationCompileType::Oem);
    const auto source = LoadDefinition(kPlant);
    ASSERT_TRUE(Write(*source));
    EXPECT_EQ(Decode(2)["identity"], (json{"Kestrona Compiled Configuration"}));
    EXPECT_EQ(Decode(2)["type"], 3);

    struct Case {
        std::int32_t source_type;
        json identity;
        std::wstring outcome;
    };

    const Case cases[] = {{1, {"x", "y"}, L""},
                          {3, {"x", "y"}, L""},
                          {0, json::array(), L""},
                          {2, {"Kestrona Compiled Configuration"}, L""},
                          {2, {"Kestrona compiled configuration"}, L"foreign 'Kestrona compiled configuration'\n"}};
    for (const Case& each : cases) {
        json file = SmallFile();
        file["identity"] = each.identity;
        state.set_SourceType(static_cast<ConfigurationSourceType>(each.source_type));
        EXPECT_EQ(ReadEncoded(file), each.outcome) << each.identity;
    }
}

TEST_F(CompiledFile, IsReadByTheDefaultHostWhateverItsKind) {
    const auto source = LoadDefinition(kPlant);
    const auto fill = [&](MemoryResidentData& store, std::string& output) {
        Host::DefaultHostOptions options;
        options.output = [&output](std::string_view text) {
            output += text;
        };
        Host::DefaultHost host(std::move(options));
        return host.FillFromFile(ToUtf8(path_), store);
    };
    for (const auto kind :
         {ConfigurationCompileType::Cnf, ConfigurationCompileType::Oem, ConfigurationCompileType::Runtime}) {
        CompilationState::Instance().set_CompileType(kind);
        ASSERT_TRUE(Write(*source));
        const auto store = StoreWithTablesOf(*source);
        std::string output;
        EXPECT_EQ(fill(*store, output), Host::LoadOutcome::Ok) << static_cast<int>(kind) << output;
        EXPECT_EQ(Children(*store), Children(*source));

        const std::string cut = Bytes().substr(0, Bytes().size() - 1);
        SetBytes(cut);
        EXPECT_EQ(fill(*store, output), Host::LoadOutcome::Findings);
        EXPECT_NE(output.find("' ends too early at offset " + std::to_string(cut.size())), std::string::npos) << output;
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
    const auto store = LoadDefinition(kPlant);
    SetConfigurationResource(12);
    EXPECT_FALSE(Read(*store));
    EXPECT_EQ(origin_, L"12");
    EXPECT_FALSE(FromCompiled());
    SetBytes("old");
    const std::wstring path = path_;
    path_ = folder_.WidePath("nowhere/plant.ks");
    EXPECT_FALSE(Write(*store));
    EXPECT_EQ(Boxes(), L"missing\nnot opened\n");
    path_ = path;
    CompilationState::Instance().set_CompileType(ConfigurationCompileType::None);
    try {
        Write(*store);
        FAIL();
    } catch (const wchar_t* text) {
        EXPECT_EQ(std::wstring(text), L"Unexpected state");
    }
    EXPECT_EQ(Bytes(), "old");
}

TEST_F(CompiledFile, HasAVersionThatIsCheckedAndTold) {
    using Functions = CommonCompiledConfigFunctions;
    const auto tell = [](float version, int result) {
        Functions::DisplayCompiledVersionMessages(nullptr, L"f", L"c", {version, {}},
                                                  static_cast<VersionCheckResult>(result));
    };
    EXPECT_THROW(tell(12.0F, 5), const wchar_t*);
    EXPECT_THROW(tell(12.0F, 2), const wchar_t*); // has no version
    EXPECT_THROW(tell(12.0F, 3), const wchar_t*);
    tell(12.0F, 4);
    tell(11.0F, 1);
    EXPECT_EQ(messages_->boxes,
              (std::vector<Fixtures::RecordingMessages::Box>{{L"old 11.0 15.0", L"c", kMessageStyleWarning}}));
    EXPECT_EQ(Functions::CheckVersionInfo({std::numeric_limits<float>::quiet_NaN(), Version{15, 0}}),
              VersionCheckResult::FormatTooOld);
    EXPECT_EQ(Functions::CheckVersionInfo({12.0F, {}}), VersionCheckResult::NoVersion);
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

TEST_F(CompiledFile, HoldsAStreamThatIsReadUnresolvedToo) {
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
    EXPECT_EQ(json::diff(DescribeFormats(*store), DescribeFormats(*source)), json::array());
    EXPECT_EQ(DescribeSubstitutions(*store), DescribeSubstitutions(*source));
    EXPECT_TRUE(writer.entries.starts_with(L"/2 /2 /2 " + source->GetDbDisplayName(0) + L"/2 " +
                                           source->GetColumnName(0, 0) + L"/2 "));
}

} // namespace

} // namespace Kestrona::Configuration::Compiled
