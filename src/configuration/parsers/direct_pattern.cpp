#include "configuration/parsers/direct_pattern.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace Kestrona::Configuration::Parsers {

namespace {

using Steps = std::vector<PatternStep>;

constexpr std::wstring_view kGroupEnds = L"()|";

// Where the steps end that begin at `position`, nothing where one of them does not fit.
std::optional<std::size_t> Walk(const Steps& steps, std::wstring_view text, std::size_t position) {
    for (const PatternStep& step : steps) {
        const std::size_t before = position;
        while (position < text.size() && (step.repeats || position == before) && step.Takes(text[position])) {
            ++position;
        }
        if (step.required && position == before) {
            return std::nullopt;
        }
    }
    return position;
}

// Takes the elements up to the next parenthesis or bar. False where one has no direct way: "." stands for other
// characters in a pattern than in an outline, "^" and "$" for places, and a second "?" asks for the least.
bool TakeSteps(PatternReader& reader, Steps& steps) {
    constexpr std::wstring_view kNoElements = L".^$?*+{";
    while (!reader.AtEnd() && kGroupEnds.find(reader.Rest().front()) == std::wstring_view::npos) {
        if (kNoElements.find(reader.Rest().front()) != std::wstring_view::npos) {
            return false;
        }
        steps.push_back(reader.Next());
    }
    return true;
}

bool TakesOneCharacter(const PatternStep& step) {
    return step.required && !step.repeats;
}

} // namespace

DirectPattern::DirectPattern(std::wstring_view pattern) {
    PatternReader reader(pattern);
    if (!TakePieces(reader)) {
        pieces_.clear();
    }
}

bool DirectPattern::TakePieces(PatternReader& reader) {
    while (!reader.AtEnd() && !reader.Skip(L'|')) {
        Piece piece;
        piece.captures = reader.Skip(L'(');
        if (!TakeSteps(reader, piece.steps) || (piece.captures && !reader.Skip(L')'))) {
            return false;
        }
        piece.optional = piece.captures && reader.Skip(L'?');
        if (piece.steps.empty() || (piece.optional && !std::ranges::all_of(piece.steps, &TakesOneCharacter))) {
            return false;
        }
        pieces_.push_back(std::move(piece));
    }
    return true;
}

bool DirectPattern::MatchAt(std::wstring_view text, std::size_t start, std::size_t position,
                            Platform::PatternMatch& out) const {
    if (pieces_.empty()) {
        return false;
    }
    std::vector<std::optional<Platform::PatternSpan>> groups;
    groups.reserve(1 + pieces_.size());
    groups.emplace_back();
    for (const Piece& piece : pieces_) {
        const std::optional<std::size_t> end = Walk(piece.steps, text, position);
        if (!end && !piece.optional) {
            return false;
        }
        if (piece.captures) {
            groups.push_back(end ? std::optional(Platform::PatternSpan{position, *end - position}) : std::nullopt);
        }
        position = end.value_or(position);
    }
    groups.front() = {start, position - start};
    out.groups = std::move(groups);
    return true;
}

} // namespace Kestrona::Configuration::Parsers
