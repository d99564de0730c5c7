// Rules about the words of one field.
#include "lint/rules.h"

#include <kestrona/classes.h>
#include <kestrona/unicode.h>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <unordered_set>

namespace Kestrona::Tool::Lint {
namespace {

// Of these several may stand.
constexpr std::array<std::wstring_view, 6> kRepeatable{L"SUBSTITUTE", L"SUBSTITUTX", L"REMOTE",
                                                       L"SWITCH",     L"SWITCH ON",  L"SWITCH OFF"};

// Two keywords that keep their target in the same place of the field, of which the second is written later.
struct Rivals {
    std::wstring_view loser;
    std::wstring_view winner;
};

constexpr std::array kRivals{
    Rivals{L"EXPAND MATCH", L"EXPAND REFERENCE"},
    Rivals{L"MATCH FIELD", L"SOURCE ORDER"},
    Rivals{L"MATRIX DEFAULT", L"MATCH FIELD"},
    Rivals{L"MATRIX DEFAULT", L"SOURCE ORDER"},
    Rivals{L"MATRIX MINIMUM", L"MATCH FIELD"},
    Rivals{L"MATRIX MINIMUM", L"SOURCE ORDER"},
    Rivals{L"LOCAL ASSIGNMENT", L"MATCH DURATION FIELD"},
    Rivals{L"SETUP OVERRIDE MATCH", L"AUTO RESTRICT"},
    Rivals{L"AUTO LIST", L"DATA LIST"},
    Rivals{L"AUTO LIST", L"AUTO DIMENSION"},
    Rivals{L"DATA LIST", L"AUTO DIMENSION"},
    Rivals{L"AUTO DIMENSION", L"RELATED LIST"},
    Rivals{L"DATABASE", L"FAMILY"},
    Rivals{L"CALL DIALOG", L"DATABASE"},
    Rivals{L"CALL DIALOG", L"FAMILY"},
    Rivals{L"RELATED LIST", L"ADDITIONAL REFERENCE"},
    Rivals{L"ADDITIONAL REFERENCE", L"OVERRIDE"},
    Rivals{L"ADDITIONAL REFERENCE", L"UPDATE REFERENCE"},
    Rivals{L"ADDITIONAL REFERENCE", L"AUTO SPLIT"},
    Rivals{L"OVERRIDE", L"AUTO SPLIT"},
    Rivals{L"OVERRIDE", L"EVALUATE"},
    Rivals{L"UPDATE REFERENCE", L"AUTO SPLIT"},
};

// The same for a matrix, whose reference is kept where these keywords keep theirs.
constexpr std::array<std::wstring_view, 4> kMatrixRivals{L"MATCH FIELD", L"SOURCE ORDER", L"MATRIX DEFAULT",
                                                         L"MATRIX MINIMUM"};

bool IsRepeatable(std::wstring_view keyword) {
    return std::find(kRepeatable.begin(), kRepeatable.end(), keyword) != kRepeatable.end();
}

bool IsText(const FieldView& field) {
    return field.Is(Classes::kFreeFormat);
}

// Fields whose text stands elsewhere, or nowhere.
bool HasForeignText(const FieldView& field) {
    return field.Is(Classes::kEvaluate) || field.Is(Classes::kAdditionalReference) || field.Has(L"ASSOCIATE") ||
           field.Is(Classes::kUpdateReference) || field.IsMatrix();
}

void AddRivals(const FieldView& field, std::wstring_view loser, std::wstring_view winner, FindingSink& sink) {
    const WordView* const lost = field.Find(loser);
    if (lost != nullptr && field.Has(winner)) {
        sink.Add(field, lost->place, fmt::format("{} has no effect beside {}", ToUtf8(loser), ToUtf8(winner)));
    }
}

// The reader of SOURCE stops at the SOURCE in LOOKUP SOURCE.
void CheckSourceOrder(const FieldView& field, FindingSink& sink) {
    const WordView* const source = field.Find(L"SOURCE");
    const WordView* const lookup = field.Find(L"LOOKUP SOURCE");
    if (source != nullptr && lookup != nullptr && lookup < source) {
        sink.Add(field, source->place, "SOURCE has no effect behind LOOKUP SOURCE; put it in front");
    }
}

} // namespace

void CheckRepeatedWord(const LintSource& source, FindingSink& sink) {
    for (const FieldView& field : source.Fields()) {
        std::unordered_set<std::wstring_view> seen;
        for (const WordView& word : field.words) {
            if (!seen.insert(word.keyword).second && !IsRepeatable(word.keyword)) {
                sink.Add(field, word.place, fmt::format("{} stands twice", ToUtf8(word.keyword)));
            }
        }
    }
}

void CheckShadowedKeyword(const LintSource& source, FindingSink& sink) {
    for (const FieldView& field : source.Fields()) {
        for (const Rivals& rivals : kRivals) {
            AddRivals(field, rivals.loser, rivals.winner, sink);
        }
        if (field.IsMatrix()) {
            for (const std::wstring_view winner : kMatrixRivals) {
                AddRivals(field, L"DATABASE", winner, sink);
            }
        }
        CheckSourceOrder(field, sink);
    }
}

void CheckTextWithoutLength(const LintSource& source, FindingSink& sink) {
    for (const FieldView& field : source.Fields()) {
        if (IsText(field) && !HasForeignText(field) && field.definition->max_text_length <= 0) {
            sink.Add(field, fmt::format("the text '{}' has no length", ToUtf8(field.definition->name)));
        }
    }
}

void CheckLengthWithoutEffect(const LintSource& source, FindingSink& sink) {
    for (const FieldView& field : source.Fields()) {
        if (field.definition->max_text_length > 0 && (!IsText(field) || HasForeignText(field))) {
            sink.Add(field, fmt::format("the length {} has no effect", field.definition->max_text_length));
        }
    }
}

void CheckDefaultWithoutEffect(const LintSource& source, FindingSink& sink) {
    for (const FieldView& field : source.Fields()) {
        const bool has_cells = !field.Is(Classes::kEvaluate) && !field.Is(Classes::kAdditionalReference) &&
                               !(IsText(field) && !field.IsMatrix()) &&
                               (field.definition->type & TypeBit::kFreeString) == 0;
        if (field.definition->has_default && !has_cells) {
            sink.Add(field, fmt::format("the default of '{}' has no effect", ToUtf8(field.definition->name)));
        }
    }
}

void CheckFormatWithoutEffect(const LintSource& source, FindingSink& sink) {
    constexpr std::uint32_t kFormatted = TypeBit::kReal | TypeBit::kDuration;
    for (const FieldView& field : source.Fields()) {
        const WordView* const word = field.Find(L"FORMAT");
        if (word != nullptr && (field.definition->type & kFormatted) == 0) {
            sink.Add(field, word->place, "FORMAT has no effect on this type");
        }
    }
}

void CheckMatrixWithoutDefault(const LintSource& source, FindingSink& sink) {
    for (const FieldView& field : source.Fields()) {
        const WordView* const word = field.Find(L"AUTO DIMENSION");
        if (word != nullptr && !field.Has(L"MATRIX DEFAULT") && !field.definition->has_default &&
            !field.Is(Classes::kEvaluate)) {
            sink.Add(field, word->place,
                     fmt::format("new columns of '{}' begin with {}", ToUtf8(field.definition->name),
                                 field.definition->default_value));
        }
    }
}

} // namespace Kestrona::Tool::Lint
