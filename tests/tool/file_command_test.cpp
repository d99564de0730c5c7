#include "tool/table_folder.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <filesystem>

namespace Kestrona::Tool {
namespace {

using nlohmann::json;
using Arguments = std::vector<std::string>;

constexpr const char* kKeyVariable = "KESTRONA_KEY";
/// The field of the plant that is not saved.
constexpr const char* kUnsavedField = "Sequence on screen";

json RunForJson(const Arguments& arguments) {
    const ToolRun run = RunTool(Joined(arguments, {"-o", "json"}));
    EXPECT_EQ(run.exit_code, 0) << arguments[0] << run.err;
    const json all = run.exit_code == 0 ? json::parse(run.out) : json();
    return all.is_object() ? all.at("rows") : all;
}

/// The sample plant in every form.
class PlantFiles : public testing::Test {
protected:
    static void SetUpTestSuite() {
        setenv(kKeyVariable, "a pass phrase for tests", 1);
        folder_ = FreshFolder("files");
        definition_ = SourcePath("examples/plant/plant.ksdef");
        data_ = SourcePath("examples/plant/data");
        snapshot_ = folder_ + "/plant.kes";
        compressed_ = folder_ + "/plant.kez";
        compiled_ = folder_ + "/plant.cnf";
        for (const Arguments& arguments : {Arguments{"import", definition_, "--data", data_, "-o", snapshot_},
                                           {"import", definition_, "--data", data_, "-o", compressed_, "--compress"},
                                           {"compile", definition_, "-o", compiled_}}) {
            const ToolRun run = RunTool(arguments);
            ASSERT_EQ(run.exit_code, 0) << arguments[0] << run.err;
            EXPECT_EQ(run.out, "");
        }
    }

    static void TearDownTestSuite() {
        std::filesystem::remove_all(folder_);
        unsetenv(kKeyVariable);
    }

    static std::vector<std::string> Tables() {
        std::vector<std::string> names;
        for (const auto& row : RunForJson({"schema", definition_})) {
            names.push_back(row["Format"]);
        }
        EXPECT_GE(names.size(), 8U);
        return names;
    }

