#include "fuzz.h"

#include <kestrona/host/definition.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// The parser of the definition language. An included file is the rest of the input behind its name, so that includes of
// any depth take part.

namespace {

using namespace Kestrona::Fuzz;
using namespace Kestrona::Host;

constexpr std::size_t kMostDiagnostics = 202;

void CheckPlaces(const ParseResult& result) {
    Require(result.diagnostics.size() <= kMostDiagnostics);
    for (const Diagnostic& diagnostic : result.diagnostics) {
        Require(diagnostic.line > 0 && diagnostic.column > 0);
        Require(diagnostic.ToString().find('\n') == std::string::npos);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const FileReader reader = [&](const std::string& path) -> std::optional<std::string> {
        const std::size_t at = text.find(path);
        return at == std::string_view::npos ? std::nullopt : std::optional(std::string(text.substr(at + path.size())));
    };
    CheckPlaces(ParseDefinition(text, "main.ksdef", reader));
    return 0;
}
