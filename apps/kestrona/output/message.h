#pragma once

#include "output/error_codes.h"

#include <fmt/format.h>

#include <string>
#include <string_view>
#include <utility>

/// \file
/// What the tool says on stderr: "kestrona: error: what is wrong [KES-0104]", and "  hint: what to do about it" below.

namespace Kestrona::Tool {

/// What to do about a failure, where more is known than its code tells.
struct Hint {
    std::string text;
};

/// Something that is wrong, as a command learns of it.
struct Problem {
    Code code = Code::Unexpected;
    std::string what;
    std::string hint = {}; ///< Empty for that of the code.
};

/// Prints lines on stderr, with the words "error", "warning" and "note" behind a place in colour if stderr has colours.
void TellLines(std::string_view text);

/// Prints a message with a code of any kind. Further lines of `what` stay below the code. A hint that has just been
/// told is not repeated.
void TellCoded(std::string_view head, std::string_view what, std::string_view code, std::string_view hint);

/// `place` stands in the place of the program's name.
void TellError(const Problem& problem, std::string_view place = "kestrona");
void TellWarning(const Problem& problem, std::string_view place = "kestrona");

template <class... Arguments>
void TellError(Code code, fmt::format_string<Arguments...> pattern, Arguments&&... arguments) {
    TellError(Problem{code, fmt::format(pattern, std::forward<Arguments>(arguments)...)});
}

template <class... Arguments>
void TellError(Code code, Hint hint, fmt::format_string<Arguments...> pattern, Arguments&&... arguments) {
    TellError(Problem{code, fmt::format(pattern, std::forward<Arguments>(arguments)...), std::move(hint.text)});
}

template <class... Arguments>
void TellWarning(Code code, fmt::format_string<Arguments...> pattern, Arguments&&... arguments) {
    TellWarning(Problem{code, fmt::format(pattern, std::forward<Arguments>(arguments)...)});
}

template <class... Arguments>
void TellNote(fmt::format_string<Arguments...> pattern, Arguments&&... arguments) {
    TellLines("kestrona: note: " + fmt::format(pattern, std::forward<Arguments>(arguments)...) + '\n');
}

} // namespace Kestrona::Tool
