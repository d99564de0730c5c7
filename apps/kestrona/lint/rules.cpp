#include "lint/rules.h"

#include <array>

namespace Kestrona::Tool::Lint {
namespace {

constexpr Severity kNote = Severity::Note;
constexpr Severity kWarning = Severity::Warning;
constexpr Severity kError = Severity::Error;

constexpr std::array kRules{
    RuleCheck{{"syntax", kError, "The text of the definition is wrong.", "Write what is expected in this place."}},
    RuleCheck{{"doubtful", kWarning, "The text of the definition can be read, but is hardly meant like this.",
               "Write what is expected in this place."}},
    RuleCheck{{"resolution", kError, "The definition cannot be resolved.",
               "Mend the field that the message names; the load stops at the first fault of this kind."}},

    RuleCheck{{"key-not-unique", kWarning, "A key field is not UNIQUE.", "Add UNIQUE to the key."}, CheckKeyNotUnique},
    RuleCheck{{"non-unique-reference", kWarning, "A reference is shown by a field that several records can share.",
               "Refer to a UNIQUE field, or make the field UNIQUE. To show another field beside the reference, use "
               "ADDITIONAL REFERENCE."},
              CheckNonUniqueReference},
    RuleCheck{{"isolated-format", kNote, "A format refers to no other format, and none refers to it.",
               "Add the reference that is missing, or take the format out."},
              CheckIsolatedFormat},
    RuleCheck{{"unused-field", kNote, "A hidden field that nothing names.",
               "Show the field, use it, or take it out; leave it if the host application reads it by its name."},
              CheckUnusedField},
    RuleCheck{
        {"unused-table", kWarning, "A string table that no field uses.", "Name it in a TABLE word, or take it out."},
        CheckUnusedTable},
    RuleCheck{{"unknown-table", kWarning, "A TABLE word that names no string table.",
               "Name a string table of the definition; without one the field shows the texts of the first table."},
              CheckUnknownTable},
    RuleCheck{{"unused-help", kNote, "A help text that no field shows.",
               "Name its number in a HELPPOPUPID word, or take it out."},
              CheckUnusedHelp},
    RuleCheck{{"unknown-help", kWarning, "A HELPPOPUPID word whose number has no help text.",
               "Add a help statement with this number."},
              CheckUnknownHelp},
    RuleCheck{{"keyword-in-name", kWarning, "A name holds a keyword that works wherever its text stands.",
               "Choose a name without the keyword, for instance in small letters."},
              CheckKeywordInName},

    RuleCheck{{"repeated-word", kWarning, "A word stands twice in a classification where one counts.",
               "Take one of them out."},
              CheckRepeatedWord},
    RuleCheck{{"shadowed-keyword", kWarning, "A keyword has no effect beside another one of the same field.",
               "Keep one of the two, or put the other one on a field of its own."},
              CheckShadowedKeyword},
    RuleCheck{{"text-without-length", kWarning, "A text field takes texts of any length.", "Give the field a length."},
              CheckTextWithoutLength},
    RuleCheck{{"length-without-effect", kWarning, "A length on a field that keeps no text of its own.",
               "Take the length out."},
              CheckLengthWithoutEffect},
    RuleCheck{{"default-without-effect", kWarning, "A default value on a field that has none.",
               "Take the default out; the default of a text is given by FF_STRING_DEF."},
              CheckDefaultWithoutEffect},
    RuleCheck{{"format-without-effect", kWarning, "FORMAT on a field that is not shown by it.",
               "Take FORMAT out, or make the field REAL or DURATION."},
              CheckFormatWithoutEffect},
    RuleCheck{{"matrix-without-default", kNote, "A matrix whose new columns have no value of their own.",
               "Name a field of the second format in MATRIX DEFAULT, or give the field a default."},
              CheckMatrixWithoutDefault},

    RuleCheck{{"substitute-twice", kWarning, "A value has two texts, or a text two values.",
               "Keep one entry for each value and each text; further texts of a value go into SUBSTITUTX."},
              CheckSubstituteTwice},
    RuleCheck{{"unknown-string-default", kWarning, "A STRING_DEF text that no SUBSTITUTE or SUBSTITUTX has.",
               "Use a text of the entries; with any other one the stored default stands."},
              CheckUnknownStringDefault},
    RuleCheck{{"loose-comparison", kWarning, "A comparison beside && or || without brackets.",
               "Put each comparison into brackets: && and || bind tighter than comparisons."},
              CheckLooseComparison},
};

} // namespace

const Rule& kSyntaxRule = kRules[0].rule;
const Rule& kDoubtfulRule = kRules[1].rule;
const Rule& kResolutionRule = kRules[2].rule;

std::span<const RuleCheck> AllRules() {
    return kRules;
}

void ApplyRules(const LintSource& source, std::vector<Finding>& findings) {
    for (const RuleCheck& each : kRules) {
        if (each.check != nullptr) {
            FindingSink sink(source, each.rule, findings);
            each.check(source, sink);
        }
    }
}

} // namespace Kestrona::Tool::Lint
