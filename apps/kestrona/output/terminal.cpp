#include "output/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace Kestrona::Tool {
namespace {

constexpr std::string_view kPlain = "\x1b[0m";

constexpr std::pair<std::string_view, Paint> kLabels[] = {
    {": error: ", Paint::Error}, {": warning: ", Paint::Warning}, {": note: ", Paint::Note}};

bool IsTerminal(std::FILE* out) {
    return isatty(fileno(out)) != 0;
}

std::string_view Environment(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? std::string_view() : std::string_view(value);
}

std::string_view Sequence(Paint paint) {
    switch (paint) {
    case Paint::None:
        break;
    case Paint::Error:
        return "\x1b[1;31m";
    case Paint::Warning:
        return "\x1b[1;33m";
    case Paint::Note:
        return "\x1b[1;36m";
    case Paint::Added:
        return "\x1b[32m";
    case Paint::Removed:
        return "\x1b[31m";
    case Paint::Changed:
        return "\x1b[33m";
    }
    return "";
}

std::string PaintedLine(std::string_view line) {
    std::size_t first = std::string_view::npos;
    std::string_view found;
    Paint paint = Paint::None;
    for (const auto& [label, label_paint] : kLabels) {
        const std::size_t place = line.find(label);
        if (place < first) {
            first = place;
            found = label;
            paint = label_paint;
        }
    }
    if (found.empty() || line.starts_with(' ')) {
        return std::string(line);
    }
    const std::size_t word = first + 2;
    const std::size_t length = found.size() - 3;
    return std::string(line.substr(0, word)) + Painted(line.substr(word, length), paint) +
           std::string(line.substr(word + length));
}

} // namespace

const std::map<std::string, ColorChoice>& ColorChoiceNames() {
    static const std::map<std::string, ColorChoice> names{
        {"auto", ColorChoice::Auto}, {"always", ColorChoice::Always}, {"never", ColorChoice::Never}};
    return names;
}

TerminalSettings& Terminal() {
    static TerminalSettings settings;
    return settings;
}

bool UsesColor(std::FILE* out) {
    if (Terminal().color != ColorChoice::Auto) {
        return Terminal().color == ColorChoice::Always;
    }
    return Environment("NO_COLOR").empty() && Environment("TERM") != "dumb" && IsTerminal(out);
}

std::size_t TableWidth(std::FILE* out) {
    winsize size{};
    if (Terminal().wide || !IsTerminal(out) || ioctl(fileno(out), TIOCGWINSZ, &size) != 0) {
        return 0;
    }
    return size.ws_col;
}

std::string Painted(std::string_view text, Paint paint) {
    const std::string_view sequence = Sequence(paint);
    return sequence.empty() ? std::string(text) : std::string(sequence).append(text).append(kPlain);
}

std::string PaintedLabels(std::string_view text) {
    std::string painted;
    while (!text.empty()) {
        const std::size_t size = std::min(text.find('\n'), text.size() - 1) + 1;
        painted += PaintedLine(text.substr(0, size));
        text.remove_prefix(size);
    }
    return painted;
}

} // namespace Kestrona::Tool
