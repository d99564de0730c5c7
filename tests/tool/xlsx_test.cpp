#include "export/export_table.h"
#include "export/xlsx_text.h"
#include "fixtures/scratch_files.h"

#include <gmock/gmock.h>

namespace Kestrona::Tool {
namespace {

TEST(SheetName, IsOneThatAWorkbookTakes) {
    UniqueNames names(kLongestSheetName);
    const std::vector<std::pair<std::string, std::string>> cases{
        {"Parts", "Parts"},
        {"PARTS", "PARTS 2"},
        {"a/b:c*[d]?\\", "a_b_c__d___"},
        {"'quoted'", "_quoted_"},
        {"history", "history_"},
        {"", "_"},
        {"A name of more than thirty-one letters", "A name of more than thirty-one "},
        {"A name of more than thirty-one digits", "A name of more than thirty-on 2"}};
    for (const auto& [table, name] : cases) {
        EXPECT_EQ(SheetName(table, names), name);
    }
    bool was_cut = false;
    EXPECT_EQ(XlsxText(std::string(40000, 'x'), was_cut).size(), kLongestCell);
    EXPECT_TRUE(was_cut);
}

class CountedSource : public ListSource {
public:
    CountedSource() : ListSource({{"Number", CellKind::Number}}) {}

    [[nodiscard]] std::size_t RowCount() const override { return kSheetRows; }
};

TEST(WriteXlsxFile, RefusesATableThatIsTooLongForASheet) {
    std::vector<ExportTable> tables(1);
    tables[0] = {"Long", std::make_unique<CountedSource>(), {{ExportType::Integer, {}}}, {}};
    const Testing::ScratchFolder folder;
    const std::string path = folder.Path("long.xlsx");
    const Problem problem = WriteXlsxFile(tables, path).error.value_or(Problem{});
    EXPECT_THAT(problem.what, testing::HasSubstr("Long has 1048576 records"));
    EXPECT_FALSE(std::filesystem::exists(path));
}

} // namespace
} // namespace Kestrona::Tool
