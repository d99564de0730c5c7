#include "messages/message_table.h"

// A context is one line that names a keyword and its place; it stands inside the text of a failed look-up:
//
//   DATABASE(Prodct(Name))
//   leads to a format that does not exist or cannot be reached from there:
//   DATABASE of format 'Order', field 'Product'
//   Check: Prodct

namespace Kestrona::Host::Messages {

namespace {

constexpr NumberedText kTexts[] = {
    // Failed look-ups. 21004 and 21003: classification, format, field name, context. 21005, a line with the context,
    // and 21003: classification, context, format name. Behind other texts with format and field, 21003 takes the name
    // that the keyword gives.
    {21003, L"Check: %s"},
    {21004, L"%s\nleads to format '%s', which has no field '%s'.\n"},
    {21005, L"%s\nleads to a format that does not exist or cannot be reached from there:"},

    // Contexts and refusals of the field pass: format, field. 21007: value, format, field.
    {21006, L"DATABASE of format '%s', field '%s'"},
    {21007, L"The default value %s is none of the REMOTE values of format '%s', field '%s'."},
    {21008, L"SOURCE of format '%s', field '%s'"},
    {21009, L"AUTO LIST of format '%s', field '%s'"},
    {21010, L"AUTO DIMENSION of format '%s', field '%s'"},
    {21011, L"MATRIX MINIMUM of format '%s', field '%s'"},
    {21012, L"MATRIX DEFAULT of format '%s', field '%s'"},

    // Lists: format, field, the name that the keyword gives. 21017 follows 21018, 21019, 21021, 21022 and 21508.
    {21016, L"RELATED LIST of format '%s', field '%s'"},
    {21017, L"It names '%s'."},
    {21018, L"RELATED LIST of format '%s', field '%s' must name a field with AUTO LIST or DATA LIST. "},
    {21019, L"RELATED LIST of format '%s', field '%s' needs the type MATRIX and no other on its own field. "},
    {21020, L"ASSOCIATE of format '%s', field '%s'"},
    {21021, L"ASSOCIATE of format '%s', field '%s' must name a field with AUTO LIST or DATA LIST. "},
    {21022, L"ASSOCIATE of format '%s', field '%s' needs the type MATRIX on its own field. "},

    // FAMILY. 21024 and 21023: format, field.
    {21023, L"Check field '%s'."},
    {21024, L"FAMILY in format '%s' needs a primary key, which the format does not have. "},
    {21025, L"FAMILY of format '%s', field '%s'"},

    // References to a list or matrix of another format. 21026 and 21027: target format, format, a field that chooses
    // its record, the one found before it, the field with the reference. 21028 and 21029: target format, format, the
    // field with the reference.
    {21026, L"Format '%2%', field '%5%' refers to a list or matrix of format '%1%', and more than one field of '%2%' "
            L"chooses the record there: "},
    {21027, L"'%4%' and '%3%'. Name the right one with RELATED FIELD."},
    {21028, L"Format '%2%', field '%3%' refers to a list or matrix of format '%1%', "},
    {21029, L"but no field of '%2%' chooses the record there. Add a field with DATABASE and a UNIQUE field of '%1%'."},

    // Fields that lean on another field of their format: format, field. 21003 follows 21031, 21032, 21035, 21036 and
    // 21096.
    {21030, L"ADDITIONAL REFERENCE of format '%s', field '%s'"},
    {21031, L"UPDATE REFERENCE of format '%s', field '%s' leads the field to itself.\n"},
    {21032, L"ADDITIONAL REFERENCE of format '%s', field '%s' leads the field to itself.\n"},
    {21033, L"Format '%s', field '%s' shares the column of another field, but its classification has no "
            L"ADDITIONAL REFERENCE(...) that names it."},
    {21034, L"UPDATE REFERENCE of format '%s', field '%s'"},
    {21035, L"AUTO SPLIT of format '%s', field '%s' leads the field to itself.\n"},
    {21036, L"AUTO SPLIT of format '%s', field '%s' must name a field of the type INTEGER or REAL.\n"},
    {21037, L"AUTO SPLIT of format '%s', field '%s'"},
    {21038, L"Format '%s', field '%s' updates another field, but its classification has no UPDATE REFERENCE(...) that "
            L"names it."},

    // 21058 to 21062: format, field.
    {21058, L"AUTO DIMENSION of format '%s', "},
    {21059, L"field '%s' "},
    {21060, L"has this format as its second axis, "},
    {21061, L"and another one as its first. "},
    {21062, L"Exchange the two axes."},

    {21082, L"REMOTE of format '%s', field '%s'"},
    // After 21009 and a blank, as a context and as a refusal.
    {21084, L"(which must be of the type MATRIX)"},

    // SOURCE. 21085, 21086, 21087 and 21088 or 21089: source format, format, source field, field.
    {21085, L"SOURCE of format '%2%', field '%4%' "},
    {21086, L"leads to format '%1%', "},
    {21087, L"field '%3%', "},
    {21088, L"which has no DATABASE reference."},
    {21089, L"which has a DATABASE reference to another field than its own."},

    // A line with the name in quotes follows.
    {21090, L"SWITCH of format '%s', field '%s', which names"},

    {21093, L"MATCH FIELD of format '%s', field '%s'"},
    {21094, L"MATCH DURATION FIELD or MATCH END DURATION FIELD of format '%s', field '%s'"},
    {21095, L"LOCAL ASSIGNMENT of format '%s', field '%s'"},
    {21096, L"UPDATE REFERENCE of format '%s', field '%s' needs DATABASE or SOURCE on its own field.\n"},
    {21097, L"REMOTE_DEF of format '%s', field '%s'"},
    {21100, L"RELATED FIELD of format '%s', field '%s'"},

    // STRING STORAGE. 21102: format and field that it names; 21103 follows after a blank.
    {21102, L"STRING STORAGE leads to format '%s', field '%s', which cannot keep texts."},
    {21103, L"Give that field the type TEXT."},
    {21104, L"STRING STORAGE of format '%s', field '%s'"},

    // 21108: name, context.
    {21108, L"FIND CLASSIFICATION STRING looks for '%s', but no field has a classification like that:\n%s"},
    {21110, L"Format '%s', field '%s' is a MATRIX of texts and needs STRING STORAGE."},

    // OVERRIDE: format, field.
    {21111, L"Format '%s', field '%s' has OVERRIDE, so it can be neither FREE FORMAT nor a MATRIX."},
    {21112, L"Format '%s', field '%s' has OVERRIDE of a field with FREE FORMAT."},
    {21113, L"Format '%s', field '%s' has OVERRIDE of a field of another type."},
    {21114, L"Format '%s', field '%s' has OVERRIDE and UPDATE REFERENCE, which exclude each other."},

    {21504, L"SOURCE ORDER of format '%s', field '%s'"},
    {21505, L"SETUP OVERRIDE MATCH of format '%s', field '%s'"},
    {21506, L"AUTO RESTRICT of format '%s', field '%s'"},
    {21508, L"AUTO RESTRICT of format '%s', field '%s' needs the type MATRIX on its own field. "},

    // Attributes that exclude or need each other: format, field.
    {29012, L"Format '%s', field '%s' is both a DATABASE reference and FREE FORMAT."},
    {31100, L"Format '%s', field '%s' is encrypted, so it cannot have EVALUATE."},
    {31101, L"Format '%s', field '%s' is encrypted, so it cannot have STRING STORAGE."},
    {31102, L"Format '%s', field '%s' is encrypted, so it needs FREE FORMAT."},
};
static_assert(Ascends(kTexts));

} // namespace

std::span<const NumberedText> ResolutionTexts() {
    return kTexts;
}

} // namespace Kestrona::Host::Messages
