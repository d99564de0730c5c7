#include "commands/definition_commands.h"
#include "commands/session.h"
#include "exit_codes.h"
#include "output/text_output.h"
#include "schema/dictionary.h"

namespace Kestrona::Tool {

int RunDocs(const DocsOptions& options) {
    Session session;
    if (const int code = session.Load(options.definition); code != kExitGood) {
        return code;
    }
    return WriteText(DataDictionary(session.Store(), options.definition), options.file);
}

} // namespace Kestrona::Tool
