#include "configuration/parsers/pattern_outline.h"

#include <cassert>

namespace Kestrona::Configuration::Parsers {

PatternOutline::PatternOutline(std::wstring_view text) {
    PatternReader reader(text);
    while (!reader.AtEnd()) {
        if (reader.Skip(L'|')) {
            ends_.push_back(steps_.size());
        } else {
            steps_.push_back(reader.Next());
        }
    }
    ends_.push_back(steps_.size());
}

OutlineScan::OutlineScan(const PatternOutline& outline, std::wstring_view text)
    : outline_(outline),
      text_(text),
      runs_(outline.steps_.size()) {}

std::size_t OutlineScan::EndOfRun(std::size_t step, std::size_t position) {
    Run& run = runs_[step];
    if (position < run.begin || position > run.end) {
        run = {position, position};
        while (run.end < text_.size() && outline_.steps_[step].Takes(text_[run.end])) {
            ++run.end;
        }
    }
    return run.end;
}

bool OutlineScan::FitsAt(std::size_t position, std::size_t first_step, std::size_t last_step) {
    for (std::size_t i = first_step; i < last_step; ++i) {
        const PatternStep& step = outline_.steps_[i];
        const std::size_t before = position;
        if (step.repeats) {
            position = EndOfRun(i, position);
        } else if (position < text_.size() && step.Takes(text_[position])) {
            ++position;
        }
        if (step.required && position == before) {
            return false;
        }
    }
    return true;
}

bool OutlineScan::FitsAt(std::size_t position) {
    assert(position <= text_.size());
    std::size_t first_step = 0;
    for (const std::size_t end : outline_.ends_) {
        if (FitsAt(position, first_step, end)) {
            return true;
        }
        first_step = end;
    }
    return false;
}

} // namespace Kestrona::Configuration::Parsers
