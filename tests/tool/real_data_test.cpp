#include "data/csv_reader.h"
#include "tool/own_path.h"
#include "tool/run_tool.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>

namespace Kestrona::Tool {
namespace {

using Rows = std::vector<std::map<std::string, std::string>>;

Rows ReadRows(const std::string& path) {
    Rows rows;
    std::vector<std::string> heading;
    const CsvOutcome outcome = ReadCsv(path, [&](const CsvRow& row) {
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

TEST(RealData, EveryWorkOrderAndRoutingComesBackAsItWas) {
    const std::string data = SourcePath("../shared/data/adventureworks");
    if (!std::filesystem::is_directory(data)) {
        std::cout << "[   NOTE   ] " << data << " is not there; nothing was checked\n";
        return;
    }
    const std::map<std::string, std::size_t> tables{{"WorkOrder", 72591}, {"WorkOrderRouting", 67131}};
    for (const auto& [table, count] : tables) {
        const ToolRun run = RunTool({"show", SourcePath("examples/adventureworks/adventureworks.ksdef"), "--data",
                                     data + "/derived-csv", "--data", data + "/raw-tsv-2017", table, "-o", "csv"});
        ASSERT_EQ(run.exit_code, 0) << run.err;
        EXPECT_EQ(run.err.find("no target"), std::string::npos) << run.err;
        const std::string path = OwnPath("real_data_" + table + ".csv");
        WriteFile(path, run.out);
        const Rows shown = ReadRows(path);
        std::filesystem::remove(path);
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

} // namespace
} // namespace Kestrona::Tool
