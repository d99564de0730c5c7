#pragma once

#include <cstdint>

// Numbers of the messages whose texts are the words of dates and durations.
namespace Kestrona::Text {

inline constexpr std::int32_t kUnsetWord = 0x698a;
// Each of these is the first of seven, Sunday to Saturday.
inline constexpr std::int32_t kDayOfWeekNames = 0x698b;
inline constexpr std::int32_t kShortWeekdayNames = 0x6992;
inline constexpr std::int32_t kWeekdayNames = 0x6999;
inline constexpr std::int32_t kSaturdayName = kWeekdayNames + 6;
inline constexpr std::int32_t kDayWord = 0x69a0;
inline constexpr std::int32_t kHoursWord = 0x69a1;
inline constexpr std::int32_t kDaysWord = 0x69a2;
inline constexpr std::int32_t kMinutesWord = 0x69a3;

} // namespace Kestrona::Text
