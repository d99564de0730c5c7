#include "commands/definition_commands.h"
#include "commands/session.h"
#include "exit_codes.h"
#include "graph/format_graph.h"
#include "graph/svg.h"
#include "output/text_output.h"

namespace Kestrona::Tool {
namespace {

bool WantsDot(const GraphOptions& options) {
    return options.dot || (!options.svg && (options.file.ends_with(".dot") || options.file.ends_with(".gv")));
}

} // namespace

int RunGraph(const GraphOptions& options) {
    Session session;
    if (const int code = session.Load(options.definition); code != kExitGood) {
        return code;
    }
    const Graph::FormatGraph graph = Graph::BuildGraph(session.Store());
    return WriteText(WantsDot(options) ? Graph::DotText(graph) : Graph::SvgText(graph), options.file);
}

} // namespace Kestrona::Tool
