#include "data/exact_cell.h"
#include "export/export_table.h"
#include "export/xlsx_text.h"
#include "tool/own_path.h"
#include "tool/random_parts.h"
#include "tool/run_tool.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sqlite3.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <random>

namespace Kestrona::Tool {
namespace {

using Json = nlohmann::json;
using testing::HasSubstr;

class Export : public testing::Test {
protected:
    void SetUp() override {
        folder_ = FreshFolder("export");
        definition_ = folder_ + "/parts.ksdef";
        WriteFile(definition_, kPartsDefinition);
    }

    void TearDown() override { std::filesystem::remove_all(folder_); }

    // Exports a folder of CSV files and returns the path of what was made.
    std::string Made(const std::string& form, const std::string& data, const std::string& name,
                     std::vector<std::string> more = {}) {
        const std::string target = folder_ + "/" + name;
        more.insert(more.begin(), {"export", definition_, "--data", data, "-f", form, "-o", target});
        const ToolRun run = RunTool(more);
        EXPECT_EQ(run.exit_code, 0) << run.err;
        notes_ = run.err;
        return target;
    }

    // Saves a folder as a snapshot and exports that.
    std::string ThroughSnapshot(const std::string& data, const std::vector<std::string>& key) {
        const std::string snapshot = folder_ + "/saved.kes";
        const std::string target = folder_ + "/third";
        std::vector<std::string> save{"import", definition_, "--data", data, "-o", snapshot};
        std::vector<std::string> load{"export", snapshot, "-f", "csv", "-o", target};
        save.insert(save.end(), key.begin(), key.end());
        load.insert(load.end(), key.begin(), key.end());
        EXPECT_EQ(RunTool(save).exit_code, 0);
        EXPECT_EQ(RunTool(load).exit_code, 0);
        return target;
    }

    std::string RandomFolder(unsigned seed) {
        const std::string data = FreshFolder("export_data");
        tables_ = RandomParts(seed, 40);
        WriteTables(data, tables_);
        return data;
    }

