// Lunar conversion: the refusals, and every day of the table's walk against
// the month lengths of the calendar's text source (read here by the test
// itself), with the texts past the walk's end.
#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

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

TEST(LunarConversion, DatesOutsideTheTableOrTheMonthAreRefusedWithNothingWritten) {
  struct { const char* input; int result; } refused[] = {
      {nullptr, -1},       // no text
      {"19201231", -1},    // before the table
      {"20500101", -1},    // after the table
      {"20240230", -2},    // no such day
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

TEST(LunarConversion, EveryDayOfTheTableFollowsTheSourceMonthsAndFitsTheBuffers) {
  const std::vector<LunarYear> years = ReadSource();
  ASSERT_EQ(years.size(), 130u);
  // Every solar date of the table years converts to fewer than
  // KA_LUNAR_TEXT_SIZE bytes, also before the first lunar day and long past
  // the walk's end; the workday test, which converts too, stays inside its
  // own buffers (checked under the sanitizers).
  auto convert = [](const std::string& s, char* out) {
    const int result = ka_solar2lunarA(s.c_str(), out);
    EXPECT_LT(std::strlen(out), size_t(KA_LUNAR_TEXT_SIZE)) << s;
    EXPECT_LE(unsigned(ka_is_workdayA(s.c_str())), 1u) << s;
    return result;
  };
  int64_t solar = DayNumber(1921, 2, 8);  // lunar 1921-01-01
  for (int64_t n = DayNumber(1921, 1, 1); n < solar; ++n) {
    const Civil c = FromDayNumber(n);
    char out[64] = "";
    ASSERT_GE(convert(DateText(c.y, c.m, c.d), out), 0) << n;
  }
  // A lunar cursor stepped one day at a time through the source's months,
  // beside the solar day number, to the end of 2049.
  for (const LunarYear& y : years) {
    if (y.year > 2049) break;
    for (int m = 1; m <= 12; ++m) {
      for (int leap = 0; leap <= (m == y.leapMonth ? 1 : 0); ++leap) {
        const int length = leap ? y.leapLength : y.months[m - 1];
        for (int d = 1; d <= length; ++d, ++solar) {
          const Civil c = FromDayNumber(solar);
          const std::string s = DateText(c.y, c.m, c.d), lunar = DateText(y.year, m, d);
          char out[64] = "";
          const int result = convert(s, out);
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
