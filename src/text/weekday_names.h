#pragma once

#include <cstdint>
#include <string>

namespace Kestrona::Text {

enum class WeekdayKind : std::int32_t {
    Duration = 0,  // as the weekday form of a duration shows it
    DayOfWeek = 1, // as the day of a date is told
    Short = 2,
    Fixed = 3 // the same words in every language
};

// The name of a weekday, 0 for Sunday to 6; "" for another number or kind.
std::wstring WeekdayName(std::int32_t weekday, WeekdayKind kind);

} // namespace Kestrona::Text
