#include "commands/commands.h"
#include "commands/session.h"
#include "exit_codes.h"

#include <fmt/format.h>

namespace Kestrona::Tool {

int RunCheck(const CheckOptions& options) {
    Session session;
    if (const int code = session.Load(options.definition); code != kExitGood) {
        return code;
    }
    auto& store = session.Store();
    std::int32_t fields = 0;
    for (std::int32_t format = 0; format < store.GetFormatCount(); ++format) {
        fields += store.GetDbFields(format);
    }
    fmt::print("{}: {} formats with {} fields, no errors, {} warnings\n", options.definition, store.GetFormatCount(),
               fields, session.Warnings());
    return kExitGood;
}

} // namespace Kestrona::Tool
