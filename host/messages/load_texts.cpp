#include "messages/message_table.h"

namespace Kestrona::Host::Messages {

namespace {

constexpr NumberedText kTexts[] = {
    // Stages of a load. 17147 becomes the title, of which 11 characters are kept.
    {17135, L"Starting"},
    {17136, L"Reading the table definition"},
    {17138, L"Checking the table definition"},
    {17147, L"Kestrona"},

    // Names of dialog levels
    {18500, L"Hidden"},
    {18501, L"Main level"},
    {18503, L"No level"},

    // Compiled configurations. 19054, 19076: file, its version, this version; 19062: file; 19063: identity, file.
    {19054, L"The configuration file %s is of version %s, which is too old for this version, %s.\n"
            L"Compile the definition again."},
    {19062, L"The configuration file %s cannot be opened."},
    {19063, L"The configuration file %2% is made for another program: its identity is '%1%'."},
    {19076, L"The configuration file %s is of version %s, which is newer than this version, %s.\n"
            L"Use a newer program, or compile the definition with this one."},

    // The load as a whole. 21039, 21069: format; 21109: format, its associated table.
    {21001, L"The table definition has been loaded already; a process loads it once."},
    {21039, L"Format '%s' has no primary key; every format needs one."},
    {21069, L"The associated table of format '%s' does not exist."},
    {21109, L"Format '%s' has an extension of its own, but its associated table '%s' has none.\n"
            L"Take the extension away, or give it to the associated table."},

    // A field looked up by name or number. Joined: context, format, field.
    {0x6a23, L"%s\nleads to format '%s', "},
    {0x6a24, L"which has no field '%s'."},
};
static_assert(Ascends(kTexts));

} // namespace

std::span<const NumberedText> LoadTexts() {
    return kTexts;
}

} // namespace Kestrona::Host::Messages
