#include "data/csv_reader.h"

#include "tool/own_path.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace Kestrona::Tool {
namespace {

class CsvReader : public testing::Test {
protected:
    CsvOutcome Read(const std::string& content) {
        const std::string path = OwnPath("csv_reader_test.csv");
        std::ofstream(path, std::ios::binary) << content;
        rows_.clear();
        const CsvOutcome outcome = ReadCsv(path, TextEncoding::Auto, [&](const CsvRow& row) {
            rows_.push_back(row);
            return true;
        });
        std::filesystem::remove(path);
        return outcome;
    }

    std::string Joined(std::size_t row) const {
        std::string text = std::to_string(rows_[row].line);
        for (const std::string& cell : rows_[row].cells) {
            text += '[' + cell + ']';
        }
        return text;
    }

    std::vector<CsvRow> rows_;
};

TEST_F(CsvReader, KeepsCellsAndTheLineOnWhichARowBegins) {
    struct Case {
        std::string content;
        std::vector<std::string> rows;
    };

    const Case cases[] = {
        {"a,b\n1,2\n", {"1[a][b]", "2[1][2]"}},
        {"a,b\r\n1,2", {"1[a][b]", "2[1][2]"}},
        {"\xEF\xBB\xBFn,m\n", {"1[n][m]"}},
        {"a,b\n\n\n1,2\n", {"1[a][b]", "4[1][2]"}},
        {"a,b\n\"x\ny\nz\",2\n3,4\n", {"1[a][b]", "2[x\ny\nz][2]", "5[3][4]"}},
        {"a,b\n1,\"x\ny\"\n3,4\n", {"1[a][b]", "2[1][x\ny]", "4[3][4]"}},
        {"a;b\n1;\"say \"\"hi\"\"; done\"\n", {"1[a][b]", "2[1][say \"hi\"; done]"}},
        {"a\tb\n1\t5\" wide\n", {"1[a][b]", "2[1][5\" wide]"}},
        {"a\t\n\n\t1", {"1[a][]", "3[][1]"}},
        {{"a\tb\n\0x\0\t1\r\n", 11}, {"1[a][b]", {"2[\0x\0][1]", 9}}},
        {"a,b\n\"x\ny\",2\r3,4\n", {"1[a][b]", "2[x\ny][2]", "3[3][4]"}},
        {"a,b\n, \n", {"1[a][b]", "2[][ ]"}},
        {"", {}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Read(c.content).error, "") << c.content;
        ASSERT_EQ(rows_.size(), c.rows.size()) << c.content;
        for (std::size_t row = 0; row < c.rows.size(); ++row) {
            EXPECT_EQ(Joined(row), c.rows[row]) << c.content;
        }
    }
}

TEST_F(CsvReader, TellsAnUnclosedQuoteAndItsLineAndAMissingFile) {
    const CsvOutcome outcome = Read("a,b\n1,2\n3,\"open\nmore\n");
    EXPECT_FALSE(outcome.unreadable);
    EXPECT_NE(outcome.error.find("line 3"), std::string::npos) << outcome.error;
    EXPECT_EQ(rows_.size(), 2U);
    EXPECT_TRUE(ReadCsv("no/such/file.csv", TextEncoding::Auto, [](const CsvRow&) { return true; }).unreadable);
}

TEST_F(CsvReader, KeepsLineNumbersAcrossBlocks) {
    std::string content = "a,b\n";
    for (int row = 0; row < 20000; ++row) {
        content += "12345,\"line\nbreak\"\n";
    }
    ASSERT_EQ(Read(content).error, "");
    ASSERT_EQ(rows_.size(), 20001U);
    for (std::size_t row = 1; row < rows_.size(); ++row) {
        ASSERT_EQ(rows_[row].line, 2 * row);
    }
}

} // namespace
} // namespace Kestrona::Tool
