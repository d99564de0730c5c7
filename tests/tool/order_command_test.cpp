// The order of printed records, columns that follow references, and paths.
#include "tool/table_folder.h"

#include <gtest/gtest.h>

namespace Kestrona::Tool {
namespace {

constexpr const char* kDefinition = R"(format Makers {
    key Number
    field Number          : INTEGER | UNIQUE
    field Name length 20  : REFERENCE | FREE FORMAT
}
format Products {
    key Number
    field Number          : INTEGER | UNIQUE
    field Name length 20  : REFERENCE | FREE FORMAT
    field Maker           : REFERENCE | DATABASE(Makers(Number))
}
format Works {
    key Number
    field Number          : INTEGER | UNIQUE
    field Town length 20  : REFERENCE | FREE FORMAT
    field Prices          : MATRIX | REAL | AUTO DIMENSION(P,Products(Number),M,Makers(Number))
}
format Kits {
    key Code
    field Code length 5   : TEXT
    field "Part of"       : REFERENCE | FAMILY(Code)
}
format Orders {
    key Number
    field Number          : INTEGER | UNIQUE
    field "Part of"       : REFERENCE | FAMILY(Number)
    field Product         : REFERENCE | DATABASE(Products(Number))
    field "Product.Name"  : REAL
    field Quantity        : INTEGER
    field "Up=Down"       : INTEGER
    field Note length 5   : REFERENCE | FREE FORMAT
    field Supplier        : REFERENCE | DATABASE(Makers(Number))
    field Works           : REFERENCE | DATABASE(Works(Number))
}
)";

// Product 9 is not there.
constexpr const char* kOrders = "Number,Part of,Product,Product.Name,Quantity,Note,Supplier,Works\n"
                                "10,,2,1.5,5,a10,7,2\n"
                                "11,10,3,0,1,a9,8,2\n"
                                "12,,2,0,5,b,8,2\n"
                                "13,10,,0,5,a,7,\n"
                                "14,12,9,0,2,a10,7,2\n";

class OrdersAndPaths : public TableFolder {
protected:
    OrdersAndPaths()
        : TableFolder(kDefinition, {{"Makers.csv", "Number,Name\n7,Oak & Co\n8,Elm\n"},
                                    {"Products.csv", "Number,Name,Maker\n2,Wheel,8\n3,Axle,\n"},
                                    {"Works.csv", "Number,Town,Prices\n2,Odra,0.5;1.5|2.5;3.5\n"},
                                    {"Kits.csv", "Code\nb\na\nc\n"},
                                    {"Orders.csv", kOrders}}) {}

    // An empty text stands for wrong usage.
    void Expect(const std::string& command, const Arguments& more, const std::string& out) const {
        const ToolRun run = Run(command, Joined({"-o", "csv"}, more));
        EXPECT_EQ(run.exit_code, out.empty() ? 2 : 0) << more.back() << run.err;
        EXPECT_EQ(run.out, out) << more.back();
    }
};

TEST_F(OrdersAndPaths, RecordsStandInTheOrderAskedFor) {
    struct Case {
        std::vector<std::string> arguments;
        const char* numbers;
    };

    const Case cases[] = {
        {{"--order", "Quantity"}, "11\n14\n10\n12\n13\n"},
        {{"--order", "Quantity:desc"}, "10\n12\n13\n14\n11\n"},
        {{"--order", "Quantity:asc,Number:desc"}, "11\n14\n13\n12\n10\n"},
        {{"--order", "Note"}, "13\n11\n10\n14\n12\n"},
        {{"--order", "Note:desc,Number:desc"}, "12\n14\n10\n11\n13\n"},
        {{"--order", "Quantity", "--group-family"}, "11\n10\n13\n14\n12\n"},
        {{"--group-family"}, "10\n11\n13\n12\n14\n"},
        {{"--order", "Quantity:desc", "--where", "Number>10", "--limit", "3"}, "12\n13\n14\n"},
        {{"--order", "Product.Name:desc", "--limit", "1"}, "10\n"}, // a field of the orders
        {{"--order", "Quantity", "--where", "Up=Down = 0", "--limit", "1"}, "11\n"},
    };
    for (const Case& c : cases) {
        std::vector<std::string> arguments{"Orders", "--columns", "Number"};
        arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
        Expect("show", arguments, std::string("Number\n") + c.numbers);
    }
    Expect("eval", {"Orders", "{#Quantity} * 2", "--order", "Quantity:desc,Note", "--limit", "2"},
           "Number,Value\n13,10\n10,10\n");
    Expect("show", {"Kits", "--group-family", "--columns", "Code"}, "Code\nb\na\nc\n"); // keys that are texts
    for (const char* wrong : {"Nix", "Quantity:up", "Product.Maker", ":desc", ""}) {
        Expect("show", {"Orders", "--order", wrong}, "");
    }
    Expect("show", {"Works", "--order", "Prices"}, "");
    Expect("show", {"Works", "--group-family"}, "");
}

