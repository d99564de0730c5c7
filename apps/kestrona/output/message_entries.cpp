// Implements: MessageEntries.
#include "output/error_codes.h"

#include <algorithm>

namespace Kestrona::Tool {
namespace {

// What is only a part of other messages, or no complaint, is not here.
constexpr MessageEntry kEntries[] = {
    {19054, "Compile the definition again with this version."},
    {19062, "Check the path and the rights of the file."},
    {19063, "Compile the definition with this program."},
    {19076, "Use a newer program, or compile the definition with this one."},

    {21001, "Start another process for another definition."},
    {21004, "Correct the name of the field, or add the field to that format."},
    {21005, "Correct the name of the format, or add a reference that leads there."},
    {21007, "Use one of the REMOTE values as the default."},
    {21018, "Name a field that has AUTO LIST or DATA LIST."},
    {21019, "Give the field the type MATRIX alone."},
    {21021, "Name a field that has AUTO LIST or DATA LIST."},
    {21022, "Give the field the type MATRIX."},
    {21024, "Give the format a key."},
    {21026, "Name the field that chooses the record with RELATED FIELD."},
    {21028, "Add a field with DATABASE that chooses the record."},
    {21031, "Name another field than the field itself."},
    {21032, "Name another field than the field itself."},
    {21033, "Name the field whose column is shared with ADDITIONAL REFERENCE(...)."},
    {21035, "Name another field than the field itself."},
    {21036, "Name a field of the type INTEGER or REAL."},
    {21038, "Name the field that is updated with UPDATE REFERENCE(...)."},
    {21039, "Add a key statement that names a field of the format."},
    {21058, "Exchange the two axes."},
    {21069, "Correct the name of the associated table, or add the format."},
    {21084, "Name a field of the type MATRIX."},
    {21085, "Give the field that SOURCE leads to a DATABASE reference to the field itself."},
    {21090, "Name a field of the format."},
    {21096, "Add DATABASE or SOURCE to the field."},
    {21102, "Give the field that STRING STORAGE names the type TEXT."},
    {21108, "Correct the text that is looked for, or the classification that should hold it."},
    {21109, "Take the extension away, or give it to the associated table."},
    {21110, "Add STRING STORAGE with a field of the type TEXT."},
    {21111, "Take OVERRIDE out, or FREE FORMAT and MATRIX."},
    {21112, "Override a field without FREE FORMAT."},
    {21113, "Override a field of the same type."},
    {21114, "Take OVERRIDE or UPDATE REFERENCE out."},
    {21508, "Give the field the type MATRIX."},

    {29012, "Take DATABASE or FREE FORMAT out."},
    {31100, "Take ENCRYPTED or EVALUATE out."},
    {31101, "Take ENCRYPTED or STRING STORAGE out."},
    {31102, "Add FREE FORMAT to the field."},
};
static_assert(std::ranges::is_sorted(kEntries, std::ranges::less_equal{}, &MessageEntry::number));

} // namespace

std::span<const MessageEntry> MessageEntries() {
    return kEntries;
}

} // namespace Kestrona::Tool
