#include "output/message.h"

#include "output/terminal.h"

#include <cstdio>

namespace Kestrona::Tool {

void TellLines(std::string_view text) {
    const std::string painted = UsesColor(stderr) ? PaintedLabels(text) : std::string(text);
    std::fwrite(painted.data(), 1, painted.size(), stderr);
    std::fflush(stderr);
}

} // namespace Kestrona::Tool
