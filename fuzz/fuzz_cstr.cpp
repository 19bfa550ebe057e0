// The C-string editing functions of both widths on texts drawn from the
// input, each in a heap block of exactly the size its contract asks for, so
// that a write past it is reported. Lengths and counts must agree with the
// text each leaves.
#include <fuzzer/FuzzedDataProvider.h>
#include <kalbor/kalbor.h>

#include <algorithm>
#include <string>
#include <tuple>
#include <vector>

#include "fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider in(data, size);
  const int pos = in.ConsumeIntegralInRange(0, 1 << 20), unescape = in.ConsumeIntegral<int>();
  const int width = in.ConsumeIntegralInRange(-2, 300);
  const bool nullRemove = in.ConsumeBool(), nullTo = in.ConsumeBool(), wide = in.ConsumeBool();
  const char pad = in.ConsumeIntegral<char>();
  const std::string fromBytes = in.ConsumeRandomLengthString(8), toBytes = in.ConsumeRandomLengthString(8);
  const std::string textBytes = in.ConsumeRemainingBytesAsString();

  // The functions of one width; each text up to its first zero.
  auto run = [&](auto functions, auto unit) {
    typedef decltype(unit) C;
    const auto [findbrace, countstr, trimbrace, replace, packstr, lpad, rpad, strdup] = functions;
    auto upToZero = [](const std::string& bytes) {
      const std::basic_string<C> s = Units<C>(bytes);
      return s.substr(0, s.find(C(0)));
    };
    const std::basic_string<C> from = upToZero(fromBytes), to = nullTo ? std::basic_string<C>() : upToZero(toBytes);
    const std::basic_string<C> text = upToZero(textBytes);
    const int length = static_cast<int>(text.size()), at = pos % (length + 2) - 1;  // -1 to one past the terminator
    const int closer = findbrace(text.c_str(), at);
    Check(closer == -1 || (closer > at && closer < length), "ka_findbrace points outside the text");

    std::vector<C> edit(text.c_str(), text.c_str() + length + 1);
    const int trimmed = trimbrace(edit.data(), unescape);
    Check(trimmed == static_cast<int>(std::char_traits<C>::length(edit.data())), "ka_trimbrace returned another length");
    edit.assign(text.c_str(), text.c_str() + length + 1);
    const int packed = packstr(edit.data(), nullRemove ? nullptr : from.c_str());
    Check(packed == static_cast<int>(std::char_traits<C>::length(edit.data())), "ka_packstr returned another length");

    // Padding writes width + 1 characters, never fewer than the text holds.
    for (auto padder : {lpad, rpad}) {
      std::vector<C> padded(text.begin(), text.end());
      padded.resize(static_cast<size_t>(std::max(width, length)) + 1, C(0));
      Check(padder(padded.data(), static_cast<C>(static_cast<unsigned char>(pad)), width) == std::max(width, length),
            "ka_lpad or ka_rpad returned another length");
    }

    C* const block = strdup(text.c_str());
    if (block == nullptr) return;  // an empty text has no block
    const size_t count = from.empty() ? 0 : static_cast<size_t>(countstr(block, from.c_str()));
    C* const replaced = replace(block, from.c_str(), nullTo ? nullptr : to.c_str());
    Check(replaced != nullptr, "ka_replace refused a non-empty text");
    Check(std::char_traits<C>::length(replaced) + count * from.size() == text.size() + count * to.size(),
          "ka_replace left another length than its occurrences give");
    ka_free(replaced);
  };
  if (wide)
    run(std::make_tuple(ka_findbraceW, ka_countstrW, ka_trimbraceW, ka_replaceW, ka_packstrW, ka_lpadW, ka_rpadW,
                        _ka_strdupW), ka_wchar());
  else
    run(std::make_tuple(ka_findbraceA, ka_countstrA, ka_trimbraceA, ka_replaceA, ka_packstrA, ka_lpadA, ka_rpadA,
                        _ka_strdupA), char());
  return 0;
}
