// An independent count of days for checking the calendar: the day number of
// a proleptic Gregorian date (1 for 0001-01-01) and back, for any year.
#ifndef KALBOR_TESTS_CALENDAR_CIVIL_DAYS_H
#define KALBOR_TESTS_CALENDAR_CIVIL_DAYS_H

#include <cstdint>
#include <cstdio>
#include <string>

struct Civil { int64_t y; int m, d; };

// Whole 400-year eras from 0000-03-01, then days within the era, the year
// counted from March so that a leap day ends it.
inline int64_t DayNumber(int64_t y, int m, int d) {
  y -= m <= 2;
  const int64_t era = (y >= 0 ? y : y - 399) / 400, yoe = y - era * 400;
  const int64_t doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + d - 1;
  return era * 146097 + yoe * 365 + yoe / 4 - yoe / 100 + doy - 305;
}

// The date of day number n: the year and month whose first days it does not
// precede, stepped to from an estimate within a year of it.
inline Civil FromDayNumber(int64_t n) {
  Civil c{(n - 1) * 400 / 146097 + 1, 1, 1};
  while (DayNumber(c.y + 1, 1, 1) <= n) ++c.y;
  while (DayNumber(c.y, 1, 1) > n) --c.y;
  while (c.m < 12 && DayNumber(c.y, c.m + 1, 1) <= n) ++c.m;
  return Civil{c.y, c.m, static_cast<int>(n - DayNumber(c.y, c.m, 1) + 1)};
}

inline int DaysInMonth(int64_t y, int m) { return static_cast<int>(DayNumber(y + m / 12, m % 12 + 1, 1) - DayNumber(y, m, 1)); }

// "%04d%02d%02d", as the C library writes it.
inline std::string DateText(long long y, long long m, long long d) {
  char buf[64];
  return std::string(buf, static_cast<size_t>(std::snprintf(buf, sizeof(buf), "%04lld%02lld%02lld", y, m, d)));
}

#endif  // KALBOR_TESTS_CALENDAR_CIVIL_DAYS_H
