#include "configuration/compiled/help_file.h"
#include "configuration/definition_fixture.h"
#include "configuration/load_state.h"
#include "fixtures/scratch_files.h"

#include <kestrona/compilation_state.h>
#include <kestrona/definition_load.h>
#include <kestrona/host_settings.h>
#include <kestrona/process.h>

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <functional>

namespace Kestrona::Configuration {

namespace {

using Compiled::CompilationState;
using Compiled::ConfigurationCompileType;
using Compiled::ConfigurationSource;
using Compiled::ConfigurationSourceType;
using Data::MemoryResident::MemoryResidentData;

// A host that writes down what it is asked for, in a folder of its own.
class DefinitionLoad : public ConfigurationTest::DefinitionFixture,
                       public IInformationFeedback,
                       public INativeConfigWrapper,
                       public IGlobalizationHelper,
                       public IResourceHandler {
protected:
    DefinitionLoad() {
        CompilationState::Instance() = CompilationState();
        CompilationState::Instance().set_Source(ConfigurationSource::SourceDefinition);
    }

    ~DefinitionLoad() override { CompilationState::Instance() = CompilationState(); }

    void SetStage(std::int32_t message) override { Note(L"stage " + std::to_wstring(message)); }

    void SetProgress(std::int32_t percent) override { Note(std::to_wstring(percent) + L"%"); }

    void SetCompiledResource(std::int32_t) override { Note(L"SetCompiledResource"); }

    void SetCompiledFile(const std::wstring&) override { Note(L"SetCompiledFile"); }

    void ReportExtractionFailed() override { Note(L"ReportExtractionFailed"); }

    std::int32_t LoadSource(const wchar_t* file_name, MemoryResidentData& store) override {
        Note(L"LoadSource " + std::wstring(file_name));
        return load_source_ ? load_source_(store) : 0;
    }

    wchar_t* LocalizeFileName(const wchar_t* file_name) override {
        return KSDLL_AddText((L"de_" + std::wstring(file_name)).c_str());
    }

    std::uint32_t GetLCID() override { return 0; }

    bool ExtractConfiguration(std::int32_t resource, std::wstring& path) override {
        Note(L"ExtractConfiguration " + std::to_wstring(resource));
        path = L"extracted.tmp";
        return extracts_;
    }

    void Note(const std::wstring& event) { events_ += event + L"; "; }

    std::int32_t Load(const wchar_t* file_name = L"plant.def") {
        return KSSERVER_LoadTableDefinition(store_, file_name, title_.data(), this, this, this, this, nullptr);
    }

    static void Touch(const char* name) { std::ofstream(name) << "x"; }

    Testing::CurrentFolder folder_;
    std::array<wchar_t, 12> title_{};
    std::wstring events_;
    std::function<std::int32_t(MemoryResidentData&)> load_source_;
    bool extracts_ = true;
};

TEST_F(DefinitionLoad, LoadsASourceInTheToldOrder) {
    KSDLL_SetLongSv(100, 5);
    KSDLL_SetLongSv(kSvDefinitionEnd, 5);
    load_source_ = [&](MemoryResidentData& store) {
        EXPECT_EQ(KSDLL_GetFloatSv(kSvVersionMark), 0.0F);
        EXPECT_EQ(KSDLL_GetLongSv(100), -1);
        EXPECT_EQ(KSDLL_GetLongSv(kSvDefinitionEnd), 0);
        EXPECT_EQ(KSDLL_GetMiscPointer(), 0);
        Add(L"Orders", {Fixtures::Number(L"Key"), ConfigurationTest::Real(L"A", L"STRING_DEF \"x\""),
                        ConfigurationTest::Real(L"B", L"FF_STRING_DEF \"y\"")});
        return check_database_access(store, true, this);
    };
    EXPECT_EQ(KSDLL_GetMiscPointer(), 1);
    EXPECT_EQ(Load(), 0);
    EXPECT_EQ(events_, L"stage 17135; stage 17136; 10%; LoadSource plant.def; stage 17138; 50%; ");
    EXPECT_EQ(log_->lines[0], L"Initialised String Tables.");
    EXPECT_EQ(std::wstring(title_.data()), L"<17147>");
    EXPECT_EQ(KSDLL_GetFloatSv(kSvVersionMark), 8.01F);
    EXPECT_FALSE(FromCompiled());
    EXPECT_FALSE(store_.ClassDefined(0, 0, Classes::kStringDefault));
    EXPECT_TRUE(store_.ClassDefined(0, 1, Classes::kStringDefault));
    EXPECT_TRUE(store_.ClassDefined(0, 2, Classes::kStringDefault));
}

TEST_F(DefinitionLoad, RefusesASecondLoadAndLeavesTheStore) {
    ASSERT_EQ(Load(), 0);
    messages_->texts[17147] = L"A title that is too long";
    events_.clear();
    EXPECT_EQ(Load(), -1);
    EXPECT_EQ(events_, L"stage 17135; ");
    EXPECT_EQ(messages_->boxes,
              (std::vector<Fixtures::RecordingMessages::Box>{{L"<21001>", L"A title tha", kMessageStyleError}}));
    EXPECT_EQ(KSDLL_GetFloatSv(kSvVersionMark), 8.01F);
}

TEST_F(DefinitionLoad, ChoosesTheDefaultFileThatIsThere) {
    const auto chosen = [&](const wchar_t* name) {
        ResetLoadStateForTests();
        events_.clear();
        EXPECT_EQ(Load(name), 0);
        return events_.substr(events_.find(L"LoadSource ") + 11);
    };
    EXPECT_EQ(chosen(nullptr), L"KESTRONA.KSTDF; ");
    Touch("KESTRONA.INF");
    EXPECT_EQ(chosen(L""), L"KESTRONA.INF; ");
    Touch("KESTRONA.KSTDF");
    EXPECT_EQ(chosen(L""), L"KESTRONA.KSTDF; ");
    EXPECT_EQ(chosen(L"own.def"), L"own.def; ");
}

TEST_F(DefinitionLoad, FailsQuietlyWhenTheHostHasReported) {
    load_source_ = [](MemoryResidentData&) {
        return -1;
    };
    ExecutionState::Instance().set_IsRunningHeadless(false); // this failure does not end the process
    EXPECT_EQ(Load(), -1);
    EXPECT_EQ(Boxes(), L"");
    EXPECT_EQ(KSDLL_GetFloatSv(kSvVersionMark), 0.0F);
}

TEST_F(DefinitionLoad, TakesTheRoadThatSourceAndCompilingTell) {
    struct Case {
        bool compiling;
        ConfigurationSource source;
        bool extracts;
        std::wstring events; // behind the first three
        const wchar_t* line; // of the debug log, behind the first
    };

    constexpr auto kFile = ConfigurationSource::CompiledFile;
    constexpr auto kResource = ConfigurationSource::EmbeddedResource;
    const wchar_t* const read = L"CreateCompiledFileManager returned OK";
    const wchar_t* const failed = L"CreateCompiledFileManager returned ExtractionFailed";
    for (const Case& each :
         {Case{false, kFile, true, L"SetCompiledResource; ", read},
          Case{false, kResource, true, L"ExtractConfiguration 12; SetCompiledResource; ", read},
          Case{false, kResource, false, L"ExtractConfiguration 12; ReportExtractionFailed; ", failed},
          Case{true, kFile, true, L"LoadSource plant.def; ", L""},
          Case{true, kResource, true, L"LoadSource plant.def; ", L""}}) {
        ResetLoadStateForTests();
        SetConfigurationResource(12);
        Touch("extracted.tmp");
        CompilationState& compilation = CompilationState::Instance();
        compilation.set_IsCompiling(each.compiling);
        compilation.set_CompileType(ConfigurationCompileType::Cnf);
        compilation.set_Source(each.source);
        compilation.set_CompiledConfigurationFile(std::wstring(L"plant.ks"));
        extracts_ = each.extracts;
        events_.clear();
        log_->lines.clear();
        EXPECT_EQ(Load(), each.compiling ? 0 : -1);
        EXPECT_EQ(std::filesystem::remove("plant.ks"), each.compiling);
        EXPECT_EQ(events_, L"stage 17135; stage 17136; 10%; " + each.events);
        EXPECT_EQ(log_->lines.size() > 1 ? log_->lines[1] : L"", each.line);
        EXPECT_EQ(std::filesystem::exists("extracted.tmp"), each.line != read || each.source != kResource);
    }
    CompilationState::Instance() = CompilationState();
    CompilationState::Instance().set_Source(kFile);
    ResetLoadStateForTests();
    EXPECT_THROW(Load(), const wchar_t*) << "no compiled file is named";
}

TEST_F(DefinitionLoad, TakesTheLocalizedHelpFileWhenItIsThere) {
    SetHelpFileName(L"plant.hlp");
    EXPECT_EQ(Load(), 0);
    EXPECT_EQ(std::wstring(HelpFileName()), L"plant.hlp");
    ResetLoadStateForTests();
    EXPECT_EQ(HelpFileName(), nullptr);
    SetHelpFileName(L"plant.hlp");
    Touch("de_plant.hlp");
    EXPECT_EQ(Load(), 0);
    EXPECT_EQ(std::wstring(HelpFileName()), L"de_plant.hlp");
}

TEST_F(DefinitionLoad, KeepsTheDefinitionFileAndGoesToItsFolder) {
    std::filesystem::create_directory("sub");
    SetCurrentDirectoryFromFilename(L"plant.def");
    EXPECT_EQ(std::filesystem::current_path(), std::filesystem::canonical(folder_.Path()));
    SetCurrentDirectoryFromFilename((L"sub/" + std::wstring(508, L'x')).c_str());
    EXPECT_EQ(std::wstring(DefinitionFileName()), L"plant.def");
    load_source_ = [](MemoryResidentData&) { // as a host may do while it reads
        SetCurrentDirectoryFromFilename(DefinitionFileName());
        return 0;
    };
    EXPECT_EQ(Load(L"sub/plant.def"), 0);
    EXPECT_EQ(std::wstring(DefinitionFileName()), L"sub/plant.def");
    EXPECT_EQ(std::filesystem::current_path(), std::filesystem::canonical(folder_.Path("sub")));
    ResetLoadStateForTests();
    EXPECT_EQ(Load(std::wstring(512, L'x').c_str()), -1);
}

TEST_F(DefinitionLoad, ClearsTheGuardByHand) {
    KSDLL_SetFloatSv(kSvVersionMark, 8.01);
    KSDLL_CreateMiscPointer();
    EXPECT_EQ(KSDLL_GetMiscPointer(), 0);
    EXPECT_EQ(KSDLL_GetFloatSv(kSvVersionMark), 0.0F);
    EXPECT_EQ(Load(), -1);
}

TEST(CompilationState, NamesTheFileOfEachCompileType) {
    struct Kind {
        ConfigurationCompileType type;
        const wchar_t* file;
        std::int32_t source_type;
    };

    CompilationState state;
    for (const Kind& kind : {Kind{ConfigurationCompileType::Cnf, L"KESTRONA.CNF", 1},
                             Kind{ConfigurationCompileType::Oem, L"KESTRONA.OEM", 3},
                             Kind{ConfigurationCompileType::Runtime, L"KESTRONA.KS_RT", 2}}) {
        state.set_CompileType(kind.type);
        EXPECT_EQ(state.ResolveDefaultOutputFile(), kind.file);
        EXPECT_EQ(static_cast<std::int32_t>(state.ResolveSourceType()), kind.source_type);
    }
    state.set_CompileType(static_cast<ConfigurationCompileType>(4));
    EXPECT_THROW((void)state.ResolveDefaultOutputFile(), const wchar_t*);
}

} // namespace

} // namespace Kestrona::Configuration
