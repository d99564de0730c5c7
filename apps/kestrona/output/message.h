#pragma once

#include <fmt/format.h>

#include <string>
#include <string_view>
#include <utility>

/// \file
/// What the tool says on stderr: "kestrona: error: what is wrong; what to do about it".

namespace Kestrona::Tool {

/// Prints lines on stderr, with the words "error", "warning" and "note" behind a place in colour if stderr has colours.
void TellLines(std::string_view text);

template <class... Arguments>
void TellError(fmt::format_string<Arguments...> pattern, Arguments&&... arguments) {
    TellLines("kestrona: error: " + fmt::format(pattern, std::forward<Arguments>(arguments)...) + '\n');
}

template <class... Arguments>
void TellWarning(fmt::format_string<Arguments...> pattern, Arguments&&... arguments) {
    TellLines("kestrona: warning: " + fmt::format(pattern, std::forward<Arguments>(arguments)...) + '\n');
}

template <class... Arguments>
void TellNote(fmt::format_string<Arguments...> pattern, Arguments&&... arguments) {
    TellLines("kestrona: note: " + fmt::format(pattern, std::forward<Arguments>(arguments)...) + '\n');
}

} // namespace Kestrona::Tool
