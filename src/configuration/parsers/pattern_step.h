#pragma once

#include <string>
#include <string_view>

namespace Kestrona::Configuration::Parsers {

// One element of a pattern with its repetition:
//
//   c \c         that character
//   [set] [^set] one of the set, one of all but the set; \ quotes a character of the set
//   .            any character but \n and \r
//   \s \d \n \r  a blank, a digit, a line feed, a carriage return
//   * + ?        behind one of these: any number, at least one, at most one
struct PatternStep {
    std::wstring members;
    bool negated = false;
    bool required = true;
    bool repeats = false;

    // A loop, since the members are few.
    bool Takes(wchar_t c) const {
        for (const wchar_t member : members) {
            if (member == c) {
                return !negated;
            }
        }
        return negated;
    }
};

// Takes a text of such elements apart.
class PatternReader {
public:
    explicit PatternReader(std::wstring_view text) : rest_(text) {}

    std::wstring_view Rest() const { return rest_; }

    bool AtEnd() const { return rest_.empty(); }

    bool Skip(wchar_t c) {
        const bool there = rest_.starts_with(c);
        rest_.remove_prefix(there ? 1 : 0);
        return there;
    }

    // Requires: an element at the front.
    PatternStep Next();

private:
    wchar_t Take();
    void TakeMember(PatternStep& step);
    void TakeSet(PatternStep& step);

    std::wstring_view rest_;
};

} // namespace Kestrona::Configuration::Parsers
