#include "commands/definition_commands.h"
#include "commands/file_problems.h"
#include "exit_codes.h"
#include "lint/check_definition.h"
#include "output/terminal.h"
#include "output/text_output.h"

#include <cstdio>

namespace Kestrona::Tool {
namespace {

std::string Written(const Lint::Report& report, Lint::ReportForm form) {
    switch (form) {
    case Lint::ReportForm::Text:
        break;
    case Lint::ReportForm::Json:
        return Lint::JsonReport(report);
    case Lint::ReportForm::Sarif:
        return Lint::SarifReport(report);
    }
    return Lint::TextReport(report);
}

int ExitCodeOf(const Lint::Report& report, bool strict) {
    if (report.unreadable) {
        return kExitUnreadableInput;
    }
    const bool fails = report.Count(Lint::Severity::Error) > 0 || (strict && report.Count(Lint::Severity::Warning) > 0);
    return fails ? kExitFindings : kExitGood;
}

} // namespace

int RunCheck(const CheckOptions& options) {
    if (const int code = RefuseCompiled(options.definition, "check"); code != kExitGood) {
        return code;
    }
    if (const int code = RefuseUnreadable(options.definition); code != kExitGood) {
        return code;
    }
    const Lint::Report report = Lint::CheckDefinition(options.definition);
    std::string text = Written(report, options.form);
    if (options.form == Lint::ReportForm::Text && UsesColor(stdout)) {
        text = PaintedLabels(text);
    }
    const int code = WriteText(text, "");
    return code == kExitGood ? ExitCodeOf(report, options.strict) : code;
}

} // namespace Kestrona::Tool
