#pragma once

#include <kestrona/host/definition.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// Collects the findings in a definition.

namespace Kestrona::Host::Language {

// What a finding says. Texts are UTF-8 and become one line.
struct Finding {
    std::string what;
    std::string found;
    std::string expected;
    std::string suggestion; // the word that was probably meant; may be empty
};

class Reporter {
public:
    static constexpr std::size_t kMostErrors = 100;
    static constexpr std::size_t kMostWarnings = 100;

    void Error(const Place& place, const Finding& finding);
    void Warning(const Place& place, const Finding& finding);

    [[nodiscard]] bool HasErrors() const { return errors_ > 0; }

    [[nodiscard]] std::size_t ErrorCount() const { return errors_; }

    // True when further errors are dropped, so that it is of no use to read on.
    [[nodiscard]] bool IsFull() const { return errors_ >= kMostErrors; }

    // False when further warnings are dropped, so that it is of no use to work them out.
    [[nodiscard]] bool TakesWarnings() const { return warnings_ < kMostWarnings; }

    // The findings by file, line and column, and last the notes on what was left out.
    [[nodiscard]] std::vector<Diagnostic> Take(const std::vector<std::string>& files);

private:
    struct Entry {
        Severity severity;
        Place place;
        std::string text;
    };

    std::vector<Entry> findings_;
    std::size_t errors_ = 0;
    std::size_t warnings_ = 0;
};

// The text in single quotes, as a message shows what it found: cut when long, control characters written as escapes.
[[nodiscard]] std::string Quoted(std::wstring_view text);

// `Quoted`, or "the end of the line" for an empty text.
[[nodiscard]] std::string QuotedOrEnd(std::wstring_view text);

} // namespace Kestrona::Host::Language
