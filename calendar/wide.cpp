// The W forms of the calendar: each narrows a fixed number of units of its
// input (the low byte of each), calls the A form and widens a fixed number of
// characters of a date result. The limits are deliberate and change results
// for longer inputs.
#include <kalbor/calendar.h>
#include <kalbor/cstr.h>

namespace {

// The first N units of s as narrow text; a null s gives an empty text.
template <int N>
struct Narrowed {
  char text[N + 1];
  explicit Narrowed(const ka_wchar* s) { ka_wide2ascii(text, s, N); }
  operator const char*() const { return text; }
};

// Widens the first units characters of a result (a terminator follows).
void Widen(ka_wchar* dst, const char* result, int units) {
  if (dst != nullptr) ka_ascii2wide(dst, result, units);
}

// Runs a date-writing A form on a narrowed input and widens 8 characters of
// what it wrote (an empty text when it wrote nothing).
template <class Convert>
int DateResult(ka_wchar* dst, Convert convert) {
  char result[KA_DATE_TEXT_SIZE] = "";
  const int r = convert(result);
  Widen(dst, result, 8);
  return r;
}

}  // namespace

int ka_is_leapyearW(const ka_wchar* s) { return ka_is_leapyearA(Narrowed<4>(s)); }
int ka_calc_lastdateW(const ka_wchar* s) { return ka_calc_lastdateA(Narrowed<6>(s)); }
int ka_is_dateW(const ka_wchar* s) { return ka_is_dateA(Narrowed<8>(s)); }
int ka_calc_basedaysW(const ka_wchar* s) { return ka_calc_basedaysA(Narrowed<8>(s)); }
int ka_calc_daysW(const ka_wchar* a, const ka_wchar* b) { return ka_calc_daysA(Narrowed<8>(a), Narrowed<8>(b)); }
int ka_calc_weekdayW(const ka_wchar* s) { return ka_calc_weekdayA(Narrowed<8>(s)); }
int ka_is_workdayW(const ka_wchar* date) { return ka_is_workdayA(Narrowed<8>(date)); }

int ka_add_daysW(const ka_wchar* s, int n, ka_wchar* dst) {
  const Narrowed<8> in(s);
  return DateResult(dst, [&](char* out) { return ka_add_daysA(in, n, out); });
}

int ka_add_monthW(const ka_wchar* s, int n, ka_wchar* dst) {
  const Narrowed<8> in(s);
  return DateResult(dst, [&](char* out) { return ka_add_monthA(in, n, out); });
}

int ka_lunar2solarW(const ka_wchar* lunar, ka_wchar* dst) {
  const Narrowed<8> in(lunar);
  return DateResult(dst, [&](char* out) { return ka_lunar2solarA(in, out); });
}

int ka_solar2lunarW(const ka_wchar* solar, ka_wchar* dst) {
  const Narrowed<8> in(solar);
  static_assert(KA_LUNAR_TEXT_SIZE <= KA_DATE_TEXT_SIZE, "the result buffer holds a lunar text");
  return DateResult(dst, [&](char* out) { return ka_solar2lunarA(in, out); });
}

ka_wchar* ka_todayW(ka_wchar* dst) {
  if (dst == nullptr) return nullptr;
  char now[15];
  ka_todayA(now);
  Widen(dst, now, 12);  // YYYYMMDDhhmm: deliberately without the seconds
  return dst;
}
