#include "definition/classification.h"

#include "definition/arguments.h"
#include "definition/characters.h"
#include "definition/suggestion.h"
#include "definition/values.h"
#include "definition/word_splitter.h"

#include <kestrona/classes.h>
#include <kestrona/unicode.h>

#include <algorithm>
#include <cstddef>

namespace Kestrona::Host::Language {

namespace {

constexpr std::wstring_view kArgumentStarts = L"([\"";

Place Shifted(const Place& place, std::size_t offset) {
    return {place.file, place.line, place.column + static_cast<std::int32_t>(offset)};
}

// A keyword inside of another word's arguments is found by the readers, which look for plain text.
bool HoldsKeyword(std::wstring_view arguments, const Word& keyword) {
    const std::size_t found = arguments.find(keyword.text);
    if (found == std::wstring_view::npos || keyword.works_anywhere) {
        return found != std::wstring_view::npos;
    }
    const std::wstring_view rest = Trim(arguments.substr(found + keyword.text.size()));
    return !rest.empty() && kArgumentStarts.find(rest.front()) != std::wstring_view::npos;
}

// The length of the longest known word that `text` begins with and a blank ends; 0 for none.
std::size_t EndOfFirstWord(std::wstring_view text) {
    constexpr std::size_t kLongestWord = 32;
    for (std::size_t end = std::min(text.size(), kLongestWord); end > 0; --end) {
        if (end < text.size() && IsBlank(text[end]) && FindWord(text.substr(0, end)) != nullptr) {
            return end;
        }
    }
    return 0;
}

std::wstring ExampleOf(const Word& word) {
    return std::wstring(word.text) + std::wstring(ExampleArguments(word.shape));
}

class ClassificationReader {
public:
    explicit ClassificationReader(Reporter& reporter) : reporter_(reporter) {}

    void ReadLine(const RawText& line) {
        const SplitLine split = SplitWords(line.text);
        for (const RawWord& word : split.words) {
            ReadWord(word.text, Shifted(line.place, word.offset), split.problem.has_value());
        }
        if (split.problem) {
            reporter_.Error(Shifted(line.place, split.problem->offset), split.problem->finding);
        }
    }

    [[nodiscard]] Classification Finish() { return std::move(result_); }

private:
    void ReadWord(std::wstring_view text, const Place& place, bool is_broken) {
        const Word* word = FindWord(KeywordOf(text));
        if (word == nullptr) {
            if (!is_broken && reporter_.TakesWarnings()) {
                ReportUnknown(KeywordOf(text), place);
            }
            Append(std::wstring(text), place);
            return;
        }
        const std::wstring_view rest = text.substr(word->text.size());
        const Arguments arguments = ReadArguments(word->shape, rest);
        if (arguments.problem && !is_broken) {
            ReportArguments(*word, rest, *arguments.problem, Shifted(place, word->text.size()));
        }
        Imply(*word, arguments.canonical);
        Append(std::wstring(word->text) + arguments.canonical, place);
        WarnOfKeywords(*word, arguments.canonical, place);
    }

    void Append(std::wstring text, const Place& place) {
        if (!result_.words.empty()) {
            result_.text += kWordSeparator;
        }
        result_.text += text;
        result_.words.push_back({std::move(text), place});
    }

    void Imply(const Word& word, std::wstring_view arguments) {
        result_.type |= word.type;
        result_.classes[static_cast<std::size_t>(word.sets.word)] |= word.sets.mask;
        if (word.sets == Classes::kCallDialog && arguments.size() > 2) {
            const std::wstring_view number = arguments.substr(1, arguments.size() - 2);
            result_.dialog = ParseWhole(number, INT32_MIN, INT32_MAX).value_or(-1);
        }
    }

    void ReportUnknown(std::wstring_view keyword, const Place& place) {
        if (const std::size_t end = EndOfFirstWord(keyword); end > 0) {
            ReportLooseText(*FindWord(keyword.substr(0, end)), Trim(keyword.substr(end)), Shifted(place, end));
            return;
        }
        Suggestion suggestion(keyword);
        for (const Word& word : AllWords()) {
            suggestion.Offer(word.text);
        }
        reporter_.Warning(place,
                          {"unknown word", QuotedOrEnd(keyword), "a word of classifications", suggestion.Best()});
    }

    // A known word with something behind it that is no argument.
    void ReportLooseText(const Word& word, std::wstring_view rest, const Place& place) {
        const bool wants_arguments = word.shape != Shape::Nothing;
        reporter_.Warning(place,
                          {(wants_arguments ? "no arguments of " : "no '|' behind ") + ToUtf8(word.text), Quoted(rest),
                           wants_arguments ? ToUtf8(ExampleOf(word)) : "'|' between two words", ""});
    }

    void ReportArguments(const Word& word, std::wstring_view rest, const ArgumentProblem& problem, const Place& place) {
        const std::wstring_view found = rest.substr(std::min(problem.offset, rest.size()));
        reporter_.Error(Shifted(place, problem.offset), {"wrong arguments of " + ToUtf8(word.text),
                                                         found.empty() ? "the end of the word" : Quoted(found),
                                                         problem.expected + ", as in " + ToUtf8(ExampleOf(word)), ""});
    }

    // In square brackets, keywords are what the text is for.
    void WarnOfKeywords(const Word& word, std::wstring_view arguments, const Place& place) {
        if (arguments.empty() || arguments.front() == L'[' || !reporter_.TakesWarnings()) {
            return;
        }
        for (const Word& keyword : AllWords()) {
            if (keyword.kind == WordKind::Keyword && HoldsKeyword(arguments, keyword)) {
                reporter_.Warning(place,
                                  {"the arguments of " + ToUtf8(word.text) + " hold a keyword, which takes effect",
                                   Quoted(keyword.text), "a text without it", ""});
            }
        }
    }

    Reporter& reporter_;
    Classification result_;
};

} // namespace

std::wstring_view KeywordOf(std::wstring_view word) {
    return Trim(word.substr(0, std::min(word.find_first_of(kArgumentStarts), word.size())));
}

std::wstring_view ArgumentsOf(std::wstring_view word) {
    return word.substr(KeywordOf(word).size());
}

Classification ReadClassification(std::span<const RawText> lines, Reporter& reporter) {
    ClassificationReader reader(reporter);
    for (const RawText& line : lines) {
        reader.ReadLine(line);
    }
    return reader.Finish();
}

KnownClassification UnderstandClassification(std::wstring_view text) {
    Reporter findings;
    const RawText line{text, {}};
    KnownClassification known;
    known.classification = ReadClassification({&line, 1}, findings);
    known.is_canonical = !findings.HasErrors() && known.classification.text == text;
    return known;
}

} // namespace Kestrona::Host::Language
