#include "commands/host_output.h"

#include "lint/check_definition.h"
#include "lint/report_writer.h"
#include "output/host_message.h"
#include "output/message.h"

namespace Kestrona::Tool {

void TellThroughTool(Host::DefaultHostOptions& options) {
    options.output = TellHostLines;
    options.diagnostics = [](const Host::Diagnostic& diagnostic) {
        TellLines(Lint::FindingText(Lint::FindingOf(diagnostic)));
    };
}

} // namespace Kestrona::Tool
