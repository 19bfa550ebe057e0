// Lunar conversion: the refusals, and every day of the table's walk against
// the month lengths of the calendar's text source (read here by the test
// itself), with the texts past the walk's end; the workday test's deliberate
// holidays.
#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "calendar/civil_days.h"

namespace {

struct LunarYear {
  int year, leapMonth, leapLength;
  int months[12];
};

std::vector<LunarYear> ReadSource() {
  std::vector<LunarYear> years;
  std::ifstream in(KALBOR_LUNAR_SOURCE);
  for (std::string line; std::getline(in, line);) {
    std::istringstream fields(line);
    LunarYear y{};
    if (line.empty() || line[0] == '#' || !(fields >> y.year >> y.leapMonth >> y.leapLength)) continue;
    for (int& m : y.months) fields >> m;
    years.push_back(y);
  }
  return years;
}

}  // namespace

TEST(LunarConversion, DatesOutsideTheTableOrTheMonthAreRefusedWithNothingWritten) {
  struct { bool toSolar; const char* input; int result; } refused[] = {
      {false, nullptr, -1},     // no text
      {false, "19201231", -1},  // before the table
      {false, "20500101", -1},  // after the table
      {false, "20240230", -2},  // no such day
      {false, "20241301", -2},  // months outside 1-12 have no days
      {true, nullptr, -1},      // and to solar: no text,
      {true, "19200101", -1},   // before the table
      {true, "20500101", -1},   // and after it
  };
  for (auto& c : refused) {
    char out[KA_DATE_TEXT_SIZE] = "untouched";
    EXPECT_EQ((c.toSolar ? ka_lunar2solarA : ka_solar2lunarA)(c.input, out), c.result) << (c.input ? c.input : "(null)");
    EXPECT_STREQ(out, "untouched");
  }
}

TEST(LunarConversion, EveryDayOfTheTableFollowsTheSourceMonths) {
  // That every solar date converts into KA_LUNAR_TEXT_SIZE bytes, before the
  // first lunar day and past the walk's end too, is the calendar fuzz
  // target's (it writes into blocks of exactly that size).
  const std::vector<LunarYear> years = ReadSource();
  ASSERT_EQ(years.size(), 130u);
  // A lunar cursor stepped one day at a time through the source's months,
  // beside the solar day number, to the end of 2049. The workday test, which
  // converts too, answers 0 or 1 on every day.
  int64_t solar = DayNumber(1921, 2, 8);  // lunar 1921-01-01
  for (const LunarYear& y : years) {
    if (y.year > 2049) break;
    for (int m = 1; m <= 12; ++m) {
      for (int leap = 0; leap <= (m == y.leapMonth ? 1 : 0); ++leap) {
        for (int d = 1; d <= (leap ? y.leapLength : y.months[m - 1]); ++d, ++solar) {
          const Civil c = FromDayNumber(solar);
          const std::string s = DateText(c.y, c.m, c.d), lunar = DateText(y.year, m, d);
          char out[KA_LUNAR_TEXT_SIZE] = "";
          const int result = ka_solar2lunarA(s.c_str(), out);
          ASSERT_LE(unsigned(ka_is_workdayA(s.c_str())), 1u) << s;
          if (y.year <= 2004) {  // the walk's years
            ASSERT_EQ(result, leap ? 0 : 1) << s;
            ASSERT_EQ(std::string(out), lunar) << s;
          } else if (c.y <= 2049) {  // past them: month 13 of 2004 (deliberate)
            ASSERT_EQ(result, 0) << s;
            ASSERT_EQ(std::string(out, 6), "200413") << s;
          }
          // A regular month's date converts back in every table year, except
          // where its day exceeds the year's leap month of the same number
          // (for month 1, last year's): those are refused (deliberate).
          const LunarYear& checked = m == 1 && &y != &years.front() ? (&y)[-1] : y;
          if (!leap && !(m == checked.leapMonth && d > checked.leapLength)) {
            char back[KA_DATE_TEXT_SIZE];
            ASSERT_EQ(ka_lunar2solarA(lunar.c_str(), back), 0) << lunar;
            ASSERT_EQ(std::string(back), s == "19991231" ? "19990000" : s) << lunar;  // deliberate
          }
        }
      }
    }
  }
}

// The rest of the workday test: a Sunday, a lunar holiday and a working day
// are the calendar guide's examples.
TEST(Workday, TheDeliberateHolidaysAndNoDates) {
  struct { const char* date; int workday; } cases[] = {
      {nullptr, 1},       // no date: a working day
      {"20240230", 1},    // no such date: not a Sunday, no holiday
      {"20240301", 0},    // a solar holiday on a Friday
      {"202403010", 1},   // nine characters never match the solar table
      {"20040121", 1},    // lunar 2003-12-30, the real eve, works (deliberate)
      {"20040120", 0},    // lunar 2003-12-29 is the fixed eve entry
      {"20240917", 1},    // lunar 2024-08-15 lies past the walk's end: not found (deliberate)
  };
  for (auto& c : cases) EXPECT_EQ(ka_is_workdayA(c.date), c.workday) << (c.date ? c.date : "(null)");
}
