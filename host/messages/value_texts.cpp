#include "messages/message_table.h"

namespace Kestrona::Host::Messages {

namespace {

// These words are read back, too. The word for hours must stand in no other word that can follow a number of days, and
// no long weekday name may stand in another.
constexpr NumberedText kTexts[] = {
    // A toggle that is set, and one that is not
    {0x697d, L"Yes"},
    {0x697e, L"No"},

    // Unset dates, durations and references
    {0x698a, L"Unspecified"},

    // Weekdays from Sunday on: for dates, short, for durations
    {0x698b, L"Sunday"},
    {0x698c, L"Monday"},
    {0x698d, L"Tuesday"},
    {0x698e, L"Wednesday"},
    {0x698f, L"Thursday"},
    {0x6990, L"Friday"},
    {0x6991, L"Saturday"},
    {0x6992, L"Sun"},
    {0x6993, L"Mon"},
    {0x6994, L"Tue"},
    {0x6995, L"Wed"},
    {0x6996, L"Thu"},
    {0x6997, L"Fri"},
    {0x6998, L"Sat"},
    {0x6999, L"Sunday"},
    {0x699a, L"Monday"},
    {0x699b, L"Tuesday"},
    {0x699c, L"Wednesday"},
    {0x699d, L"Thursday"},
    {0x699e, L"Friday"},
    {0x699f, L"Saturday"},

    // Durations
    {0x69a0, L"Day"},
    {0x69a1, L"Hours"},
    {0x69a2, L"Days"},
    {0x69a3, L"Minutes"},

    // The second word for an unset reference, and a record without a parent in its family
    {0x69a6, L"None"},
    {0x6a03, L"No parent"},
};
static_assert(Ascends(kTexts));

} // namespace

std::span<const NumberedText> ValueTexts() {
    return kTexts;
}

} // namespace Kestrona::Host::Messages
