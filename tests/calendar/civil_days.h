// An independent count of days for checking the calendar: days since
// 1970-01-01 of a proleptic Gregorian date and back, for any year.
#ifndef KALBOR_TESTS_CALENDAR_CIVIL_DAYS_H
#define KALBOR_TESTS_CALENDAR_CIVIL_DAYS_H

#include <cstdint>
#include <cstdio>
#include <string>

struct Civil {
  int64_t y;
  int m, d;
};

inline int64_t DaysFromCivil(int64_t y, int m, int d) {
  y -= m <= 2;
  const int64_t era = (y >= 0 ? y : y - 399) / 400;
  const int64_t yoe = y - era * 400;
  const int64_t doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + d - 1;
  const int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + doe - 719468;
}

inline Civil CivilFromDays(int64_t z) {
  z += 719468;
  const int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const int64_t doe = z - era * 146097;
  const int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const int64_t mp = (5 * doy + 2) / 153;
  const int d = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
  const int m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  return Civil{yoe + era * 400 + (m <= 2), m, d};
}

// The library's day number: 1 for 0001-01-01.
inline int64_t DayNumber(int64_t y, int m, int d) { return DaysFromCivil(y, m, d) - DaysFromCivil(1, 1, 1) + 1; }
inline Civil FromDayNumber(int64_t n) { return CivilFromDays(n - 1 + DaysFromCivil(1, 1, 1)); }

inline int DaysInMonth(int64_t y, int m) {
  return static_cast<int>(DaysFromCivil(m == 12 ? y + 1 : y, m == 12 ? 1 : m + 1, 1) - DaysFromCivil(y, m, 1));
}

// "%04d%02d%02d", as the C library writes it.
inline std::string DateText(int64_t y, int64_t m, int64_t d) {
  char buf[64];
  std::snprintf(buf, sizeof(buf), "%04lld%02lld%02lld", static_cast<long long>(y), static_cast<long long>(m),
                static_cast<long long>(d));
  return buf;
}

#endif  // KALBOR_TESTS_CALENDAR_CIVIL_DAYS_H
