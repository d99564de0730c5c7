#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

// The tables behind the message catalogue, one for each subject.

namespace Kestrona::Host::Messages {

struct NumberedText {
    std::int32_t number = 0;
    const wchar_t* text = nullptr;
};

// True when the numbers ascend without a repeat, as the search in a table needs.
constexpr bool Ascends(std::span<const NumberedText> table) {
    for (std::size_t i = 1; i < table.size(); ++i) {
        if (table[i - 1].number >= table[i].number) {
            return false;
        }
    }
    return true;
}

// Stages and failures of a load, compiled configurations, names of dialog levels.
[[nodiscard]] std::span<const NumberedText> LoadTexts();

// What can be wrong with the classification of a field.
[[nodiscard]] std::span<const NumberedText> ResolutionTexts();

// Words that values are shown with and read from.
[[nodiscard]] std::span<const NumberedText> ValueTexts();

} // namespace Kestrona::Host::Messages