    std::string folder_;
    std::string definition_;
    std::string notes_;
    std::map<std::string, CsvTable> tables_;
};

void ExpectSameFiles(const std::string& left, const std::string& right) {
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(left)) {
        const std::string name = entry.path().filename().string();
        EXPECT_EQ(ReadFile(left + "/" + name), ReadFile(right + "/" + name)) << name;
        ++files;
    }
    EXPECT_GT(files, 1U);
}

// Cells that are numbers on both sides are the same numbers; all others are the same texts.
bool SameCellText(const std::string& exported, const std::string& source) {
    char* end = nullptr;
    const double value = std::strtod(source.c_str(), &end);
    const bool is_number = !source.empty() && *end == '\0' && source[0] != ' ';
    return exported == source || (is_number && std::strtod(exported.c_str(), nullptr) == value);
}

TEST_F(Export, CsvIsReadBackToTheSameValuesAndTheSameBytes) {
    for (unsigned seed = 1; seed <= 5; ++seed) {
        const std::string data = RandomFolder(seed);
        const std::string first = Made("csv", data, "first");
        ExpectSameFiles(first, Made("csv", first, "second"));
        ExpectSameFiles(first, ThroughSnapshot(first, {}));
        // Stored values are compared as numbers, to the last bit.
        const ToolRun same = RunTool({"diff", definition_, definition_, "--data-old", data, "--data-new", first});
        EXPECT_EQ(same.exit_code, 0) << same.out << same.err;
        for (const auto& [name, table] : tables_) {
            const CsvTable exported = ReadTable(first + "/" + name + ".csv");
            ASSERT_EQ(exported.size(), table.size());
            EXPECT_EQ(exported[0], table[0]);
            for (std::size_t row = 1; row < table.size(); ++row) {
                for (std::size_t c = 0; c < table[row].size(); ++c) {
                    const bool is_dates = table[0][c] == "Due" || table[0][c] == "Dates";
                    const bool is_list = table[row][c].find(';') != std::string::npos && !table[0][c].ends_with("me");
                    if (!is_dates && !is_list) {
                        EXPECT_PRED2(SameCellText, exported[row][c], table[row][c]) << name << ' ' << table[0][c];
                    }
                }
            }
        }
    }
}

TEST_F(Export, ThePlantAndItsSecretsComeBack) {
    definition_ = SourcePath("examples/plant/plant.ksdef");
    const std::string key = folder_ + "/key";
    WriteFile(key, "pass phrase\n");
    std::filesystem::permissions(key, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    const std::string data = SourcePath("examples/plant/data");
    const std::string first = Made("csv", data, "first", {"--key-file", key});
    EXPECT_EQ(ReadTable(first + "/Customers.csv")[1].back(), "gentle-otter-41");
    ExpectSameFiles(first, Made("csv", first, "second", {"--key-file", key}));
    // A field is excluded from snapshots.
    const std::string saved = ThroughSnapshot(first, {"--key-file", key});
    CsvTable orders = ReadTable(first + "/Orders.csv");
    for (std::size_t row = 1; row < orders.size(); ++row) {
        orders[row][16] = "0";
    }
    EXPECT_EQ(ReadTable(saved + "/Orders.csv"), orders);
    std::filesystem::remove(saved + "/Orders.csv");
    ExpectSameFiles(saved, first);
    const std::string locked = Made("csv", data, "locked");
    EXPECT_EQ(ReadTable(locked + "/Customers.csv")[1].back(), "(encrypted)");
    EXPECT_THAT(notes_, HasSubstr("Portal password is encrypted"));
    EXPECT_EQ(ReadFile(Made("json", data, "locked.json", {"--text"})).find("gentle-otter"), std::string::npos);
}

TEST_F(Export, JsonHoldsWhatCsvHolds) {
    const std::string data = RandomFolder(7);
    const std::string csv = Made("csv", data, "csv");
    const Json json = Json::parse(ReadFile(Made("json", data, "out.json")));
    EXPECT_EQ(json["version"], 1);
    ASSERT_EQ(json["tables"].size(), 2U);
    for (const auto& [name, unused] : tables_) {
        const CsvTable table = ReadTable(csv + "/" + name + ".csv");
        const Json& rows = json["tables"][name];
        ASSERT_EQ(rows.size() + 1, table.size());
        for (std::size_t row = 0; row < rows.size(); ++row) {
            for (std::size_t c = 0; c < table[0].size(); ++c) {
                const Json& cell = rows[row][table[0][c]];
                const std::string& text = table[row + 1][c];
                if (cell.is_string()) {
                    EXPECT_EQ(cell, text);
                } else if (cell.is_number()) {
                    EXPECT_EQ(cell.get<double>(), std::strtod(text.c_str(), nullptr));
                } else {
                    EXPECT_EQ(cell.empty(), text.empty()) << cell << text;
                }
            }
        }
    }
}

using Rows = std::vector<std::vector<std::string>>;

/// The rows of a query; NULL is "NULL", and numbers have all of their digits.
Rows Query(const std::string& path, const std::string& query) {
    Rows rows;
    sqlite3* database = nullptr;
    sqlite3_stmt* statement = nullptr;
    EXPECT_EQ(sqlite3_open_v2(path.c_str(), &database, SQLITE_OPEN_READONLY, nullptr), SQLITE_OK);
    EXPECT_EQ(sqlite3_prepare_v2(database, query.c_str(), -1, &statement, nullptr), SQLITE_OK)
        << sqlite3_errmsg(database);
    while (sqlite3_step(statement) == SQLITE_ROW) {
        rows.emplace_back();
        for (int c = 0; c < sqlite3_column_count(statement); ++c) {
            const void* const text = sqlite3_column_blob(statement, c);
            const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement, c));
            const bool is_null = sqlite3_column_type(statement, c) == SQLITE_NULL;
            rows.back().push_back(is_null ? "NULL" : std::string(static_cast<const char*>(text), size));
            if (sqlite3_column_type(statement, c) == SQLITE_FLOAT) {
                char digits[40];
                std::snprintf(digits, sizeof(digits), "%.17g", sqlite3_column_double(statement, c));
                rows.back().back() = digits;
            }
        }
    }
    sqlite3_finalize(statement);
    sqlite3_close(database);
    return rows;
}

