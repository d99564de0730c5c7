#include "data/csv_reader.h"

#include "fixtures/scratch_files.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Kestrona::Tool {
namespace {

class CsvReader : public testing::Test {
protected:
    CsvOutcome Read(const std::string& content) {
        folder_.Write("a.csv", content);
        rows_.clear();
        return ReadCsv(folder_.Path("a.csv"), TextEncoding::Auto, [&](const CsvRow& row) {
            rows_.push_back(row);
            return true;
        });
    }

    // The line of each row and its cells.
    std::string Rows() const {
        std::string text;
        for (const CsvRow& row : rows_) {
            text += std::to_string(row.line);
            for (const std::string& cell : row.cells) {
                text += '[' + cell + ']';
            }
        }
        return text;
    }

    Testing::ScratchFolder folder_;
    std::vector<CsvRow> rows_;
};

TEST_F(CsvReader, KeepsCellsAndTheLineOnWhichARowBegins) {
    struct Case {
        std::string content;
        std::string rows;
    };

    const Case cases[] = {
        {"a,b\r\n1,2", "1[a][b]2[1][2]"},
        {"\xEF\xBB\xBFn,m\n", "1[n][m]"},
        {"a,b\n\n\n1,2\n", "1[a][b]4[1][2]"},
        {"a,b\n\"x\ny\nz\",2\n3,4\n", "1[a][b]2[x\ny\nz][2]5[3][4]"},
        {"a;b\n1;\"say \"\"hi\"\"; done\"\n", "1[a][b]2[1][say \"hi\"; done]"},
        {"a\tb\n1\t5\" wide\n", "1[a][b]2[1][5\" wide]"},
        {{"a\tb\n\0x\0\t1\r\n", 11}, {"1[a][b]2[\0x\0][1]", 16}},
        {"a,b\n\"x\ny\",2\r3,4\n", "1[a][b]2[x\ny][2]3[3][4]"},
        {"", ""},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Read(c.content).error, "") << c.content;
        EXPECT_EQ(Rows(), c.rows) << c.content;
    }
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
