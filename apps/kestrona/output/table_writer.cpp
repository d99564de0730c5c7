#include "output/table_writer.h"

#include "output/delimited_forms.h"
#include "output/json_forms.h"
#include "output/message.h"
#include "output/terminal.h"
#include "output/text_table.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cstddef>

namespace Kestrona::Tool {
namespace {

/// Names of columns that are told; of more only the number.
constexpr std::size_t kMostNames = 5;

void TellCuts(const TableCuts& cuts, std::size_t width) {
    if (!cuts.columns.empty()) {
        const std::size_t named = std::min(cuts.columns.size(), kMostNames);
        const std::size_t more = cuts.columns.size() - named;
        TellNote("columns left out to fit {} characters: {}{}; --wide prints all", width,
                 fmt::join(cuts.columns.begin(), cuts.columns.begin() + static_cast<std::ptrdiff_t>(named), ", "),
                 more > 0 ? fmt::format(" and {} more", more) : "");
    }
    if (cuts.cells > 0) {
        TellNote("cells cut to fit {} characters: {}; --wide prints them whole", width, cuts.cells);
    }
}

bool Flush(std::FILE* out) {
    return std::fflush(out) == 0 && std::ferror(out) == 0;
}

/// Returns whether all has been written.
bool WriteForTerminal(const TableSource& source, std::FILE* out) {
    const TableLook look{TableWidth(out), UsesColor(out)};
    const TableCuts cuts = WriteTextTable(source, out, look);
    const bool written = Flush(out);
    TellCuts(cuts, look.width);
    return written;
}

} // namespace

const std::map<std::string, OutputForm>& OutputFormNames() {
    static const std::map<std::string, OutputForm> names{{"table", OutputForm::Table},
                                                         {"csv", OutputForm::Csv},
                                                         {"json", OutputForm::Json},
                                                         {"jsonl", OutputForm::JsonLines},
                                                         {"markdown", OutputForm::Markdown}};
    return names;
}

bool WriteTable(const TableSource& source, OutputForm form, std::FILE* out) {
    switch (form) {
    case OutputForm::Table:
        return WriteForTerminal(source, out);
    case OutputForm::Csv:
        WriteCsv(source, out);
        break;
    case OutputForm::Json:
        WriteJson(source, out);
        break;
    case OutputForm::JsonLines:
        WriteJsonLines(source, out);
        break;
    case OutputForm::Markdown:
        WriteMarkdown(source, out);
        break;
    }
    return Flush(out);
}

bool WriteReport(const char* name, const TableSource& source, OutputForm form, std::FILE* out) {
    if (form != OutputForm::Json) {
        return WriteTable(source, form, out);
    }
    std::fputs(fmt::format("{{\"version\":{},\"report\":\"{}\",\"rows\":", kReportVersion, name).c_str(), out);
    WriteJson(source, out);
    std::fputs("}\n", out);
    return Flush(out);
}

} // namespace Kestrona::Tool
