#include "tool/table_folder.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <map>

namespace Kestrona::Tool {
namespace {

// A field of every kind that shows something else than it stores.
constexpr const char* kDefinition = R"(table Units {
    "kg"    = 1
    "litre" = 2
}
format Jobs {
    key Number
    field Number       : INTEGER | UNIQUE
    field Customer     : REFERENCE | DATABASE(Customers(Name))
    field Alias        : REFERENCE | DATABASE(Orders(Customer))
    field Day          : DATE AND TIME | SHOW DATE
    field Start        : DATE AND TIME
    field Shift        : DATE AND TIME | SHOW TIME
    field Length       : DURATION
    field Hours        : DURATION | SHOW HOURS
    field Week         : DURATION | SHOW WEEKDAY
    field Done         : TOGGLE
    field Urgency      : INTEGER | SUBSTITUTE(1->"low") | SUBSTITUTE(2->"high")
    field Unit         : REFERENCE | TABLE(Units)
    field Price        : REAL | FORMAT(8.2)
    field Crew         : MATRIX | REFERENCE | AUTO LIST(Customers(Name)) | DATABASE(Customers(Name))
    field Gaps         : MATRIX | DURATION | DATA LIST
}
format Orders {
    key Number
    field Number       : INTEGER | UNIQUE
    field Customer     : REFERENCE | DATABASE(Customers(Name))
}
format Customers {
    key Number
    field Number       : INTEGER | UNIQUE
    field Name         : TEXT
    field Head         : REFERENCE | FAMILY(Name)
}
)";

constexpr const char* kHeading =
    "Number,Customer,Alias,Day,Start,Shift,Length,Hours,Week,Done,Urgency,Unit,Price,Crew,Gaps\n";

constexpr const char* kStored = "1,201,1,2026-03-02,2026-03-02 07:30:00,1899-12-30 06:00:00,2.1875,1.5,1.25,1,2,2,2.1,"
                                "201;203,0.5;-1\n"
                                "2,,,,,,,,,0,7,1,0,,\n";

class DisplayTexts : public TableFolder {
protected:
    DisplayTexts()
        : TableFolder(kDefinition,
                      {{"Customers.csv", "Number,Name,Head\n201,Lind,\n202,Twin,Lind\n203,\"Glow, Wick\",201\n"
                                         "204,Twin,No parent\n"},
                       {"Orders.csv", "Number,Customer\n1,Lind\n2,\"Glow, Wick\"\n"},
                       {"Jobs.csv", kHeading + std::string(kStored)}}) {}

    [[nodiscard]] ToolRun Show(const std::string& table, const Arguments& more = {}) const {
        return Run("show", Joined({table}, more));
    }
};

TEST_F(DisplayTexts, ReadBackTheyGiveTheStoredValues) {
    const std::string stored = Show("Jobs", {"-o", "csv"}).out;
    EXPECT_EQ(stored, kHeading + std::string(kStored));
    const ToolRun shown = Show("Jobs", {"-o", "csv", "--text"});
    EXPECT_EQ(shown.exit_code, 0) << shown.err;
    EXPECT_NE(shown.out, stored);
    Write("Jobs.csv", shown.out);
    const ToolRun again = Show("Jobs", {"-o", "csv"});
    EXPECT_EQ(again.exit_code, 0) << again.err;
    EXPECT_EQ(again.out, stored) << shown.out;
}

// What is shown has fewer decimals than what is stored, so the stored values may differ, but not what is shown of them.
TEST(DisplayTextsOfThePlant, ReadBackTheyShowTheSame) {
    const std::string plant = SourcePath("examples/plant/plant.ksdef");
    const std::string data = SourcePath("examples/plant/data");
    const std::string copy = FreshFolder("plant");
    std::map<std::string, std::string> shown;
    for (const auto& file : std::filesystem::directory_iterator(data)) {
        const std::string table = file.path().stem().string();
        shown[table] = RunTool({"show", plant, "--data", data, table, "-o", "csv", "--text"}).out;
        WriteFile(copy + "/" + table + ".csv", shown[table]);
    }
    for (const auto& [table, text] : shown) {
        const ToolRun again = RunTool({"show", plant, "--data", copy, table, "-o", "csv", "--text"});
        EXPECT_EQ(again.exit_code, 0) << again.err;
        EXPECT_EQ(again.out, text) << table;
    }
    std::filesystem::remove_all(copy);
}

TEST_F(DisplayTexts, AreChosenByTheFormOfTheOutputAndTheSwitches) {
    struct Case {
        std::vector<std::string> switches;
        bool texts;
    };

    const Case cases[] = {
        {{}, true},
        {{"-o", "markdown"}, true},
        {{"-o", "csv"}, false},
        {{"-o", "json"}, false},
        {{"-o", "jsonl"}, false},
        {{"--raw"}, false},
        {{"-o", "markdown", "--raw"}, false},
        {{"-o", "csv", "--text"}, true},
        {{"-o", "jsonl", "--text"}, true},
    };
    for (const Case& c : cases) {
        const ToolRun run = Show("Jobs", c.switches);
        EXPECT_EQ(run.out.find("Lind") != std::string::npos, c.texts) << run.out << run.err;
        EXPECT_EQ(run.out.find("1.5") == std::string::npos, c.texts) << run.out;
    }
    EXPECT_EQ(Show("Jobs", {"--raw", "--text"}).exit_code, 2);
    const auto rows = nlohmann::json::parse(Show("Jobs", {"-o", "json", "--text"}).out);
    EXPECT_EQ(rows[0]["Crew"], nlohmann::json::parse(R"(["Lind","Glow, Wick"])"));
    EXPECT_EQ(rows[0]["Gaps"], nlohmann::json::parse(R"(["12 Hours 00 Minutes","-"])"));
    EXPECT_EQ(rows[0]["Price"], 2.1);
    EXPECT_EQ(rows[0]["Unit"], "litre");
}

