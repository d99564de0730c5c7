// What goes wrong, and the code that it has.
#include "tool/table_folder.h"

#include <sstream>
#include <utility>

namespace Kestrona::Tool {
namespace {

constexpr const char* kDefinition = R"(format Orders {
    key Number
    field Number          : INTEGER | UNIQUE
    field Product         : REFERENCE | DATABASE(Products(Number))
    field Note length 5   : TEXT
    field Sizes           : MATRIX | REAL | AUTO DIMENSION(P,Products(Number),Q,Products(Number))
}
format Products {
    key Number
    field Number          : INTEGER | UNIQUE
    field Name length 5   : TEXT
}
format Alone {
    key Number
    field Number          : INTEGER | UNIQUE
}
)";

class ErrorCodes : public TableFolder {
protected:
    ErrorCodes()
        : TableFolder(kDefinition,
                      {{"Orders.csv", "Number,Product,Note\n1,2,a\n"}, {"Products.csv", "Number,Name\n2,Wheel\n"}}) {}

    // Expects the codes that a run tells, divided by blanks, and an explanation of each.
    static void Expect(const ToolRun& run, const std::string& codes) {
        std::string told;
        for (std::size_t at = run.err.find(" [KES-"); at != std::string::npos; at = run.err.find(" [KES-", at + 1)) {
            const std::size_t number = at + std::string(" [KES-").size();
            told += (told.empty() ? "" : " ") + run.err.substr(number, run.err.find(']', at) - number);
        }
        EXPECT_EQ(told, codes) << run.err;
        EXPECT_GT(run.exit_code, 0) << run.err;
        std::istringstream each(told);
        for (std::string code; each >> code;) {
            EXPECT_EQ(RunTool({"explain", "KES-" + code}).exit_code, 0) << code;
        }
    }
};

TEST_F(ErrorCodes, OfCommandLines) {
    struct Case {
        std::string command;
        Arguments more;
        const char* code;
    };

    const std::string absent = folder_ + "/absent";
    const std::string records = folder_ + "/Orders.csv";
    const Case cases[] = {
        {"show", {"--bogus"}, "0101"},
        {"show", {}, "0102"},
        {"show", {"Orders", "-o", "clay"}, "0103"},
        {"show", {"Nuts"}, "0104"},
        {"show", {"Orders", "--columns", "Colour"}, "0105"},
        {"show", {"Orders", "--dataset", "Summer"}, "0106"},
        {"import", {"-o", definition_}, "0109"},
        {"import", {"-o", absent, "--dataset", "Summer"}, "0110"},
        {"show", {"Orders", "--where", "Number=x"}, "0111"},
        {"show", {"Orders", "--order", "Sizes"}, "0112"},
        {"track", {"Orders", "class:Nothing"}, "0113"},
        {"track", {"Alone", "Orders.Note"}, "0114"},
        {"export", {"-f", "sqlite", "-o", "-"}, "0115"},
        {"import", {"-o", absent + "/x.kes"}, "1003"},
        {"eval", {"Orders", "1 +"}, "4001"},
    };
    for (const Case& c : cases) {
        Expect(Run(c.command, c.more), c.code);
    }
    Expect(RunTool({"show", definition_, "Orders"}), "0108");
    Expect(RunTool({"show", absent, "Orders", "--data", folder_}), "1001");
    Expect(RunTool({"diff", absent, definition_}), "1001");
    Expect(RunTool({"compile", absent, "-o", absent}), "0109");
    Expect(RunTool({"compile", absent, "-o", folder_ + "/x"}), "1001");
    Expect(RunTool({"info", definition_}), "1004");
    Expect(RunTool({"show", definition_, "Orders", "--data", absent}), "1002");
    Expect(RunTool({"audit", "show", records}), "1012");
    Expect(RunTool({"explain", "KES-0001"}), "0117");
    Expect(RunTool({"encrypt", "x", "--key-file", absent}), "5002");
    Expect(RunTool({"decrypt", "x"}), "5001");
}

TEST_F(ErrorCodes, OfData) {
    const std::pair<const char*, const char*> cases[] = {
        {"Number,Colour\n1,red\n", ""}, // a warning, see below
        {"Number,Product\n1,Bolt\n", "3009"},     {"Number,Product\nx,2\n", "3004"},
        {"Number,Product\n1,2,3\n", "3005"},      {"Number,Product\n1,2\n1,2\n,2\n", "3006 3006"},
        {"Number,Note\n1,a long text\n", "3007"}, {"Number,Note\n1,\xFC\n", "3008"},
        {"Number,Sizes\n1,1;2;3\n", "3010"},      {"Number,Note\n1,\"open\n", "3013"},
    };
    for (const auto& [orders, codes] : cases) {
        Write("Orders.csv", orders);
        const ToolRun run = Run("show", {"Orders"});
        if (*codes != '\0') {
            Expect(run, codes);
        } else {
            EXPECT_NE(run.err.find("Orders.csv: warning: column 'Colour' belongs to no field"), std::string::npos);
            EXPECT_EQ(run.exit_code, 0) << run.err;
        }
    }
    Write("Orders.csv", "Number,Product\nx,2\ny,2\n");
    const ToolRun import = Run("import", {"-o", folder_ + "/x.kes"});
    Expect(import, "3004 3004 3012");
    const std::string hint = "  hint: Write the value";
    EXPECT_EQ(import.err.find(hint), import.err.rfind(hint)) << "told twice";
}

TEST_F(ErrorCodes, OfDefinitions) {
    const std::pair<const char*, const char*> cases[] = {
        {"format A {\n colour red\n}\n", " [syntax]\n"},
        {"format A {\n field N : INTEGER\n}\n", "[KES-21039]"},
        {"format A {\n key N\n field N : INTEGER\n field P : REAL | EVALUATE \"1 +\"\n}\n", "[KES-4001]\n"},
        {"format A {\n key N\n field N : INTEGER\n field T : REFERENCE | DATABASE(A(N)) | FREE FORMAT\n}\n",
         "[KES-29012]\n"},
    };
    for (const auto& [definition, code] : cases) {
        WriteFile(definition_, definition);
        const ToolRun run = RunWithoutRecords("schema", {});
        EXPECT_EQ(run.exit_code, 1);
        EXPECT_NE(run.err.find(code), std::string::npos) << run.err;
    }
}

} // namespace
} // namespace Kestrona::Tool
