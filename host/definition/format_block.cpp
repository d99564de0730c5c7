#include "definition/format_block.h"

#include "definition/field_entry.h"
#include "definition/statements.h"
#include "definition/suggestion.h"

#include <kestrona/unicode.h>

#include <algorithm>
#include <array>
#include <bitset>
#include <cstddef>
#include <utility>

namespace Kestrona::Host::Language {

namespace {

bool ParseExtension(TokenParser& parser, FormatDefinition& format) {
    format.extension_place = parser.Current().place;
    format.extension = parser.TakeWord("a file extension");
    return format.extension.has_value();
}

bool ParseDataset(TokenParser& parser, FormatDefinition& format) {
    const Place place = parser.Current().place;
    auto name = parser.TakeText("the name of a dataset in quotes");
    if (!name) {
        return false;
    }
    if (Utf16Length(*name) > static_cast<std::size_t>(kMaxDatasetName)) {
        parser.Context().reporter.Error(place, {"long name of a dataset", Quoted(*name),
                                                "at most " + std::to_string(kMaxDatasetName) + " characters", ""});
    }
    format.dataset = std::move(name);
    return true;
}

bool ParseAssociated(TokenParser& parser, FormatDefinition& format) {
    format.associated_place = parser.Current().place;
    auto name = parser.TakeWord("the name of a format");
    if (!name) {
        return false;
    }
    format.associated_table = std::move(*name);
    if (parser.SeesWord(L"common")) {
        format.eligible_for_common_dataset = true;
        parser.Advance();
    }
    return true;
}

bool ParseMinimumLength(TokenParser& parser, FormatDefinition& format) {
    const auto value = parser.TakeWhole(0, kFirstScratchRecord, "a number of records");
    format.minimum_length = value.value_or(0);
    return value.has_value();
}

bool ParseMaximumRecords(TokenParser& parser, FormatDefinition& format) {
    const auto value = parser.TakeWhole(1, kFirstScratchRecord - 1, "a number of records from 1 to 999899999");
    format.maximum_records = value.value_or(0);
    return value.has_value();
}

bool ParseKey(TokenParser& parser, FormatDefinition& format) {
    format.key_place = parser.Current().place;
    auto name = parser.TakeName("the name of a field");
    if (name) {
        format.key_name = std::move(*name);
    }
    return name.has_value();
}

constexpr std::wstring_view kField = L"field";

struct Property {
    std::wstring_view word;
    bool (*parse)(TokenParser&, FormatDefinition&);
};

constexpr std::array kProperties{
    Property{L"extension", ParseExtension},       Property{L"dataset", ParseDataset},
    Property{L"associated", ParseAssociated},     Property{L"minlength", ParseMinimumLength},
    Property{L"maxrecords", ParseMaximumRecords}, Property{L"key", ParseKey},
};

const Property* FindProperty(const Token& token) {
    const auto found = std::find_if(kProperties.begin(), kProperties.end(),
                                    [&](const Property& property) { return property.word == token.text; });
    return token.kind == TokenKind::Word && found != kProperties.end() ? &*found : nullptr;
}

bool SeesEntry(const TokenParser& parser) {
    return parser.SeesWord(kField) || FindProperty(parser.Current()) != nullptr;
}

class FormatBlock {
public:
    FormatBlock(TokenParser& parser, FormatDefinition& format) : parser_(parser), format_(format) {}

    void Parse() {
        while (!parser_.Sees(TokenKind::CloseBrace)) {
            if (SeesEndOfBlock(parser_)) {
                parser_.Unexpected("format " + Quoted(format_.name) + " has no end", "'}'");
                return;
            }
            if (!ParseEntry()) {
                parser_.RecoverInBlock();
            }
        }
        parser_.Advance();
    }

private:
    // Takes one token at least.
    bool ParseEntry() {
        if (parser_.SeesWord(kField)) {
            return ParseFieldEntry();
        }
        const Property* property = FindProperty(parser_.Current());
        if (property == nullptr) {
            ReportUnknown();
            parser_.Advance();
            return false;
        }
        const auto index = static_cast<std::size_t>(property - kProperties.data());
        if (given_.test(index)) {
            parser_.Unexpected("given twice", "each property once");
            parser_.Advance();
            return false;
        }
        given_.set(index);
        parser_.Advance();
        return property->parse(parser_, format_);
    }

    bool ParseFieldEntry() {
        parser_.Advance();
        FieldDefinition field;
        const bool done = ParseField(parser_, field);
        if (!field.name.empty()) {
            AddField(std::move(field));
        }
        return done;
    }

    void AddField(FieldDefinition field) {
        if (format_.fields.size() == kMostFields) {
            parser_.Context().reporter.Error(
                field.place,
                {"too many fields", Quoted(field.name), "at most " + std::to_string(kMostFields) + " in a format", ""});
        }
        if (format_.fields.size() <= kMostFields) {
            format_.fields.push_back(std::move(field));
        }
    }

    void ReportUnknown() {
        Suggestion suggestion(parser_.Current().text);
        suggestion.Offer(kField);
        for (const Property& property : kProperties) {
            suggestion.Offer(property.word);
        }
        parser_.Unexpected("unknown property",
                           "field, key, extension, dataset, associated, minlength, maxrecords or '}'",
                           suggestion.Best());
    }

    TokenParser& parser_;
    FormatDefinition& format_;
    std::bitset<kProperties.size()> given_;
};

} // namespace

void ParseFormat(TokenParser& parser) {
    FormatDefinition format;
    format.place = parser.Current().place;
    if (auto name = parser.TakeName("the name of a format")) {
        format.name = std::move(*name);
    } else if (parser.SeesName()) {
        parser.Advance();
    }
    format.display_name = format.name;
    if (parser.Sees(TokenKind::Text)) {
        format.display_name = parser.Current().text;
        parser.Advance();
    }
    if (!parser.Take(TokenKind::OpenBrace, "'{'") && !SeesEntry(parser)) {
        parser.Recover();
        return;
    }
    FormatBlock(parser, format).Parse();
    if (!format.name.empty()) {
        parser.Context().definition.formats.push_back(std::move(format));
    }
}

} // namespace Kestrona::Host::Language
