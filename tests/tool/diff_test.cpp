#include "tool/random_parts.h"
#include "tool/run_tool.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <random>

namespace Kestrona::Tool {
namespace {

using testing::HasSubstr;

constexpr const char* kStock = R"(format Stock {
    key Code
    field Code length 8 : TEXT
    field Amount        : REAL
    field Due           : DATE AND TIME
    field Note length 9 : TEXT
})";

class Diff : public testing::Test {
protected:
    void SetUp() override { folder_ = FreshFolder("diff"); }

    void TearDown() override { std::filesystem::remove_all(folder_); }

    // Writes a definition and the tables that belong to it.
    void Side(const std::string& name, const std::string& definition, const std::map<std::string, CsvTable>& tables) {
        std::filesystem::create_directories(folder_ + "/" + name);
        WriteFile(folder_ + "/" + name + ".ksdef", definition);
        WriteTables(folder_ + "/" + name, tables);
    }

    ToolRun Run(const std::vector<std::string>& more) {
        std::vector<std::string> arguments{"diff", folder_ + "/old.ksdef", folder_ + "/new.ksdef"};
        arguments.insert(arguments.end(), {"--data-old", folder_ + "/old", "--data-new", folder_ + "/new"});
        arguments.insert(arguments.end(), more.begin(), more.end());
        return RunTool(arguments);
    }

    CsvTable Rows(const ToolRun& run) {
        WriteFile(folder_ + "/out", run.out);
        return ReadTable(folder_ + "/out");
    }

    std::string folder_;
};

// The same by looking through all rows for each one.
CsvTable Twin(const CsvTable& old_rows, CsvTable new_rows) {
    CsvTable removed;
    CsvTable changed;
    for (std::size_t r = 1; r < old_rows.size(); ++r) {
        const auto& row = old_rows[r];
        const auto partner =
            std::find_if(new_rows.begin() + 1, new_rows.end(), [&](const auto& other) { return other[0] == row[0]; });
        if (partner == new_rows.end()) {
            removed.push_back({"Stock", "removed", row[0], "", "", ""});
            continue;
        }
        for (std::size_t c = 1; c < row.size(); ++c) {
            if (row[c] != (*partner)[c]) {
                changed.push_back({"Stock", "changed", row[0], old_rows[0][c], row[c], (*partner)[c]});
            }
        }
        new_rows.erase(partner);
    }
    CsvTable result{{"Table", "Change", "Key", "Field", "Old", "New"}};
    result.insert(result.end(), removed.begin(), removed.end());
    result.insert(result.end(), changed.begin(), changed.end());
    for (std::size_t r = 1; r < new_rows.size(); ++r) {
        result.push_back({"Stock", "added", new_rows[r][0], "", "", ""});
    }
    return result;
}

TEST_F(Diff, FindsWhatLookingThroughAllRowsFinds) {
    std::mt19937 random(11);
    const auto below = [&](std::size_t end) {
        return std::uniform_int_distribution<std::size_t>(0, end - 1)(random);
    };
    const auto row = [&] {
        const std::vector<std::string> dates{"", "2026-03-02", "2026-03-02 06:00:00"};
        const std::vector<std::string> notes{"", "x", "y\n\"z\"", "𝄞"};
        // Few keys, so that many stand twice.
        return std::vector{"k" + std::to_string(below(60)), std::to_string(below(4)) + ".5", dates[below(3)],
                           notes[below(4)]};
    };
    for (int round = 0; round < 12; ++round) {
        CsvTable old_rows{{"Code", "Amount", "Due", "Note"}};
        for (std::size_t i = 0; i < below(60) + 1; ++i) {
            old_rows.push_back(row());
        }
        CsvTable new_rows = old_rows;
        std::shuffle(new_rows.begin() + 1, new_rows.end(), random);
        for (int edit = 0; edit < round; ++edit) {
            new_rows.insert(new_rows.begin() + 1 + static_cast<std::ptrdiff_t>(below(new_rows.size())), row());
            new_rows.erase(new_rows.begin() + 1 + static_cast<std::ptrdiff_t>(below(new_rows.size() - 1)));
        }
        Side("old", kStock, {{"Stock", old_rows}});
        Side("new", kStock, {{"Stock", new_rows}});
        const ToolRun run = Run({"-o", "csv"});
        const CsvTable expected = Twin(old_rows, new_rows);
        EXPECT_EQ(Rows(run), expected) << "round " << round;
        EXPECT_EQ(run.exit_code, expected.size() > 1 ? 1 : 0) << run.err;
    }
}

TEST_F(Diff, FindsSingleChangesInEveryKindOfField) {
    const auto tables = RandomParts(12, 30);
    Side("old", kPartsDefinition, tables);
    const std::map<std::string, std::string> edits{
        {"Name", "other"},     {"Due", "2031-01-01"}, {"Took", "99"},      {"Done", "x"},
        {"Unit", "x"},         {"Main", "31"},        {"Uses", "1;2;3;4"}, {"Dates", "2031-01-01;-1;-1;-1"},
        {"Setup", "1;2;3;4;5"}};
    const CsvTable& parts = tables.at("Parts");
    for (const auto& [field, value] : edits) {
        auto edited = tables;
        const auto c = static_cast<std::size_t>(std::ranges::find(parts[0], field) - parts[0].begin());
        std::string& cell = edited.at("Parts")[17][c];
        cell = value != "x" ? value : field == "Done" ? (cell == "0" ? "1" : "0") : (cell == "1" ? "2" : "1");
        Side("new", kPartsDefinition, edited);
        const ToolRun run = Run({"-o", "csv"});
        EXPECT_EQ(run.exit_code, 1) << field;
        const CsvTable rows = Rows(run);
        ASSERT_EQ(rows.size(), 2U) << field << run.out;
        EXPECT_EQ(std::vector(rows[1].begin(), rows[1].begin() + 4),
                  (std::vector<std::string>{"Parts", "changed", "17", field}));
        EXPECT_EQ(rows[1][5], cell);
    }
}

