// The tokenizer of both string lists with every option drawn from the input.
// The list must keep its invariant; in the plain case (runs of delimiters,
// no quotes, brackets or escape, ASCII text) the fields are those of a
// simple split.
#include <fuzzer/FuzzedDataProvider.h>
#include <kalbor/kalbor.h>

#include <string>
#include <vector>

#include "fuzz/fuzz_support.h"

namespace {

// The fields of text (up to its zero) when each run of delimiters ends one
// field, the first one too, and a field left at the end counts when it is
// not empty.
template <class C>
std::vector<std::basic_string<C>> Split(const std::basic_string<C>& text, const std::basic_string<C>& delimiters) {
  std::vector<std::basic_string<C>> fields;
  std::basic_string<C> field;
  bool inRun = false;
  for (C c : text.substr(0, text.find(C(0)))) {
    const bool delimiter = delimiters.find(c) != std::basic_string<C>::npos;
    if (delimiter && !inRun) fields.push_back(field), field.clear();
    if (!delimiter) field += c;
    inRun = delimiter;
  }
  if (!field.empty()) fields.push_back(field);
  return fields;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider in(data, size);
  const bool sorted = in.ConsumeBool(), nullDelimiters = in.ConsumeBool();
  const char escape = in.ConsumeIntegral<char>();
  // Small values are the meaningful ones; any other is a non-zero flag.
  const int mode = in.ConsumeIntegralInRange(-1, 2), quotes = in.ConsumeIntegralInRange(-1, 1);
  const int strip = in.ConsumeIntegralInRange(-1, 1), drop = in.ConsumeIntegralInRange(-1, 1);
  const int brackets = in.ConsumeIntegralInRange(-1, 1);
  const bool wide = in.ConsumeBool();
  const std::string delimiterBytes = in.ConsumeRandomLengthString(8), textBytes = in.ConsumeRemainingBytesAsString();

  auto run = [&](auto& list, auto unit) {
    typedef decltype(unit) C;
    const std::basic_string<C> delimiters = Units<C>(delimiterBytes), text = Units<C>(textBytes);
    const int n = list.Parse(text.c_str(), nullDelimiters ? nullptr : delimiters.c_str(), escape, mode, quotes, strip,
                             drop, brackets);
    Check(n == list.Count() && list.Validate() == 1, "Parse broke the list");
    bool plain = !sorted && !nullDelimiters && !delimiters.empty() && escape == 0 && mode == 1 && quotes == 0 &&
                 brackets == 0;
    for (C c : text + delimiters) plain = plain && static_cast<unsigned>(c) < 0x80;
    if (!plain) return;
    const auto fields = Split(text, delimiters.substr(0, delimiters.find(C(0))));
    Check(fields.size() == static_cast<size_t>(n), "Parse gave another field count than a split");
    for (int i = 0; i < n; ++i) Check(Text(list[i]) == fields[static_cast<size_t>(i)], "Parse gave another field");
  };
  Ka_AStrList narrowList(sorted ? 1 : 0);
  Ka_WStrList wideList(sorted ? 1 : 0);
  if (wide)
    run(wideList, ka_wchar());
  else
    run(narrowList, char());
  return 0;
}