TEST_F(Export, SqliteHoldsWhatCsvHoldsWithTypesAndKeys) {
    const std::string data = RandomFolder(8);
    const std::string csv = Made("csv", data, "csv");
    WriteFile(folder_ + "/out.db", "what was here before");
    const std::string path = Made("sqlite", data, "out.db");
    EXPECT_THAT(notes_, HasSubstr("Notes: keys are missing or not unique"));
    const CsvTable table = ReadTable(csv + "/Parts.csv");
    for (std::size_t c = 0; c < table[0].size(); ++c) {
        const Rows rows = Query(path, "SELECT \"" + table[0][c] + "\" FROM Parts ORDER BY rowid");
        ASSERT_EQ(rows.size() + 1, table.size());
        for (std::size_t row = 0; row < rows.size(); ++row) {
            const bool is_unset = rows[row][0] == "NULL";
            EXPECT_PRED2(SameCellText, is_unset ? "" : rows[row][0], table[row + 1][c]) << table[0][c];
        }
    }
    const Rows keys{{"1", "Number", "1"}, {"0", "Main", "0"}};
    EXPECT_EQ(Query(path, "SELECT pk, name, pk FROM pragma_table_info('Parts') WHERE name IN ('Number','Main')"), keys);
    EXPECT_EQ(Query(path, "SELECT \"table\", \"from\", \"to\" FROM pragma_foreign_key_list('Parts')"),
              (Rows{{"Parts", "Main", "Number"}}));
    EXPECT_EQ(Query(path, "PRAGMA foreign_key_check"), Rows{});
    EXPECT_EQ(Query(path, "PRAGMA integrity_check"), (Rows{{"ok"}}));
    EXPECT_EQ(Query(path, "SELECT DISTINCT typeof(Took) t FROM Parts ORDER BY t"), (Rows{{"null"}, {"real"}}));
    EXPECT_EQ(Query(path, "SELECT COUNT(*) FROM Notes"), (Rows{{"5"}}));
}

TEST_F(Export, XlsxHoldsWhatCsvHolds) {
    const std::string data = RandomFolder(9);
    const std::string csv = Made("csv", data, "csv");
    const std::string path = Made("xlsx", data, "out.xlsx", {"--table", "Parts"});
    const std::string cells = folder_ + "/cells.json";
    const std::string command =
        "python3 '" + SourcePath("tests/oracles/xlsx_cells.py") + "' '" + path + "' > '" + cells + "'";
    ASSERT_EQ(std::system(command.c_str()), 0) << "python3 reads the workbook";
    const Json sheet = Json::parse(ReadFile(cells))["Parts"];
    EXPECT_EQ(sheet["frozen"], 1);
    EXPECT_EQ(sheet["filter"], "A1:N41");
    EXPECT_TRUE(sheet["bold"]);
    const CsvTable table = ReadTable(csv + "/Parts.csv");
    ASSERT_EQ(sheet["rows"].size(), table.size());
    for (std::size_t row = 0; row < table.size(); ++row) {
        for (std::size_t c = 0; c + 1 < table[0].size(); ++c) { // a calculated field stands before the last one
            const Json cell = c < sheet["rows"][row].size() ? sheet["rows"][row][c] : Json();
            std::string text = table[row][c] == "\xEF\xBF\xBE" ? "\xEF\xBF\xBD" : table[row][c];
            if (cell.is_number()) {
                EXPECT_NEAR(cell.get<double>(), std::strtod(text.c_str(), nullptr), 1.0e-8) << table[0][c];
            } else if (table[0][c] == "Due" && text.size() > 19) {
                EXPECT_EQ(cell.get<std::string>().substr(0, 16), text.substr(0, 16));
            } else {
                EXPECT_EQ(cell.is_null() ? "" : cell.get<std::string>(), text) << table[0][c];
            }
        }
    }
}

