#include "tool/table_folder.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace Kestrona::Tool {
namespace {

constexpr const char* kDefinition = R"(format Orders "Works orders" {
    key Number
    field Number          : INTEGER | UNIQUE
    field Quantity = 1    : REAL
    field Price           : REAL
    field Note length 9   : TEXT
    field Twice           : REAL | EVALUATE "{#Quantity} * 2"
}
)";

class Expressions : public TableFolder {
protected:
    Expressions()
        : TableFolder(kDefinition, {{"Orders.csv", "Number,Quantity,Price,Note\n"
                                                   "10,4,2.5,first\n"
                                                   "11,0,1,\n"
                                                   "12,7,0,\"a, b\"\n"
                                                   "13,9,3,first\n"}}) {}

    [[nodiscard]] ToolRun RunForCsv(const std::string& command, const Arguments& more) const {
        return Run(command, Joined({"Orders", "-o", "csv"}, more));
    }
};

TEST_F(Expressions, EvalPrintsTheKeyAndTheValueOfEachRecord) {
    struct Case {
        std::vector<std::string> arguments;
        const char* out;
    };

    const Case cases[] = {
        {{"{#Quantity} * {#Price}"}, "Number,Value\n10,10\n11,0\n12,0\n13,27\n"},
        {{"{#Twice} + 0.5", "--limit", "2"}, "Number,Value\n10,8.5\n11,0.5\n"},
        {{"1", "--where", "Quantity>4", "--where", "{#Price} == 0"}, "Number,Value\n12,1\n"},
        {{"--where", "(\"{$Note}\" == \"first\") + ({#Quantity} == 0)", "{#Number}"},
         "Number,Value\n10,10\n11,11\n13,13\n"},
        {{"\"<{$Note}>\"", "--limit", "3"}, "Number,Value\n10,<first>\n11,<>\n12,\"<a, b>\"\n"},
        {{"--text", "{#Number}: {$Note}", "--where", "Number<12"}, "Number,Value\n10,10: first\n11,11: \n"},
        {{"--text", "", "--limit", "1"}, "Number,Value\n10,\n"},
        {{"--limit", "2", "--", "-{#Quantity}"}, "Number,Value\n10,-4\n11,0\n"},
        {{"FUNC_SQRT(-1) == 0", "--where", "FUNC_LN(-1)", "--limit", "1"}, "Number,Value\n10,0\n"},
    };
    for (const Case& c : cases) {
        const ToolRun run = RunForCsv("eval", c.arguments);
        EXPECT_EQ(run.exit_code, 0) << run.err;
        EXPECT_EQ(run.out, c.out) << c.arguments[0] << run.err;
    }
}

TEST_F(Expressions, ShowAddsColumnsBehindTheFields) {
    const ToolRun run =
        RunForCsv("show", {"--columns", "Note,Number", "--add", "Worth={#Quantity}*{#Price}", "--add",
                           "Tag=\"{#Number}\"", "--add", "Is four={#Quantity}==4", "--where", "{#Quantity}"});
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(run.out, "Note,Number,Worth,Tag,Is four\nfirst,10,10,10,1\n\"a, b\",12,0,12,0\nfirst,13,27,13,0\n");
    const ToolRun json = RunForCsv("show", {"--add", "Root=FUNC_SQRT({#Quantity} - 1)", "--add", "Tag=\"{#Number}\"",
                                            "-o", "json", "--where", "Number<=11"});
    EXPECT_EQ(json.exit_code, 2); // -o twice
    const auto rows = nlohmann::json::parse(
        Run("show", {"Orders", "-o", "json", "--add", "Half={#Quantity} / 8", "--add", "Tag=\"{#Number}\""}).out);
    EXPECT_EQ(rows[0]["Half"], 0.5);
    EXPECT_EQ(rows[0]["Tag"], "10");
}

TEST_F(Expressions, WrongOnesAreToldWithACaretUnderThePlace) {
    struct Case {
        std::string command;
        std::vector<std::string> arguments;
        const char* told;
    };

    const Case cases[] = {
        {"eval", {"{#Quantity} x 2"}, "error: Unexpected symbol ' '\n    {#Quantity} x 2\n                ^\n"},
        {"eval", {"1 +"}, "error: Expecting Valid Expression\n    1 +\n       ^\n"},
        {"eval", {"1 + FUNC_FOO(1)"}, "error: Unresolved Function Name\n    1 + FUNC_FOO(1)\n        ^\n"},
        {"eval", {"{#Colour}"}, "'Colour'\n    {#Colour}\n      ^\n"},
        {"eval", {"--text", "a {#Colour}"}, "'Colour'\n    ~a {#Colour}~\n         ^\n"},
        {"eval", {""}, "error: Empty Expression String\n"},
        {"show", {"--where", "Colour=3"}, "no expression: Unexpected symbol 'C'\n    Colour=3\n    ^\n"},
        {"show", {"--where", "({#Price}"}, "no expression: ')' Missing\n    ({#Price}\n             ^\n"},
        {"show", {"--where", "\"{$Note}\""}, "is a text, which is never true"},
        {"show", {"--add", "Half={#Price}/"}, "no expression: Expecting Valid Expression\n    {#Price}/\n"},
        {"show", {"--add", "Half"}, "--add 'Half' is not of the form NAME=EXPRESSION"},
        {"show", {"--add", "Price=1"}, "gives the name 'Price' a second time"},
        {"show", {"--add", "A=1", "--add", "A=2"}, "gives the name 'A' a second time"},
    };
    for (const Case& c : cases) {
        const ToolRun run = RunForCsv(c.command, c.arguments);
        EXPECT_EQ(run.exit_code, 2) << c.told;
        EXPECT_EQ(run.out, "") << c.told;
        EXPECT_NE(WithoutCodes(run.err).find(c.told), std::string::npos) << c.told << '\n' << run.err;
    }
}

TEST_F(Expressions, OfADefinitionAreToldWithACaretToo) {
    struct Case {
        const char* expression;
        const char* told;
    };

    const Case cases[] = {
        {"{#Quantity} * * 2", "    At Position 15\n    In Expression \"{#Quantity} * * 2\"\n"
                              "                                 ^\n"},
        {"{#Twice} + 1", "    This field cannot reference Twice due to cyclic dependencies.\n"
                         "    In Expression \"{#Twice} + 1\"\n"},
    };
    for (const Case& c : cases) {
        std::string definition = kDefinition;
        const std::string sound = "{#Quantity} * 2";
        definition.replace(definition.find(sound), sound.size(), c.expression);
        WriteFile(definition_, definition);
        const ToolRun run = RunTool({"check", definition_});
        EXPECT_EQ(run.exit_code, 1);
        EXPECT_NE(run.out.find("in format 'Works orders' and field 'Twice': [resolution]\n"), std::string::npos)
            << run.out;
        EXPECT_NE(run.out.find(c.told), std::string::npos) << run.out;
    }
}

} // namespace
} // namespace Kestrona::Tool