TEST_F(DisplayTexts, CellsThatAreNoTextOfTheirFieldAreToldAndNotGuessed) {
    struct Case {
        const char* column;
        const char* cell;
        const char* reason;
    };

    const Case cases[] = {
        {"Customer", "Nobody", "is neither a key nor the Name of a record of Customers"},
        {"Customer", "Twin", "is the Name of 2 records of Customers"},
        {"Crew", "Lind;Twin", "value 2 'Twin' is the Name of 2 records of Customers"},
        {"Number", "Lind", "is no number"},
        {"Day", "2026-02-30", "is no date"},
        {"Day", "2026-03-02 7:30 PM", "is no date"},
        {"Shift", "6:30:45", "is no date"},
        {"Length", "2026-03-02", "is neither a number of days nor a duration"},
        {"Length", "5 apples", "is neither a number of days nor a duration"},
        {"Length", "1.2.3", "is neither a number of days nor a duration"},
        {"Length", "1 Day 4:30:15", "is neither a number of days nor a duration"},
        {"Length", "-4:30", "is neither a number of days nor a duration"},
        {"Week", "Someday 6:00", "is neither a number of days nor a duration"},
        {"Done", "perhaps", "is neither 0, 1, yes nor no"},
        {"Urgency", "medium", "is no number"},
        {"Unit", "pound", "is neither a number nor a text of the field's table"},
    };
    for (const Case& c : cases) {
        const bool is_key = std::string(c.column) == "Number";
        Write("Jobs.csv",
              (is_key ? "Week,Number\n0," : "Number," + std::string(c.column) + "\n1,") + std::string(c.cell) + '\n');
        const ToolRun run = Show("Jobs");
        EXPECT_EQ(run.exit_code, 1) << c.column << ' ' << c.cell << '\n' << run.out;
        EXPECT_NE(run.err.find(c.reason), std::string::npos) << c.cell << '\n' << run.err;
    }
}

TEST_F(DisplayTexts, ConditionsTakeThem) {
    struct Case {
        const char* table;
        const char* condition;
        int matches; // -1 for a usage error
    };

    const Case cases[] = {
        {"Jobs", "Customer=Lind", 1},        {"Jobs", "Customer=201", 1},     {"Jobs", "Customer=Nobody", 0},
        {"Jobs", "Customer=Unspecified", 1}, {"Jobs", "Customer<Lind", -1},   {"Jobs", "Alias=Lind", 1},
        {"Jobs", "Length>=2 Days 0:00", 1},  {"Jobs", "Week=Monday 6:00", 1}, {"Jobs", "Unit=litre", 1},
        {"Jobs", "Urgency=high", 1},         {"Jobs", "Urgency=highest", -1}, {"Jobs", "Done=No", 1},
        {"Jobs", "Day=Unspecified", 1},      {"Customers", "Head=Lind", 2},   {"Orders", "Customer=Lind", 1},
    };
    for (const Case& c : cases) {
        const ToolRun run = Show(c.table, {"--where", c.condition, "-o", "json"});
        EXPECT_EQ(run.exit_code, c.matches < 0 ? 2 : 0) << c.condition << '\n' << run.err;
        if (c.matches >= 0) {
            EXPECT_EQ(nlohmann::json::parse(run.out).size(), static_cast<std::size_t>(c.matches)) << c.condition;
        }
    }
}

TEST_F(DisplayTexts, TranslationsGoOutAndComeBack) {
    const std::string list = folder_ + "/KSSERVER.LST";
    const ToolRun extract = RunTool({"translate", "extract", definition_, "-o", folder_});
    ASSERT_EQ(extract.exit_code, 0) << extract.err;
    EXPECT_TRUE(std::filesystem::exists(folder_ + "/KS_PDB.LST"));
    const std::string given = folder_ + "/german.lst";
    WriteFile(given, "#SECTION Fields\n\"Number\"\n\"Nummer\"\n\n\"Nummber\"\n\"Nummer\"\n\n\"Price\"\n\" \"\n\n"
                     "\"Number\"\n\"Zahl\"\n\n#SECTION String tables\n\"litre\"\n\"Liter\"\n");
    const ToolRun apply = RunTool({"translate", "apply", definition_, given, list, "-o", "jsonl"});
    EXPECT_EQ(apply.exit_code, 0) << apply.err;
    for (const std::string& line :
         {R"({"Section":"Fields","Text":"Number","Translation":"Nummer","Entry":")" + given + ":2\"}",
          R"({"Section":"String tables","Text":"litre","Translation":"Liter","Entry":")" + given + ":15\"}",
          std::string(R"({"Section":"Fields","Text":"Price","Translation":"Price","Entry":""})")}) {
        EXPECT_NE(apply.out.find(line), std::string::npos) << line << '\n' << apply.out;
    }
    for (const char* text : {":5: warning: unused: the definition has no text 'Nummber'",
                             ":11: warning: unused: 'Number' has its", "2 entries apply, 1 are unused"}) {
        EXPECT_NE(apply.err.find(text), std::string::npos) << text << '\n' << apply.err;
    }
    WriteFile(given, "#SECTION Fields\n\"Number\n");
    EXPECT_EQ(RunTool({"translate", "apply", definition_, given}).exit_code, 1);
    EXPECT_EQ(RunTool({"translate", "apply", definition_, folder_ + "/absent"}).exit_code, 3);
    EXPECT_EQ(RunTool({"translate", "extract", definition_, "-o", folder_ + "/absent"}).exit_code, 3);
    EXPECT_EQ(RunTool({"translate"}).exit_code, 2);
}

} // namespace
} // namespace Kestrona::Tool
