#include "store/process_state.h"

#include <kestrona/classes.h>
#include <kestrona/compilation_state.h>
#include <kestrona/definition_load.h>
#include <kestrona/host/default_host.h>
#include <kestrona/host/message_catalogue.h>
#include <kestrona/process.h>
#include <kestrona/unicode.h>

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace Kestrona::Host {
namespace {

using Configuration::Compiled::CompilationState;
using Configuration::Compiled::ConfigurationSource;
using Data::MemoryResident::MemoryResidentData;

constexpr const char* kPlant = R"(
format Product "Products" {
    key Number
    field Number : INTEGER | UNIQUE
    field Name : TEXT
    field Colour : INTEGER | SUBSTITUTE(1->"Red") | SUBSTITUTE(2->"Green") | STRING_DEF "Green"
}
format Order {
    key Number
    field Number : INTEGER | UNIQUE
    field Product : REFERENCE | DATABASE(Product(Number))
}
)";

// A host that reads its definitions from memory.
class DefaultHostTest : public testing::Test {
protected:
    void SetUp() override { ResetProcessStateForTests(); }

    void TearDown() override { ResetProcessStateForTests(); }

    DefaultHostOptions Options() {
        DefaultHostOptions options;
        options.program = "tool";
        options.output = [this](std::string_view text) {
            out_ += text;
        };
        options.reader = [this](const std::string& path) -> std::optional<std::string> {
            const auto file = files_.find(path);
            return file == files_.end() ? std::nullopt : std::optional(file->second);
        };
        options.locale = {"C", "C"};
        return options;
    }

    std::map<std::string, std::string> files_{{"plant.kstdf", kPlant}};
    std::string out_;
};

void ExpectPlant(MemoryResidentData& store) {
    ASSERT_EQ(store.GetFormatCount(), 2);
    EXPECT_EQ(store.GetDbDisplayName(0), L"Products");
    EXPECT_TRUE(store.ClassDefined(1, 1, Classes::kDatabase));
    EXPECT_EQ(store.GetDbTable(1, 1), 0);
    EXPECT_EQ(store.GetDbSource(1, 1), 0);
    EXPECT_EQ(store.GetDbDefaultValue(0, 2), 2.0) << "a default that is given by its text";
    store.SetCurrentDbSize(0, 3);
    store.SetDbValue(0, 0, 1, 77.0);
    store.SetDbString(0, 1, 1, L"Bolt");
    EXPECT_EQ(store.GetDbValue(0, 0, 1), 77.0);
    EXPECT_EQ(store.GetDbString(0, 1, 1), L"Bolt");
    EXPECT_EQ(store.LookupKeyRecord(0, 77.0), 1);
}

TEST_F(DefaultHostTest, LoadsTheDefinitionOfTheProcessOnce) {
    DefaultHost host(Options());
    ASSERT_EQ(host.LoadDefinition("plant.kstdf"), LoadOutcome::Ok) << out_;
    EXPECT_EQ(out_, "");
    EXPECT_EQ(host.Title(), L"Kestrona");
    EXPECT_EQ(KSDLL_GetFloatSv(kSvVersionMark), 8.01F);
    ExpectPlant(host.Store());

    EXPECT_EQ(host.LoadDefinition("plant.kstdf"), LoadOutcome::AlreadyLoaded);
    EXPECT_EQ(host.Messages()->ErrorCount(), 1U);
    EXPECT_EQ(host.Messages()->Shown().back().text, MessageText(21001));
    EXPECT_EQ(host.Store().GetFormatCount(), 2);
}

TEST_F(DefaultHostTest, FillsFurtherStoresWithoutTheEntryOfTheProcess) {
    DefaultHost host(Options());
    const auto first = host.CreateStore();
    const auto second = host.CreateStore();
    ASSERT_EQ(host.FillAndResolve("plant.kstdf", *first), LoadOutcome::Ok) << out_;
    ASSERT_EQ(host.FillAndResolve("plant.kstdf", *second), LoadOutcome::Ok) << out_;
    ExpectPlant(*first);
    EXPECT_EQ(second->GetCurrentDbSize(0), 0);
    ExpectPlant(*second);
    EXPECT_EQ(host.FillAndResolve("plant.kstdf", *first), LoadOutcome::Ok) << "into a store that is in use";
    EXPECT_EQ(first->GetCurrentDbSize(0), 0);
    EXPECT_EQ(KSDLL_GetFloatSv(kSvVersionMark), 0.0F);
    EXPECT_EQ(host.LoadDefinition("plant.kstdf"), LoadOutcome::Ok) << "the process's own load is still to come";
}

TEST_F(DefaultHostTest, SaysHowALoadEnded) {
    struct Case {
        const char* text;
        LoadOutcome outcome;
        bool has_diagnostics;
        const char* said; // part of the output
    };

    const Case cases[] = {
        {kPlant, LoadOutcome::Ok, false, ""},
        {"format {", LoadOutcome::Findings, true, "bad.kstdf:1:8: error: "},
        {"format A { key N field N : INTGER }", LoadOutcome::Findings, true, "bad.kstdf:1:"},
        {"include \"none.kstdf\"\n", LoadOutcome::Unreadable, true, "none.kstdf"},
        {"format A {\n key N\n field N : INTEGER | UNIQUE\n"
         " field T : TEXT | DATABASE(A(N))\n}\n",
         LoadOutcome::Findings, false,
         "tool: error: Format 'A', field 'T' is both a DATABASE reference and FREE FORMAT.\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        ResetProcessStateForTests();
        files_["bad.kstdf"] = c.text;
        out_.clear();
        DefaultHost host(Options());
        EXPECT_EQ(host.FillAndResolve("bad.kstdf", *host.CreateStore()), c.outcome);
        EXPECT_EQ(!host.Diagnostics().empty(), c.has_diagnostics);
        EXPECT_NE(out_.find(c.said), std::string::npos) << out_;
        const std::string once = out_;
        EXPECT_EQ(host.LoadDefinition("bad.kstdf"), c.outcome);
        EXPECT_EQ(out_, once + once);
    }
    DefaultHost host(Options());
    ASSERT_EQ(host.FillAndResolve("plant.kstdf", host.Store()), LoadOutcome::Ok);
    files_["bad.kstdf"] = "format A {";
    EXPECT_EQ(host.FillAndResolve("bad.kstdf", host.Store()), LoadOutcome::Findings);
    EXPECT_EQ(host.FillAndResolve("absent.kstdf", host.Store()), LoadOutcome::Unreadable);
    ExpectPlant(host.Store()); // as it was
}

TEST_F(DefaultHostTest, LogsToItsOutputOrToAFile) {
    const auto path = std::filesystem::temp_directory_path() / ("kestrona-log-" + std::to_string(getpid()));
    files_["bad.kstdf"] = "format A {\n key N\n field N : INTEGER | UNIQUE\n field T : TEXT | DATABASE(A(N))\n}\n";
    {
        DefaultHostOptions options = Options();
        options.log_level = LogLevel::Debug;
        DefaultHost host(std::move(options));
        ASSERT_EQ(host.LoadDefinition("plant.kstdf"), LoadOutcome::Ok);
        EXPECT_NE(out_.find("debug: DB Integrety checked out OK\n"), std::string::npos) << out_;
        EXPECT_TRUE(IsDebugLogEnabled());
    }
    out_.clear();
    {
        DefaultHostOptions options = Options();
        options.log_level = LogLevel::Error;
        options.log_file = path.string();
        DefaultHost host(std::move(options));
        EXPECT_EQ(host.FillAndResolve("bad.kstdf", host.Store()), LoadOutcome::Findings);
    }
    std::ifstream file(path);
    const std::string logged(std::istreambuf_iterator<char>(file), {});
    EXPECT_NE(logged.find("Z error: Format 'A', field 'T' is both"), std::string::npos) << logged;
    EXPECT_EQ(out_.find("Z error: "), std::string::npos) << out_;
    std::filesystem::remove(path);

    DefaultHostOptions options = Options();
    options.log_level = LogLevel::Info;
    options.log_file = (path / "below").string();
    out_.clear();
    const DefaultHost host(std::move(options));
    EXPECT_NE(out_.find("tool: warning: The file "), std::string::npos) << out_;
}

// Counts what is asked of it.
class CountingFeedback : public IInformationFeedback {
public:
    explicit CountingFeedback(std::vector<std::int32_t>& seen) : seen_(seen) {}

    void SetStage(std::int32_t message) override { seen_.push_back(message); }

    void SetProgress(std::int32_t percent) override { seen_.push_back(percent); }

private:
    std::vector<std::int32_t>& seen_;
};

TEST_F(DefaultHostTest, PartsCanBeReplacedAndGoWithTheHost) {
    std::vector<std::int32_t> seen;
    std::string said;
    {
        DefaultHostOptions options = Options();
        options.feedback = std::make_unique<CountingFeedback>(seen);
        options.messages = std::make_unique<ConsoleMessages>("mine", [&](std::string_view text) { said += text; });
        DefaultHost host(std::move(options));
        EXPECT_EQ(host.Messages(), nullptr);
        EXPECT_EQ(host.LoadDefinition("plant.kstdf"), LoadOutcome::Ok);
        EXPECT_EQ(host.LoadDefinition("plant.kstdf"), LoadOutcome::AlreadyLoaded);
    }
    EXPECT_EQ(seen, (std::vector<std::int32_t>{17135, 17136, 10, 17138, 50, 17135}));
    EXPECT_EQ(said.find("mine: error: "), 0U) << said;
    EXPECT_EQ(MessageManager::getInstance()->GetMessage(21001), L"") << "the service has gone with the host";
}

// A store of a host's own, with a language of its own.
class PlantStore : public MemoryResidentData {
public:
    PlantStore()
        : MemoryResidentData(new Globalization({"de_DE", "de_DE"}), nullptr, nullptr, nullptr,
                             new ConsoleMessages("plant", {})) {}
};

TEST_F(DefaultHostTest, AStoreOfTheHostsOwnClassIsLoadedLikeOneFromTheFactory) {
    PlantStore own;
    const auto made = Data::MemoryResident::CreateMemoryResidentData(new Globalization({"en_GB", "en_GB"}));
    NativeConfig config(nullptr, {}, Options().reader);
    NullFeedback feedback;
    ASSERT_EQ(config.Load("plant.kstdf", *made), LoadOutcome::Ok);
    CompilationState::Instance().set_Source(ConfigurationSource::SourceDefinition);
    ASSERT_EQ(KSSERVER_LoadTableDefinition(own, L"plant.kstdf", nullptr, &config, &feedback, nullptr, nullptr, nullptr),
              0);
    EXPECT_EQ(own.GetLCID(), 0x0407U);
    EXPECT_EQ(made->GetLCID(), 0x0809U);
    ExpectPlant(own);
    EXPECT_EQ(made->GetFormatCount(), own.GetFormatCount());
    for (std::int32_t field = 0; field < 3; ++field) {
        EXPECT_EQ(made->GetDbType(0, field), own.GetDbType(0, field));
        EXPECT_STREQ(made->GetDbClassString(0, field), own.GetDbClassString(0, field));
    }
}

} // namespace
} // namespace Kestrona::Host
