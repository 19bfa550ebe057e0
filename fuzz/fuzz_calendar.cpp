// The calendar functions of both widths on arbitrary texts and offsets,
// writing into heap blocks of exactly the documented sizes; the distance
// between two texts is the same both ways. That steps, distances and lunar
// conversions agree with an independent day count (so that they step back,
// count what they stepped and convert back) is the calendar tests', on random
// dates and offsets and on every day of the lunar table.
#include <fuzzer/FuzzedDataProvider.h>
#include <kalbor/kalbor.h>

#include <string>
#include <vector>

#include "fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider in(data, size);
  const int n = in.ConsumeIntegral<int>();
  const std::string b = in.ConsumeRandomLengthString(12);
  const std::string a = in.ConsumeRemainingBytesAsString();
  const char* s = a.c_str();
  std::vector<char> dst(KA_DATE_TEXT_SIZE), lunar(KA_LUNAR_TEXT_SIZE);
  const int narrow[] = {ka_is_leapyearA(s), ka_calc_lastdateA(s), ka_is_dateA(s), ka_calc_basedaysA(s),
                        ka_calc_weekdayA(s), ka_is_workdayA(s), ka_add_daysA(s, n, dst.data()),
                        ka_add_monthA(s, n, dst.data()), ka_lunar2solarA(s, dst.data()), ka_solar2lunarA(s, lunar.data())};
  (void)narrow;
  Check(ka_calc_daysA(s, b.c_str()) == ka_calc_daysA(b.c_str(), s), "ka_calc_days is not symmetric");

  // The W forms on each byte as a unit, and on each pair of bytes as one.
  const WText texts[2][2] = {{WText(a.begin(), a.end()), WText(b.begin(), b.end())}, {Wide(a), Wide(b)}};
  for (const auto& t : texts) {
    const ka_wchar* w = t[0].c_str();
    std::vector<ka_wchar> out(9);
    const int wide[] = {ka_is_leapyearW(w), ka_calc_lastdateW(w), ka_is_dateW(w), ka_calc_basedaysW(w),
                        ka_calc_daysW(w, t[1].c_str()), ka_calc_weekdayW(w), ka_add_daysW(w, n, out.data()),
                        ka_add_monthW(w, n, out.data()), ka_lunar2solarW(w, out.data()), ka_solar2lunarW(w, out.data()),
                        ka_is_workdayW(w)};
    (void)wide;
  }
  return 0;
}
