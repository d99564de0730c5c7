#include "tool/random_parts.h"

#include "tool/run_tool.h"

#include <cstdio>
#include <random>

namespace Kestrona::Tool {
namespace {

const std::vector<std::string> kTexts{"",
                                      "plain",
                                      " blanks around ",
                                      "comma, semicolon; bar|",
                                      "\"quoted\"",
                                      "\"",
                                      "two\nlines",
                                      "ends with\r",
                                      "\r\n",
                                      "a\ttab",
                                      "𝄞 and 𠀀",
                                      "Größe",
                                      "=1+1",
                                      "007",
                                      "-1",
                                      "_x0041_",
                                      "\x01",
                                      "\xEF\xBF\xBE",
                                      "null",
                                      "'"};

std::string Number(double value) {
    char text[40];
    std::snprintf(text, sizeof(text), "%.17g", value);
    return text;
}

class PartsMaker {
public:
    explicit PartsMaker(unsigned seed) : random_(seed) {}

    int Below(int end) { return std::uniform_int_distribution(0, end - 1)(random_); }

    std::string Real() { return Number(std::normal_distribution(0.0, 1.0e6)(random_)); }

    std::string Text() { return kTexts[static_cast<std::size_t>(Below(static_cast<int>(kTexts.size())))]; }

    // Unset, a day, a time to the second, a time of day, or a number of days with all of its decimals.
    std::string Date() {
        char text[80];
        std::snprintf(text, sizeof(text), "%04d-%02d-%02d %02d:%02d:%02d", 1850 + Below(400), 1 + Below(12),
                      1 + Below(28), Below(24), Below(60), 1 + Below(59));
        const std::string kinds[] = {"", std::string(text, 10), text, "1899-12-30 06:00:00",
                                     Number(std::uniform_real_distribution(-1000.0, 90000.0)(random_))};
        return kinds[Below(5)];
    }

    std::string Duration() { return Below(3) == 0 ? "" : Number(Below(100) / 7.0); }

    template <typename Make>
    std::string List(int size, char separator, const Make& make) {
        std::string text;
        for (int i = 0; i < size; ++i) {
            text += (i == 0 ? "" : std::string(1, separator)) + make();
        }
        return text;
    }

private:
    std::mt19937 random_;
};

std::string InQuotes(const std::string& cell) {
    std::string text = "\"";
    for (const char c : cell) {
        text += c == '"' ? std::string("\"\"") : std::string(1, c);
    }
    return text + '"';
}

} // namespace

const char* const kPartsDefinition = R"(table Units { "kg" = 1 "m" = 2 }
format Parts {
    key Number
    field Number                : INTEGER | UNIQUE
    field Name length 60        : TEXT
    field "Size; a;b;c;d;e;f;g;h;i;j;k;l;m" : REAL
    field Due                   : DATE AND TIME
    field Took                  : DURATION
    field Done                  : TOGGLE
    field Unit = 1              : REFERENCE | TABLE(Units)
    field Main                  : REFERENCE | DATABASE(Parts(Number))
    field Uses                  : MATRIX | REFERENCE | AUTO LIST(Parts(Number)) | DATABASE(Parts(Number))
    field Dates                 : MATRIX | DATE AND TIME | DATA LIST
    field Setup                 : MATRIX | DURATION | AUTO DIMENSION(From,Parts(Number),To,Notes(Code))
    field Shared                : MATRIX | REAL | AUTO DIMENSION(From,Notes(Code),To,Notes(Code)) | COMMON MATRIX
    field Double                : REAL | EVALUATE "{#Took} * 2"
    field Last length 30        : TEXT
}
format Notes {
    key Code
    field Code length 60        : TEXT
}
)";

std::map<std::string, CsvTable> RandomParts(unsigned seed, int parts) {
    PartsMaker make(seed);
    CsvTable notes{{"Code"}};
    for (int i = 0; i < 5; ++i) {
        notes.push_back({make.Text()});
    }
    CsvTable table{{"Number", "Name", "Size; a;b;c;d;e;f;g;h;i;j;k;l;m", "Due", "Took", "Done", "Unit", "Main", "Uses",
                    "Dates", "Setup", "Shared", "Last"}};
    const auto key = [&] {
        return std::to_string(1 + make.Below(parts));
    };
    for (int i = 0; i < parts; ++i) {
        const auto date = [&] {
            const std::string text = make.Date();
            return text.empty() ? std::string("-1") : text;
        };
        const auto row = [&] {
            return make.List(5, ';', [&] { return make.Real(); });
        };
        table.push_back({std::to_string(i + 1), make.Text(), make.Real(), make.Date(), make.Duration(),
                         std::to_string(make.Below(2)), std::to_string(1 + make.Below(2)),
                         make.Below(2) == 0 ? "" : key(), make.List(make.Below(4), ';', key),
                         make.List(make.Below(4), ';', date), make.List(5, ';', [&] { return make.Real(); }),
                         i == 0 ? make.List(5, '|', row) : "", make.Text()});
    }
    return {{"Parts", table}, {"Notes", notes}};
}

void WriteTables(const std::string& folder, const std::map<std::string, CsvTable>& tables) {
    for (const auto& [name, table] : tables) {
        std::string text;
        for (const auto& row : table) {
            for (std::size_t c = 0; c < row.size(); ++c) {
                text += (c == 0 ? "" : ",") + InQuotes(row[c]);
            }
            text += '\n';
        }
        WriteFile(folder + "/" + name + ".csv", text);
    }
}

CsvTable ReadTable(const std::string& path) {
    const std::string text = ReadFile(path);
    CsvTable table;
    bool in_quotes = false;
    bool row_begins = true;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (row_begins) {
            table.push_back({""});
            row_begins = false;
        }
        std::string& cell = table.back().back();
        if (text[i] == '"' && in_quotes && i + 1 < text.size() && text[i + 1] == '"') {
            cell += text[++i];
        } else if (text[i] == '"') {
            in_quotes = !in_quotes;
        } else if (text[i] == ',' && !in_quotes) {
            table.back().emplace_back();
        } else if (text[i] == '\n' && !in_quotes) {
            row_begins = true;
        } else {
            cell += text[i];
        }
    }
    return table;
}

} // namespace Kestrona::Tool
