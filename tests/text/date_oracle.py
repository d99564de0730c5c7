"""Prints one line for each day from 1600 to 2400, a time of that day and what another calendar makes of both:

    DAYS SECONDS WEEKDAY WEEK MONTHS DAYS_AFTER_MONTHS YYYY-MM-DD HH:MM:SS

DAYS counts from 30 December 1899, WEEKDAY from Sunday, WEEK is ISO 8601's. A step of MONTHS keeps the last day of a
month the last day."""

import calendar
import datetime
import random
import sys

EPOCH = datetime.date(1899, 12, 30).toordinal()
LAST_DAY = datetime.date(2400, 12, 31).toordinal()


def add_months(day, months):
    index = day.year * 12 + day.month - 1 + months
    year, month = index // 12, index % 12 + 1
    last = calendar.monthrange(year, month)[1]
    is_last = day.day == calendar.monthrange(day.year, day.month)[1]
    return datetime.date(year, month, last if is_last else min(day.day, last))


random.seed(6)
lines = []
for ordinal in range(datetime.date(1600, 1, 1).toordinal(), LAST_DAY + 1):
    day = datetime.date.fromordinal(ordinal)
    seconds = random.randrange(86400)
    months = random.randrange(-1000, 1000)
    after = add_months(day, months).toordinal() - EPOCH
    clock = "%02d:%02d:%02d" % (seconds // 3600, seconds // 60 % 60, seconds % 60)
    lines.append("%d %d %d %d %d %d %s %s\n" % (
        ordinal - EPOCH, seconds, day.isoweekday() % 7, day.isocalendar()[1], months, after, day.isoformat(), clock))
sys.stdout.writelines(lines)