TEST_F(OrdersAndPaths, ColumnsFollowReferences) {
    Expect("show", {"Orders", "--columns", "Number,Product.Maker.Name,Product.Name,Works.Prices,Works.Town"},
           "Number,Product.Maker.Name,Product.Name,Works.Prices,Works.Town\n"
           "10,Elm,1.5,0.5;1.5|2.5;3.5,Odra\n"
           "11,,0,0.5;1.5|2.5;3.5,Odra\n"
           "12,Elm,0,0.5;1.5|2.5;3.5,Odra\n"
           "13,,0,,\n"
           "14,,0,0.5;1.5|2.5;3.5,Odra\n");
    for (const char* wrong : {"Product.Nix", "Quantity.Name", "Product.", ".Name", ".", "Product.Maker.Name.Name",
                              "Works.Prices.Number", "Product..Maker"}) {
        Expect("show", {"Orders", "--columns", wrong}, "");
    }
}

TEST_F(OrdersAndPaths, TrackTellsThePathAndTheValuesAtItsEnd) {
    struct Case {
        std::vector<std::string> arguments;
        const char* path;
        const char* values;
    };

    const Case cases[] = {
        {{"Orders", "Makers.Name"},
         "1,Orders,Product,reference\n2,Products,Maker,reference\n3,Makers,Name,value\n",
         "Number,Makers.Name\n10,Elm\n11,\n12,Elm\n13,\n14,\n"},
        {{"Orders", "Orders.Note"}, "1,Orders,Note,value\n", "Number,Orders.Note\n10,a10\n11,a9\n12,b\n13,a\n14,a10\n"},
        {{"Orders", "class:FAMILY", "--order", "Note", "--limit", "2"},
         "1,Orders,Part of,value\n",
         "Number,Orders.Part of\n13,10\n11,10\n"},
        // The price of the product by the supplier.
        {{"Orders", "Works.Prices"},
         "1,Orders,Works,reference\n2,Works,Prices,\"matrix, element of Product and Supplier\"\n",
         "Number,Works.Prices\n10,0.5\n11,3.5\n12,1.5\n13,\n14,\n"},
        {{"Products", "Works.Town"},
         "1,Products,Number,value\n2,Works,Prices,reverse\n",
         "Number,Products.Number\n2,2\n3,\n"},
    };
    for (const Case& c : cases) {
        Expect("track", c.arguments, c.values);
        const ToolRun path = RunWithoutRecords("track", Joined({"-o", "csv"}, c.arguments));
        EXPECT_EQ(path.out, std::string("Step,Format,Field,How\n") + c.path);
    }
    for (const char* wrong : {"Makers.Nix", "Nix.Name", "class:Nix", "Makers", "."}) {
        Expect("track", {"Orders", wrong}, "");
    }
    const ToolRun none = Run("track", {"Makers", "Orders.Quantity", "-o", "csv"});
    EXPECT_EQ(none.exit_code, 1);
    EXPECT_EQ(none.out, "");
    EXPECT_NE(none.err.find("no way leads from Makers to Orders.Quantity"), std::string::npos) << none.err;
}

TEST_F(OrdersAndPaths, TheSamplePlantIsTrackedThroughLists) {
    const std::string plant = SourcePath("examples/plant/plant.ksdef");
    const ToolRun colours = RunTool({"track", plant, "--data", SourcePath("examples/plant/data"), "Operations",
                                     "Products.Colour", "--limit", "2", "--text"});
    EXPECT_EQ(colours.exit_code, 0) << colours.err;
    EXPECT_NE(colours.out.find("     1  ivory\n"), std::string::npos) << colours.out;
    EXPECT_NE(colours.err.find("   2  Orders      Product  reference\n"), std::string::npos) << colours.err;
    const ToolRun shifts = RunTool({"track", plant, "Routings", "Shifts.Name", "--lists", "-o", "csv"});
    EXPECT_NE(shifts.out.find("3,Calendars,Shifts,\"list, entry not named\"\n4,Shifts,Name,value\n"), std::string::npos)
        << shifts.out;
}

} // namespace
} // namespace Kestrona::Tool
