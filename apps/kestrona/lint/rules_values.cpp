// Rules about values, their texts, and expressions.
#include "lint/rules.h"

#include <kestrona/classes.h>
#include <kestrona/classification_readers.h>
#include <kestrona/unicode.h>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>
#include <unordered_map>
#include <unordered_set>

namespace Kestrona::Tool::Lint {
namespace {

// The entries of one field that were met so far.
class Entries {
public:
    Entries(const FieldView& field, FindingSink& sink) : field_(field), sink_(sink) {}

    void AddShown(const WordView& word, const SubstPair& pair) {
        const auto [first, is_new] = text_of_.emplace(pair.Value, pair.Text);
        if (!is_new) {
            sink_.Add(field_, word.place,
                      fmt::format("{} is shown as '{}' already", pair.Value, ToUtf8(first->second)));
        }
        AddText(word, pair);
    }

    void AddText(const WordView& word, const SubstPair& pair) {
        const auto [first, is_new] = value_of_.emplace(pair.Text, pair.Value);
        if (!is_new && first->second != pair.Value) {
            sink_.Add(field_, word.place, fmt::format("'{}' is read as {} already", ToUtf8(pair.Text), first->second));
        }
    }

private:
    const FieldView& field_;
    FindingSink& sink_;
    std::map<double, std::wstring> text_of_;
    std::unordered_map<std::wstring, double> value_of_;
};

// The words that are read first come first: SUBSTITUTE in both directions, SUBSTITUTX as texts only.
void CheckEntries(const FieldView& field, FindingSink& sink) {
    Entries entries(field, sink);
    for (const WordView& word : field.words) {
        if (word.keyword == L"SUBSTITUTE") {
            for (const SubstPair& pair : Parse_SUBSTITUTE(L"SUBSTITUTE" + std::wstring(word.arguments))) {
                entries.AddShown(word, pair);
            }
        }
    }
    for (const WordView& word : field.words) {
        if (word.keyword == L"SUBSTITUTX") {
            for (const SubstPair& pair : Parse_SUBSTITUTX(L"SUBSTITUTX" + std::wstring(word.arguments))) {
                entries.AddText(word, pair);
            }
        }
    }
}

bool ShowsText(const std::wstring& classification, std::wstring_view text) {
    const auto has_text = [&](const SubstPair& pair) {
        return pair.Text == text;
    };
    const std::vector<SubstPair> shown = Parse_SUBSTITUTE(classification);
    const std::vector<SubstPair> read = Parse_SUBSTITUTX(classification);
    return std::any_of(shown.begin(), shown.end(), has_text) || std::any_of(read.begin(), read.end(), has_text);
}

// Walks an expression bracket by bracket and tells whether a comparison and a && or || stand in one bracket.
class ComparisonScan {
public:
    explicit ComparisonScan(std::wstring_view text) : text_(text) {}

    bool FindsLooseOne() {
        levels_.emplace_back();
        for (at_ = 0; at_ < text_.size() && !found_; ++at_) {
            Step(text_[at_]);
        }
        return found_;
    }

private:
    struct Level {
        bool has_comparison = false;
        bool has_logic = false;
    };

    void Step(wchar_t c) {
        if (c == L'{') { // the name of a field may hold anything
            at_ = std::min(text_.find(L'}', at_), text_.size());
        } else if (c == L'(') {
            levels_.emplace_back();
        } else if (c == L')' && levels_.size() > 1) {
            levels_.pop_back();
        } else if (c == L',') {
            levels_.back() = {};
        } else {
            Operator(c);
        }
        found_ = levels_.back().has_comparison && levels_.back().has_logic;
    }

    void Operator(wchar_t c) {
        const wchar_t next = at_ + 1 < text_.size() ? text_[at_ + 1] : L'\0';
        if ((c == L'&' || c == L'|') && next == c) {
            levels_.back().has_logic = true;
            ++at_;
        } else if (c == L'<' || c == L'>' || ((c == L'=' || c == L'!') && next == L'=')) {
            levels_.back().has_comparison = true;
        }
    }

    std::wstring_view text_;
    std::size_t at_ = 0;
    bool found_ = false;
    std::vector<Level> levels_;
};

bool IsExpression(const FieldView& field, std::wstring_view keyword) {
    // The expression of a text field is a text with fields in it.
    return keyword == L"HIDDEN IF" || keyword == L"EXCLUDE" ||
           (keyword == L"EVALUATE" && !field.Is(Classes::kFreeFormat));
}

} // namespace

void CheckSubstituteTwice(const LintSource& source, FindingSink& sink) {
    for (const FieldView& field : source.Fields()) {
        CheckEntries(field, sink);
    }
}

void CheckUnknownStringDefault(const LintSource& source, FindingSink& sink) {
    for (const FieldView& field : source.Fields()) {
        const WordView* const word = field.Find(L"STRING_DEF");
        if (word != nullptr && !ShowsText(std::wstring(source.ClassString(field)), Unwrapped(word->arguments))) {
            sink.Add(field, word->place, fmt::format("no entry has the text '{}'", ToUtf8(Unwrapped(word->arguments))));
        }
    }
}

void CheckLooseComparison(const LintSource& source, FindingSink& sink) {
    for (const FieldView& field : source.Fields()) {
        for (const WordView& word : field.words) {
            if (IsExpression(field, word.keyword) && ComparisonScan(word.arguments).FindsLooseOne()) {
                sink.Add(field, word.place,
                         fmt::format("{} has a comparison beside && or || without brackets", ToUtf8(word.keyword)));
            }
        }
    }
}

} // namespace Kestrona::Tool::Lint
