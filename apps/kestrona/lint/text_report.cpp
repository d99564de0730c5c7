#include "lint/report_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

namespace Kestrona::Tool::Lint {
namespace {

// What the parser says ends with what it expected, so its findings need no hint.
bool BringsItsHint(const Finding& finding) {
    return finding.message.find("; expected ") != std::string::npos;
}

std::string Place(const Finding& finding) {
    return finding.line > 0 ? fmt::format("{}:{}:{}", finding.file, finding.line, finding.column) : finding.file;
}

std::string Counted(std::size_t count, std::string_view thing) {
    return fmt::format("{} {}{}", count, thing, count == 1 ? "" : "s");
}

} // namespace

const std::map<std::string, ReportForm>& ReportFormNames() {
    static const std::map<std::string, ReportForm> names{
        {"text", ReportForm::Text}, {"json", ReportForm::Json}, {"sarif", ReportForm::Sarif}};
    return names;
}

std::string FindingText(const Finding& finding) {
    const std::string_view shown = finding.excerpt.empty() ? finding.message : finding.excerpt;
    const std::size_t line_end = std::min(shown.find('\n'), shown.size());
    const std::string text = fmt::format("{}: {}: {}{} [{}]{}\n", Place(finding), SeverityName(finding.rule->severity),
                                         finding.field.empty() ? "" : finding.format + "(" + finding.field + "): ",
                                         shown.substr(0, line_end), finding.rule->id, shown.substr(line_end));
    return BringsItsHint(finding) ? text : text + fmt::format("  hint: {}\n", finding.rule->hint);
}

std::string TextReport(const Report& report) {
    std::string text;
    for (const Finding& finding : report.findings) {
        text += FindingText(finding);
    }
    return text + fmt::format("{}: {} with {}; {}, {}, {}\n", report.definition, Counted(report.formats, "format"),
                              Counted(report.fields, "field"), Counted(report.Count(Severity::Error), "error"),
                              Counted(report.Count(Severity::Warning), "warning"),
                              Counted(report.Count(Severity::Note), "note"));
}

} // namespace Kestrona::Tool::Lint