TEST_F(Diff, TellsTablesAndFieldsOfOneSideAndHidesSmallDifferences) {
    const std::string more = R"(
format Extra {
    key Number
    field Number : INTEGER | UNIQUE
}
)";
    std::string changed = kStock;
    changed.replace(changed.find("field Note"), 10, "field Memo");
    const CsvTable heading{{"Code", "Amount", "Due"}};
    CsvTable old_rows = heading;
    CsvTable new_rows = heading;
    old_rows.insert(old_rows.end(), {{"a", "1.5", "2026-03-02"}, {"b", "2", ""}, {"b", "2", ""}});
    new_rows.insert(new_rows.end(), {{"a", "1.75", "2026-03-02 06:00:00"}, {"b", "2", "1899-12-29 06:00:00"}});
    Side("old", std::string(kStock) + more, {{"Stock", old_rows}});
    Side("new", changed, {{"Stock", new_rows}});
    const CsvTable expected{{"Table", "Change", "Key", "Field", "Old", "New"},
                            {"Stock", "field removed", "", "Note", "", ""},
                            {"Stock", "field added", "", "Memo", "", ""},
                            {"Stock", "removed", "b", "", "", ""},
                            {"Stock", "changed", "a", "Amount", "1.5", "1.75"},
                            {"Stock", "changed", "a", "Due", "2026-03-02", "2026-03-02 06:00:00"},
                            {"Stock", "changed", "b", "Due", "", "1899-12-29 06:00:00"},
                            {"Extra", "table removed", "", "", "", ""}};
    const ToolRun run = Run({"-o", "csv"});
    EXPECT_EQ(Rows(run), expected) << run.out;
    EXPECT_THAT(run.err, HasSubstr("Stock: 1 records of the old side have the key of an earlier one"));
    // An unset date is near to no other.
    CsvTable tolerant = expected;
    tolerant.erase(tolerant.begin() + 4, tolerant.begin() + 6);
    EXPECT_EQ(Rows(Run({"-o", "csv", "--tolerance", "0.25"})), tolerant);
    EXPECT_EQ(Rows(Run({"-o", "csv", "--summary", "--table", "Stock"})).at(1),
              (std::vector<std::string>{"Stock", "3", "2", "1", "0", "2", "3", "1", "1"}));
    const auto json = nlohmann::json::parse(Run({"-o", "json"}).out)["rows"];
    ASSERT_EQ(json.size(), 7U);
    EXPECT_EQ(json[3]["New"], "1.75");
    EXPECT_THAT(RunTool({"diff", folder_ + "/old.ksdef", folder_ + "/new.ksdef", "--table", "Nuts"}).err,
                HasSubstr("'Nuts'"));
}

TEST_F(Diff, NeverTakesAFailureForADifference) {
    const CsvTable sound{{"Code", "Amount"}, {"a", "1"}};
    Side("old", kStock, {{"Stock", sound}});
    Side("new", kStock, {{"Stock", sound}});
    const auto code = [this](const std::string& old_file, const std::vector<std::string>& more) {
        std::vector<std::string> arguments{"diff", old_file, folder_ + "/new.ksdef"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return RunTool(arguments).exit_code;
    };
    EXPECT_EQ(code(folder_ + "/old.ksdef", {}), 0);
    EXPECT_EQ(code(folder_ + "/none.ksdef", {}), 3);
    EXPECT_EQ(code(folder_ + "/old.ksdef", {"--data-new", folder_ + "/none"}), 3);
    EXPECT_EQ(code(folder_ + "/old.ksdef", {"--tolerance", "-1"}), 2);
    EXPECT_EQ(code(folder_ + "/old.ksdef", {"--table", "Nuts"}), 2);
    const std::string snapshot = folder_ + "/old.kes";
    ASSERT_EQ(RunTool({"import", folder_ + "/old.ksdef", "--data", folder_ + "/old", "-o", snapshot}).exit_code, 0);
    EXPECT_EQ(code(snapshot, {"--data-new", folder_ + "/new"}), 0);
    EXPECT_EQ(code(snapshot, {}), 1);
    EXPECT_EQ(code(snapshot, {"--data-old", folder_ + "/old"}), 2);
    std::filesystem::resize_file(snapshot, std::filesystem::file_size(snapshot) - 9);
    EXPECT_GE(code(snapshot, {}), 3);
    WriteFile(folder_ + "/bad.ksdef", "format {");
    EXPECT_EQ(code(folder_ + "/bad.ksdef", {}), 4);
    WriteFile(folder_ + "/new/Stock.csv", "Code,Amount\na,1\nb,many\n");
    EXPECT_EQ(Run({}).exit_code, 4);
}

} // namespace
} // namespace Kestrona::Tool
