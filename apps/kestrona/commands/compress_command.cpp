#include "commands/file_commands.h"
#include "commands/file_problems.h"

#include <kestrona/host/compressed_file.h>

namespace Kestrona::Tool {
namespace {

int Run(const CompressOptions& options, bool (*convert)(const std::string&, const std::string&, Host::FileProblem&)) {
    if (const int code = RefuseSameFile(options.source, options.target); code != kExitGood) {
        return code;
    }
    Host::FileProblem problem;
    return convert(options.source, options.target, problem) ? kExitGood : TellProblem(problem);
}

} // namespace

int RunCompress(const CompressOptions& options) {
    return Run(options, Host::CompressFile);
}

int RunDecompress(const CompressOptions& options) {
    return Run(options, Host::DecompressFile);
}

} // namespace Kestrona::Tool
