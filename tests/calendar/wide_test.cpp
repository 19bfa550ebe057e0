// The W forms: the same answers as the A forms on the same text, within their
// fixed input and output widths; and today's date and time in both widths.
#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

#include <string>
#include <vector>

namespace {
std::string Narrow(const ka_wchar* s) { return std::string(s, s + std::char_traits<ka_wchar>::length(s)); }
}  // namespace

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
    // The questions read 4, 6 or 8 units; a date written is the A form's text cut to 8 units.
    const std::string eight = a.substr(0, 8);  // the temporaries of four and six live through the list below
    const char* a8 = eight.c_str();
    char out[4][KA_DATE_TEXT_SIZE] = {};
    ka_wchar wout[4][9] = {{'?'}, {'?'}, {'?'}, {'?'}};  // a W form that fails leaves its dst empty
    const std::vector<int> answers = {ka_is_leapyearW(w), ka_calc_lastdateW(w), ka_is_dateW(w), ka_calc_basedaysW(w),
                                      ka_calc_weekdayW(w), ka_is_workdayW(w), ka_calc_daysW(w, KA_W("20240228")),
                                      ka_add_daysW(w, -15, wout[0]), ka_add_monthW(w, 1, wout[1]),
                                      ka_solar2lunarW(w, wout[2]), ka_lunar2solarW(w, wout[3])};
    const std::vector<int> expected = {ka_is_leapyearA(a.substr(0, 4).c_str()), ka_calc_lastdateA(a.substr(0, 6).c_str()),
                                       ka_is_dateA(a8), ka_calc_basedaysA(a8), ka_calc_weekdayA(a8), ka_is_workdayA(a8),
                                       ka_calc_daysA(a8, "20240228"), ka_add_daysA(a8, -15, out[0]),
                                       ka_add_monthA(a8, 1, out[1]), ka_solar2lunarA(a8, out[2]), ka_lunar2solarA(a8, out[3])};
    EXPECT_EQ(answers, expected) << a;
    for (int i = 0; i < 4; ++i) EXPECT_EQ(Narrow(wout[i]), std::string(out[i]).substr(0, 8)) << a << " " << i;
  }
}

TEST(WideCalendar, NullDestinationsAndTodaysTwelveUnits) {
  // The narrow today's 14 digits are the kalbor tool's "today" case.
  ka_wchar now[13];
  EXPECT_EQ(ka_todayW(now), now);
  EXPECT_EQ(Narrow(now).size(), 12u);
  EXPECT_EQ(ka_todayA(nullptr), nullptr);
  EXPECT_EQ(ka_add_daysW(KA_W("20240101"), 1, nullptr), 2) << "computes, writes nothing";
}
