#pragma once

#include <kestrona/types.h>

/// \file
/// Names for the type bits, the class bits and the data slots of a field.

namespace Kestrona {

/// Bits of a field's type code (`GetDbType`).
namespace TypeBit {
inline constexpr std::uint32_t kReference = 0x01;  ///< Reference, or text held by number.
inline constexpr std::uint32_t kDateTime = 0x02;   ///< OLE automation date, days.
inline constexpr std::uint32_t kReal = 0x04;       ///< Real number.
inline constexpr std::uint32_t kInteger = 0x08;    ///< 32-bit integer.
inline constexpr std::uint32_t kDuration = 0x10;   ///< Days.
inline constexpr std::uint32_t kMatrix = 0x20;     ///< A list or a 2-D value per record.
inline constexpr std::uint32_t kToggle = 0x40;     ///< Yes or no.
inline constexpr std::uint32_t kFreeString = 0x80; ///< Free string.
} // namespace TypeBit

/// Every class that the module tests, by its keyword or effect. "Definition" below means that whoever fills the store
/// sets the bit; the others are set while the definition is resolved.
namespace Classes {

// Word 0
inline constexpr Class kPrimaryHidden{0, 0x2};      ///< With kHidden on RELATED LIST and ASSOCIATE fields.
inline constexpr Class kHidden{0, 0x4};             ///< Hidden field. Definition, or resolution.
inline constexpr Class kReadOnly{0, 0x8};           ///< Read-only field. Definition, or resolution.
inline constexpr Class kStringTableCached{0, 0x10}; ///< The index of the field's string table is cached. Definition.
inline constexpr Class kFreeFormat{0, 0x20};        ///< FREE FORMAT: the field holds free text. Definition.
inline constexpr Class kAutomaticKey{0, 0x40};      ///< The key counts up by itself. Definition.
inline constexpr Class kUnique{0, 0x80};            ///< UNIQUE. Definition.
inline constexpr Class kEncrypted{0, 0x8000};       ///< The text is kept encrypted. Definition.
inline constexpr Class kOverride{0, 0x100000};      ///< OVERRIDE. Definition.
inline constexpr Class kDatabase{0, 0x200000};      ///< DATABASE: a reference to a field of a format.
inline constexpr Class kTimeForm{0, 0x800000};      ///< Time or day-number form of a date or duration. Definition.
inline constexpr Class kFamily{0, 0x2000000};       ///< FAMILY.
inline constexpr Class kInheritFromParent{0, 0x8000000}; ///< INHERIT FROM PARENT. Definition, or resolution.
inline constexpr Class kExcludeFromDb{0, 0x40000000};    ///< EXCLUDE FROM DB: not saved, not tracked. Definition.

// Word 1
inline constexpr Class kList{1, 0x1};          ///< AUTO LIST, DATA LIST.
inline constexpr Class kAutoDimension{1, 0x2}; ///< AUTO DIMENSION.
inline constexpr Class k3DMatrix{1, 0x4};      ///< 3DMATRIX: dimensioned by two formats.
inline constexpr Class kCommonMatrix{1, 0x10}; ///< COMMON MATRIX: one matrix for the whole field.
inline constexpr Class kAdditionalReference{1,
                                            0x40}; ///< ADDITIONAL REFERENCE: shares another field's column. Definition.
inline constexpr Class kSequenceOwner{1, 0x1000};  ///< Owns a display sequence; second word for unset. Definition.
inline constexpr Class kUpdateReference{1, 0x800000}; ///< UPDATE REFERENCE. Definition.
inline constexpr Class kDirectColour{1, 0x80000000};  ///< The value is a colour. Definition.

// Word 2
inline constexpr Class kDurationMode2{2, 0x1};        ///< Duration display mode 2. Definition.
inline constexpr Class kDurationMode3{2, 0x2};        ///< Duration display mode 3. Definition.
inline constexpr Class kSecondUnsetWord{2, 0x10};     ///< Shows the second word for unset. Definition.
inline constexpr Class kRelatedList{2, 0x80};         ///< RELATED LIST.
inline constexpr Class kSelectAll{2, 0x100};          ///< A new list selects all entries. Definition.
inline constexpr Class kShowDate{2, 0x10000};         ///< Show the date without the time. Definition.
inline constexpr Class kParallelList{2, 0x100000};    ///< Keeps an ASSOCIATE field a list beside its list. Definition.
inline constexpr Class kAutoRestrict{2, 0x200000};    ///< AUTO RESTRICT.
inline constexpr Class kMatrixDefault{2, 0x10000000}; ///< MATRIX DEFAULT.
inline constexpr Class kMatrixMinimum{2, 0x20000000}; ///< MATRIX MINIMUM.

// Word 3
inline constexpr Class kUnchecked{3, 0x20};    ///< Exempt from SOURCE checks and the first related search. Definition.
inline constexpr Class kEvaluate{3, 0x2000};   ///< EVALUATE: calculated. Definition.
inline constexpr Class kAssociate{3, 0x20000}; ///< ASSOCIATE.
inline constexpr Class kAutoSplit{3, 0x10000000}; ///< Gate of AUTO SPLIT. Definition.

// Word 4
inline constexpr Class kSubstitute{4, 0x100};      ///< SUBSTITUTE entries present. Definition, or resolution.
inline constexpr Class kFamilyTarget{4, 0x8000};   ///< Named by a FAMILY field.
inline constexpr Class kSubstitutx{4, 0x800000};   ///< SUBSTITUTX entries present. Definition, or resolution.
inline constexpr Class kShowTooltip{4, 0x4000000}; ///< Show in a tooltip. Definition.

// Word 5
inline constexpr Class kNotPersisted{5, 0x80}; ///< Not written to data files. Definition.
inline constexpr Class kSource{5, 0x1000};     ///< SOURCE.
inline constexpr Class kSwitch{5, 0x80000000}; ///< SWITCH.

// Word 6
inline constexpr Class kStorageMark{6, 0x10};      ///< Handed from a STRING STORAGE target to its users. Definition.
inline constexpr Class kUserNameDefault{6, 0x40};  ///< The default text is the user's name. Definition.
inline constexpr Class kTwoKeyTarget{6, 0x400};    ///< Target of a two-key reference. Definition.
inline constexpr Class kDeepDefault{6, 0x8000000}; ///< Default on deeper levels. Definition.
inline constexpr Class kMatchField{6, 0x10000000}; ///< MATCH FIELD.
inline constexpr Class kMatchDurationField{6, 0x80000000}; ///< MATCH DURATION FIELD.

// Word 7
inline constexpr Class kIncludeSeconds{7, 0x40};         ///< Times show their seconds. Definition.
inline constexpr Class kLocalAssignment{7, 0x400};       ///< LOCAL ASSIGNMENT, on the field that names it.
inline constexpr Class kLocalAssignmentTarget{7, 0x800}; ///< LOCAL ASSIGNMENT, on the field named.

// Word 8
inline constexpr Class kTimeOfNow{8, 0x80};                ///< The default is the time of now. Definition.
inline constexpr Class kDisplaySequence{8, 0x100};         ///< Display sequence. Definition.
inline constexpr Class kSourceOrder{8, 0x1000000};         ///< SOURCE ORDER.
inline constexpr Class kSetupOverrideMatch{8, 0x20000000}; ///< Gate of SETUP OVERRIDE MATCH. Definition.

// Word 9
inline constexpr Class kKeepKeys{9, 0x20};       ///< A list that keeps keys of deleted records; tracked. Definition.
inline constexpr Class kReverseSearch{9, 0x400}; ///< Candidate of a reverse search. Definition.
inline constexpr Class kKeepDeletedKeys{9, 0x4000000}; ///< A list that keeps keys of deleted records. Definition.
inline constexpr Class kCallDialog{9, 0x8000000};      ///< Calls a dialog. Definition.
inline constexpr Class kHiddenIf{9, 0x10000000};       ///< HIDDEN IF. Definition.

// Word 10
inline constexpr Class kStringStorage{10, 0x40}; ///< STRING STORAGE. Definition.
inline constexpr Class kDataList{10, 0x200000};  ///< DATA LIST. Definition.

// Word 11
inline constexpr Class kStringDefault{11, 0x80};     ///< STRING_DEF.
inline constexpr Class kLookupSource{11, 0x100};     ///< LOOKUP SOURCE.
inline constexpr Class kLookupUpdate{11, 0x200};     ///< LOOKUP UPDATE.
inline constexpr Class kOrderMatch{11, 0x400};       ///< ORDER MATCH.
inline constexpr Class kExpandMatch{11, 0x800};      ///< EXPAND MATCH.
inline constexpr Class kExpandReference{11, 0x1000}; ///< EXPAND REFERENCE.
inline constexpr Class kRelatedField{11, 0x10000};   ///< RELATED FIELD.

} // namespace Classes

/// Uses of a field's data slots (`GetDbData`). One slot serves several keywords, hence the repeated numbers.
namespace DataSlot {
inline constexpr std::int32_t kMaxTextLength = 0;      ///< UTF-16 units; 0 or less means no limit.
inline constexpr std::int32_t kSourceFormat = 0;       ///< SOURCE, UPDATE REFERENCE.
inline constexpr std::int32_t kAssociateField = 0;     ///< ASSOCIATE.
inline constexpr std::int32_t kMatrixFormat = 1;       ///< Matrix DATABASE, MATCH FIELD, SOURCE ORDER.
inline constexpr std::int32_t kMatrixField = 2;        ///< Matrix DATABASE, MATCH FIELD, SOURCE ORDER.
inline constexpr std::int32_t kMatrixDefaultField = 1; ///< MATRIX DEFAULT.
inline constexpr std::int32_t kMatrixMinimumField = 2; ///< MATRIX MINIMUM.
inline constexpr std::int32_t kSwitchOn = 3;           ///< On a SWITCH target: 1 for SWITCH ON.
inline constexpr std::int32_t kMatchEndField = 3;      ///< MATCH DURATION FIELD: field of the match end.
inline constexpr std::int32_t kSwitchField = 4;      ///< On a SWITCH target: the field that holds the SWITCH, else -1.
inline constexpr std::int32_t kAssignmentFormat = 6; ///< LOCAL ASSIGNMENT, MATCH DURATION FIELD.
inline constexpr std::int32_t kAssignmentField = 7;  ///< LOCAL ASSIGNMENT, MATCH DURATION FIELD.
inline constexpr std::int32_t kSetupMatchFormat = 8; ///< SETUP OVERRIDE MATCH.
inline constexpr std::int32_t kSetupMatchField = 9;  ///< SETUP OVERRIDE MATCH.
inline constexpr std::int32_t kRestrictField = 8;    ///< AUTO RESTRICT.
inline constexpr std::int32_t kStorageFormat = 10;   ///< STRING STORAGE.
inline constexpr std::int32_t kStorageField = 11;    ///< STRING STORAGE.
inline constexpr std::int32_t kUpdateSourceFormat = 13; ///< SOURCE, UPDATE REFERENCE.
inline constexpr std::int32_t kLookupFormat = 15;       ///< LOOKUP SOURCE, then LOOKUP UPDATE.
inline constexpr std::int32_t kLookupField = 16;        ///< LOOKUP SOURCE, then LOOKUP UPDATE.
inline constexpr std::int32_t kOrderMatchField = 17;    ///< ORDER MATCH.
inline constexpr std::int32_t kExpandFormat = 18;       ///< EXPAND MATCH, EXPAND REFERENCE.
inline constexpr std::int32_t kExpandField = 19;        ///< EXPAND MATCH, EXPAND REFERENCE.
} // namespace DataSlot

} // namespace Kestrona
