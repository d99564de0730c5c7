#include "schema/class_names.h"

#include <kestrona/classes.h>

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace Kestrona::Tool {
namespace {

struct NamedClass {
    Class c;
    const char* name;
};

// By word and bit.
constexpr std::array kNames{
    NamedClass{Classes::kPrimaryHidden, "hidden with its list"},
    NamedClass{Classes::kHidden, "HIDDEN"},
    NamedClass{Classes::kReadOnly, "READ ONLY"},
    NamedClass{Classes::kStringTableCached, "CACHED TEXTS"},
    NamedClass{Classes::kFreeFormat, "FREE FORMAT"},
    NamedClass{Classes::kAutomaticKey, "AUTOMATIC KEY"},
    NamedClass{Classes::kUnique, "UNIQUE"},
    NamedClass{Classes::kEncrypted, "ENCRYPTED"},
    NamedClass{Classes::kOverride, "OVERRIDE"},
    NamedClass{Classes::kDatabase, "DATABASE"},
    NamedClass{Classes::kTimeForm, "SHOW TIME"},
    NamedClass{Classes::kFamily, "FAMILY"},
    NamedClass{Classes::kInheritFromParent, "INHERIT FROM PARENT"},
    NamedClass{Classes::kExcludeFromDb, "EXCLUDE FROM DB"},
    NamedClass{Classes::kList, "list"},
    NamedClass{Classes::kAutoDimension, "AUTO DIMENSION"},
    NamedClass{Classes::k3DMatrix, "3DMATRIX"},
    NamedClass{Classes::kCommonMatrix, "COMMON MATRIX"},
    NamedClass{Classes::kAdditionalReference, "ADDITIONAL REFERENCE"},
    NamedClass{Classes::kSequenceOwner, "SEQUENCE OWNER"},
    NamedClass{Classes::kUpdateReference, "UPDATE REFERENCE"},
    NamedClass{Classes::kDirectColour, "DIRECT COLOUR"},
    NamedClass{Classes::kDurationMode2, "SHOW HOURS"},
    NamedClass{Classes::kDurationMode3, "SHOW WEEKDAY"},
    NamedClass{Classes::kSecondUnsetWord, "SECOND UNSET WORD"},
    NamedClass{Classes::kRelatedList, "RELATED LIST"},
    NamedClass{Classes::kSelectAll, "SELECT ALL"},
    NamedClass{Classes::kShowDate, "SHOW DATE"},
    NamedClass{Classes::kParallelList, "PARALLEL LIST"},
    NamedClass{Classes::kAutoRestrict, "AUTO RESTRICT"},
    NamedClass{Classes::kMatrixDefault, "MATRIX DEFAULT"},
    NamedClass{Classes::kMatrixMinimum, "MATRIX MINIMUM"},
    NamedClass{Classes::kUnchecked, "UNCHECKED"},
    NamedClass{Classes::kEvaluate, "EVALUATE"},
    NamedClass{Classes::kAssociate, "ASSOCIATE"},
    NamedClass{Classes::kAutoSplit, "AUTO SPLIT"},
    NamedClass{Classes::kSubstitute, "SUBSTITUTE"},
    NamedClass{Classes::kFamilyTarget, "family target"},
    NamedClass{Classes::kSubstitutx, "SUBSTITUTX"},
    NamedClass{Classes::kShowTooltip, "TIP DISPLAY"},
    NamedClass{Classes::kNotPersisted, "NOT SAVED"},
    NamedClass{Classes::kSource, "SOURCE"},
    NamedClass{Classes::kSwitch, "SWITCH"},
    NamedClass{Classes::kStorageMark, "STORAGE MARK"},
    NamedClass{Classes::kUserNameDefault, "USER NAME AS DEFAULT"},
    NamedClass{Classes::kTwoKeyTarget, "TWO KEY TARGET"},
    NamedClass{Classes::kDeepDefault, "DEEP DEFAULT"},
    NamedClass{Classes::kMatchField, "MATCH FIELD"},
    NamedClass{Classes::kMatchDurationField, "MATCH DURATION FIELD"},
    NamedClass{Classes::kIncludeSeconds, "INCLUDE SECONDS"},
    NamedClass{Classes::kLocalAssignment, "LOCAL ASSIGNMENT"},
    NamedClass{Classes::kLocalAssignmentTarget, "local assignment target"},
    NamedClass{Classes::kTimeOfNow, "NOW AS DEFAULT"},
    NamedClass{Classes::kDisplaySequence, "DISPLAY SEQUENCE"},
    NamedClass{Classes::kSourceOrder, "SOURCE ORDER"},
    NamedClass{Classes::kSetupOverrideMatch, "SETUP OVERRIDE MATCH"},
    NamedClass{Classes::kKeepKeys, "KEEP KEYS"},
    NamedClass{Classes::kReverseSearch, "REVERSE SEARCH"},
    NamedClass{Classes::kKeepDeletedKeys, "KEEP DELETED KEYS"},
    NamedClass{Classes::kCallDialog, "CALL DIALOG"},
    NamedClass{Classes::kHiddenIf, "HIDDEN IF"},
    NamedClass{Classes::kStringStorage, "STRING STORAGE"},
    NamedClass{Classes::kDataList, "DATA LIST"},
    NamedClass{Classes::kStringDefault, "STRING_DEF"},
    NamedClass{Classes::kLookupSource, "LOOKUP SOURCE"},
    NamedClass{Classes::kLookupUpdate, "LOOKUP UPDATE"},
    NamedClass{Classes::kOrderMatch, "ORDER MATCH"},
    NamedClass{Classes::kExpandMatch, "EXPAND MATCH"},
    NamedClass{Classes::kExpandReference, "EXPAND REFERENCE"},
    NamedClass{Classes::kRelatedField, "RELATED FIELD"},
};

std::string NameOf(Class c) {
    const auto* const found =
        std::find_if(kNames.begin(), kNames.end(), [&](const NamedClass& each) { return each.c == c; });
    return found != kNames.end() ? found->name : fmt::format("word {} bit {:#x}", c.word, c.mask);
}

} // namespace

std::vector<std::string> ClassNames(Data::MemoryResident::IMemoryResidentData& store, std::int32_t format,
                                    std::int32_t field) {
    std::vector<std::string> names;
    for (std::int16_t word = 0; word < kClassWords; ++word) {
        for (std::uint32_t rest = store.GetDbClass(format, field, word); rest != 0; rest &= rest - 1) {
            names.push_back(NameOf({word, rest & (~rest + 1)}));
        }
    }
    return names;
}

std::optional<Class> ClassNamed(std::string_view name) {
    const auto* const found = std::ranges::find(kNames, name, [](const NamedClass& each) { return each.name; });
    return found != kNames.end() ? std::optional(found->c) : std::nullopt;
}

} // namespace Kestrona::Tool
