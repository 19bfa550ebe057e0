// Gregorian date arithmetic: deliberate results, an independent day count
// over a wide range of dates, far offsets and bad input.
#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

#include <climits>
#include <cstring>
#include <random>

#include "calendar/civil_days.h"

TEST(DateFields, ValidityMonthLengthAndLeapYears) {
  struct { const char* s; int date, last, leap; } cases[] = {
      {nullptr, 0, 0, 0},       // null
      {"", 0, 0, 0},            // empty
      {"2024", 0, 0, 1},        // a year alone: no month, no date
      {"20240229", 29, 29, 1},  // a leap day
      {"20230229", 0, 28, 0},   // not in a common year
      {"19000228", 28, 28, 0},  // centuries are common years...
      {"20000229", 29, 29, 1},  // ...unless divisible by 400
      {"20241301", 0, 0, 1},    // month 13
      {"20240001", 0, 0, 1},    // month 0
      {"20240100", 0, 31, 1},   // day 0
      {"2024021", 1, 29, 1},    // seven digits: the seventh is the day (deliberate)
      {"2024021512", 15, 29, 1},  // digits past the eighth are ignored
      {"2024A215", 0, -1, 1},   // a letter in the month
      {"20240215 ", 0, 29, 1},  // a trailing blank makes no date
      {"00000101", 1, 31, 1},   // year 0000 is valid (and leap)
      {"99991231", 31, 31, 0},  // the last four-digit year
      {"202", 0, 0, 0},         // too short for a year
  };
  for (auto& c : cases) {
    const char* label = c.s != nullptr ? c.s : "(null)";
    EXPECT_EQ(ka_is_dateA(c.s), c.date) << label;
    EXPECT_EQ(ka_calc_lastdateA(c.s), c.last) << label;
    EXPECT_EQ(ka_is_leapyearA(c.s), c.leap) << label;
    if (c.date == 0) {  // no date: no day number, weekday or distance
      EXPECT_EQ(ka_calc_basedaysA(c.s), -1) << label;
      EXPECT_EQ(ka_calc_weekdayA(c.s), -1) << label;
      EXPECT_EQ(ka_calc_daysA("20240228", c.s), -1) << label;
    }
  }
  EXPECT_EQ(ka_calc_daysA("20240301", "20240228"), 2);
  EXPECT_EQ(ka_calc_daysA("20240228", "20240301"), 2);  // never negative
}

TEST(DateCounts, AgreeWithAnIndependentDayCount) {
  // Every day of 1580-2100, then random dates over the four-digit years.
  auto check = [](int64_t n) {
    const Civil c = FromDayNumber(n);
    const std::string s = DateText(c.y, c.m, c.d);
    ASSERT_EQ(ka_is_dateA(s.c_str()), c.d) << s;
    ASSERT_EQ(ka_calc_basedaysA(s.c_str()), n) << s;
    ASSERT_EQ(ka_calc_weekdayA(s.c_str()), static_cast<int>(n % 7)) << s;
    ASSERT_EQ(ka_calc_lastdateA(s.c_str()), DaysInMonth(c.y, c.m)) << s;
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
    ASSERT_EQ(ka_calc_basedaysA(s.c_str()), n + 1) << s;
    ASSERT_EQ(ka_calc_weekdayA(s.c_str()), static_cast<int>(((n + 1) % 7 + 7) % 7)) << s;
  }
}

TEST(AddDays, DocumentedResults) {
  struct { const char* s; int n; const char* written; int result; } cases[] = {
      {"20240315", -15, "20240229", 0},    // back onto a month's last day: 0 (deliberate)
      {"20240101", -1, "20231231", 0},     // back over a year end, onto a last day
      {"20241301", 1, "20250102", 2},      // month 13 is walked as it stands (deliberate)
      {"20240000", 1, "20240101", 1},      // and so is month 0
      {"2024021599", 0, "2024021599", 15},  // n = 0 copies the text as it is
      {"20240215012345678901", 0, "202402150123456", 15},  // cut to what the destination holds
  };
  for (auto& c : cases) {
    char out[KA_DATE_TEXT_SIZE] = "";
    EXPECT_EQ(ka_add_daysA(c.s, c.n, out), c.result) << c.s << " " << c.n;
    EXPECT_STREQ(out, c.written) << c.s << " " << c.n;
  }
  // Bad input, the same for both walks.
  struct { const char* s; bool dst; int result; } bad[] = {
      {nullptr, true, 0},        // no text
      {"20240101", false, 0},    // no destination
      {"", true, -1},            // empty
      {"2024010", true, -1},     // fewer than 8 characters
  };
  for (auto& c : bad) {
    char out[KA_DATE_TEXT_SIZE];
    EXPECT_EQ(ka_add_daysA(c.s, 1, c.dst ? out : nullptr), c.result) << (c.s ? c.s : "(null)");
    EXPECT_EQ(ka_add_monthA(c.s, 1, c.dst ? out : nullptr), c.result) << (c.s ? c.s : "(null)");
  }
}

