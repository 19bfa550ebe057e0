// An independent count of days for checking the calendar: days since
// 1970-01-01 of a proleptic Gregorian date and back, for any year.
#ifndef KALBOR_TESTS_CALENDAR_CIVIL_DAYS_H
#define KALBOR_TESTS_CALENDAR_CIVIL_DAYS_H

#include <cstdint>
#include <cstdio>
#include <string>

struct Civil { int64_t y; int m, d; };

inline int64_t DaysFromCivil(int64_t y, int m, int d) {
  y -= m <= 2;
  const int64_t era = (y >= 0 ? y : y - 399) / 400;
  const int64_t yoe = y - era * 400;
  const int64_t doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + d - 1;
  const int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + doe - 719468;
}

// The library's day number: 1 for 0001-01-01.
inline int64_t DayNumber(int64_t y, int m, int d) { return DaysFromCivil(y, m, d) - DaysFromCivil(1, 1, 1) + 1; }

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
  std::snprintf(buf, sizeof(buf), "%04lld%02lld%02lld", y, m, d);
  return buf;
}

#endif  // KALBOR_TESTS_CALENDAR_CIVIL_DAYS_H
