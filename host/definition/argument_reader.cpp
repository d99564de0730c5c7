#include "definition/argument_reader.h"

#include <algorithm>
#include <utility>

namespace Kestrona::Host::Language {

ArgumentReader::ArgumentReader(std::wstring_view text) : text_(text) {
    SkipBlanks();
}

void ArgumentReader::SkipBlanks() {
    while (!AtEnd() && IsBlank(text_[position_])) {
        ++position_;
    }
}

void ArgumentReader::Fail(std::string expected) {
    if (!problem_) {
        problem_ = ArgumentProblem{position_, std::move(expected)};
    }
}

void ArgumentReader::Take(wchar_t c) {
    if (!Sees(c)) {
        Fail(std::string("'") + static_cast<char>(c) + "'");
        return;
    }
    ++position_;
    canonical_ += c;
    SkipBlanks();
}

std::wstring_view ArgumentReader::TakeUntil(std::wstring_view ends, const char* expected) {
    const std::size_t end = problem_ ? position_ : std::min(text_.find_first_of(ends, position_), text_.size());
    const std::wstring_view taken = Trim(text_.substr(position_, end - position_));
    if (taken.empty()) {
        Fail(expected);
        return {};
    }
    position_ = end;
    canonical_ += taken;
    return taken;
}

std::wstring_view ArgumentReader::TakeSpan(std::wstring_view set, const char* expected) {
    const std::size_t end = problem_ ? position_ : std::min(text_.find_first_not_of(set, position_), text_.size());
    const std::wstring_view taken = text_.substr(position_, end - position_);
    if (taken.empty()) {
        Fail(expected);
        return {};
    }
    position_ = end;
    canonical_ += taken;
    SkipBlanks();
    return taken;
}

void ArgumentReader::TakeQuoted(bool may_be_empty) {
    const std::size_t end = Sees(L'"') ? text_.find(L'"', position_ + 1) : std::wstring_view::npos;
    if (end == std::wstring_view::npos) {
        Fail("a text in quotes");
        return;
    }
    const std::wstring_view quoted = text_.substr(position_, end + 1 - position_);
    if (!may_be_empty && Trim(quoted.substr(1, quoted.size() - 2)).empty()) {
        Fail("a text in quotes that is not blank");
        return;
    }
    position_ = end + 1;
    canonical_ += quoted;
    SkipBlanks();
}

Arguments ArgumentReader::Finish() {
    if (!AtEnd()) {
        Fail("'|' in front of the next word");
    }
    return {problem_ ? std::wstring(text_) : canonical_, problem_};
}

} // namespace Kestrona::Host::Language
