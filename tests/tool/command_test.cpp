#include "tool/run_tool.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>

namespace Kestrona::Tool {
namespace {

constexpr const char* kDefinition = R"(format Orders "Works orders" {
    key Number
    field Number          : INTEGER | UNIQUE
    field Due = -1        : DATE AND TIME
    field Product = -1    : REFERENCE | DATABASE(Products(Number))
    field Quantity = 1    : REAL
    field Note length 5   : REFERENCE | FREE FORMAT
    field Twice           : REAL | EVALUATE "{#Quantity} * 2"
}
format Products {
    key Number
    field Number          : INTEGER | UNIQUE
    field Name length 20  : REFERENCE | FREE FORMAT
}
)";

class Commands : public testing::Test {
protected:
    void SetUp() override {
        folder_ = FreshFolder("data");
        definition_ = folder_ + "/plant.ksdef";
        WriteFile(definition_, kDefinition);
    }

    void TearDown() override { std::filesystem::remove_all(folder_); }

    ToolRun Show(const std::string& table, const std::string& form = "csv") {
        return RunTool({"show", definition_, "--data", folder_, table, "-o", form});
    }

    std::string folder_;
    std::string definition_;
};

TEST_F(Commands, ExitCodesTellWhatHappened) {
    WriteFile(folder_ + "/bad.ksdef",
              "format A {\n    key Number\n    field Number : INTEGER UNIQUE\n    colour red\n}\n");
    WriteFile(folder_ + "/keyless.ksdef", "format A {\n    field Number : INTEGER\n}\n");
    WriteFile(folder_ + "/dangling.ksdef",
              "format A {\n    key N\n    field N : INTEGER\n    field B : REFERENCE | DATABASE(Nowhere(N))\n}\n");

    struct Case {
        std::vector<std::string> arguments;
        int code;
    };

    const Case cases[] = {
        {{"check", definition_}, 0},
        {{"check", folder_ + "/bad.ksdef"}, 1},
        {{"check", folder_ + "/keyless.ksdef"}, 1},
        {{"check", folder_ + "/dangling.ksdef"}, 1},
        {{"check", folder_ + "/absent.ksdef"}, 3},
        {{"check", folder_}, 3},
        {{"check"}, 2},
        {{}, 2},
        {{"paint", definition_}, 2},
        {{"schema", definition_, "-o", "sculpture"}, 2},
        {{"schema", definition_}, 0},
        {{"schema", definition_, "Orders"}, 0},
        {{"schema", definition_, "Ordres"}, 2},
        {{"show", definition_, "Orders"}, 2},
        {{"show", definition_, "--data", folder_, "Ordres"}, 2},
        {{"show", definition_, "--data", folder_ + "/absent", "Orders"}, 3},
        {{"show", definition_, "--data", folder_, "Orders"}, 0},
        {{"--version"}, 0},
        {{"--help"}, 0},
    };
    for (const Case& c : cases) {
        const ToolRun run = RunTool(c.arguments);
        std::string line;
        for (const std::string& argument : c.arguments) {
            line += argument + ' ';
        }
        EXPECT_EQ(run.exit_code, c.code) << line << '\n' << run.out << run.err;
        if (c.code != 0) {
            EXPECT_EQ(run.out, "") << line;
            EXPECT_NE(run.err, "") << line;
        }
    }
}

TEST_F(Commands, ShowPrintsWhatTheFilesHold) {
    WriteFile(folder_ + "/Orders.csv", "Due,Number,Product,Note,Quantity\n"
                                       "2026-11-21 07:30:00,10,2,first,1.25\n"
                                       ",11,,\"a \"\"b\"\"\",\n");
    WriteFile(folder_ + "/Products.csv", "Number,Name\n2,Wheel\n");
    const ToolRun run = Show("Orders");
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(run.out, "Number,Due,Product,Quantity,Note\n"
                       "10,2026-11-21 07:30:00,2,1.25,first\n"
                       "11,,,1,\"a \"\"b\"\"\"\n");
    EXPECT_NE(run.err.find("Twice"), std::string::npos) << "the calculated field is left out without a word";
}

