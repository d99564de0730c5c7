#include "tool/run_tool.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>

namespace Kestrona::Tool {
namespace {

using Json = nlohmann::json;

// One rule of docs/lint-rules.md: its severity and its two definitions.
struct DocumentedRule {
    std::string severity;
    std::vector<std::string> definitions;
};

std::map<std::string, DocumentedRule> ReadRules() {
    std::ifstream file(SourcePath("docs/lint-rules.md"));
    std::map<std::string, DocumentedRule> rules;
    DocumentedRule* rule = nullptr;
    bool in_block = false;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("## ")) {
            rule = &rules[line.substr(3)];
        } else if (line.starts_with("```")) {
            in_block = line == "```ksdef";
            if (in_block) {
                rule->definitions.emplace_back();
            }
        } else if (in_block) {
            rule->definitions.back() += line + '\n';
        } else if (rule != nullptr && rule->severity.empty() && !line.empty()) {
            rule->severity = line.substr(0, line.find('.'));
            rule->severity[0] = static_cast<char>(std::tolower(rule->severity[0]));
        }
    }
    return rules;
}

class Lint : public testing::Test {
protected:
    void SetUp() override {
        folder_ = FreshFolder("lint");
        definition_ = folder_ + "/a plant.ksdef";
    }

    void TearDown() override { std::filesystem::remove_all(folder_); }

    Json Check(const std::string& definition, const char* form = "json") {
        WriteFile(definition_, definition);
        const ToolRun run = RunTool({"check", definition_, "-o", form});
        EXPECT_EQ(run.err, "");
        const Json report = Json::parse(run.out, nullptr, false);
        EXPECT_FALSE(report.is_discarded()) << run.out;
        return report;
    }

    static std::vector<Json> FindingsOf(const Json& report, const std::string& rule) {
        std::vector<Json> findings;
        std::copy_if(report["findings"].begin(), report["findings"].end(), std::back_inserter(findings),
                     [&](const Json& finding) { return finding["rule"] == rule; });
        return findings;
    }

    std::string folder_;
    std::string definition_;
};

TEST_F(Lint, EachDocumentedExampleIsFoundAndItsMendedFormIsNot) {
    for (const auto& [id, rule] : ReadRules()) {
        ASSERT_EQ(rule.definitions.size(), 2U) << id;
        const std::vector<Json> found = FindingsOf(Check(rule.definitions[0]), id);
        ASSERT_FALSE(found.empty()) << id;
        for (const Json& finding : found) {
            EXPECT_EQ(finding["severity"], rule.severity) << id;
            EXPECT_EQ(finding["file"], definition_) << id;
            EXPECT_GE(finding["line"], 1) << id;
            EXPECT_NE(finding["message"], "") << id;
            EXPECT_NE(finding["hint"], "") << id;
            const std::string code = finding["code"];
            EXPECT_TRUE(id == "resolution" ? code.starts_with("KES-") : code == id) << code;
        }
        const Json mended = Check(rule.definitions[1]);
        EXPECT_TRUE(FindingsOf(mended, id).empty()) << id << mended.dump(1);
        EXPECT_EQ(mended["errors"], 0) << id << mended.dump(1);
    }
}

// What must not be reported although it comes near.
TEST_F(Lint, RulesPassOverWhatIsRight) {
    const char* const definition = R"ks(define Unused = 4
help 3 "shown by an exact text"
table Words { "a" = 1 }
format Plant "The works" {
    key Number
    field Number : INTEGER | UNIQUE | SYSTEMDB
    field "Hash#1" : REAL | HIDDEN
    field Sum : REAL | EVALUATE "{#Hash#1} + FUNC_MAX(({#Number} > 1), (2 && 3))"
    field Exact classification "INTEGER | HELPPOPUPID(3) | TABLE(Words)"
    field Several : INTEGER | REMOTE(Plant(Number)) | REMOTE(Plant(Sum)) | STRING_DEF "Sum"
    field Label : TEXT | EVALUATE "{$Number} > 1 && so on"
    field Late : DURATION | FORMAT(4.1)
    field Low : INTEGER | SUBSTITUTE(1->"low") | SUBSTITUTX(1->"low") | SUBSTITUTX(1->"small") | STRING_DEF "small"
    field Own : REFERENCE | DATABASE(Plant(Number)) | LOOKUP SOURCE(Other(Number))
    field Matrix = 3 : MATRIX | REAL | AUTO DIMENSION(A,Plant(Number),B,Other(Number))
    field Texts : MATRIX | REFERENCE | FREE FORMAT | STRING STORAGE(Other(Name)) | DATA LIST
}
format Other {
    associated Plant
    key Number
    field Number : INTEGER | UNIQUE | INHERIT FROM PARENT
    field Name length 5 : TEXT | FF_STRING_DEF "none"
}
)ks";
    const Json report = Check(definition);
    EXPECT_EQ(report["findings"].size(), 0U) << report.dump(1);
    EXPECT_EQ(report["formats"], 2);
    EXPECT_EQ(report["fields"], 13);
}

