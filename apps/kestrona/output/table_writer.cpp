#include "output/table_writer.h"

#include "output/delimited_forms.h"
#include "output/json_forms.h"
#include "output/text_table.h"

namespace Kestrona::Tool {

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
        WriteTextTable(source, out);
        break;
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
    return std::fflush(out) == 0 && std::ferror(out) == 0;
}

} // namespace Kestrona::Tool
