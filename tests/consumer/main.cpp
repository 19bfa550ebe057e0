// An application of the installed library: a string, the format engine and
// date arithmetic, each checked against the text it must give. Prints
// "consumer: ok" and returns 0, or names what differs and returns 1.
#include <kalbor/kalbor.h>

#include <cstdio>
#include <cstring>

namespace {

int Check(const char* what, const char* got, const char* want) {
  if (got != nullptr && std::strcmp(got, want) == 0) return 0;
  std::fprintf(stderr, "consumer: %s gave \"%s\", not \"%s\"\n", what, got != nullptr ? got : "(null)", want);
  return 1;
}

}  // namespace

int main() {
  Ka_AString name("kalbor", -1);
  name.MakeUpper();
  Ka_AString line;
  line.Format("%hs|%05d|%.2f|%d %#x", static_cast<const char*>(name), 42, 2.5, 1, 255);

  char date[KA_DATE_TEXT_SIZE];
  ka_add_daysA("20261122", 40, date);
  Ka_AString weekday;
  weekday.Format("%d", ka_calc_weekdayA(date));

  const int failures = Check("Format", line, "KALBOR|00042|2.50|1 0xff") + Check("ka_add_daysA", date, "20270101") +
                       Check("ka_calc_weekdayA", weekday, "5");
  if (failures == 0) std::puts("consumer: ok");
  return failures == 0 ? 0 : 1;
}
