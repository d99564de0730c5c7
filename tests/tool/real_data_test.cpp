#include "data/csv_reader.h"
#include "tool/own_path.h"
#include "tool/run_tool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>
#include <string>
#include <tuple>

namespace Kestrona::Tool {
namespace {

using Rows = std::vector<std::map<std::string, std::string>>;

Rows ReadRows(const std::string& path) {
    Rows rows;
    std::vector<std::string> heading;
    const CsvOutcome outcome = ReadCsv(path, TextEncoding::Auto, [&](const CsvRow& row) {
        if (heading.empty()) {
            heading = row.cells;
            return true;
        }
        std::map<std::string, std::string>& cells = rows.emplace_back();
        for (std::size_t c = 0; c < heading.size(); ++c) {
            cells[heading[c]] = row.cells[c];
        }
        return true;
    });
    EXPECT_EQ(outcome.error, "") << path;
    return rows;
}

/// The same value, however many decimals or clock digits it is written with.
bool SameValue(const std::string& shown, const std::string& source) {
    if (shown == source) {
        return true;
    }
    if (source.size() == 19 && source[4] == '-' && source.ends_with(" 00:00:00")) {
        return shown == source.substr(0, 10);
    }
    return !shown.empty() && !source.empty() &&
           std::strtod(shown.c_str(), nullptr) == std::strtod(source.c_str(), nullptr);
}

/// Where the real data is; empty, with a note, where there is none.
std::string DataFolder() {
    const std::string data = SourcePath("../shared/data/adventureworks");
    if (std::filesystem::is_directory(data)) {
        return data;
    }
    std::cout << "[   NOTE   ] " << data << " is not there; nothing was checked\n";
    return {};
}

/// Runs a command over all the data and returns the rows that it prints.
Rows RunOver(const std::string& data, const std::string& command, const std::vector<std::string>& more) {
    std::vector<std::string> arguments{command,  SourcePath("examples/adventureworks/adventureworks.ksdef"),
                                       "--data", data + "/derived-csv",
                                       "--data", data + "/raw-tsv-2017",
                                       "-o",     "csv"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const ToolRun run = RunTool(arguments);
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(run.err.find("no target"), std::string::npos) << run.err;
    const std::string path = OwnPath("real_data.csv");
    WriteFile(path, run.out);
    Rows rows = ReadRows(path);
    std::filesystem::remove(path);
    return rows;
}

TEST(RealData, EveryWorkOrderAndRoutingComesBackAsItWas) {
    const std::string data = DataFolder();
    if (data.empty()) {
        return;
    }
    const std::map<std::string, std::size_t> tables{{"WorkOrder", 72591}, {"WorkOrderRouting", 67131}};
    for (const auto& [table, count] : tables) {
        const Rows shown = RunOver(data, "show", {table});
        const Rows source = ReadRows(data + "/derived-csv/Production." + table + ".csv");
        ASSERT_EQ(source.size(), count);
        ASSERT_EQ(shown.size(), count);
        for (std::size_t row = 0; row < count; ++row) {
            for (const auto& [column, value] : shown[row]) {
                const auto original = source[row].find(column);
                if (original != source[row].end()) {
                    ASSERT_PRED2(SameValue, value, original->second) << table << " row " << row << " " << column;
                }
            }
        }
    }
}

// A snapshot shows of a table what the files show, to the letter.
TEST(RealData, TablesComeBackFromASnapshot) {
    const std::string data = DataFolder();
    if (data.empty()) {
        return;
    }
    const std::string definition = SourcePath("examples/adventureworks/adventureworks.ksdef");
    const std::string snapshot = OwnPath("adventureworks.kes");
    const std::vector<std::string> folders{"--data", data + "/derived-csv", "--data", data + "/raw-tsv-2017"};
    const auto run = [&](std::vector<std::string> arguments, const std::vector<std::string>& more) {
        arguments.insert(arguments.end(), more.begin(), more.end());
        const ToolRun result = RunTool(arguments);
        EXPECT_EQ(result.exit_code, 0) << result.err;
        return result.out;
    };
    run({"import", definition, "-o", snapshot, "--compress"}, folders);
    for (const std::string table : {"Product", "BillOfMaterials", "WorkOrder", "WorkOrderRouting"}) {
        const std::string shown = run({"show", snapshot, table, "-o", "csv"}, {});
        EXPECT_GT(std::ranges::count(shown, '\n'), 500) << table;
        EXPECT_TRUE(shown == run({"show", definition, table, "-o", "csv"}, folders)) << table;
    }
    std::filesystem::remove(snapshot);
}

// The stocked quantity of the source is what the expression makes of its other columns, whichever way it is asked.
TEST(RealData, EveryWorkOrderIsStockedByItsRule) {
    const std::string data = DataFolder();
    if (data.empty()) {
        return;
    }
    const std::string rule = "{#OrderQty} - {#ScrappedQty}";
    const Rows source = ReadRows(data + "/derived-csv/Production.WorkOrder.csv");
    const Rows evaluated = RunOver(data, "eval", {"WorkOrder", rule});
    const Rows shown = RunOver(
        data, "show",
        {"WorkOrder", "--columns", "WorkOrderID,StockedByRule", "--add", "Difference=" + rule + " - {#StockedQty}"});
    ASSERT_EQ(source.size(), 72591U);
    ASSERT_EQ(evaluated.size(), source.size());
    ASSERT_EQ(shown.size(), source.size());
    for (std::size_t row = 0; row < source.size(); ++row) {
        const std::string& stocked = source[row].at("StockedQty");
        ASSERT_EQ(evaluated[row].at("WorkOrderID"), source[row].at("WorkOrderID"));
        ASSERT_PRED2(SameValue, evaluated[row].at("Value"), stocked) << row;
        ASSERT_PRED2(SameValue, shown[row].at("StockedByRule"), stocked) << row;
        ASSERT_EQ(shown[row].at("Difference"), "0") << row;
    }
    EXPECT_EQ(RunOver(data, "show", {"WorkOrder", "--where", "{#StockedQty} != (" + rule + ")"}).size(), 0U);
}

// Days in the ISO form sort like texts, and products by the text of their number.
TEST(RealData, WorkOrdersComeSortedByDueDateProductAndQuantity) {
    const std::string data = DataFolder();
    if (data.empty()) {
        return;
    }
    Rows source = ReadRows(data + "/derived-csv/Production.WorkOrder.csv");
    std::ranges::stable_sort(source, [](const auto& a, const auto& b) {
        const auto key = [](const auto& row) {
            return std::tuple(row.at("DueDate"), row.at("ProductID"), -std::stoi(row.at("OrderQty")));
        };
        return key(a) < key(b);
    });
    const Rows sorted = RunOver(data, "show", {"WorkOrder", "--order", "DueDate,ProductID,OrderQty:desc"});
    ASSERT_EQ(sorted.size(), source.size());
    for (std::size_t row = 0; row < source.size(); ++row) {
        ASSERT_EQ(sorted[row].at("WorkOrderID"), source[row].at("WorkOrderID")) << row;
    }
}

} // namespace
} // namespace Kestrona::Tool
