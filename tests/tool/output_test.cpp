#include "data/csv_reader.h"
#include "output/table_writer.h"
#include "output/text_table.h"
#include "tool/own_path.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

namespace Kestrona::Tool {
namespace {

std::string Written(const TableSource& source, OutputForm form) {
    const std::string path = OwnPath("output_test.txt");
    std::FILE* file = std::fopen(path.c_str(), "wb");
    EXPECT_TRUE(WriteTable(source, form, file));
    std::fclose(file);
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    std::filesystem::remove(path);
    return text.str();
}

struct Awkward : ListSource {
    Awkward() : ListSource({{"Name"}, {"Count", CellKind::Number}}) {
        AddRow({"plain", "1"});
        AddRow({"a,b \"c\"\nd", "-2.5"});
        AddRow({"\xE6\xBC\xA2\xE5\xAD\x97 | bar", ""});
        AddRow({"", "1e300"});
    }
};

TEST(Output, CsvIsReadBackAsItWas) {
    const Awkward source;
    const std::string path = OwnPath("output_back.csv");
    std::ofstream(path, std::ios::binary) << Written(source, OutputForm::Csv);
    std::vector<std::vector<std::string>> rows;
    EXPECT_EQ(ReadCsv(path, TextEncoding::Auto,
                      [&](const CsvRow& row) {
                          rows.push_back(row.cells);
                          return true;
                      })
                  .error,
              "");
    std::filesystem::remove(path);
    ASSERT_EQ(rows.size(), source.RowCount() + 1);
    for (std::size_t r = 0; r < source.RowCount(); ++r) {
        for (std::size_t c = 0; c < 2; ++c) {
            EXPECT_EQ(rows[r + 1][c], source.Cell(r, c));
        }
    }
}

TEST(Output, JsonFormsHoldTheSameObjects) {
    const Awkward source;
    const auto array = nlohmann::json::parse(Written(source, OutputForm::Json));
    ASSERT_EQ(array.size(), source.RowCount());
    EXPECT_EQ(array[0]["Count"], 1);
    EXPECT_EQ(array[1]["Count"], -2.5);
    EXPECT_TRUE(array[2]["Count"].is_null());
    EXPECT_EQ(array[3]["Count"], 1e300);
    std::istringstream lines(Written(source, OutputForm::JsonLines));
    std::string line;
    for (const auto& object : array) {
        ASSERT_TRUE(std::getline(lines, line));
        EXPECT_EQ(nlohmann::json::parse(line), object);
    }
}

TEST(Output, EmptyTablesAreWellFormed) {
    const ListSource empty({{"A"}});
    EXPECT_TRUE(nlohmann::json::parse(Written(empty, OutputForm::Json)).empty());
    EXPECT_EQ(Written(empty, OutputForm::JsonLines), "");
    EXPECT_EQ(Written(empty, OutputForm::Csv), "A\n");
}

TEST(Output, TableLinesAlignWhateverTheScript) {
    std::istringstream lines(Written(Awkward(), OutputForm::Table));
    std::string heading;
    std::string rule;
    std::getline(lines, heading);
    std::getline(lines, rule);
    EXPECT_EQ(DisplayWidth(heading), DisplayWidth(rule));
    for (std::string line; std::getline(lines, line);) {
        EXPECT_LE(DisplayWidth(line), DisplayWidth(rule)) << line;
    }
}

TEST(Output, FittedTextsNeverPassTheirWidth) {
    EXPECT_EQ(FitToWidth("a\tb\x7F\xC2\x85", 9), "a b  ") << "control characters take a cell";
    std::mt19937 random(1);
    for (int round = 0; round < 2000; ++round) {
        std::string text;
        for (std::size_t i = random() % 20; i > 0; --i) {
            text += static_cast<char>(random());
        }
        for (std::size_t width = 0; width < 12; ++width) {
            ASSERT_LE(DisplayWidth(FitToWidth(text, width)), std::max<std::size_t>(width, 1));
        }
        ASSERT_EQ(DisplayWidth(FitToWidth(text, 1000)), DisplayWidth(text));
    }
}

} // namespace
} // namespace Kestrona::Tool