    static inline std::string folder_, definition_, data_, snapshot_, compressed_, compiled_;
};

TEST_F(PlantFiles, EveryFormShowsTheSameRecords) {
    for (const std::string& table : Tables()) {
        json expected = RunForJson({"show", definition_, table, "--data", data_});
        EXPECT_EQ(RunForJson({"show", compiled_, table, "--data", data_}), expected) << table;
        for (auto& row : expected) {
            if (row.contains(kUnsavedField)) {
                row[kUnsavedField] = 0;
            }
        }
        EXPECT_FALSE(expected.empty()) << table;
        EXPECT_EQ(RunForJson({"show", snapshot_, table}), expected) << table;
        EXPECT_EQ(RunForJson({"show", compressed_, table}), expected) << table;
    }
    const ToolRun diff = RunTool({"diff", definition_, "--data-old", data_, compressed_});
    EXPECT_EQ(diff.exit_code, 0) << diff.out << diff.err;
}

TEST_F(PlantFiles, EveryCommandTakesEveryForm) {
    const Arguments records[] = {
        {"show", "Orders", "--columns", "Number,Product.Name,Label", "--where", "Quantity>200", "--order",
         "Due date:desc", "--limit", "3", "-o", "markdown"},
        {"eval", "Orders", "{#Quantity} * {#Price}", "-o", "csv"},
        {"track", "Operations", "Products.Colour", "-o", "csv"},
    };
    const Arguments schemas[] = {{"schema"}, {"schema", "Orders"}, {"schema", "Plant", "Speeds"}, {"graph"}, {"docs"}};
    const auto run_over = [](Arguments arguments, const std::string& file, const Arguments& more) {
        arguments.insert(arguments.begin() + 1, file);
        const ToolRun run = RunTool(Joined(arguments, more));
        EXPECT_EQ(run.exit_code, 0) << arguments[0] << file << run.err;
        EXPECT_NE(run.out, "");
        return arguments[0] == "docs" ? run.out.substr(run.out.find('\n')) : run.out; // its title names the file
    };
    for (const Arguments& command : records) {
        const std::string expected = run_over(command, definition_, {"--data", data_});
        EXPECT_EQ(run_over(command, compiled_, {"--data", data_}), expected);
        EXPECT_EQ(run_over(command, snapshot_, {}), expected);
    }
    for (const Arguments& command : schemas) {
        const std::string expected = run_over(command, definition_, {});
        EXPECT_EQ(run_over(command, compiled_, {}), expected);
        EXPECT_EQ(run_over(command, compressed_, {}), expected);
    }
}

/// The value of a property that `info` prints.
std::string Property(const std::string& file, const std::string& name) {
    for (const auto& row : RunForJson({"info", file})) {
        if (row["Property"] == name) {
            return row["Value"];
        }
    }
    return {};
}

TEST_F(PlantFiles, InfoTellsWhatAFileHolds) {
    std::size_t records = 0;
    std::uintmax_t end = 0;
    for (const auto& table : RunForJson({"info", snapshot_, "--tables"})) {
        const auto shown = RunForJson({"show", snapshot_, table["Table"]});
        EXPECT_EQ(table["Records"], shown.size());
        EXPECT_EQ(table["Fields"], RunForJson({"schema", snapshot_, table["Table"]}).size());
        records += shown.size();
        EXPECT_GT(table["Offset"].get<std::uintmax_t>(), end);
        end = table["Offset"].get<std::uintmax_t>() + table["Size"].get<std::uintmax_t>();
    }
    const auto size = std::filesystem::file_size(snapshot_);
    const auto compressed_size = std::filesystem::file_size(compressed_);
    EXPECT_LT(end, size);
    EXPECT_LT(compressed_size, size);
    for (const auto& [file, name, value] :
         std::vector<std::array<std::string, 3>>{{snapshot_, "Kind", "snapshot"},
                                                 {snapshot_, "Records", std::to_string(records)},
                                                 {snapshot_, "File", std::to_string(size) + " bytes"},
                                                 {compressed_, "Kind", "compressed snapshot"},
                                                 {compressed_, "File", std::to_string(compressed_size) + " bytes"},
                                                 {compressed_, "Decompressed", std::to_string(size) + " bytes"},
                                                 {compiled_, "Kind", "compiled definition"},
                                                 {compiled_, "Version", "15.0"},
                                                 {compiled_, "Can be read", "yes"}}) {
        EXPECT_EQ(Property(file, name), value) << file;
    }
    EXPECT_NE(RunTool({"info", snapshot_}).out.find("\nOrders "), std::string::npos); // people see both at once
}

TEST_F(PlantFiles, DamageIsToldByItsKind) {
    const std::string whole = ReadFile(snapshot_);
    const std::string stream = ReadFile(compressed_);
    const std::string compiled = ReadFile(compiled_);
    const std::size_t text = 1000; // in the first of the texts, which are under a checksum
    const std::size_t version = compiled.find('\x1a') + 2;
    const auto changed = [](std::string bytes, std::size_t place, char byte) {
        bytes[place] = byte;
        return bytes;
    };

    struct Case {
        std::string bytes;
        const char* told; // by show
        int show;
        int info; // which looks at the beginning only
    };

    const Case cases[] = {
        {whole.substr(0, 40), "ends too early at offset 34: found 6 bytes, expected 16 bytes", 4, 4},
        {whole.substr(0, whole.size() - 9), "ends too early at offset", 4, 0},
        {changed(whole, 0, 'X'), "is another kind of file at offset 23: found a zero byte", 3, 3},
        {changed(whole, 22, '\x07'), "version that is not read at offset 22: found layout 7, expected layout 1", 3, 3},
        {changed(whole, text, static_cast<char>(~whole[text])), "is damaged at offset", 4, 0},
        {changed(whole, 53, '\x7f'), "ends too early at offset", 4, 4},
        {stream.substr(0, stream.size() - 9), "found its end, expected more compressed data", 4, 4},
        {changed(stream, 0, 'X'), "is another kind of file", 3, 3},
        {changed(stream, 3000, static_cast<char>(~stream[3000])), "is damaged", 4, 4},
        {changed(compiled, version + 4, '\x10'), "found version 16.0, expected version 15.0", 3, 0},
        {changed(compiled, version + 4, '\x0e'), "found version 14.0, expected version 15.0", 3, 0},
        {compiled.substr(0, version + 6), "ends too early at offset", 4, 4},
        {changed(compiled, text, static_cast<char>(~compiled[text])), "is damaged", 4, 0},
        {compiled.substr(0, compiled.size() - 9), "ends too early at offset", 4, 0},
    };
    const std::string path = folder_ + "/broken";
    int number = 0;
    for (const Case& c : cases) {
        ++number;
        WriteFile(path, c.bytes);
        const ToolRun show = RunTool({"show", path, "Orders", "--data", data_});
        EXPECT_EQ(show.exit_code, c.show) << number << show.err;
        EXPECT_EQ(show.out, "");
        EXPECT_NE(show.err.find("kestrona: error: '" + path + "' "), std::string::npos) << number << show.err;
        EXPECT_NE(show.err.find(c.told), std::string::npos) << number << show.err;
        EXPECT_EQ(RunTool({"info", path}).exit_code, c.info) << number;
        EXPECT_EQ(RunTool({"diff", path, path}).exit_code, c.show) << number;
    }
}

TEST_F(PlantFiles, WrongUseIsRefusedAndWritesNothing) {
    const std::string target = folder_ + "/KSSERVER.LST"; // the lists of an earlier extraction stay, too
    const std::string absent = folder_ + "/absent";
    WriteFile(target, "as it was");
    const std::string trailing = folder_ + "/trailing";
    WriteFile(trailing, ReadFile(compressed_) + "more");

    struct Case {
        Arguments arguments;
        int code;
    };

    const Case cases[] = {
        {{"show", snapshot_, "Orders", "--data", data_}, 2},
        {{"show", snapshot_, "Orders", "--dataset", "Nothing"}, 2},
        {{"show", definition_, "Orders", "--data", data_, "--dataset", "Nothing"}, 2},
        {{"show", compiled_, "Orders"}, 2},
        {{"check", snapshot_}, 3},
        {{"check", compiled_}, 3},
        {{"translate", "extract", compressed_, "-o", folder_}, 3},
        {{"info", compiled_, "--tables"}, 2},
        {{"info", definition_}, 3},
        {{"info", absent}, 3},
        {{"compile", compiled_, "-o", target}, 3},
        {{"compile", definition_, "-o", definition_}, 2},
        {{"compile", definition_, "-o", absent + "/x"}, 3},
        {{"compile", absent, "-o", target}, 3},
        {{"import", snapshot_, "--data", data_, "-o", target}, 2},
        {{"import", definition_, "-o", target}, 2},
        {{"import", definition_, "--data", absent, "-o", target}, 3},
        {{"import", definition_, "--data", data_, "-o", absent + "/x"}, 3},
        {{"import", definition_, "--data", data_, "-o", target, "--dataset", "X"}, 2},
        {{"import", definition_, "--data", data_, "-o", target, "--dataset", "X=" + absent}, 3},
        {{"import", definition_, "--data", data_, "-o", target, "--dataset", "X=a", "--dataset", "x=b"}, 2},
        {{"compress", snapshot_, folder_ + "/./plant.kes"}, 2},
        {{"compress", folder_, target}, 3},
        {{"compress", snapshot_, absent + "/x"}, 3},
        {{"decompress", absent, target}, 3},
        {{"decompress", snapshot_, target}, 3},
        {{"decompress", trailing, target}, 4},
    };
    for (const Case& c : cases) {
        const ToolRun run = RunTool(c.arguments);
        EXPECT_EQ(run.exit_code, c.code) << c.arguments[0] << ' ' << c.arguments[1] << '\n' << run.err;
        EXPECT_NE(run.err, "") << c.arguments[0];
        EXPECT_EQ(run.out, "") << c.arguments[0];
        EXPECT_EQ(ReadFile(target), "as it was") << c.arguments[0];
    }
}

TEST_F(PlantFiles, CompressedFilesComeBackAsTheyWere) {
    const std::string target = folder_ + "/target";
    for (const std::string& bytes : {std::string(), std::string("x"), ReadFile(snapshot_), std::string(100000, '\0')}) {
        WriteFile(folder_ + "/source", bytes);
        EXPECT_EQ(RunTool({"compress", folder_ + "/source", folder_ + "/packed"}).exit_code, 0);
        EXPECT_EQ(RunTool({"decompress", folder_ + "/packed", target}).exit_code, 0);
        EXPECT_EQ(ReadFile(target), bytes);
        // No beginning of a stream passes for the whole, and none replaces the target.
        const std::string packed = ReadFile(folder_ + "/packed");
        for (const std::size_t length : {std::size_t{0}, std::size_t{1}, packed.size() / 2, packed.size() - 1}) {
            WriteFile(folder_ + "/short", packed.substr(0, length));
            const int code = RunTool({"decompress", folder_ + "/short", target}).exit_code;
            EXPECT_TRUE(code == 3 || code == 4) << length;
            EXPECT_EQ(ReadFile(target), bytes);
        }
    }
    EXPECT_EQ(RunTool({"decompress", compressed_, target}).exit_code, 0);
    EXPECT_EQ(RunForJson({"show", target, "Orders"}), RunForJson({"show", snapshot_, "Orders"}));
}

TEST_F(PlantFiles, EncryptedFieldsNeedTheirKey) {
    const Arguments show{"show", snapshot_, "Products", "--columns", "Recipe", "--limit", "1", "-o", "csv"};
    EXPECT_EQ(RunTool(show).out.find("(encrypted)"), std::string::npos);
    EXPECT_EQ(ReadFile(snapshot_).find(std::string("p\0a\0r\0a\0f\0f\0i\0n", 15)), std::string::npos);
    setenv(kKeyVariable, "another pass phrase", 1);
    EXPECT_EQ(RunTool(show).exit_code, 5);
    unsetenv(kKeyVariable);
    EXPECT_EQ(RunTool(show).out, "Recipe\n(encrypted)\n");
    const ToolRun import = RunTool({"import", definition_, "--data", data_, "-o", folder_ + "/keyless"});
    EXPECT_EQ(import.exit_code, 5);
    EXPECT_NE(import.err.find("Products(Recipe) is encrypted"), std::string::npos) << import.err;
    EXPECT_FALSE(std::filesystem::exists(folder_ + "/keyless"));
    setenv(kKeyVariable, "a pass phrase for tests", 1);
}

constexpr const char* kDefinition = R"(format Orders {
    key Number
    field Number          : INTEGER | UNIQUE
    field Product = -1    : REFERENCE | DATABASE(Products(Number))
}
format Products {
    key Number
    field Number          : INTEGER | UNIQUE
    field Name length 20  : REFERENCE | FREE FORMAT
    field Speeds          : MATRIX | REAL | AUTO LIST(Orders(Number))
}
)";

