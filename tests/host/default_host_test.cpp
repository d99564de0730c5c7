#include "fixtures/recording_services.h"
#include "fixtures/scratch_files.h"

#include <kestrona/host/default_host.h>
#include <kestrona/host/message_catalogue.h>
#include <kestrona/process.h>

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <optional>
#include <string>

namespace Kestrona::Host {
namespace {

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
// The data module refuses it.
constexpr const char* kRefused = "format A {\n key N\n field N : INTEGER | UNIQUE\n"
                                 " field T : TEXT | DATABASE(A(N))\n}\n";
constexpr const char* kRefusal = "error: Format 'A', field 'T' is both a DATABASE reference and FREE FORMAT.\n";

// A host that reads its definitions from memory.
class DefaultHostTest : public testing::Test {
protected:
    DefaultHostOptions Options(LogLevel level = {}, const std::string& log_file = {}) {
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
        options.log_level = level;
        options.log_file = log_file;
        return options;
    }

    Fixtures::FreshProcess process_;
    std::map<std::string, std::string> files_{{"plant.kstdf", kPlant}, {"refused.kstdf", kRefused}};
    std::string out_;
};

void ExpectPlant(MemoryResidentData& store) {
    ASSERT_EQ(store.GetFormatCount(), 2);
    EXPECT_EQ(store.GetDbDisplayName(0), L"Products");
    EXPECT_EQ(store.GetDbTable(1, 1), 0);
    EXPECT_EQ(store.GetDbDefaultValue(0, 2), 2.0) << "a default that is given by its text";
    store.SetCurrentDbSize(0, 3);
    store.SetDbValue(0, 0, 1, 77.0);
    EXPECT_EQ(store.LookupKeyRecord(0, 77.0), 1);
}

TEST_F(DefaultHostTest, LoadsTheDefinitionOfTheProcessOnceAndFillsFurtherStores) {
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

    ASSERT_EQ(host.LoadDefinition("plant.kstdf"), LoadOutcome::Ok) << "the process's own load is still to come";
    EXPECT_EQ(out_, "");
    EXPECT_EQ(host.Title(), L"Kestrona");
    EXPECT_EQ(KSDLL_GetFloatSv(kSvVersionMark), 8.01F);
    EXPECT_EQ(host.LoadDefinition("plant.kstdf"), LoadOutcome::AlreadyLoaded);
    EXPECT_EQ(host.Messages()->ErrorCount(), 1U);
    EXPECT_EQ(host.Messages()->Shown().back().text, MessageText(21001));
    ExpectPlant(host.Store());
}

TEST_F(DefaultHostTest, SaysHowALoadEnded) {
    struct Case {
        const char* text;
        LoadOutcome outcome;
        bool has_diagnostics;
        std::string said; // part of the output
    };

    const Case cases[] = {
        {kPlant, LoadOutcome::Ok, false, ""},
        {"format {", LoadOutcome::Findings, true, "bad.kstdf:1:8: error: "},
        {"include \"none.kstdf\"\n", LoadOutcome::Unreadable, true, "none.kstdf"},
        {kRefused, LoadOutcome::Findings, false, std::string("tool: ") + kRefusal},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        const Fixtures::FreshProcess process;
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
    const Testing::ScratchFolder folder;
    {
        DefaultHost host(Options(LogLevel::Debug));
        ASSERT_EQ(host.LoadDefinition("plant.kstdf"), LoadOutcome::Ok);
        EXPECT_NE(out_.find("debug: DB Integrety checked out OK\n"), std::string::npos) << out_;
        EXPECT_TRUE(IsDebugLogEnabled());
    }
    out_.clear();
    {
        DefaultHost host(Options(LogLevel::Error, folder.Path("log")));
        EXPECT_EQ(host.FillAndResolve("refused.kstdf", host.Store()), LoadOutcome::Findings);
    }
    const std::string refusal = std::string("Z ") + kRefusal;
    EXPECT_NE(folder.Read("log").find(refusal), std::string::npos) << folder.Read("log");
    EXPECT_EQ(out_.find("Z error: "), std::string::npos) << out_;
    const DefaultHost host(Options(LogLevel::Info, folder.Path("log/below")));
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
        : MemoryResidentData(new Globalization({"de_DE.UTF-8", "en_GB"}), nullptr, nullptr, nullptr,
                             new ConsoleMessages("plant", {})) {}
};

TEST_F(DefaultHostTest, AStoreOfTheHostsOwnClassIsLoadedLikeOneFromTheFactory) {
    DefaultHost host(Options());
    PlantStore own;
    ASSERT_EQ(host.FillAndResolve("plant.kstdf", own), LoadOutcome::Ok) << out_;
    EXPECT_EQ(own.GetLCID(), 0x0407U) << "that of its formats";
    ExpectPlant(own);
}

} // namespace
} // namespace Kestrona::Host