TEST(AddDays, AgreesWithTheDayCountForNearAndFarOffsets) {
  std::mt19937 rng(11);
  const int offsets[] = {1, -1, 30, -30, 400, -400, 146097, -146097, 1000000, -1000000, INT_MAX, INT_MIN};
  for (int i = 0; i < 5000; ++i) {
    const int64_t start = DayNumber(1, 1, 1) + rng() % (DayNumber(9999, 12, 31) - 1);
    const Civil c = FromDayNumber(start);
    const std::string s = DateText(c.y, c.m, c.d);
    const int n = i < 3000 ? static_cast<int>(rng() % 2000001) - 1000000 : offsets[i % 12];
    const Civil want = FromDayNumber(start + n);
    char out[KA_DATE_TEXT_SIZE];
    const int result = ka_add_daysA(s.c_str(), n, out);
    ASSERT_EQ(std::string(out), DateText(want.y, want.m, want.d)) << s << " + " << n;
    // A walk backwards that lands on a month's last day answers 0.
    const bool backwards = int64_t(c.d) + n <= 0;
    const int expected = backwards && want.d == DaysInMonth(want.y, want.m) ? 0 : want.d;
    ASSERT_EQ(result, expected) << s << " + " << n;
    ASSERT_LT(std::strlen(out), size_t(KA_DATE_TEXT_SIZE));
  }
}

TEST(AddMonths, ClampsTheDayAndHandlesFarOffsets) {
  struct { const char* s; int n; const char* written; int result; } cases[] = {
      {"20240131", 1, "20240229", 2},     // clamped to the leap February
      {"20240100", 1, "20240229", 2},     // day 0 becomes the month's last day
      {"20249915", 1, "20320415", 4},     // month 99 counts on as months
      {"20240315", 0, "20240315", 3},     // n = 0 copies
      {"20240315012345678901", 0, "202403150123456", 3},  // cut to what the destination holds
  };
  for (auto& c : cases) {
    char out[KA_DATE_TEXT_SIZE] = "";
    EXPECT_EQ(ka_add_monthA(c.s, c.n, out), c.result) << c.s << " " << c.n;
    EXPECT_STREQ(out, c.written) << c.s << " " << c.n;
  }
  std::mt19937 rng(5);
  for (int i = 0; i < 3000; ++i) {
    const int y = static_cast<int>(rng() % 10000), m = 1 + static_cast<int>(rng() % 12),
              d = 1 + static_cast<int>(rng() % 31);
    const int n = i % 3 == 0 ? static_cast<int>(rng()) : static_cast<int>(rng() % 4001) - 2000;
    const int64_t total = int64_t(y) * 12 + (m - 1) + n;
    const int64_t ny = total >= 0 ? total / 12 : -((-total + 11) / 12);
    const int nm = static_cast<int>(total - ny * 12) + 1;
    const int last = DaysInMonth(ny, nm);
    char out[KA_DATE_TEXT_SIZE];
    const std::string s = DateText(y, m, d);
    ASSERT_EQ(ka_add_monthA(s.c_str(), n, out), nm) << s << " " << n;
    ASSERT_EQ(std::string(out), DateText(ny, nm, d <= last ? d : last)) << s << " " << n;
  }
}

TEST(DateText, ExtremeArgumentsFitTheDocumentedBuffer) {
  const char* starts[] = {"00000101", "99991231", "99999931", "00000031", "    0101"};
  for (const char* s : starts)
    for (int n : {INT_MAX, INT_MIN, INT_MAX - 1, -1000000000}) {
      char out[64];
      ka_add_daysA(s, n, out);
      EXPECT_LT(std::strlen(out), size_t(KA_DATE_TEXT_SIZE)) << s << " " << n;
      ka_add_monthA(s, n, out);
      EXPECT_LT(std::strlen(out), size_t(KA_DATE_TEXT_SIZE)) << s << " " << n;
    }
}

TEST(Today, WritesFourteenDigitsOfTheLocalTime) {
  char now[15];
  EXPECT_EQ(ka_todayA(now), now);
  EXPECT_EQ(std::strlen(now), 14u);
  now[8] = 0;  // the date part is a valid date
  EXPECT_GT(ka_is_dateA(now), 0);
  EXPECT_EQ(ka_todayA(nullptr), nullptr);
}
