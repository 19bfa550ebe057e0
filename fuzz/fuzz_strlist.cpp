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

struct Options {
  bool sorted, nullDelimiters;
  char escape;
  int mode, quotes, strip, drop, brackets;
};

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

template <class L, class C>
void Run(const Options& o, const std::basic_string<C>& delimiters, const std::basic_string<C>& text) {
  L list(o.sorted ? 1 : 0);
  const int n = list.Parse(text.c_str(), o.nullDelimiters ? nullptr : delimiters.c_str(), o.escape, o.mode, o.quotes,
                           o.strip, o.drop, o.brackets);
  Check(n == list.Count() && list.Validate() == 1, "Parse broke the list");
  bool plain = !o.sorted && !o.nullDelimiters && !delimiters.empty() && o.escape == 0 && o.mode == 1 &&
               o.quotes == 0 && o.brackets == 0;
  for (C c : text + delimiters) plain = plain && static_cast<unsigned>(c) < 0x80;
  if (!plain) return;
  const auto fields = Split(text, delimiters.substr(0, delimiters.find(C(0))));
  Check(fields.size() == static_cast<size_t>(n), "Parse gave another field count than a split");
  for (int i = 0; i < n; ++i) Check(Holds(list[i], fields[static_cast<size_t>(i)]), "Parse gave another field");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider in(data, size);
  Options o;
  o.sorted = in.ConsumeBool();
  o.nullDelimiters = in.ConsumeBool();
  o.escape = in.ConsumeIntegral<char>();
  // Small values are the meaningful ones; any other is a non-zero flag.
  o.mode = in.ConsumeIntegralInRange(-1, 2);
  o.quotes = in.ConsumeIntegralInRange(-1, 1);
  o.strip = in.ConsumeIntegralInRange(-1, 1);
  o.drop = in.ConsumeIntegralInRange(-1, 1);
  o.brackets = in.ConsumeIntegralInRange(-1, 1);
  const bool wide = in.ConsumeBool();
  const std::string delimiters = in.ConsumeRandomLengthString(8);
  const std::string text = in.ConsumeRemainingBytesAsString();
  if (wide)
    Run<Ka_WStrList>(o, Wide(delimiters), Wide(text));
  else
    Run<Ka_AStrList>(o, delimiters, text);
  return 0;
}
