#pragma once

#include "definition/arguments.h"
#include "definition/characters.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// The cursor that arguments of words are read with.

namespace Kestrona::Host::Language {

// Reads arguments from left to right and writes their canonical form. The first mismatch sticks: whatever is asked for
// afterwards fails as well, so that a reader can be written without a test at each step.
class ArgumentReader {
public:
    // Requires: `text` outlives the reader and what it hands out.
    explicit ArgumentReader(std::wstring_view text);

    [[nodiscard]] bool AtEnd() const { return position_ >= text_.size(); }

    [[nodiscard]] bool Sees(wchar_t c) const { return !problem_ && !AtEnd() && text_[position_] == c; }

    // Adds to the canonical form only.
    void Write(std::wstring_view text) { canonical_ += text; }

    // A character and the blanks behind it.
    void Take(wchar_t c);

    // All characters up to one of `ends`, at least one, without blanks at its ends.
    std::wstring_view TakeUntil(std::wstring_view ends, const char* expected);

    // All characters of a set, at least one, and the blanks behind them.
    std::wstring_view TakeSpan(std::wstring_view set, const char* expected);

    // A text in double quotes, kept as it is between them.
    void TakeQuoted(bool may_be_empty);

    void Fail(std::string expected);

    // What was read; text that is left over is a mismatch.
    [[nodiscard]] Arguments Finish();

private:
    void SkipBlanks();

    std::wstring_view text_;
    std::wstring canonical_;
    std::size_t position_ = 0;
    std::optional<ArgumentProblem> problem_; // the first one
};

} // namespace Kestrona::Host::Language
