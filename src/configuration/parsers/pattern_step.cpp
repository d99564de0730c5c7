#include "configuration/parsers/pattern_step.h"

#include <cassert>

namespace Kestrona::Configuration::Parsers {

wchar_t PatternReader::Take() {
    assert(!rest_.empty());
    const wchar_t c = rest_.front();
    rest_.remove_prefix(1);
    return c;
}

void PatternReader::TakeMember(PatternStep& step) {
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

void PatternReader::TakeSet(PatternStep& step) {
    step.negated = Skip(L'^');
    while (!Skip(L']')) {
        TakeMember(step);
    }
}

PatternStep PatternReader::Next() {
    PatternStep step;
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

} // namespace Kestrona::Configuration::Parsers
