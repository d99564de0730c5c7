#pragma once

#include "output/paint.h"

#include <cstddef>
#include <cstdio>
#include <map>
#include <string>
#include <string_view>

/// \file
/// What differs between a terminal and a file or a pipe.

namespace Kestrona::Tool {

enum class ColorChoice {
    Auto, ///< On a terminal, unless the environment has NO_COLOR or TERM=dumb.
    Always,
    Never
};

/// The names of the choices on the command line.
[[nodiscard]] const std::map<std::string, ColorChoice>& ColorChoiceNames();

struct TerminalSettings {
    ColorChoice color = ColorChoice::Auto;
    bool wide = false; ///< Tables may be wider than the terminal.
};

/// The settings of this process.
[[nodiscard]] TerminalSettings& Terminal();

[[nodiscard]] bool UsesColor(std::FILE* out);

/// The width that a table on this stream has to keep to, 0 for none.
[[nodiscard]] std::size_t TableWidth(std::FILE* out);

/// Puts the escape sequences of the paint round the text.
[[nodiscard]] std::string Painted(std::string_view text, Paint paint);

/// Paints the word behind the place in lines such as "FILE:LINE: error: what". Indented lines stay as they are.
[[nodiscard]] std::string PaintedLabels(std::string_view text);

} // namespace Kestrona::Tool
