// The W forms: the same answers as the A forms on the same text, within their
// fixed input and output widths.
#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

#include <string>

namespace {
std::u16string Wide(const ka_wchar* s) {
  std::u16string out;
  for (; s != nullptr && *s != 0; ++s) out += static_cast<char16_t>(*s);
  return out;
}
}  // namespace

TEST(WideCalendar, AnswersAsTheNarrowForms) {
  EXPECT_EQ(ka_is_dateW(KA_W("20240229")), 29);
  EXPECT_EQ(ka_is_leapyearW(KA_W("2024")), 1);
  EXPECT_EQ(ka_calc_lastdateW(KA_W("202402")), 29);
  EXPECT_EQ(ka_calc_basedaysW(KA_W("20240101")), 738886);
  EXPECT_EQ(ka_calc_daysW(KA_W("20240301"), KA_W("20240228")), 2);
  EXPECT_EQ(ka_calc_weekdayW(KA_W("20240101")), 1);
  EXPECT_EQ(ka_is_workdayW(KA_W("20240301")), 0);
  ka_wchar out[9];
  EXPECT_EQ(ka_add_daysW(KA_W("20240315"), -15, out), 0);
  EXPECT_EQ(Wide(out), u"20240229");
  EXPECT_EQ(ka_add_monthW(KA_W("20240131"), 1, out), 2);
  EXPECT_EQ(Wide(out), u"20240229");
  EXPECT_EQ(ka_solar2lunarW(KA_W("20010523"), out), 0);
  EXPECT_EQ(Wide(out), u"20010401");
  EXPECT_EQ(ka_lunar2solarW(KA_W("19210101"), out), 0);
  EXPECT_EQ(Wide(out), u"19210208");
}

TEST(WideCalendar, InputAndOutputWidthsAreFixed) {
  // Only 8 units are read: a ninth character cannot spoil the date.
  EXPECT_EQ(ka_is_dateW(KA_W("202402299")), 29);
  EXPECT_EQ(ka_is_dateA("202402299"), 29);  // the narrow form ignores it too
  EXPECT_EQ(ka_is_workdayW(KA_W("202403010")), 0);  // 8 units: 20240301
  // Results are cut to 8 units, even a lunar text past the walk's end.
  ka_wchar out[9];
  EXPECT_EQ(ka_solar2lunarW(KA_W("20300101"), out), 0);
  EXPECT_EQ(Wide(out).size(), 8u);
  // ka_todayW writes YYYYMMDDhhmm.
  ka_wchar now[13];
  EXPECT_EQ(ka_todayW(now), now);
  EXPECT_EQ(Wide(now).size(), 12u);
}

TEST(WideCalendar, NullInputsAreEmptyTexts) {
  ka_wchar out[9] = {'x', 0};
  EXPECT_EQ(ka_add_daysW(nullptr, 1, out), -1);  // where the narrow form says 0
  EXPECT_EQ(Wide(out), u"");                     // a failure leaves dst empty
  EXPECT_EQ(ka_add_daysA(nullptr, 1, nullptr), 0);
  EXPECT_EQ(ka_add_daysW(KA_W("20240101"), 1, nullptr), 2);  // computes, writes nothing
  EXPECT_EQ(ka_is_dateW(nullptr), 0);
  EXPECT_EQ(ka_solar2lunarW(nullptr, out), -1);
}