TEST_F(Lint, FailuresOfTheResolutionPointAtTheirField) {
    struct Case {
        const char* field;
        const char* place; // format(field)
        int line;
    };

    const Case cases[] = {
        {"field X : MATRIX | RELATED LIST(Number)", "Orders(X)", 4},
        {"field X : REAL | LOOKUP SOURCE(Orders(Number)) | LOOKUP UPDATE(Number)", "Orders(X)", 4},
        {"field X : REFERENCE | DATABASE(Files(Number))", "Orders(X)", 4},
        {"field \"It's\" : MATRIX | AUTO RESTRICT(Number)\n field X : MATRIX | ASSOCIATE(It's)", "Orders(X)", 5},
        {"field X : INTEGER | UPDATE REFERENCE(X) | SOURCE(Orders(Number)) | UNCHECKED", "Orders(X)", 4},
    };
    for (const Case& c : cases) {
        const Json report =
            Check(std::string("format Orders {\n key Number\n field Number : INTEGER | UNIQUE\n ") + c.field +
                  "\n}\nformat Files {\n extension dat\n key Number\n" + " field Number : INTEGER | UNIQUE\n}\n");
        const std::vector<Json> found = FindingsOf(report, "resolution");
        ASSERT_EQ(found.size(), 1U) << c.field << report.dump(1);
        const std::string place =
            found[0]["format"].get<std::string>() + "(" + found[0]["field"].get<std::string>() + ")";
        EXPECT_EQ(place, c.place) << found[0].dump(1);
        EXPECT_EQ(found[0]["line"], c.line) << found[0].dump(1);
    }
}

TEST_F(Lint, SarifLogsHoldTogether) {
    std::set<std::string> expected;
    for (const auto& [id, rule] : ReadRules()) {
        const Json log = Check(rule.definitions[0], "sarif");
        EXPECT_EQ(log["version"], "2.1.0");
        EXPECT_TRUE(log["$schema"].get<std::string>().ends_with("sarif-2.1.0.json"));
        ASSERT_EQ(log["runs"].size(), 1U);
        const Json& rules = log["runs"][0]["tool"]["driver"]["rules"];
        EXPECT_EQ(log["runs"][0]["tool"]["driver"]["name"], "kestrona");
        expected.clear();
        for (const Json& each : rules) {
            expected.insert(each["id"].get<std::string>());
            EXPECT_TRUE(each["shortDescription"]["text"].is_string() && each["help"]["text"].is_string());
        }
        EXPECT_EQ(expected.size(), rules.size());
        ASSERT_FALSE(log["runs"][0]["results"].empty());
        for (const Json& result : log["runs"][0]["results"]) {
            const Json& named = rules.at(result["ruleIndex"].get<std::size_t>());
            EXPECT_EQ(named["id"], result["ruleId"]);
            EXPECT_EQ(named["defaultConfiguration"]["level"], result["level"]);
            EXPECT_NE(result["message"]["text"], "");
            const Json& physical = result["locations"].at(0)["physicalLocation"];
            const auto uri = physical["artifactLocation"]["uri"].get<std::string>();
            EXPECT_TRUE(uri.starts_with("file:///") && uri.ends_with("/a%20plant.ksdef")) << uri;
            EXPECT_GE(physical["region"]["startLine"], 1);
            EXPECT_GE(physical["region"]["startColumn"], 1);
        }
    }
    std::set<std::string> documented;
    for (const auto& [id, rule] : ReadRules()) {
        documented.insert(id);
    }
    EXPECT_EQ(documented, expected);
}

TEST_F(Lint, FindingsComeInReadingOrderAndDecideTheExitCode) {
    WriteFile(folder_ + "/more.ksdef", "format B {\n key N\n field N : INTEGER\n}\n");
    WriteFile(definition_, "include \"more.ksdef\"\nformat A {\n key N\n field N : INTEGER\n field T : TEXT\n}\n");
    const ToolRun run = RunTool({"check", definition_});
    EXPECT_EQ(run.exit_code, 0);
    std::istringstream lines(run.out);
    std::vector<std::string> starts;
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with(' ')) {
            starts.push_back(line.substr(folder_.size() + 1, line.find(' ', folder_.size() + 9) - folder_.size() - 1));
        }
    }
    EXPECT_EQ(starts, (std::vector<std::string>{"a plant.ksdef:2:8:", "a plant.ksdef:4:8:", "a plant.ksdef:5:8:",
                                                "more.ksdef:1:8:", "more.ksdef:3:8:", "a plant.ksdef:"}))
        << run.out;
    EXPECT_EQ(RunTool({"check", "--strict", definition_}).exit_code, 1);
    EXPECT_EQ(RunTool({"check", "--strict", SourcePath("examples/plant/plant.ksdef")}).exit_code, 0);
    EXPECT_EQ(RunTool({"check", "--strict", SourcePath("examples/adventureworks/adventureworks.ksdef")}).exit_code, 0);
}

} // namespace
} // namespace Kestrona::Tool
