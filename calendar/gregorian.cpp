// Gregorian date arithmetic on "YYYYMMDD" digit strings.
#include <kalbor/calendar.h>

#include <cstring>

#include "date_text.h"
#include "platform/platform.h"

using namespace ka_calendar;

namespace {

// Days in 400 Gregorian years: any 4800 consecutive months.
const int64_t kCycleDays = 146097;

// The day number of a date already known to be valid; it may be -1 or lower
// for dates early in year 0000 (the divisions truncate toward zero).
int DayNumber(int y, int m, int d) {
  return (y - 1) / 400 - (y - 1) / 100 + (y - 1) / 4 + 365 * y - 365 + d + DaysBeforeMonth(m) +
         (IsLeapYear(y) && m >= 3 ? 1 : 0);
}

bool DayNumberOf(const char* s, int* out) {
  if (ka_is_dateA(s) == 0) return false;
  *out = DayNumber(Field(s, 0, 4), Field(s, 4, 2), Field(s, 6, 2));
  return true;
}

// The n = 0 result: s as it stands, cut to what KA_DATE_TEXT_SIZE bytes
// hold, so that a longer text cannot overrun the destination.
void CopyText(const char* s, char* dst) {
  const size_t n = LengthUpTo(s, KA_DATE_TEXT_SIZE - 1);
  std::memcpy(dst, s, n);
  dst[n] = 0;
}

}  // namespace

int ka_is_leapyearA(const char* s) {
  return DigitsAhead(s, 4) && IsLeapYear(Field(s, 0, 4)) ? 1 : 0;
}

int ka_calc_lastdateA(const char* s) {
  if (LengthUpTo(s, 6) < 6) return 0;
  if (!DigitsAhead(s, 6)) return -1;
  return MonthLength(Field(s, 0, 4), Field(s, 4, 2));
}

int ka_is_dateA(const char* s) {
  if (s == nullptr || s[0] == 0) return 0;
  for (const char* p = s; *p != 0; ++p)
    if (*p < '0' || *p > '9') return 0;
  const int day = Field(s, 6, 2);
  const int last = ka_calc_lastdateA(s);
  if (last < 0 || day > last) return 0;
  return day > 0 ? day : 0;
}

int ka_calc_basedaysA(const char* s) {
  int days;
  return DayNumberOf(s, &days) ? days : -1;
}

int ka_calc_daysA(const char* a, const char* b) {
  int x, y;
  if (!DayNumberOf(a, &x) || !DayNumberOf(b, &y)) return -1;
  return x > y ? x - y : y - x;
}

int ka_calc_weekdayA(const char* s) {
  int days;
  if (!DayNumberOf(s, &days)) return -1;
  return (days % 7 + 7) % 7;  // 0001-01-01, day 1, is a Monday
}

int ka_add_daysA(const char* s, int n, char* dst) {
  if (s == nullptr || dst == nullptr) return 0;
  if (LengthUpTo(s, 8) < 8) return -1;
  if (n == 0) {
    CopyText(s, dst);
    return Field(s, 6, 2);
  }
  // The device's walk month by month, with whole 400-year cycles skipped
  // where the walk could not stop inside them, so that far offsets cost no
  // more than near ones and give the same result.
  int64_t y = Field(s, 0, 4), m = Field(s, 4, 2);
  int64_t day = int64_t(Field(s, 6, 2)) + n;
  for (;;) {
    if (m >= 1 && m <= 12) {
      if (day > kCycleDays + 31) {
        const int64_t k = (day - 32) / kCycleDays;
        day -= k * kCycleDays;
        y += 400 * k;
      } else if (day < -(kCycleDays + 31)) {
        const int64_t k = (-day - 32) / kCycleDays;
        day += k * kCycleDays;
        y -= 400 * k;
      }
    }
    const int last = MonthLength(y, m);
    if (day > 0 && day <= last) {
      WriteDate(dst, y, m, day);
      return static_cast<int>(day);
    }
    if (day == 0) break;
    if (day > 0) {
      day -= last;
      if (++m > 12) {
        ++y;
        m = 1;
      }
    } else {
      if (--m < 1) {
        --y;
        m = 12;
      }
      day += MonthLength(y, m);
    }
  }
  // Stopped on day 0: the last day of the month before, written with its
  // own day, while the result is 0 (deliberate).
  if (--m < 1) {
    --y;
    m = 12;
  }
  WriteDate(dst, y, m, MonthLength(y, m));
  return 0;
}

int ka_add_monthA(const char* s, int n, char* dst) {
  if (s == nullptr || dst == nullptr) return 0;
  if (LengthUpTo(s, 8) < 8) return -1;
  if (n == 0) {
    CopyText(s, dst);
    return Field(s, 4, 2);
  }
  int64_t y = Field(s, 0, 4);
  int64_t month = int64_t(Field(s, 4, 2)) + n;
  // Whole years at once: the same as stepping a year at a time.
  if (month > 12) {
    const int64_t years = (month - 1) / 12;
    y += years;
    month -= 12 * years;
  } else if (month < 1) {
    const int64_t years = -month / 12 + 1;
    y -= years;
    month += 12 * years;
  }
  const int last = MonthLength(y, month);
  const int day = Field(s, 6, 2);
  WriteDate(dst, y, month, day >= 1 && day <= last ? day : last);
  return static_cast<int>(month);
}

char* ka_todayA(char* dst) {
  if (dst == nullptr) return nullptr;
  ka_platform::LocalTime t;
  ka_platform::GetLocalTime(&t);
  WriteTimestamp(dst, t.year, t.month, t.day, t.hour, t.minute, t.second);
  return dst;
}