TEST(Imports, DatasetsStandBesideOneAnother) {
    const std::string folder = FreshFolder("datasets");
    const std::string definition = folder + "/plant.ksdef";
    const std::string snapshot = folder + "/plant.kes";
    WriteFile(definition, kDefinition);
    for (const char* name : {"base", "summer", "winter"}) {
        std::filesystem::create_directory(folder + "/" + name);
        WriteFile(folder + "/" + name + "/Products.csv", "Number,Name,Speeds\n1," + std::string(name) + ",1\n");
    }
    WriteFile(folder + "/base/Orders.csv", "Number,Product\n1,1\n");
    WriteFile(folder + "/summer/Orders.csv", "Number,Product\n1,summer\n2,1\nx,1\n");
    const Arguments arguments{"import",    definition,
                              "--data",    folder + "/base",
                              "--dataset", "Summer=" + folder + "/summer",
                              "--dataset", "Winter=" + folder + "/winter",
                              "-o",        snapshot};
    const ToolRun refused = RunTool(arguments);
    EXPECT_EQ(refused.exit_code, 1) << refused.err;
    EXPECT_NE(refused.err.find("Orders.csv:4: error: rejected: column 'Number'"), std::string::npos) << refused.err;
    EXPECT_FALSE(std::filesystem::exists(snapshot));
    EXPECT_EQ(RunTool(Joined(arguments, {"--keep-going"})).exit_code, 1);

    EXPECT_EQ(RunTool({"info", snapshot, "--tables", "-o", "csv"}).exit_code, 0);
    std::string blocks;
    for (const auto& table : RunForJson({"info", snapshot, "--tables"})) {
        blocks += table["Table"].get<std::string>() + "/" + table["Dataset"].get<std::string>() + "/" +
                  table["Records"].dump() + " ";
    }
    EXPECT_EQ(blocks, "Orders//1 Products//1 Orders/Summer/2 Products/Summer/1 Products/Winter/1 ");

    struct Case {
        Arguments dataset;
        const char* name;
        std::size_t orders; // winter has none of its own
    };

    const Case cases[] = {
        {{}, "base", 1}, {{"--dataset", "Summer"}, "summer", 2}, {{"--dataset", "winter"}, "winter", 1}};
    for (const Case& c : cases) {
        EXPECT_EQ(RunForJson(Joined({"show", snapshot, "Orders"}, c.dataset)).size(), c.orders) << c.name;
        const json product = RunForJson(Joined({"show", snapshot, "Products"}, c.dataset)).at(0);
        EXPECT_EQ(product["Name"], c.name);
        EXPECT_EQ(product["Speeds"], json::array({1})) << c.name;
    }
    std::filesystem::remove_all(folder);
}

} // namespace
} // namespace Kestrona::Tool
