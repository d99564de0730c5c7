#include "tool/run_tool.h"
#include "tool/table_folder.h"

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
        {{"schema", definition_, "Orders", "Due"}, 0},
        {{"schema", definition_, "Orders", "due"}, 2},
        {{"graph", definition_}, 0},
        {{"graph", folder_ + "/bad.ksdef"}, 1},
        {{"docs", definition_}, 0},
        {{"docs", folder_ + "/absent.ksdef"}, 3},
        {{"docs", definition_, "-f", folder_ + "/absent/docs.md"}, 3},
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
            const bool reports = c.code == 1 && c.arguments[0] == "check";
            EXPECT_EQ(run.out != "", reports) << line;
            EXPECT_EQ(run.err != "", !reports) << line;
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
    EXPECT_NE(
        run.err.find("Machines.csv:2: error: rejected: column 'Setup': '0;5;7|0;0;0' row 1 has 3 values and not 2"),
        std::string::npos)
        << run.err;
    EXPECT_NE(run.err.find("Jobs.csv:2: error: rejected: column 'On'"), std::string::npos) << run.err;
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
        const ToolRun run = RunTool(Joined(
            {"show", definition_, "--data", folder_, "Orders", "-o", "csv", "--columns", "Number"}, c.arguments));
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
         {":3: error: rejected: column 'Quantity': 'many'", ":5: error: rejected: column 'Note': 'too long'",
          ":6: error: rejected: column 'Number': '1'", ":7: error: rejected: row",
          ":8: error: rejected: column 'Number': 'x'", ":8: error: rejected: column 'Quantity': 'y'",
          ":9: error: rejected: column 'Number'", ":10: error: rejected: column 'Note'",
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

TEST_F(Commands, FormsForPeopleAreLaidOut) {
    WriteFile(folder_ + "/Products.csv", "Number,Name\n2,Wheel\n3,Frame | blue\n");
    EXPECT_EQ(Show("Products", "markdown").out,
              "| Number | Name |\n| ---: | --- |\n| 2 | Wheel |\n| 3 | Frame \\| blue |\n");
    EXPECT_EQ(Show("Products", "table").out, "Number  Name\n"
                                             "------  ------------\n"
                                             "     2  Wheel\n"
                                             "     3  Frame | blue\n");
}

// Property by property, as "property=value".
std::string FieldSheet(const std::string& definition, const std::string& table, const std::string& field) {
    const ToolRun run = RunTool({"schema", definition, table, field, "-o", "json"});
    std::string text;
    for (const auto& row : nlohmann::json::parse(run.out)) {
        text += row["Property"].get<std::string>() + "=" + row["Value"].get<std::string>() + "\n";
    }
    return text;
}

TEST_F(Commands, SchemaTellsWhatResolutionMadeOfAField) {
    struct Case {
        const char* table;
        const char* field;
        const char* told;
    };

    const Case cases[] = {
        {"Plant", "Speeds", "Dimensions=Products(Number) x Resources(Number) (Product, Work centre)\n"},
        {"Plant", "Bar label", "REMOTE=Orders(Due date)\nREMOTE=Operations(Number)\nREMOTE_DEF=Orders(Number)\n"},
        {"Plant", "Number", "Key=yes\n"},
        {"Calendars", "Crews", "ASSOCIATE=Shifts\n"},
        {"Calendars", "Shifts", "Type=list of references\n"},
        {"Products", "Changeover", "MATRIX DEFAULT=Usual cleaning\nMATRIX MINIMUM=Least cleaning\n"},
        {"Products", "Recipe", "Type=text, encrypted\nLength=200\n"},
        {"Routings", "Cooling time", "switched, at first on, by=Cooling\n"},
        {"Routings", "Resources", "AUTO LIST=Resources(Number)\nAUTO RESTRICT=Group\n"},
        {"Routings", "Preferred", "RELATED LIST=Resources\n"},
        {"Resources", "Group", "FAMILY=Name\n"},
        {"Resources", "Manual", "Name in dialogs=Manual\nType=button\n"},
        {"Orders", "Customer name", "DATABASE=Customers(Name)\nADDITIONAL REFERENCE=Customer\n"},
        {"Orders", "Customer code", "LOOKUP UPDATE=Customers(Code)\n"},
        {"Orders", "Price", "SOURCE=Products(Price)\nUPDATE REFERENCE=Product\n"},
        {"Orders", "Batches", "AUTO SPLIT=Quantity\n"},
        {"Orders", "Planned start", "OVERRIDE=Earliest start\n"},
        {"Orders", "Remarks", "STRING STORAGE=Remarks(Text)\n"},
        {"Operations", "Resource", "RELATED FIELD=Step\nentry of=Routings(Resources)\n"},
        {"Operations", "Due date", "ORDER MATCH=Orders(Due date)\n"},
        {"Operations", "Colour", "MATCH FIELD=Products(Colour)\n"},
        {"Operations", "Running order", "SOURCE ORDER=Orders(Number)\nClass=SOURCE ORDER\n"},
        {"Operations", "Done", "EXPAND MATCH=Orders(Number)\n"},
        {"Operations", "Setup", "SETUP OVERRIDE MATCH=Products(Changeover)\n"},
        {"Operations", "Cleaning",
         "MATCH DURATION FIELD=Routings(Fixed time)\nMATCH END DURATION FIELD=Routings(Cooling time)\n"},
    };
    const std::string plant = SourcePath("examples/plant/plant.ksdef");
    for (const Case& c : cases) {
        const std::string sheet = FieldSheet(plant, c.table, c.field);
        EXPECT_NE(sheet.find(c.told), std::string::npos) << c.told << sheet;
    }
}

TEST_F(Commands, DocsNameEveryFormatFieldTableAndConstant) {
    WriteFile(definition_, "define MOST = 12\ntable Units { \"a|b\" = 1 }\nhelp 4 \"Helps\"\n"
                           "format \"Big Orders\" {\n key Number\n field Number : INTEGER | UNIQUE | HELPPOPUPID(4)\n"
                           " field Unit : REFERENCE | TABLE(Units)\n field Line : REFERENCE | DATABASE(Lines(Number))\n"
                           " field Low length 3 : TEXT | HELP TEXT(As *told*)\n}\n"
                           "format Lines \"Rows\" {\n key Number\n field Number : INTEGER | UNIQUE\n"
                           " field Level : INTEGER | SUBSTITUTE(1->\"low\") | HIDDEN IF \"{#Number} == 2\"\n}\n");
    const ToolRun run = RunTool({"docs", definition_, "-f", folder_ + "/d.md"});
    EXPECT_EQ(run.exit_code, 0) << run.err;
    const std::string text = ReadFile(folder_ + "/d.md");
    for (const char* told :
         {"# Data dictionary of plant.ksdef\n", "| [Big Orders](#big-orders) | Big Orders | 4 | Number |\n",
          "\n## Lines\n\n- Name: Rows\n- Key: Number\n- Used by: [Big Orders](#big-orders)\n",
          "| Number | integer | 1 |  | Helps; key; unique |\n", "| Line | reference |  | Lines(Number) |  |\n",
          "| Low | text, up to 3 characters |  |  | As \\*told\\* |\n",
          "| Level | integer | 0 |  | hidden if {\\#Number} == 2; 1 = low |\n", "\n## Table Units\n", "| a\\|b | 1 |\n",
          "\n## Constants\n", "| MOST | 12 |\n"}) {
        EXPECT_NE(text.find(told), std::string::npos) << told << text;
    }
}

} // namespace
} // namespace Kestrona::Tool
