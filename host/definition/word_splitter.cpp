#include "definition/word_splitter.h"

#include "definition/characters.h"

#include <utility>

namespace Kestrona::Host::Language {

namespace {

class Splitter {
public:
    explicit Splitter(std::wstring_view line) : line_(line) {}

    SplitLine Split() {
        std::size_t position = 0;
        while (position < line_.size() && !StartsComment(position)) {
            Step(position);
            ++position;
        }
        if (in_quotes_) {
            Problem(quote_, {"quote without an end", "the end of the line", "'\"'", ""});
        } else if (depth_ > 0) {
            Problem(bracket_, {"bracket without an end", "the end of the line", "')'", ""});
        }
        EndWord(position);
        return std::move(result_);
    }

private:
    [[nodiscard]] bool StartsComment(std::size_t position) const {
        return line_[position] == L'#' && !in_quotes_ && depth_ == 0 && (position == 0 || IsBlank(line_[position - 1]));
    }

    void Step(std::size_t position) {
        const wchar_t c = line_[position];
        if (IsControl(c) || c == L'\n' || c == L'\r') {
            Problem(position, {"control character", Quoted(line_.substr(position, 1)), "printable text", ""});
        } else if (c == L'"') {
            in_quotes_ = !in_quotes_;
            quote_ = position;
        } else if (!in_quotes_) {
            StepOutsideQuotes(position, c);
        }
    }

    void StepOutsideQuotes(std::size_t position, wchar_t c) {
        if (c == L'(') {
            bracket_ = depth_ == 0 ? position : bracket_;
            ++depth_;
        } else if (c == L')' && depth_ > 0) {
            --depth_;
        } else if (c == L')') {
            Problem(position, {"bracket without a beginning", "')'", "'('", ""});
        } else if (c == L'}' && depth_ == 0) {
            Problem(position, {"brace in a classification", "'}'", "'}' on a line of its own", ""});
        } else if (c == L'|' && depth_ == 0) {
            EndWord(position);
            start_ = position + 1;
        }
    }

    void EndWord(std::size_t end) {
        const std::wstring_view raw = line_.substr(start_, end - start_);
        const std::wstring_view text = Trim(raw);
        if (text.empty()) {
            Problem(end, {"empty word", end < line_.size() && line_[end] == L'|' ? "'|'" : "the end of the line",
                          "a word (further lines begin with '|')", ""});
            return;
        }
        result_.words.push_back({text, start_ + static_cast<std::size_t>(text.data() - raw.data())});
    }

    void Problem(std::size_t offset, Finding finding) {
        if (!result_.problem) {
            result_.problem = SplitProblem{offset, std::move(finding)};
        }
    }

    std::wstring_view line_;
    SplitLine result_;
    std::size_t start_ = 0;
    std::size_t quote_ = 0;   // the last one
    std::size_t bracket_ = 0; // the outermost one that is open
    std::size_t depth_ = 0;
    bool in_quotes_ = false;
};

} // namespace

SplitLine SplitWords(std::wstring_view line) {
    return Splitter(line).Split();
}

} // namespace Kestrona::Host::Language
