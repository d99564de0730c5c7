#include "commands/file_commands.h"
#include "commands/file_problems.h"
#include "commands/session.h"

namespace Kestrona::Tool {

int RunCompile(const CompileOptions& options) {
    if (const int code = RefuseCompiled(options.definition, "compile"); code != kExitGood) {
        return code;
    }
    if (const int code = RefuseSameFile(options.definition, options.target); code != kExitGood) {
        return code;
    }
    return Session().Compile(options.definition, options.target);
}

} // namespace Kestrona::Tool
