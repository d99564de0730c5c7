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
    EXPECT_EQ(run.out, "Number,Due,Product,Quantity,Note,Twice\n"
                       "10,2026-11-21 07:30:00,2,1.25,first,2.5\n"
                       "11,,,1,\"a \"\"b\"\"\",2\n");
}

// One format of every matrix shape; the machines' list runs beside a list of numbers.
constexpr const char* kMatrices = R"(format Machines {
    key Number
    field Number   : INTEGER | UNIQUE
    field Setup    : MATRIX | REAL | AUTO DIMENSION(From,Jobs(Number),To,Jobs(Number))
}
format Jobs {
    key Number
    field Number   : INTEGER | UNIQUE
    field On       : MATRIX | REFERENCE | AUTO LIST(Machines(Number)) | DATABASE(Machines(Number))
    field After    : MATRIX | REAL | AUTO DIMENSION(From,Jobs(Number),To,Jobs(Number))
}
)";

TEST_F(Commands, ListsAndMatricesComeBackAsTheyWere) {
    WriteFile(definition_, kMatrices);
    const std::string machines = "Number,Setup\n1,0;5|7;0\n2,0;0|0;0\n";
    const std::string jobs = "Number,On,After\n1,1;2;-1,0;4\n2,,3;0\n";
    WriteFile(folder_ + "/Machines.csv", machines);
    WriteFile(folder_ + "/Jobs.csv", jobs);
    EXPECT_EQ(Show("Machines").out, machines);
    EXPECT_EQ(Show("Jobs").out, jobs);
    EXPECT_EQ(nlohmann::json::parse(Show("Machines", "json").out)[0]["Setup"], nlohmann::json::parse("[[0,5],[7,0]]"));
    EXPECT_EQ(nlohmann::json::parse(Show("Jobs", "json").out)[1]["On"], nlohmann::json::array());
}

TEST_F(Commands, MatricesThatDoNotFitAreToldAndStayAtTheirDefaults) {
    WriteFile(definition_, kMatrices);
    WriteFile(folder_ + "/Machines.csv", "Number,Setup\n1,0;5;7|0;0;0\n");
    WriteFile(folder_ + "/Jobs.csv", "Number,On\n1,x\n2,1\n");
    const ToolRun run = Show("Machines");
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_EQ(run.out, "Number,Setup\n1,0;0|0;0\n");
    EXPECT_NE(run.err.find("Machines.csv:2: rejected: column 'Setup': '0;5;7|0;0;0' row 1 has 3 values and not 2"),
              std::string::npos)
        << run.err;
    EXPECT_NE(run.err.find("Jobs.csv:2: rejected: column 'On'"), std::string::npos) << run.err;
}

TEST_F(Commands, ConditionsAndColumnsChooseWhatIsShown) {
    WriteFile(folder_ + "/Orders.csv", "Number,Due,Product,Note,Quantity\n"
                                       "10,2026-11-21,2,b,1.25\n"
                                       "11,,,a,3\n"
                                       "12,2026-11-22,2,,3\n"
                                       "13,2026-12-01,3,b,4\n");

    struct Case {
        std::vector<std::string> arguments;
        const char* out; // nullptr: wrong usage
    };

    const Case cases[] = {
        {{"--where", "Quantity=3"}, "Number\n11\n12\n"},
        {{"--where", "Quantity>=3", "--where", "Product=2"}, "Number\n12\n"},
        {{"--where", "Due<2026-12-01"}, "Number\n10\n12\n"}, // not the unset one
        {{"--where", "Due="}, "Number\n11\n"},
        {{"--where", "Note = b"}, "Number\n10\n13\n"},
        {{"--where", "Note>a"}, "Number\n10\n13\n"},
        {{"--where", "Number<=99", "--limit", "1"}, "Number\n10\n"},
        {{"--where", "Number>99"}, "Number\n"},
        {{"--where", "Twice=6"}, "Number\n11\n12\n"},
        {{"--where", "Colour=3"}, nullptr},
        {{"--where", "Quantity=many"}, nullptr},
        {{"--where", "Quantity"}, nullptr},
    };
    for (const Case& c : cases) {
        std::vector<std::string> arguments{"show", definition_, "--data",    folder_, "Orders",
                                           "-o",   "csv",       "--columns", "Number"};
        arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
        const ToolRun run = RunTool(arguments);
        EXPECT_EQ(run.exit_code, c.out != nullptr ? 0 : 2) << c.arguments[1] << run.err;
        EXPECT_EQ(run.out, c.out != nullptr ? c.out : "") << c.arguments[1];
    }
    const auto columns = [&](const char* names) {
        return RunTool(
            {"show", definition_, "--data", folder_, "Orders", "-o", "csv", "--limit", "1", "--columns", names});
    };
    EXPECT_EQ(columns("Note,Number").out, "Note,Number\nb,10\n");
    EXPECT_EQ(columns("Note,Nmber").exit_code, 2);
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
    EXPECT_EQ(run.out, "Number,Due,Product,Quantity,Note,Twice\n1,,,5,ok,10\n6,,,8,last,16\n");
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
    EXPECT_EQ(run.out, "Number,Due,Product,Quantity,Note,Twice\n1,,,1,ok,2\n");
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
