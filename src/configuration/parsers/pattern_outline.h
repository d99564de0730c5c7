#pragma once

#include "configuration/parsers/pattern_step.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace Kestrona::Configuration::Parsers {

// What must follow a keyword for its pattern to match there, in a form that is decided without going back: a pattern
// whose repetitions take all they can, for good. A backtracking engine tries the text behind each of a thousand
// keywords up to its end; the outline of the pattern, for a whole text, costs one walk over it.
//
// The text of an outline is written in the elements of PatternStep, with "|" between whole alternatives.
//
// An outline has to fit wherever its pattern matches. Where it fits without the pattern, the pattern decides.
//
// Requires: a text of these elements.
class PatternOutline {
public:
    explicit PatternOutline(std::wstring_view text);

private:
    friend class OutlineScan;

    std::vector<PatternStep> steps_; // of all alternatives, one after another
    std::vector<std::size_t> ends_;  // behind the last step of each alternative
};

// Asks an outline about ascending positions of one text. All the questions together look at each character of the text
// at most once for each step that repeats: a repetition that begins inside the last one of its step ends where that
// one ended.
//
// Requires: an outline and a text that outlive the scan.
class OutlineScan {
public:
    OutlineScan(const PatternOutline& outline, std::wstring_view text);

    // Requires: no position below the last one asked about, none behind the text.
    bool FitsAt(std::size_t position);

private:
    struct Run {
        std::size_t begin = 1;
        std::size_t end = 0;
    };

    bool FitsAt(std::size_t position, std::size_t first_step, std::size_t last_step);
    std::size_t EndOfRun(std::size_t step, std::size_t position);

    const PatternOutline& outline_;
    std::wstring_view text_;
    std::vector<Run> runs_; // the last run of each step
};

} // namespace Kestrona::Configuration::Parsers
