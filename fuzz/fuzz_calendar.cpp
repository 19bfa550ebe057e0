// The calendar functions of both widths on arbitrary texts and offsets,
// writing into heap blocks of exactly the documented sizes. Stepping a valid
// date forward and back gives it again, and a regular lunar month converts
// back to its solar date.
#include <fuzzer/FuzzedDataProvider.h>
#include <kalbor/kalbor.h>

#include <cstring>
#include <string>
#include <vector>

#include "fuzz/fuzz_support.h"

namespace {

template <class C>
std::basic_string<C> Widened(const std::string& s) {
  return std::basic_string<C>(s.begin(), s.end());
}

void Wide(const WText& a, const WText& b, int n) {
  const ka_wchar* s = a.c_str();
  std::vector<ka_wchar> dst(9);
  (void)ka_is_leapyearW(s);
  (void)ka_calc_lastdateW(s);
  (void)ka_is_dateW(s);
  (void)ka_calc_basedaysW(s);
  (void)ka_calc_daysW(s, b.c_str());
  (void)ka_calc_weekdayW(s);
  (void)ka_add_daysW(s, n, dst.data());
  (void)ka_add_monthW(s, n, dst.data());
  (void)ka_lunar2solarW(s, dst.data());
  (void)ka_solar2lunarW(s, dst.data());
  (void)ka_is_workdayW(s);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider in(data, size);
  const int n = in.ConsumeIntegral<int>();
  const std::string b = in.ConsumeRandomLengthString(12);
  const std::string a = in.ConsumeRemainingBytesAsString();
  const char* s = a.c_str();
  std::vector<char> dst(KA_DATE_TEXT_SIZE), back(KA_DATE_TEXT_SIZE), lunar(KA_LUNAR_TEXT_SIZE);
  (void)ka_is_leapyearA(s);
  (void)ka_calc_lastdateA(s);
  (void)ka_calc_weekdayA(s);
  (void)ka_is_workdayA(s);
  (void)ka_add_monthA(s, n, dst.data());
  (void)ka_lunar2solarA(s, dst.data());
  const int days = ka_calc_daysA(s, b.c_str());
  Check(days == ka_calc_daysA(b.c_str(), s), "ka_calc_days is not symmetric");

  const int day = ka_add_daysA(s, n, dst.data());
  const bool valid = std::strlen(s) == 8 && ka_is_dateA(s) != 0;
  // Year 0000's day numbers run one above a true count (its divisions
  // truncate toward zero), so distances are exact only from year 0001 on.
  const auto counted = [](const char* t) { return std::strncmp(t, "0000", 4) != 0; };
  if (valid && day != -1 && std::string(dst.data()).size() == 8 && ka_is_dateA(dst.data()) != 0 && counted(s) &&
      counted(dst.data())) {
    // Within years 1 to 9999 a step of n days and one of -n cancel out.
    Check(ka_calc_daysA(s, dst.data()) == (n < 0 ? -static_cast<long long>(n) : n),
          "ka_calc_days does not count the days ka_add_days stepped");
    (void)ka_add_daysA(dst.data(), -n, back.data());
    Check(std::string(s) == back.data(), "ka_add_days back and forth does not return");
  }
  if (valid && ka_solar2lunarA(s, lunar.data()) == 1 && ka_lunar2solarA(lunar.data(), back.data()) == 0)
    Check(std::string(s) == back.data(), "a regular lunar month does not convert back");

  Wide(Widened<ka_wchar>(a), Widened<ka_wchar>(b), n);
  Wide(::Wide(a), ::Wide(b), n);
  return 0;
}
