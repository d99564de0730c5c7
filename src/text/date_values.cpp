// Implements: dates as points in time, and what is computed with them.
#include "text/date_values.h"

#include "platform/numbers.h"

#include <boost/date_time/gregorian/gregorian_types.hpp>
#include <boost/date_time/posix_time/posix_time_types.hpp>

#include <algorithm>
#include <cassert>
#include <chrono>
#include <cmath>

using boost::gregorian::date;
using boost::posix_time::ptime;
using Kestrona::SimpleDateTime;

namespace {

constexpr double kMillisecondsPerDay = 86400000.0;
constexpr double kFirstMoment = -182619.0;    // 1 January 1400
constexpr double kLastMoment = 2958465.99999; // the last second of 9999
constexpr std::int32_t kFirstYear = 1400;
constexpr std::int32_t kLastYear = 9999;
constexpr std::chrono::sys_days kFirstDay = std::chrono::year(kFirstYear) / 1 / 1;
constexpr std::chrono::sys_days kLastDay = std::chrono::year(kLastYear) / 12 / 31;
constexpr double kNoDate = -1.0;

const ptime& Epoch() {
    static const ptime epoch(date(1899, 12, 30));
    return epoch;
}

// The date with every piece in its range; nothing when there is no such date.
std::optional<SimpleDateTime> Normalise(const SimpleDateTime& pieces) {
    using namespace std::chrono;
    const std::int64_t month_index = std::int64_t{pieces.month} - 1;
    const std::int64_t first_year = pieces.year + month_index / 12;
    if (pieces.month == 0 || pieces.day == 0 || first_year > kLastYear) {
        return std::nullopt;
    }
    const seconds time(std::int64_t{pieces.hour} * 3600 + std::int64_t{pieces.minute} * 60 + pieces.second);
    const auto whole_days = floor<days>(time);
    // Days count on from the first of the month, which may itself lie before the first year.
    const sys_days first_of_month =
        year(static_cast<int>(first_year)) / month(static_cast<unsigned>(month_index % 12 + 1)) / 1;
    const sys_days result = first_of_month + days(pieces.day - 1) + whole_days;
    if (result < kFirstDay || result > kLastDay) {
        return std::nullopt;
    }
    const year_month_day day_of_result(result);
    const hh_mm_ss time_of_day(time - whole_days);
    return SimpleDateTime{static_cast<std::uint16_t>(static_cast<int>(day_of_result.year())),
                          static_cast<std::uint16_t>(static_cast<unsigned>(day_of_result.month())),
                          static_cast<std::uint16_t>(static_cast<unsigned>(day_of_result.day())),
                          static_cast<std::int32_t>(time_of_day.hours().count()),
                          static_cast<std::int32_t>(time_of_day.minutes().count()),
                          static_cast<std::int32_t>(time_of_day.seconds().count())};
}

double MoveByMonths(double value, std::int64_t months) {
    const ptime time = OADateToTime(value);
    const std::int64_t target = std::int64_t{time.date().year()} * 12 + time.date().month() - 1 + months;
    if (target < std::int64_t{kFirstYear} * 12 || target >= (std::int64_t{kLastYear} + 1) * 12) {
        return value;
    }
    return TimeToOADate(time + boost::gregorian::months(static_cast<int>(months)));
}

} // namespace

ptime OADateToTime(double value) {
    const double inside = std::isnan(value) ? 0.0 : std::clamp(value, kFirstMoment, kLastMoment);
    const std::int32_t days = Kestrona::Platform::TruncateToInt32(inside);
    const std::int64_t milliseconds = std::llround((inside - days) * kMillisecondsPerDay);
    return Epoch() + boost::gregorian::days(days) + boost::posix_time::milliseconds(milliseconds);
}

double TimeToOADate(const ptime& time) {
    if (time.is_special()) {
        return kNoDate;
    }
    return static_cast<double>((time - Epoch()).total_milliseconds()) / kMillisecondsPerDay;
}

std::optional<double> Kestrona::Text::DateFromPieces(SimpleDateTime& pieces) {
    const std::optional<SimpleDateTime> normal = Normalise(pieces);
    if (!normal) {
        return std::nullopt;
    }
    pieces = *normal;
    return TimeToOADate(ptime(date(normal->year, normal->month, normal->day),
                              boost::posix_time::time_duration(normal->hour, normal->minute, normal->second)));
}

double SimpleDateTimeToOADate(SimpleDateTime* pieces) {
    assert(pieces != nullptr);
    return Kestrona::Text::DateFromPieces(*pieces).value_or(kNoDate);
}

std::int32_t KSDLL_OADateToDow(double value) {
    return OADateToTime(value).date().day_of_week();
}

std::int32_t KSDLL_OADateToWoy(double value) {
    return OADateToTime(value).date().week_number();
}

double KSDLL_IncrementDateByMonths(double value, std::int32_t months) {
    return MoveByMonths(value, months);
}

double KSDLL_IncrementDateByYears(double value, std::int32_t years) {
    return MoveByMonths(value, std::int64_t{years} * 12);
}
