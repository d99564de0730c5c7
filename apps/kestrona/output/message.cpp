#include "output/message.h"

#include "output/terminal.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <functional>

namespace Kestrona::Tool {
namespace {

void Tell(std::string_view label, const Problem& problem, std::string_view place) {
    TellCoded(fmt::format("{}: {}: ", place, label), problem.what, CodeName(problem.code),
              problem.hint.empty() ? EntryOf(problem.code).hint : std::string_view(problem.hint));
}

} // namespace

void TellLines(std::string_view text) {
    const std::string painted = UsesColor(stderr) ? PaintedLabels(text) : std::string(text);
    std::fwrite(painted.data(), 1, painted.size(), stderr);
    std::fflush(stderr);
}

void TellCoded(std::string_view head, std::string_view what, std::string_view code, std::string_view hint) {
    // Its hash, which takes no memory for as long as the process runs.
    static std::size_t last_hint = std::hash<std::string_view>()({});
    const std::size_t this_hint = std::hash<std::string_view>()(hint);
    const std::size_t line = std::min(what.find('\n'), what.size());
    std::string text = fmt::format("{}{} [{}]{}\n", head, what.substr(0, line), code, what.substr(line));
    if (this_hint != last_hint) {
        text += fmt::format("  hint: {}\n", hint);
    }
    last_hint = this_hint;
    TellLines(text);
}

void TellError(const Problem& problem, std::string_view place) {
    Tell("error", problem, place);
}

void TellWarning(const Problem& problem, std::string_view place) {
    Tell("warning", problem, place);
}

} // namespace Kestrona::Tool
