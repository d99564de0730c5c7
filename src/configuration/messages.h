#pragma once

#include <cstdint>

// Numbers of the host's texts that the definition load shows. Where nothing else is said, a text takes the arguments
// format name and field name; a text may ask for fewer.
namespace Kestrona::Configuration {

// Stages and title of the load
inline constexpr std::int32_t kMsgStageStart = 17135;
inline constexpr std::int32_t kMsgStageDefinition = 17136;
inline constexpr std::int32_t kMsgStageCheck = 17138;
inline constexpr std::int32_t kMsgTitle = 17147;

// The load as a whole
inline constexpr std::int32_t kMsgNoCompiledFile = 19062;    // file
inline constexpr std::int32_t kMsgLoadedBefore = 21001;      // no arguments
inline constexpr std::int32_t kMsgNoPrimaryKey = 21039;      // format
inline constexpr std::int32_t kMsgNoAssociatedTable = 21069; // format
inline constexpr std::int32_t kMsgForeignExtension = 21109;  // format, parent format

// Failed look-ups. A field: 21004 and 21003 with classification, format, field, context. A format: 21005, a line for
// the context, and 21003 with classification, context, format.
inline constexpr std::int32_t kMsgNameTail = 21003;
inline constexpr std::int32_t kMsgNoSuchField = 21004;
inline constexpr std::int32_t kMsgNoSuchFormat = 21005;

// Contexts of the field pass
inline constexpr std::int32_t kMsgInDatabase = 21006;
inline constexpr std::int32_t kMsgInSource = 21008;
inline constexpr std::int32_t kMsgInAutoList = 21009;
inline constexpr std::int32_t kMsgInAutoDimension = 21010;
inline constexpr std::int32_t kMsgInMatrixMinimum = 21011;
inline constexpr std::int32_t kMsgInMatrixDefault = 21012;
inline constexpr std::int32_t kMsgInRemote = 21082;
inline constexpr std::int32_t kMsgAutoListType = 21084; // behind 21009 and a blank
inline constexpr std::int32_t kMsgInSwitch = 21090;     // a line with the name in quotes follows
inline constexpr std::int32_t kMsgInMatchField = 21093;
inline constexpr std::int32_t kMsgInMatchDuration = 21094;
inline constexpr std::int32_t kMsgInLocalAssignment = 21095;
inline constexpr std::int32_t kMsgInRemoteDefault = 21097;
inline constexpr std::int32_t kMsgInRelatedField = 21100;
inline constexpr std::int32_t kMsgInStringStorage = 21104;
inline constexpr std::int32_t kMsgInSourceOrder = 21504;
inline constexpr std::int32_t kMsgInSetupOverride = 21505;

// Refusals of the field pass
inline constexpr std::int32_t kMsgDefaultNotRemote = 21007; // value, format, field
inline constexpr std::int32_t kMsgFirstAxisWrong1 = 21058;  // 21058 to 21062 are joined to one text
inline constexpr std::int32_t kMsgFirstAxisWrong2 = 21059;
inline constexpr std::int32_t kMsgFirstAxisWrong3 = 21060;
inline constexpr std::int32_t kMsgFirstAxisWrong4 = 21061;
inline constexpr std::int32_t kMsgFirstAxisWrong5 = 21062;
inline constexpr std::int32_t kMsgStorageTarget = 21102;     // format and field of the target; 21103 behind a blank
inline constexpr std::int32_t kMsgStorageTargetTail = 21103; // no arguments
inline constexpr std::int32_t kMsgNoClassification = 21108;  // name, context
inline constexpr std::int32_t kMsgStringsNeedStorage = 21110;

// Contexts of the relationship pass
inline constexpr std::int32_t kMsgInRelatedList = 21016;
inline constexpr std::int32_t kMsgInAssociate = 21020;
inline constexpr std::int32_t kMsgInFamily = 21025;
inline constexpr std::int32_t kMsgInAdditionalReference = 21030;
inline constexpr std::int32_t kMsgInUpdateReference = 21034;
inline constexpr std::int32_t kMsgInAutoSplit = 21037;
inline constexpr std::int32_t kMsgInAutoRestrict = 21506;

// Refusals of the relationship pass. 21017 and 21003 close the texts that they follow; the name of the field that the
// keyword names comes as a third argument.
inline constexpr std::int32_t kMsgListTail = 21017;
inline constexpr std::int32_t kMsgRelatedListTarget = 21018;
inline constexpr std::int32_t kMsgRelatedListType = 21019;
inline constexpr std::int32_t kMsgAssociateTarget = 21021;
inline constexpr std::int32_t kMsgAssociateType = 21022;
inline constexpr std::int32_t kMsgAutoRestrictType = 21508;
inline constexpr std::int32_t kMsgFamilyKeyTail = 21023; // format, field; behind 21024
inline constexpr std::int32_t kMsgFamilyKey = 21024;

// 21026 and 21027 together: target format, format, the field found, the one found before it, the field being resolved.
// 21028 and 21029 together: target format, format, field.
inline constexpr std::int32_t kMsgAmbiguousRelated = 21026;
inline constexpr std::int32_t kMsgAmbiguousTail = 21027;
inline constexpr std::int32_t kMsgNoRelated = 21028;
inline constexpr std::int32_t kMsgNoRelatedTail = 21029;

inline constexpr std::int32_t kMsgUpdatesItself = 21031; // 21003 behind it
inline constexpr std::int32_t kMsgSharesItself = 21032;  // 21003 behind it
inline constexpr std::int32_t kMsgNoAdditional = 21033;
inline constexpr std::int32_t kMsgSplitsItself = 21035; // 21003 behind it
inline constexpr std::int32_t kMsgSplitType = 21036;    // 21003 behind it
inline constexpr std::int32_t kMsgNoUpdateReference = 21038;

// 21085 to 21087 and then 21088 or 21089 together: source format, format, source field, field.
inline constexpr std::int32_t kMsgSource1 = 21085;
inline constexpr std::int32_t kMsgSource2 = 21086;
inline constexpr std::int32_t kMsgSource3 = 21087;
inline constexpr std::int32_t kMsgSourceNoReference = 21088;
inline constexpr std::int32_t kMsgSourceOther = 21089;

inline constexpr std::int32_t kMsgUpdateNeedsSource = 21096; // 21003 behind it
inline constexpr std::int32_t kMsgOverrideKind = 21111;
inline constexpr std::int32_t kMsgOverrideText = 21112;
inline constexpr std::int32_t kMsgOverrideType = 21113;
inline constexpr std::int32_t kMsgOverrideUpdate = 21114;
inline constexpr std::int32_t kMsgReferenceText = 29012;
inline constexpr std::int32_t kMsgEncryptedEvaluate = 31100;
inline constexpr std::int32_t kMsgEncryptedStorage = 31101;
inline constexpr std::int32_t kMsgEncryptedPlain = 31102;

} // namespace Kestrona::Configuration
