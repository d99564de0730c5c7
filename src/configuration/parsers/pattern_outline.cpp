#include "configuration/parsers/pattern_outline.h"

#include <cassert>

namespace Kestrona::Configuration::Parsers {

// Takes the text of an outline apart.
class PatternOutline::Reader {
public:
    explicit Reader(std::wstring_view text) : rest_(text) {}

    bool AtEnd() const { return rest_.empty(); }

    bool Skip(wchar_t c) {
        const bool there = rest_.starts_with(c);
        rest_.remove_prefix(there ? 1 : 0);
        return there;
    }

    Step Next();

private:
    wchar_t Take();
    void TakeMember(Step& step);
    void TakeSet(Step& step);

    std::wstring_view rest_;
};

wchar_t PatternOutline::Reader::Take() {
    assert(!rest_.empty());
    const wchar_t c = rest_.front();
    rest_.remove_prefix(1);
    return c;
}

void PatternOutline::Reader::TakeMember(Step& step) {
    const wchar_t c = Take();
    if (c != L'\\') {
        step.members += c;
        return;
    }
    switch (const wchar_t escaped = Take()) {
    case L's':
        step.members += L" \t\n\v\f\r";
        break;
    case L'd':
        step.members += L"0123456789";
        break;
    case L'n':
        step.members += L'\n';
        break;
    case L'r':
        step.members += L'\r';
        break;
    default:
        step.members += escaped;
    }
}

void PatternOutline::Reader::TakeSet(Step& step) {
    step.negated = Skip(L'^');
    while (!Skip(L']')) {
        TakeMember(step);
    }
}

PatternOutline::Step PatternOutline::Reader::Next() {
    Step step;
    if (Skip(L'[')) {
        TakeSet(step);
    } else if (Skip(L'.')) {
        step.members = L"\n\r";
        step.negated = true;
    } else {
        TakeMember(step);
    }
    if (Skip(L'*')) {
        step.repeats = true;
        step.required = false;
    } else if (Skip(L'+')) {
        step.repeats = true;
    } else if (Skip(L'?')) {
        step.required = false;
    }
    return step;
}

PatternOutline::PatternOutline(std::wstring_view text) {
    Reader reader(text);
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
        const PatternOutline::Step& step = outline_.steps_[i];
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
