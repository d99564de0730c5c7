#include "definition/words.h"

#include <kestrona/classes.h>

#include <array>
#include <cassert>
#include <unordered_map>

namespace Kestrona::Host::Language {

namespace {

constexpr Word Type(std::wstring_view text, std::uint32_t bits, Class sets = {}) {
    return {text, WordKind::Type, Shape::Nothing, bits, sets, false};
}

constexpr Word Attribute(std::wstring_view text, Class sets) {
    return {text, WordKind::Attribute, Shape::Nothing, 0, sets, false};
}

// Found by the readers where it stands with arguments.
constexpr Word Keyword(std::wstring_view text, Shape shape, Class sets = {}) {
    return {text, WordKind::Keyword, shape, 0, sets, shape == Shape::Nothing};
}

// Found by the readers wherever it stands.
constexpr Word LooseKeyword(std::wstring_view text, Shape shape) {
    return {text, WordKind::Keyword, shape, 0, {}, true};
}

constexpr std::array kWords{
    // Types
    Type(L"INTEGER", TypeBit::kInteger),
    Type(L"REAL", TypeBit::kReal),
    Type(L"DATE AND TIME", TypeBit::kDateTime),
    Type(L"DURATION", TypeBit::kDuration),
    Type(L"TOGGLE", TypeBit::kToggle),
    Type(L"REFERENCE", TypeBit::kReference),
    Type(L"TEXT", TypeBit::kReference, Classes::kFreeFormat),
    Type(L"MATRIX", TypeBit::kMatrix),
    Type(L"FREE STRING", TypeBit::kFreeString),

    // Storage and keys
    Attribute(L"FREE FORMAT", Classes::kFreeFormat),
    Attribute(L"UNIQUE", Classes::kUnique),
    Attribute(L"AUTOMATIC KEY", Classes::kAutomaticKey),
    Attribute(L"ENCRYPTED", Classes::kEncrypted),
    Attribute(L"EXCLUDE FROM DB", Classes::kExcludeFromDb),
    Attribute(L"NOT SAVED", Classes::kNotPersisted),
    Attribute(L"INHERIT FROM PARENT", Classes::kInheritFromParent),
    Attribute(L"STORAGE MARK", Classes::kStorageMark),

    // Display
    Attribute(L"HIDDEN", Classes::kHidden),
    Attribute(L"READ ONLY", Classes::kReadOnly),
    Attribute(L"SHOW DATE", Classes::kShowDate),
    Attribute(L"SHOW TIME", Classes::kTimeForm),
    Attribute(L"INCLUDE SECONDS", Classes::kIncludeSeconds),
    Attribute(L"SHOW HOURS", Classes::kDurationMode2),
    Attribute(L"SHOW WEEKDAY", Classes::kDurationMode3),
    Attribute(L"CACHED TEXTS", Classes::kStringTableCached),
    Attribute(L"DIRECT COLOUR", Classes::kDirectColour),
    Attribute(L"SECOND UNSET WORD", Classes::kSecondUnsetWord),
    Attribute(L"SEQUENCE OWNER", Classes::kSequenceOwner),
    Attribute(L"DISPLAY SEQUENCE", Classes::kDisplaySequence),

    // Values of new records
    Attribute(L"NOW AS DEFAULT", Classes::kTimeOfNow),
    Attribute(L"USER NAME AS DEFAULT", Classes::kUserNameDefault),
    Attribute(L"DEEP DEFAULT", Classes::kDeepDefault),
    Attribute(L"SELECT ALL", Classes::kSelectAll),

    // Lists and references
    Attribute(L"PARALLEL LIST", Classes::kParallelList),
    Attribute(L"KEEP KEYS", Classes::kKeepKeys),
    Attribute(L"KEEP DELETED KEYS", Classes::kKeepDeletedKeys),
    Attribute(L"UNCHECKED", Classes::kUnchecked),
    Attribute(L"TWO KEY TARGET", Classes::kTwoKeyTarget),
    Attribute(L"REVERSE SEARCH", Classes::kReverseSearch),

    // References to other fields
    Keyword(L"DATABASE", Shape::DatabaseTarget),
    Keyword(L"SOURCE", Shape::Target),
    Keyword(L"STRING STORAGE", Shape::Target, Classes::kStringStorage),
    Keyword(L"ADDITIONAL REFERENCE", Shape::OwnFieldColon, Classes::kAdditionalReference),
    Keyword(L"UPDATE REFERENCE", Shape::OwnFieldColon, Classes::kUpdateReference),
    Keyword(L"OVERRIDE", Shape::OwnFieldColon, Classes::kOverride),
    Keyword(L"FAMILY", Shape::OwnField),
    Keyword(L"RELATED FIELD", Shape::OwnField),
    Keyword(L"REMOTE", Shape::Target),
    Keyword(L"REMOTE_DEF", Shape::QuotedTarget),
    LooseKeyword(L"SWITCH", Shape::OwnField),
    LooseKeyword(L"SWITCH ON", Shape::OwnField),
    LooseKeyword(L"SWITCH OFF", Shape::OwnField),
    Keyword(L"AUTO SPLIT", Shape::OwnFieldColon, Classes::kAutoSplit),
    Keyword(L"LOOKUP SOURCE", Shape::Target),
    LooseKeyword(L"LOOKUP UPDATE", Shape::LookupField),
    Keyword(L"LOCAL ASSIGNMENT", Shape::Target),
    Keyword(L"MATCH FIELD", Shape::Target),
    Keyword(L"MATCH DURATION FIELD", Shape::Target),
    Keyword(L"MATCH END DURATION FIELD", Shape::Target),
    Keyword(L"SETUP OVERRIDE MATCH", Shape::Target, Classes::kSetupOverrideMatch),
    Keyword(L"SOURCE ORDER", Shape::Target),
    Keyword(L"ORDER MATCH", Shape::ParentField),
    Keyword(L"EXPAND MATCH", Shape::Target),
    Keyword(L"EXPAND REFERENCE", Shape::Target),

    // Lists and matrices
    Keyword(L"AUTO LIST", Shape::Target),
    Keyword(L"DATA LIST", Shape::Nothing, Classes::kDataList),
    LooseKeyword(L"RELATED LIST", Shape::OwnField),
    Keyword(L"ASSOCIATE", Shape::OwnField),
    LooseKeyword(L"AUTO RESTRICT", Shape::OwnField),
    LooseKeyword(L"AUTO DIMENSION", Shape::Axes),
    LooseKeyword(L"MATRIX DEFAULT", Shape::AxisField),
    LooseKeyword(L"MATRIX MINIMUM", Shape::AxisField),
    Keyword(L"COMMON MATRIX", Shape::Nothing),

    // Values and texts
    Keyword(L"EVALUATE", Shape::QuotedText, Classes::kEvaluate),
    Keyword(L"SUBSTITUTE", Shape::ValuePair, Classes::kSubstitute),
    Keyword(L"SUBSTITUTX", Shape::ValuePair, Classes::kSubstitutx),
    Keyword(L"STRING_DEF", Shape::QuotedText),
    Keyword(L"FF_STRING_DEF", Shape::QuotedText),
    Keyword(L"TABLE", Shape::BracketText),
    Keyword(L"FORMAT", Shape::NumberFormat),
    Keyword(L"TRANSLATABLE", Shape::Nothing),

    // Dialogs
    Keyword(L"HIDDEN IF", Shape::QuotedText, Classes::kHiddenIf),
    Keyword(L"EXCLUDE", Shape::QuotedText),
    Keyword(L"CALL DIALOG", Shape::Integer, Classes::kCallDialog),
    Keyword(L"BUTTON TEXT", Shape::Label),
    Keyword(L"DIALOG FIELD NAME", Shape::Label),
    Keyword(L"TIP FIELD NAME", Shape::Label),
    Keyword(L"EDITOR FIELD NAME", Shape::Label),
    Keyword(L"TIP DISPLAY", Shape::OptionalOrder, Classes::kShowTooltip),
    Keyword(L"HELPID", Shape::Integer),
    Keyword(L"HELPPOPUPID", Shape::Integer),
    Keyword(L"HELP TEXT", Shape::BracketText),
    Keyword(L"HELP FILE", Shape::BracketText),

    // The system
    Keyword(L"SYSTEMDB", Shape::Nothing),
    Keyword(L"AUTO CALCULATE", Shape::Nothing),
    Keyword(L"3DMATRIX", Shape::Nothing),
};

constexpr std::array kResolutionClasses{
    Classes::kPrimaryHidden,
    Classes::kDatabase,
    Classes::kFamily,
    Classes::kList,
    Classes::kAutoDimension,
    Classes::k3DMatrix,
    Classes::kCommonMatrix,
    Classes::kRelatedList,
    Classes::kAutoRestrict,
    Classes::kMatrixDefault,
    Classes::kMatrixMinimum,
    Classes::kAssociate,
    Classes::kFamilyTarget,
    Classes::kSource,
    Classes::kSwitch,
    Classes::kMatchField,
    Classes::kMatchDurationField,
    Classes::kLocalAssignment,
    Classes::kLocalAssignmentTarget,
    Classes::kSourceOrder,
    Classes::kStringDefault,
    Classes::kLookupSource,
    Classes::kLookupUpdate,
    Classes::kOrderMatch,
    Classes::kExpandMatch,
    Classes::kExpandReference,
    Classes::kRelatedField,
};

std::unordered_map<std::wstring_view, const Word*> IndexWords() {
    std::unordered_map<std::wstring_view, const Word*> index;
    for (const Word& word : kWords) {
        [[maybe_unused]] const bool is_new = index.emplace(word.text, &word).second;
        assert(is_new);
    }
    return index;
}

} // namespace

std::span<const Word> AllWords() {
    return kWords;
}

const Word* FindWord(std::wstring_view text) {
    static const std::unordered_map<std::wstring_view, const Word*> index = IndexWords();
    const auto found = index.find(text);
    return found == index.end() ? nullptr : found->second;
}

std::wstring_view ExampleArguments(Shape shape) {
    switch (shape) {
    case Shape::Nothing:
        return L"";
    case Shape::Target:
    case Shape::DatabaseTarget:
        return L"(Format(Field))";
    case Shape::OwnField:
    case Shape::OwnFieldColon:
    case Shape::ParentField:
    case Shape::AxisField:
    case Shape::LookupField:
        return L"(Field)";
    case Shape::Axes:
        return L"(label,Format(Field),label,Format(Field))";
    case Shape::BracketText:
        return L"(text)";
    case Shape::Integer:
    case Shape::OptionalOrder:
        return L"(7)";
    case Shape::NumberFormat:
        return L"(8.2)";
    case Shape::QuotedText:
    case Shape::Label:
        return L" \"text\"";
    case Shape::QuotedTarget:
        return L" \"Format(Field)\"";
    case Shape::ValuePair:
        return L"(3->\"text\")";
    }
    return L"";
}

std::uint32_t ResolutionBits(std::int32_t word) {
    std::uint32_t bits = 0;
    for (const Class& c : kResolutionClasses) {
        if (c.word == word) {
            bits |= c.mask;
        }
    }
    return bits;
}

} // namespace Kestrona::Host::Language
