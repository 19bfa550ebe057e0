// The C-string editing functions of both widths on texts drawn from the
// input, each in a heap block of exactly the size its contract asks for, so
// that a write past it is reported. Lengths and counts must agree with the
// text each leaves.
#include <fuzzer/FuzzedDataProvider.h>
#include <kalbor/kalbor.h>

#include <string>
#include <vector>

#include "fuzz/fuzz_support.h"

namespace {

template <class C>
struct Fns;
template <>
struct Fns<char> {
  static constexpr auto findbrace = ka_findbraceA;
  static constexpr auto countstr = ka_countstrA;
  static constexpr auto trimbrace = ka_trimbraceA;
  static constexpr auto replace = ka_replaceA;
  static constexpr auto packstr = ka_packstrA;
  static constexpr auto lpad = ka_lpadA, rpad = ka_rpadA;
  static constexpr auto strdup = _ka_strdupA;
};
template <>
struct Fns<ka_wchar> {
  static constexpr auto findbrace = ka_findbraceW;
  static constexpr auto countstr = ka_countstrW;
  static constexpr auto trimbrace = ka_trimbraceW;
  static constexpr auto replace = ka_replaceW;
  static constexpr auto packstr = ka_packstrW;
  static constexpr auto lpad = ka_lpadW, rpad = ka_rpadW;
  static constexpr auto strdup = _ka_strdupW;
};

template <class C>
size_t Length(const C* s) {
  return std::basic_string<C>(s).size();
}

// The choices drawn from the input besides the texts.
struct Params {
  int pos, unescape, width;
  bool nullRemove, nullTo;
};

template <class C>
std::basic_string<C> UpToZero(std::basic_string<C> s) {
  s.resize(std::min(s.size(), s.find(C(0))));
  return s;
}

template <class C>
void Run(const Params& p, const std::basic_string<C>& from, std::basic_string<C> to, C pad,
         const std::basic_string<C>& text) {
  typedef Fns<C> F;
  const int length = static_cast<int>(text.size());
  const int pos = p.pos % (length + 2) - 1;  // -1 to one past the terminator
  const int closer = F::findbrace(text.c_str(), pos);
  Check(closer == -1 || (closer > pos && closer < length), "ka_findbrace points outside the text");

  std::vector<C> edit(text.begin(), text.end());
  edit.push_back(0);
  const int trimmed = F::trimbrace(edit.data(), p.unescape);
  Check(trimmed == static_cast<int>(Length(edit.data())), "ka_trimbrace returned another length");

  edit.assign(text.begin(), text.end());
  edit.push_back(0);
  const int packed = F::packstr(edit.data(), p.nullRemove ? nullptr : from.c_str());
  Check(packed == static_cast<int>(Length(edit.data())), "ka_packstr returned another length");

  // Padding writes width + 1 characters, never fewer than the text holds.
  const size_t room = static_cast<size_t>(std::max(p.width, length)) + 1;
  for (auto padder : {F::lpad, F::rpad}) {
    std::vector<C> padded(text.begin(), text.end());
    padded.resize(room, C(0));
    Check(padder(padded.data(), pad, p.width) == std::max(p.width, length), "ka_lpad or ka_rpad returned another length");
  }

  C* const block = F::strdup(text.c_str());
  if (block == nullptr) return;  // an empty text has no block
  const size_t count = from.empty() ? 0 : static_cast<size_t>(F::countstr(block, from.c_str()));
  if (p.nullTo) to.clear();
  C* const replaced = F::replace(block, from.c_str(), p.nullTo ? nullptr : to.c_str());
  Check(replaced != nullptr, "ka_replace refused a non-empty text");
  Check(Length(replaced) + count * from.size() == text.size() + count * to.size(),
        "ka_replace left another length than its occurrences give");
  ka_free(replaced);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider in(data, size);
  Params p;
  p.pos = in.ConsumeIntegralInRange(0, 1 << 20);
  p.unescape = in.ConsumeIntegral<int>();
  p.width = in.ConsumeIntegralInRange(-2, 300);
  p.nullRemove = in.ConsumeBool();
  p.nullTo = in.ConsumeBool();
  const bool wide = in.ConsumeBool();
  const char pad = in.ConsumeIntegral<char>();
  const std::string from = in.ConsumeRandomLengthString(8), to = in.ConsumeRandomLengthString(8);
  const std::string text = in.ConsumeRemainingBytesAsString();
  if (wide)
    Run<ka_wchar>(p, UpToZero(Wide(from)), UpToZero(Wide(to)), static_cast<ka_wchar>(static_cast<unsigned char>(pad)),
                  UpToZero(Wide(text)));
  else
    Run<char>(p, UpToZero(from), UpToZero(to), pad, UpToZero(text));
  return 0;
}
