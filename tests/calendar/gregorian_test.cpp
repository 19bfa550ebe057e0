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
  // Texts of seven and nine digits (read as dates, deliberately) are the
  // calendar guide's examples.
  struct { const char* s; int date, last, leap; } cases[] = {
      {nullptr, 0, 0, 0},       // null
      {"", 0, 0, 0},            // empty
      {"2024", 0, 0, 1},        // a year alone: no month, no date
      {"20241301", 0, 0, 1},    // month 13
      {"20240001", 0, 0, 1},    // month 0
      {"20240100", 0, 31, 1},   // day 0
      {"20230229", 0, 28, 0},   // a day past the month's end
      {"2024A215", 0, -1, 1},   // a letter in the month
      {"20240215 ", 0, 29, 1},  // a trailing blank makes no date
      {"00000101", 1, 31, 1},   // year 0000 is valid (and leap)
  };
  for (auto& c : cases) {
    EXPECT_EQ((std::vector<int>{ka_is_dateA(c.s), ka_calc_lastdateA(c.s), ka_is_leapyearA(c.s)}),
              (std::vector<int>{c.date, c.last, c.leap})) << (c.s ? c.s : "(null)");
    // No date: no day number, weekday or distance.
    const std::vector<int> counts = {ka_calc_basedaysA(c.s), ka_calc_weekdayA(c.s), ka_calc_daysA("20240228", c.s)};
    EXPECT_TRUE(c.date != 0 || counts == std::vector<int>(3, -1)) << (c.s ? c.s : "(null)") << ": no day number";
  }
}

TEST(DateCounts, AgreeWithAnIndependentDayCount) {
  // Every day of 1580-2100 (with the common centuries 1700-1900 and the
  // leap 2000), then random dates over the four-digit years; distances are
  // never negative.
  auto check = [](int64_t n) {
    const Civil c = FromDayNumber(n);
    const std::string s = DateText(c.y, c.m, c.d);
    const char* p = s.c_str();
    ASSERT_EQ((std::vector<int64_t>{ka_is_dateA(p), ka_calc_basedaysA(p), ka_calc_weekdayA(p), ka_calc_lastdateA(p),
                                    ka_is_leapyearA(p), ka_calc_daysA(p, "20240228")}),
              (std::vector<int64_t>{c.d, n, n % 7, DaysInMonth(c.y, c.m), DaysInMonth(c.y, 2) == 29,
                                    std::llabs(n - DayNumber(2024, 2, 28))})) << s;
  };
  for (int64_t n = DayNumber(1580, 1, 1); n <= DayNumber(2100, 12, 31); ++n) check(n);
  std::mt19937 rng(7);
  for (int i = 0; i < 20000; ++i) check(DayNumber(1, 1, 1) + rng() % (DayNumber(9999, 12, 31) - 1));
  // In year 0000 the day count's divisions truncate toward zero, which puts
  // its day numbers one above the proleptic count (0000-12-31 shares day 1
  // with 0001-01-01); weekdays follow them on the same seven-day cycle.
  for (int64_t n = DayNumber(0, 1, 1); n <= DayNumber(0, 12, 31); ++n) {
    const Civil c = FromDayNumber(n);
    const std::string s = DateText(c.y, c.m, c.d);
    ASSERT_EQ(std::make_pair(ka_calc_basedaysA(s.c_str()), ka_calc_weekdayA(s.c_str())),
              std::make_pair(static_cast<int>(n + 1), static_cast<int>(((n + 1) % 7 + 7) % 7))) << s;
  }
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
  // Bad input, the same for both steps.
  struct { const char* s; bool dst; int result; } bad[] = {
      {nullptr, true, 0},        // no text
      {"20240101", false, 0},    // no destination
      {"2024010", true, -1},     // fewer than 8 characters
  };
  for (auto& c : bad) {
    char out[KA_DATE_TEXT_SIZE], *dst = c.dst ? out : nullptr;
    EXPECT_EQ(std::make_pair(ka_add_daysA(c.s, 1, dst), ka_add_monthA(c.s, 1, dst)), std::make_pair(c.result, c.result))
        << (c.s ? c.s : "(null)");
  }
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
