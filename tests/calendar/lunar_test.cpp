// Lunar conversion: the refusals, and every day of the table's walk against
// the month lengths of the calendar's text source (read here by the test
// itself), with the texts past the walk's end; the workday test's deliberate
// holidays; and the W forms of every function against their A forms.
#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "calendar/civil_days.h"

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
  struct LunarYear { int year, leapMonth, leapLength, months[12]; };
  std::vector<LunarYear> years;
  std::ifstream source(KALBOR_LUNAR_SOURCE);
  for (std::string line; std::getline(source, line);) {
    std::istringstream fields(line);
    LunarYear y{};
    fields >> y.year >> y.leapMonth >> y.leapLength;
    for (int& m : y.months) fields >> m;
    if (fields) years.push_back(y);  // comment lines read no number
  }
  ASSERT_EQ(years.size(), 130u);
  // A lunar cursor stepped one day at a time through the source's months,
  // beside the solar day number, to the end of 2049.
  int64_t solar = DayNumber(1921, 2, 8);  // lunar 1921-01-01
  for (const LunarYear& y : years) {
    if (y.year > 2049) break;
    for (int m = 1; m <= 12; ++m) {
      for (int leap = 0; leap <= (m == y.leapMonth ? 1 : 0); ++leap) {
        for (int d = 1; d <= (leap ? y.leapLength : y.months[m - 1]); ++d, ++solar) {
          const Civil c = FromDayNumber(solar);
          const std::string s = DateText(c.y, c.m, c.d), lunar = DateText(y.year, m, d);
          char out[KA_LUNAR_TEXT_SIZE] = "", back[KA_DATE_TEXT_SIZE];
          const int result = ka_solar2lunarA(s.c_str(), out);
          // The walk's years; past them, month 13 of 2004 (deliberate).
          const bool walked = y.year <= 2004;
          if (walked || c.y <= 2049) {
            ASSERT_EQ(std::make_pair(result, std::string(out, walked ? 8 : 6)),
                      std::make_pair(walked && !leap ? 1 : 0, walked ? lunar : "200413")) << s;
          }
          // A regular month's date converts back in every table year, except
          // where its day exceeds the year's leap month of the same number
          // (for month 1, last year's): those are refused (deliberate).
          const LunarYear& checked = m == 1 && &y != &years.front() ? (&y)[-1] : y;
          if (!leap && !(m == checked.leapMonth && d > checked.leapLength)) {
            ASSERT_EQ(ka_lunar2solarA(lunar.c_str(), back) == 0 ? std::string(back) : "refused",
                      s == "19991231" ? "19990000" : s) << lunar;  // deliberate
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

// ---- the W forms ----------------------------------------------------------

TEST(WideCalendar, EveryWFormAnswersAsItsAFormOnTheUnitsItReads) {
  const char* const texts[] = {
      nullptr,      // null: an empty text
      "",           // empty
      "2024",       // a year alone
      "20240315",   // a date whose walk back lands on a month's last day
      "20010523",   // the first day of a lunar leap month
      "20300101",   // past the lunar walk: a long lunar text is cut to 8 units
      "202403010",  // a ninth unit is never read: 20240301, a holiday
      "20240230",   // no such date
  };
  for (const char* text : texts) {
    const std::string a = text != nullptr ? text : "";
    const std::basic_string<ka_wchar> wide(a.begin(), a.end());
    const ka_wchar* w = text != nullptr ? wide.c_str() : nullptr;
    // The questions read 4, 6 or 8 units; a date written is the A form's
    // text cut to 8 units, and a null destination takes nothing.
    const std::string eight = a.substr(0, 8);  // the temporaries of four and six live through the list below
    const char* a8 = eight.c_str();
    char out[5][KA_DATE_TEXT_SIZE] = {};
    ka_wchar wout[4][9] = {{'?'}, {'?'}, {'?'}, {'?'}};  // a W form that fails leaves its dst empty
    const std::vector<int> answers = {ka_is_leapyearW(w), ka_calc_lastdateW(w), ka_is_dateW(w), ka_calc_basedaysW(w),
                                      ka_calc_weekdayW(w), ka_is_workdayW(w), ka_calc_daysW(w, KA_W("20240228")),
                                      ka_add_daysW(w, -15, wout[0]), ka_add_monthW(w, 1, wout[1]),
                                      ka_solar2lunarW(w, wout[2]), ka_lunar2solarW(w, wout[3]), ka_add_daysW(w, 1, nullptr)};
    const std::vector<int> expected = {ka_is_leapyearA(a.substr(0, 4).c_str()), ka_calc_lastdateA(a.substr(0, 6).c_str()),
                                       ka_is_dateA(a8), ka_calc_basedaysA(a8), ka_calc_weekdayA(a8), ka_is_workdayA(a8),
                                       ka_calc_daysA(a8, "20240228"), ka_add_daysA(a8, -15, out[0]),
                                       ka_add_monthA(a8, 1, out[1]), ka_solar2lunarA(a8, out[2]), ka_lunar2solarA(a8, out[3]),
                                       ka_add_daysA(a8, 1, out[4])};
    EXPECT_EQ(answers, expected) << a;
    for (int i = 0; i < 4; ++i)
      EXPECT_EQ(std::string(wout[i], wout[i] + std::char_traits<ka_wchar>::length(wout[i])), std::string(out[i], 0, 8))
          << a << " " << i;
  }
}

TEST(WideCalendar, TodayWritesTwelveUnits) {
  // The narrow today's 14 digits are the kalbor tool's "today" case.
  ka_wchar now[13];
  EXPECT_TRUE(ka_todayW(now) == now && std::char_traits<ka_wchar>::length(now) == 12 && ka_todayA(nullptr) == nullptr);
}
