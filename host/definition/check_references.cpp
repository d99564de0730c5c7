#include "definition/check_references.h"

#include "definition/arguments.h"
#include "definition/classification.h"
#include "definition/schema_index.h"
#include "definition/suggestion.h"
#include "definition/words.h"

#include <kestrona/unicode.h>

#include <algorithm>
#include <cstddef>
#include <vector>

namespace Kestrona::Host::Language {

namespace {

// In place of a format and a field: the field whose classification holds the text in the brackets.
constexpr std::wstring_view kFindByClassification = L"FIND CLASSIFICATION STRING";

class ReferenceCheck {
public:
    ReferenceCheck(const Definition& definition, Reporter& reporter)
        : definition_(definition),
          reporter_(reporter),
          index_(definition),
          parents_(FindParents(definition, index_)) {}

    void Run() {
        for (std::size_t f = 0; f < definition_.formats.size(); ++f) {
            format_ = static_cast<std::int32_t>(f);
            for (const FieldDefinition& field : definition_.formats[f].fields) {
                CheckField(field);
            }
        }
    }

private:
    void CheckField(const FieldDefinition& field) {
        for (const ClassificationWord& word : field.words) {
            const Word* known = FindWord(KeywordOf(word.text));
            if (known != nullptr && !reporter_.IsFull()) {
                CheckWord(field, *known, word);
            }
        }
    }

    void CheckWord(const FieldDefinition& field, const Word& known, const ClassificationWord& word) {
        const std::wstring_view arguments = ArgumentsOf(word.text);
        switch (known.shape) {
        case Shape::Target:
        case Shape::DatabaseTarget:
        case Shape::QuotedTarget:
            if (const auto names = FindTargetNames(arguments)) {
                CheckTarget(*names, word);
            }
            break;
        case Shape::Axes:
            if (const auto axes = FindAxisNames(arguments)) {
                CheckTarget(axes->x, word);
                CheckTarget(axes->y, word);
            }
            break;
        case Shape::OwnField:
        case Shape::OwnFieldColon:
            CheckField(format_, FindFieldName(arguments, known.shape == Shape::OwnFieldColon), word);
            break;
        case Shape::ParentField:
            CheckField(parents_[static_cast<std::size_t>(format_)], FindFieldName(arguments, false), word);
            break;
        case Shape::AxisField:
            CheckField(FormatOfSecondAxis(field), FindFieldName(arguments, false), word);
            break;
        case Shape::LookupField:
            CheckField(FormatOfLookup(field), arguments.empty() ? field.name : FindFieldName(arguments, false), word);
            break;
        default:
            break;
        }
    }

    void CheckTarget(const TargetNames& names, const ClassificationWord& word) {
        if (names.format == kFindByClassification) {
            return;
        }
        const std::int32_t format = index_.FindFormat(names.format);
        if (format >= 0) {
            CheckField(format, names.field, word);
            return;
        }
        Suggestion suggestion(names.format);
        for (const FormatDefinition& candidate : definition_.formats) {
            suggestion.Offer(candidate.name);
        }
        reporter_.Error(word.place, {"unknown format in " + ToUtf8(KeywordOf(word.text)), Quoted(names.format),
                                     "the name of a format", suggestion.Best()});
    }

    // A format that is not known, or a name that is not there, has been reported or is no error.
    void CheckField(std::int32_t format, std::wstring_view name, const ClassificationWord& word) {
        if (format < 0 || name.empty() || index_.FindField(format, name) >= 0) {
            return;
        }
        const FormatDefinition& target = definition_.formats[static_cast<std::size_t>(format)];
        Suggestion suggestion(name);
        for (const FieldDefinition& candidate : target.fields) {
            suggestion.Offer(candidate.name);
        }
        reporter_.Error(word.place, {"unknown field in " + ToUtf8(KeywordOf(word.text)), Quoted(name),
                                     "the name of a field of " + Quoted(target.name), suggestion.Best()});
    }

    static std::wstring_view ArgumentsOfWord(const FieldDefinition& field, std::wstring_view keyword) {
        const auto found = std::find_if(field.words.begin(), field.words.end(), [&](const ClassificationWord& word) {
            return KeywordOf(word.text) == keyword;
        });
        return found == field.words.end() ? std::wstring_view() : ArgumentsOf(found->text);
    }

    [[nodiscard]] std::int32_t FormatOfSecondAxis(const FieldDefinition& field) const {
        const auto axes = FindAxisNames(ArgumentsOfWord(field, L"AUTO DIMENSION"));
        return axes ? index_.FindFormat(axes->y.format) : -1;
    }

    [[nodiscard]] std::int32_t FormatOfLookup(const FieldDefinition& field) const {
        const auto names = FindTargetNames(ArgumentsOfWord(field, L"LOOKUP SOURCE"));
        return names ? index_.FindFormat(names->format) : -1;
    }

    const Definition& definition_;
    Reporter& reporter_;
    SchemaIndex index_;
    std::vector<std::int32_t> parents_;
    std::int32_t format_ = -1;
};

} // namespace

void CheckReferences(const Definition& definition, Reporter& reporter) {
    ReferenceCheck(definition, reporter).Run();
}

} // namespace Kestrona::Host::Language
