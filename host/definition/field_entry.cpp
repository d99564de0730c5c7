#include "definition/field_entry.h"

#include "definition/classification.h"
#include "definition/field_types.h"
#include "definition/suggestion.h"
#include "definition/values.h"

#include <algorithm>
#include <array>
#include <utility>

namespace Kestrona::Host::Language {

namespace {

void TakeOver(Classification&& classification, FieldDefinition& field) {
    field.classification = std::move(classification.text);
    field.words = std::move(classification.words);
    field.type = classification.type;
    field.classes = classification.classes;
    field.dialog = classification.dialog;
}

std::optional<std::uint32_t> TakeBits(TokenParser& parser) {
    const auto bits = parser.Sees(TokenKind::Word) ? ParseBits(parser.Current().text) : std::nullopt;
    if (!bits) {
        parser.Unexpected("wrong number", "32 bits as a number such as 0x40");
        return std::nullopt;
    }
    parser.Advance();
    return bits;
}

// The classification decides type and classes; what the entry says about bits comes after it.
class FieldEntry {
public:
    FieldEntry(TokenParser& parser, FieldDefinition& field) : parser_(parser), field_(field) {}

    bool Parse() {
        field_.place = parser_.Current().place;
        auto name = parser_.TakeName("the name of a field");
        if (!name) {
            return false;
        }
        field_.name = std::move(*name);
        while (!parser_.Sees(TokenKind::Colon) && !parser_.SeesWord(L"classification")) {
            if (!ParseOption()) {
                return false;
            }
        }
        return ParseClassification();
    }

private:
    struct BitChange {
        std::int32_t word;
        std::uint32_t set;
        std::uint32_t clear;
    };

    struct Option {
        std::wstring_view word;
        bool (FieldEntry::*parse)();
    };

    static const std::array<Option, 6> kOptions;

    bool ParseOption() {
        if (parser_.Sees(TokenKind::Equals)) {
            return ParseDefault();
        }
        const auto option = std::find_if(kOptions.begin(), kOptions.end(),
                                         [&](const Option& candidate) { return parser_.SeesWord(candidate.word); });
        if (option == kOptions.end()) {
            ReportUnknown();
            return false;
        }
        parser_.Advance();
        return (this->*option->parse)();
    }

    void ReportUnknown() {
        Suggestion suggestion(parser_.Current().text);
        for (const Option& option : kOptions) {
            suggestion.Offer(option.word);
        }
        parser_.Unexpected("field " + Quoted(field_.name) + " has no classification here",
                           "'=', level, readonly, length or ':' and the classification", suggestion.Best());
    }

    bool ParseDefault() {
        parser_.Advance();
        const auto value = parser_.TakeValue();
        field_.default_value = value.value_or(0.0);
        field_.has_default = value.has_value();
        return value.has_value();
    }

    bool ParseLevel() {
        if (parser_.SeesWord(L"hidden")) {
            parser_.Advance();
            field_.dialog_level = kHiddenDialogLevel;
            return true;
        }
        const auto level = parser_.TakeWhole(INT16_MIN, INT16_MAX, "a dialog level from -32768 to 32767, or hidden");
        field_.dialog_level = static_cast<std::int16_t>(level.value_or(0));
        return level.has_value();
    }

    bool ParseReadOnly() {
        std::optional<std::int32_t> kind = 1;
        if (parser_.Sees(TokenKind::Word) && LooksLikeValue(parser_.Current().text)) {
            kind = parser_.TakeWhole(0, UINT8_MAX, "a number from 0 to 255");
        }
        field_.read_only = static_cast<ReadOnlyType>(kind.value_or(0));
        return kind.has_value();
    }

    bool ParseLength() {
        const auto length = parser_.TakeWhole(1, INT32_MAX, "a number of characters");
        field_.max_text_length = length.value_or(0);
        return length.has_value();
    }

    bool ParseType() {
        type_ = TakeBits(parser_);
        return type_.has_value();
    }

    bool ParseBitChange(bool set) {
        const auto word = parser_.TakeWhole(0, kClassWords - 1, "a class word from 0 to 11");
        const auto bits = word ? TakeBits(parser_) : std::nullopt;
        if (bits) {
            changes_.push_back({*word, set ? *bits : 0, set ? 0 : *bits});
        }
        return bits.has_value();
    }

    bool ParseSet() { return ParseBitChange(true); }

    bool ParseClear() { return ParseBitChange(false); }

    bool ParseClassification() {
        if (parser_.Sees(TokenKind::Colon)) {
            ParseWords();
        } else if (!ParseExactText()) {
            return false;
        }
        field_.type = type_.value_or(field_.type);
        for (const BitChange& change : changes_) {
            std::uint32_t& bits = field_.classes[static_cast<std::size_t>(change.word)];
            bits = (bits | change.set) & ~change.clear;
        }
        return true;
    }

    void ParseWords() {
        Reporter& reporter = parser_.Context().reporter;
        const std::size_t errors = reporter.ErrorCount();
        const std::vector<RawText> lines = parser_.Tokens().TakeClassification();
        TakeOver(ReadClassification(lines, reporter), field_);
        if (reporter.ErrorCount() == errors && !type_) {
            CheckFieldType(field_, reporter);
        }
    }

    bool ParseExactText() {
        parser_.Advance();
        auto text = parser_.TakeText("the exact classification in quotes");
        if (!text) {
            return false;
        }
        TakeOver(UnderstandClassification(*text).classification, field_);
        field_.classification = std::move(*text);
        field_.words.clear(); // nothing in an exact text is checked
        return true;
    }

    TokenParser& parser_;
    FieldDefinition& field_;
    std::optional<std::uint32_t> type_;
    std::vector<BitChange> changes_;
};

const std::array<FieldEntry::Option, 6> FieldEntry::kOptions{
    Option{L"level", &FieldEntry::ParseLevel},   Option{L"readonly", &FieldEntry::ParseReadOnly},
    Option{L"length", &FieldEntry::ParseLength}, Option{L"type", &FieldEntry::ParseType},
    Option{L"set", &FieldEntry::ParseSet},       Option{L"clear", &FieldEntry::ParseClear},
};

} // namespace

bool ParseField(TokenParser& parser, FieldDefinition& field) {
    return FieldEntry(parser, field).Parse();
}

} // namespace Kestrona::Host::Language
