// KaToUnicode, KaToAscii and Ka_ConvCodePage on every code page the library
// converts (one chosen by the input, and an unknown one). Measuring with a
// null destination gives what the conversion writes, one unit less of room
// gives 0, and on the pages without state every unit decoded (but the
// default ones) survives a round trip.
#include <fuzzer/FuzzedDataProvider.h>
#include <kalbor/kalbor.h>

#include <string>
#include <vector>

#include "fuzz/fuzz_support.h"

namespace {

const unsigned kPages[] = {874,   1250,  1251,  1252,  1253,  1254,  1255,  1256,  1257,  1258,  708,   720,
                           850,   852,   862,   866,   28592, 28593, 28594, 28595, 28596, 28597, 28598, 38598,
                           20866, 21866, 932,   936,   949,   950,   51932, 65001, 50220, 50225, 52936, 437};
// The first pages up to here are without state: the ISO-2022 and HZ pages
// switch modes with bytes that are text elsewhere, and 437 converts nothing.
const size_t kStatelessPages = 32;

// The conversion of src into exactly the measured size and its terminator;
// one unit less must be refused.
template <class To, class From, class Convert>
std::basic_string<To> Converted(Convert convert, const std::basic_string<From>& src, unsigned cp) {
  const int n = static_cast<int>(src.size());
  const int need = convert(nullptr, 0, src.data(), n, cp);
  Check(need >= 0, "a conversion measured a negative size");
  if (need == 0) return {};
  std::vector<To> dst(static_cast<size_t>(need) + 1, To(1));
  Check(convert(dst.data(), need, src.data(), n, cp) == need && dst[static_cast<size_t>(need)] == 0,
        "a conversion wrote another size than it measured");
  std::vector<To> small(static_cast<size_t>(need));
  Check(convert(small.data(), need - 1, src.data(), n, cp) == 0, "a conversion one unit short did not give 0");
  return std::basic_string<To>(dst.data(), static_cast<size_t>(need));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider in(data, size);
  const size_t page = in.ConsumeIntegralInRange<size_t>(0, std::size(kPages) - 1);
  const unsigned cp = kPages[page], to = kPages[in.ConsumeIntegralInRange<size_t>(0, std::size(kPages) - 1)];
  const bool wholeText = in.ConsumeBool();
  const std::string bytes = in.ConsumeRemainingBytesAsString();

  const WText units = Converted<ka_wchar>(KaToUnicode, bytes, cp);
  (void)Converted<char>(KaToAscii, Wide(bytes), cp);
  if (page < kStatelessPages) {
    WText held;  // without the default units of the pages and U+FFFD
    for (ka_wchar u : units)
      if (u != 0x30FB && u != u'?' && u != 0xFFFD) held.push_back(u);
    Check(Converted<ka_wchar>(KaToUnicode, Converted<char>(KaToAscii, held, cp), cp) == held,
          "a page's own characters did not survive a round trip");
  }

  // Ka_ConvCodePage writes at most one and a half times its input and a
  // terminator, into exactly that much room.
  const std::string src = wholeText ? bytes.substr(0, bytes.find('\0')) : bytes;
  const int n = static_cast<int>(src.size());
  std::vector<char> dst(static_cast<size_t>(n + n / 2 + 2));
  const long written = Ka_ConvCodePage(dst.data(), src.c_str(), wholeText ? -1 : n, cp, to);
  Check(written >= 0 && written < static_cast<long>(dst.size()) && dst[static_cast<size_t>(written)] == 0,
        "Ka_ConvCodePage wrote past its room or without a terminator");
  return 0;
}
