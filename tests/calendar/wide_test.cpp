// The W forms: the same answers as the A forms on the same text, within their
// fixed input and output widths.
#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

#include <string>

namespace {
typedef std::basic_string<ka_wchar> WText;

WText Widen(const std::string& s) { return WText(s.begin(), s.end()); }
std::string Narrow(const ka_wchar* s) {
  std::string out;
  for (; *s != 0; ++s) out += static_cast<char>(*s);
  return out;
}
}  // namespace

TEST(WideCalendar, EveryWFormAnswersAsItsAFormOnTheUnitsItReads) {
  const char* const texts[] = {
      "",           // empty
      "2024",       // a year alone
      "20240315",   // a date whose walk back lands on a month's last day
      "20010523",   // the first day of a lunar leap month
      "19210101",   // the first lunar date
      "20300101",   // past the lunar walk: a long lunar text is cut to 8 units
      "202403010",  // a ninth unit is never read: 20240301, a holiday
      "20240230",   // no such date
  };
  // The questions, with the units each W form reads.
  const struct { int (*wide)(const ka_wchar*); int (*narrow)(const char*); size_t units; } questions[] = {
      {ka_is_leapyearW, ka_is_leapyearA, 4},   {ka_calc_lastdateW, ka_calc_lastdateA, 6},
      {ka_is_dateW, ka_is_dateA, 8},           {ka_calc_basedaysW, ka_calc_basedaysA, 8},
      {ka_calc_weekdayW, ka_calc_weekdayA, 8}, {ka_is_workdayW, ka_is_workdayA, 8}};
  // The date results: the A form's text, cut to 8 units.
  const struct { int (*wide)(const ka_wchar*, ka_wchar*); int (*narrow)(const char*, char*); } writers[] = {
      {[](const ka_wchar* s, ka_wchar* d) { return ka_add_daysW(s, -15, d); },
       [](const char* s, char* d) { return ka_add_daysA(s, -15, d); }},
      {[](const ka_wchar* s, ka_wchar* d) { return ka_add_monthW(s, 1, d); },
       [](const char* s, char* d) { return ka_add_monthA(s, 1, d); }},
      {ka_solar2lunarW, ka_solar2lunarA},
      {ka_lunar2solarW, ka_lunar2solarA}};
  for (const std::string a : texts) {
    const WText w = Widen(a);
    for (const auto& q : questions) EXPECT_EQ(q.wide(w.c_str()), q.narrow(a.substr(0, q.units).c_str())) << a;
    EXPECT_EQ(ka_calc_daysW(w.c_str(), KA_W("20240228")), ka_calc_daysA(a.substr(0, 8).c_str(), "20240228")) << a;
    for (const auto& f : writers) {
      char narrow[KA_DATE_TEXT_SIZE] = "";
      ka_wchar wide[9] = {0};
      EXPECT_EQ(f.wide(w.c_str(), wide), f.narrow(a.substr(0, 8).c_str(), narrow)) << a;
      EXPECT_EQ(Narrow(wide), std::string(narrow).substr(0, 8)) << a;
    }
  }
  // ka_todayW writes YYYYMMDDhhmm.
  ka_wchar now[13];
  EXPECT_EQ(ka_todayW(now), now);
  EXPECT_EQ(Narrow(now).size(), 12u);
}

TEST(WideCalendar, NullInputsAreEmptyTexts) {
  ka_wchar out[9] = {'x', 0};
  EXPECT_EQ(ka_add_daysW(nullptr, 1, out), -1);  // where the narrow form says 0
  EXPECT_EQ(Narrow(out), "");                    // a failure leaves dst empty
  EXPECT_EQ(ka_add_daysW(KA_W("20240101"), 1, nullptr), 2);  // computes, writes nothing
  EXPECT_EQ(ka_is_dateW(nullptr), 0);
  EXPECT_EQ(ka_solar2lunarW(nullptr, out), -1);
}