TEST_F(Commands, EveryRejectedRowIsToldWithItsPlace) {
    WriteFile(folder_ + "/Orders.csv", "Number,Quantity,Note,Colour\n"
                                       "1,5,ok,red\n"
                                       "2,many,ok,red\n"
                                       "\n"
                                       "3,5,too long,red\n"
                                       "1,6,again,red\n"
                                       "4,5\n"
                                       "x,y,ok,red\n"
                                       ",5,ok,red\n"
                                       "5,7,\xFF,red\n"
                                       "6,8,last,red\n");
    const ToolRun run = Show("Orders");
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_EQ(run.out, "Number,Due,Product,Quantity,Note\n1,,,5,ok\n6,,,8,last\n");
    for (const char* told :
         {":3: rejected: column 'Quantity': 'many'", ":5: rejected: column 'Note': 'too long'",
          ":6: rejected: column 'Number': '1'", ":7: rejected: row", ":8: rejected: column 'Number': 'x'",
          ":8: rejected: column 'Quantity': 'y'", ":9: rejected: column 'Number'", ":10: rejected: column 'Note'",
          "column 'Colour' belongs to no field", "2 records into Orders, 7 rows rejected"}) {
        EXPECT_NE(run.err.find(told), std::string::npos) << told << "\n" << run.err;
    }
}

TEST_F(Commands, DamagedFilesKeepTheirSoundRows) {
    WriteFile(folder_ + "/Orders.csv", "Number,Note\n1,ok\n2,\"open\n");
    const ToolRun run = Show("Orders");
    EXPECT_EQ(run.exit_code, 4) << run.err;
    EXPECT_EQ(run.out, "Number,Due,Product,Quantity,Note\n1,,,1,ok\n");
}

TEST_F(Commands, ReferencesWithoutTargetAreCounted) {
    WriteFile(folder_ + "/Orders.csv", "Number,Product\n1,2\n2,9\n3,\n");
    WriteFile(folder_ + "/Products.csv", "Number,Name\n2,Wheel\n");
    const ToolRun run = Show("Orders");
    EXPECT_EQ(run.exit_code, 0);
    EXPECT_NE(run.err.find("Orders.Product: 1 of 2 references have no target in Products"), std::string::npos)
        << run.err;
}

TEST_F(Commands, FormsAgree) {
    WriteFile(folder_ + "/Products.csv", "Number,Name\n2,Wheel\n3,Frame | blue\n");
    const auto array = nlohmann::json::parse(Show("Products", "json").out);
    ASSERT_EQ(array.size(), 2U);
    EXPECT_EQ(array[1]["Name"], "Frame | blue");
    EXPECT_EQ(Show("Products", "markdown").out,
              "| Number | Name |\n| ---: | --- |\n| 2 | Wheel |\n| 3 | Frame \\| blue |\n");
    EXPECT_EQ(Show("Products", "table").out, "Number  Name\n"
                                             "------  ------------\n"
                                             "     2  Wheel\n"
                                             "     3  Frame | blue\n");
}

TEST_F(Commands, SamplePlantLoadsWithoutAFinding) {
    const std::string plant = SourcePath("examples/plant/plant.ksdef");
    const ToolRun check = RunTool({"check", plant});
    EXPECT_EQ(check.exit_code, 0) << check.err;
    const auto formats = nlohmann::json::parse(RunTool({"schema", plant, "-o", "json"}).out);
    EXPECT_GE(formats.size(), 8U);
    for (const auto& format : formats) {
        const std::string name = format["Format"];
        const ToolRun run = RunTool({"show", plant, "--data", SourcePath("examples/plant/data"), name, "-o", "jsonl"});
        EXPECT_EQ(run.exit_code, 0) << name << run.err;
        EXPECT_NE(run.out, "") << name << " has no records";
        EXPECT_EQ(run.err.find("no target"), std::string::npos) << run.err;
    }
}

} // namespace
} // namespace Kestrona::Tool