TEST_F(Export, WhatCannotBeWrittenLeavesTheTargetAlone) {
    const std::string data = RandomFolder(10);
    std::filesystem::create_directories(folder_ + "/taken");
    for (const std::string form : {"csv", "json", "sqlite", "xlsx"}) {
        const std::string blocked = form == "csv" ? definition_ : folder_ + "/taken";
        const ToolRun run = RunTool({"export", definition_, "--data", data, "-f", form, "-o", blocked});
        EXPECT_EQ(run.exit_code, 3) << form << run.err;
        EXPECT_THAT(run.err, HasSubstr(blocked));
        EXPECT_EQ(ReadFile(definition_), kPartsDefinition);
    }
    for (const std::vector<std::string>& wrong :
         std::vector<std::vector<std::string>>{{"-f", "ods", "-o", folder_ + "/x"},
                                               {"-f", "csv"},
                                               {"-f", "csv", "-o", folder_ + "/x", "--table", "Nuts"}}) {
        std::vector<std::string> arguments{"export", definition_};
        arguments.insert(arguments.end(), wrong.begin(), wrong.end());
        EXPECT_EQ(RunTool(arguments).exit_code, 2);
    }
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_), {}), 2);
}

TEST(ExactText, TellsNeighbouringTimesApart) {
    std::mt19937_64 random(4);
    for (int i = 0; i < 20000; ++i) {
        const double days = std::uniform_real_distribution(-300000.0, 300000.0)(random) / (i % 4 == 0 ? 1000.0 : 1.0);
        for (const double value : {days, std::nextafter(days, 1.0e9), std::trunc(days) + 0.9999999999}) {
            std::string problem;
            ASSERT_EQ(ParseCell(ExactText(value, ValueForm::Date), ValueForm::Date, problem), value)
                << ExactText(value, ValueForm::Date) << problem;
        }
    }
    EXPECT_EQ(ExactText(46083.25, ValueForm::Date), "2026-03-02 06:00:00");
    EXPECT_EQ(ExactText(46083.0 + 0.5 / 86400.0, ValueForm::Date), "2026-03-02 00:00:00.5");
    EXPECT_EQ(ExactText(-1.0, ValueForm::Date), "");
}

TEST(SheetName, IsOneThatAWorkbookTakes) {
    UniqueNames names(kLongestSheetName);
    const std::vector<std::pair<std::string, std::string>> cases{
        {"Parts", "Parts"},
        {"PARTS", "PARTS 2"},
        {"a/b:c*[d]?\\", "a_b_c__d___"},
        {"'quoted'", "_quoted_"},
        {"history", "history_"},
        {"", "_"},
        {"A name of more than thirty-one letters", "A name of more than thirty-one "},
        {"A name of more than thirty-one digits", "A name of more than thirty-on 2"}};
    for (const auto& [table, name] : cases) {
        EXPECT_EQ(SheetName(table, names), name);
    }
    bool was_cut = false;
    EXPECT_EQ(XlsxText(std::string(40000, 'x'), was_cut).size(), kLongestCell);
    EXPECT_TRUE(was_cut);
}

class CountedSource : public ListSource {
public:
    CountedSource() : ListSource({{"Number", CellKind::Number}}) {}

    [[nodiscard]] std::size_t RowCount() const override { return kSheetRows; }
};

TEST(WriteXlsxFile, RefusesATableThatIsTooLongForASheet) {
    std::vector<ExportTable> tables(1);
    tables[0] = {"Long", std::make_unique<CountedSource>(), {{ExportType::Integer, {}}}, {}};
    const std::string path = OwnPath("long.xlsx");
    EXPECT_THAT(WriteXlsxFile(tables, path).error.value_or(Problem{}).what, HasSubstr("Long has 1048576 records"));
    EXPECT_FALSE(std::filesystem::exists(path));
}

} // namespace
} // namespace Kestrona::Tool
