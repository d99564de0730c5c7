#pragma once

#include <kestrona/dates.h>

#include <cstdint>
#include <string>

// What the user's locale says about dates: the only facts that the module takes from it.
namespace Kestrona::Platform {

struct LocaleDates {
    DateLayout layout = DateLayout::Unknown;
    std::int32_t length = 10; // of the date's text: 10 with a year of four digits, 8 with two
    std::wstring time_separator = L":";
};

// Longer separators are cut, so that a text with date and time fits into 64 characters.
inline constexpr std::size_t kMaxTimeSeparator = 8;

// The facts of a locale by its name, such as "de_DE.UTF-8". "", "C" and "POSIX" are American English.
LocaleDates ReadLocaleDates(const std::string& name);

// The facts of the user's locale, from LC_ALL before LC_TIME before LANG. Read at the first call and kept.
const LocaleDates& UserLocaleDates();

// Puts other facts in the place of the user's. For tests, as is `ForgetLocaleDates`.
void OverrideLocaleDates(const LocaleDates& dates);

// Lets the next UserLocaleDates read the environment again.
void ForgetLocaleDates();

} // namespace Kestrona::Platform
