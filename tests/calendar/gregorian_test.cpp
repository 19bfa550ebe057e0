// Gregorian date arithmetic: deliberate results, an independent day count
// over a wide range of dates, far offsets and bad input.
#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

#include <climits>
#include <cstdlib>
#include <random>
#include <vector>

#include "calendar/civil_days.h"

TEST(DateFields, ValidityMonthLengthAndLeapYearsOfOddTexts) {
  // Texts of seven and nine digits (read as dates, deliberately) and a day
  // past the month's end are the calendar guide's examples.
  struct { const char* s; int date, last, leap; } cases[] = {
      {nullptr, 0, 0, 0},       // null
      {"2024", 0, 0, 1},        // a year alone: no month, no date
      {"20241301", 0, 0, 1},    // month 13
      {"20240001", 0, 0, 1},    // month 0
      {"20240100", 0, 31, 1},   // day 0
      {"2024A215", 0, -1, 1},   // a letter in the month
      {"20240215 ", 0, 29, 1},  // a trailing blank makes no date
  };
  for (auto& c : cases) {
    // No date: no day number, weekday or distance.
    EXPECT_EQ((std::vector<int>{ka_is_dateA(c.s), ka_calc_lastdateA(c.s), ka_is_leapyearA(c.s), ka_calc_basedaysA(c.s),
                                ka_calc_weekdayA(c.s), ka_calc_daysA("20240228", c.s)}),
              (std::vector<int>{c.date, c.last, c.leap, -1, -1, -1})) << (c.s ? c.s : "(null)");
  }
}

TEST(DateCounts, AgreeWithAnIndependentDayCount) {
  // Every day of 0000 and of 1580-2100 (with the common centuries 1700-1900
  // and the leap 2000), then random dates over the four-digit years;
  // distances are never negative. In year 0000 the day count's divisions
  // truncate toward zero, which puts its day numbers one above the proleptic
  // count (0000-12-31 shares day 1 with 0001-01-01); weekdays and distances
  // follow them.
  auto check = [](int64_t n, int shift) {
    const Civil c = FromDayNumber(n);
    const std::string s = DateText(c.y, c.m, c.d);
    const char* p = s.c_str();
    const int64_t counted = n + shift;
    ASSERT_EQ((std::vector<int64_t>{ka_is_dateA(p), ka_calc_basedaysA(p), ka_calc_weekdayA(p), ka_calc_lastdateA(p),
                                    ka_is_leapyearA(p), ka_calc_daysA(p, "20240228")}),
              (std::vector<int64_t>{c.d, counted, (counted % 7 + 7) % 7, DaysInMonth(c.y, c.m), DaysInMonth(c.y, 2) == 29,
                                    std::llabs(counted - DayNumber(2024, 2, 28))})) << s;
  };
  for (int64_t n = DayNumber(0, 1, 1); n <= DayNumber(0, 12, 31); ++n) check(n, 1);
  for (int64_t n = DayNumber(1580, 1, 1); n <= DayNumber(2100, 12, 31); ++n) check(n, 0);
  std::mt19937 rng(7);
  for (int i = 0; i < 20000; ++i) check(DayNumber(1, 1, 1) + rng() % (DayNumber(9999, 12, 31) - 1), 0);
}

TEST(DateSteps, DocumentedResultsAndBadInput) {
  struct { bool months; const char* s; int n; const char* written; int result; } cases[] = {
      {false, "20241301", 1, "20250102", 2},    // month 13 is walked as it stands (deliberate)
      {true, "20240100", 1, "20240229", 2},     // day 0 becomes the month's last day
      {true, "20249915", 1, "20320415", 4},     // month 99 counts on as months
      // n = 0 copies, cut to what the destination holds.
      {false, "20240215012345678901", 0, "202402150123456", 15},
      {true, "20240315012345678901", 0, "202403150123456", 3},
  };
  for (auto& c : cases) {
    char out[KA_DATE_TEXT_SIZE] = "";
    EXPECT_EQ((c.months ? ka_add_monthA : ka_add_daysA)(c.s, c.n, out), c.result) << c.s << " " << c.n;
    EXPECT_STREQ(out, c.written) << c.s << " " << c.n;
  }
  // Bad input, the same for both steps: no text, no destination, fewer than 8 characters.
  char out[KA_DATE_TEXT_SIZE];
  for (auto step : {ka_add_daysA, ka_add_monthA})
    EXPECT_EQ((std::vector<int>{step(nullptr, 1, out), step("20240101", 1, nullptr), step("2024010", 1, out)}),
              (std::vector<int>{0, 0, -1}));
}

TEST(DateSteps, AgreeWithTheDayCountForNearAndFarOffsets) {
  // Random dates (any day up to 31 for the month steps, which clamp it) and
  // offsets near, anywhere in int, and at the extremes.
  std::mt19937 rng(11);
  const int far[] = {1, -1, 400, -400, 146097, -146097, INT_MAX, INT_MIN};
  for (int i = 0; i < 8000; ++i) {
    const int y = static_cast<int>(rng() % 10000), m = 1 + static_cast<int>(rng() % 12), d = 1 + static_cast<int>(rng() % 31);
    const int n = i % 4 == 0 ? far[i / 4 % 8] : i % 4 == 1 ? static_cast<int>(rng()) : static_cast<int>(rng() % 2000001) - 1000000;
    const std::string s = DateText(y, m, d);
    char out[KA_DATE_TEXT_SIZE];
    const int64_t total = int64_t(y) * 12 + (m - 1) + n;
    const int64_t ny = total >= 0 ? total / 12 : -((-total + 11) / 12);
    const int nm = static_cast<int>(total - ny * 12) + 1, last = DaysInMonth(ny, nm);
    ASSERT_EQ(ka_add_monthA(s.c_str(), n, out), nm) << s << " " << n;
    ASSERT_EQ(std::string(out), DateText(ny, nm, d <= last ? d : last)) << s << " " << n;
    if (d > DaysInMonth(y, m)) continue;  // days: from valid dates only
    const Civil want = FromDayNumber(DayNumber(y, m, d) + n);
    const int result = ka_add_daysA(s.c_str(), n, out);
    ASSERT_EQ(std::string(out), DateText(want.y, want.m, want.d)) << s << " + " << n;
    // A walk backwards that lands on a month's last day answers 0 (deliberate).
    ASSERT_EQ(result, d + int64_t(n) <= 0 && want.d == DaysInMonth(want.y, want.m) ? 0 : want.d) << s << " + " << n;
  }
}
