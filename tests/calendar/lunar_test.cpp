// Lunar conversion: the documented results, every day of the table's walk
// against the month lengths of the calendar's text source (read here by the
// test itself), and the limits of the walk.
#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

#include <algorithm>
#include <cstring>
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
  std::string line;
  while (std::getline(in, line)) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream fields(line);
    LunarYear y{};
    fields >> y.year >> y.leapMonth >> y.leapLength;
    for (int& m : y.months) fields >> m;
    years.push_back(y);
  }
  return years;
}

}  // namespace

TEST(LunarConversion, DocumentedResults) {
  // Past the walk's end, a date falls in month 13 of lunar 2004 (deliberate).
  char past[KA_LUNAR_TEXT_SIZE] = "";
  EXPECT_EQ(ka_solar2lunarA("20050209", past), 0);
  EXPECT_STREQ(past, "20041330");
  struct { const char* input; int result; } refused[] = {
      {nullptr, -1},       // no text
      {"19201231", -1},    // before the table
      {"20500101", -1},    // after the table
      {"20240230", -2},    // no such day
      {"20230229", -2},
      {"20241301", -2},    // months outside 1-12 have no days
  };
  for (auto& c : refused) {
    char out[KA_LUNAR_TEXT_SIZE] = "untouched";
    EXPECT_EQ(ka_solar2lunarA(c.input, out), c.result) << (c.input ? c.input : "(null)");
    EXPECT_STREQ(out, "untouched");
  }
  for (const char* lunar : {static_cast<const char*>(nullptr), "19200101", "20500101"}) {
    char out[KA_DATE_TEXT_SIZE] = "untouched";
    EXPECT_EQ(ka_lunar2solarA(lunar, out), -1) << (lunar ? lunar : "(null)");
    EXPECT_STREQ(out, "untouched");
  }
}

TEST(LunarConversion, EveryDayOfTheTableFollowsTheSourceMonths) {
  const std::vector<LunarYear> years = ReadSource();
  ASSERT_EQ(years.size(), 130u);
  // A lunar cursor stepped one day at a time through the source's months,
  // beside the solar day number, from lunar 1921-01-01 to the end of 2049.
  int64_t solar = DayNumber(1921, 2, 8);
  for (const LunarYear& y : years) {
    if (y.year > 2049) break;
    for (int m = 1; m <= 12; ++m) {
      for (int leap = 0; leap <= (m == y.leapMonth ? 1 : 0); ++leap) {
        const int length = leap ? y.leapLength : y.months[m - 1];
        for (int d = 1; d <= length; ++d, ++solar) {
          const Civil c = FromDayNumber(solar);
          const std::string s = DateText(c.y, c.m, c.d), lunar = DateText(y.year, m, d);
          char out[KA_LUNAR_TEXT_SIZE];
          if (y.year <= 2004) {  // the walk's years
            ASSERT_EQ(ka_solar2lunarA(s.c_str(), out), leap ? 0 : 1) << s;
            ASSERT_EQ(std::string(out), lunar) << s;
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

TEST(LunarConversion, EveryDateOfTheTableYearsFitsTheBuffersAndIsAWorkdayOrNot) {
  // Every day the conversion accepts, before the table's first lunar day and
  // long past the walk's end, writes fewer than KA_LUNAR_TEXT_SIZE bytes; the
  // workday test, which converts too, stays inside its own buffers (checked
  // under the sanitizers).
  size_t longest = 0;
  int daysOff = 0;
  for (int64_t n = DayNumber(1921, 1, 1); n <= DayNumber(2049, 12, 31); ++n) {
    const Civil c = FromDayNumber(n);
    const std::string s = DateText(c.y, c.m, c.d);
    char out[64];
    ASSERT_GE(ka_solar2lunarA(s.c_str(), out), 0);
    longest = std::max(longest, std::strlen(out));
    const int w = ka_is_workdayA(s.c_str());
    ASSERT_TRUE(w == 0 || w == 1);
    daysOff += 1 - w;
  }
  EXPECT_LT(longest, size_t(KA_LUNAR_TEXT_SIZE));
  EXPECT_GT(longest, 8u);  // month 13 days take more than two digits
  EXPECT_GT(daysOff, 47000 / 7);  // at least every Sunday
}
