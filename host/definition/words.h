#pragma once

#include <kestrona/types.h>

#include <cstdint>
#include <span>
#include <string_view>

// The words of classifications: every type word, attribute word and referring keyword, the form of its arguments and
// what it sets by itself.

namespace Kestrona::Host::Language {

enum class WordKind : std::uint8_t {
    Type,      // sets type bits
    Attribute, // says something about the field alone
    Keyword,   // found again in the classification string by the readers of the data module
};

// The form of what follows a word.
enum class Shape : std::uint8_t {
    Nothing,
    Target,         // (Format(Field))
    DatabaseTarget, // (Format(Field)) or [classification]
    OwnField,       // (Field), of the same format
    OwnFieldColon,  // the same; the name ends at a colon
    ParentField,    // (Field), of the associated table
    AxisField,      // (Field), of the format of the second axis
    LookupField,    // nothing or (Field), of the format that LOOKUP SOURCE names
    Axes,           // (label,Format(Field),label,Format(Field))
    BracketText,    // (text)
    Integer,        // (7)
    OptionalOrder,  // nothing or (7)
    NumberFormat,   // (8.2), (MAX), (MAX 0.3)
    QuotedText,     // "text"
    QuotedTarget,   // "Format(Field)"
    Label,          // "text" or (text)
    ValuePair,      // (3->"text")
};

struct Word {
    std::wstring_view text;
    WordKind kind = WordKind::Attribute;
    Shape shape = Shape::Nothing;
    std::uint32_t type = 0;
    Class sets{};                // mask 0: the word sets no class by itself
    bool works_anywhere = false; // takes effect wherever its text stands, also without arguments
};

// Every word, grouped by what it is about. The texts are pairwise different.
[[nodiscard]] std::span<const Word> AllWords();

// Null for a text that is no word. Exact comparison, constant time.
[[nodiscard]] const Word* FindWord(std::wstring_view text);

// An example of the arguments, to stand behind the word: "(Format(Field))".
[[nodiscard]] std::wstring_view ExampleArguments(Shape shape);

// Class bits that only the resolution of a definition sets, as a mask of class word `word`.
[[nodiscard]] std::uint32_t ResolutionBits(std::int32_t word);

} // namespace Kestrona::Host::Language
