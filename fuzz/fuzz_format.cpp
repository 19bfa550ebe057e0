// The format engine of both string widths on a format drawn from the input,
// called with arguments of exactly the types its directives read, through
// Format and through Formatv with the format inside the target string: both
// must give the same text.
#include <fuzzer/FuzzedDataProvider.h>
#include <kalbor/kalbor.h>

#include <algorithm>
#include <cstdarg>
#include <cstring>
#include <string>
#include <vector>

#include "fuzz/fuzz_support.h"

namespace {

// Every sequence of argument types is a call site of its own, so their
// number grows as 6 to the power of this bound; a format is cut before the
// directive that would need more.
constexpr int kMaxArgs = 4;

// kStar is the int of a * width or precision.
enum Kind { kInt, kStar, kLong, kDouble, kNarrow, kWide, kPointer };

struct Arg { Kind kind; int i; long l; double d; const void* p; };

// The kinds the engine reads for format, in its order; format is cut where
// it would read more than kMaxArgs.
template <class C>
std::vector<Kind> ArgumentKinds(std::basic_string<C>& format) {
  std::vector<Kind> kinds;
  const size_t n = format.size();
  for (size_t i = format.find(C('%')); i < n; i = format.find(C('%'), i)) {
    const size_t start = i++;
    std::vector<Kind> need;
    auto at = [&](size_t k) { return k < n ? format[k] : C(0); };
    while (at(i) == C('-') || at(i) == C('+') || at(i) == C('#') || at(i) == C(' ') || at(i) == C('0')) ++i;
    auto field = [&] {  // a * reads an int, digits nothing
      if (at(i) == C('*')) need.push_back(kStar), ++i;
      else while (at(i) >= C('0') && at(i) <= C('9')) ++i;
    };
    field();
    if (at(i) == C('.')) ++i, field();  // the precision
    C size = 0;
    if (at(i) == C('q') || at(i) == C('l') || at(i) == C('h')) size = format[i++];
    const C conversion = at(i);
    if (conversion != 0) ++i;
    switch (conversion) {
      case 'd': case 'i': case 'u': case 'o': case 'x': case 'X': need.push_back(size == C('l') ? kLong : kInt); break;
      case 'c': need.push_back(kInt); break;
      case 's': need.push_back(size == C('h') ? kNarrow : kWide); break;
      case 'e': case 'E': case 'f': case 'g': case 'G': need.push_back(kDouble); break;
      case 'p': need.push_back(kPointer), i = std::min(i + 1, n); break;  // and its sub-type
      default: break;
    }
    if (kinds.size() + need.size() > kMaxArgs) {
      format.resize(start);
      break;
    }
    kinds.insert(kinds.end(), need.begin(), need.end());
  }
  return kinds;
}

template <class S, class C>
void FormatList(S& s, const C* format, ...) {
  va_list args;
  va_start(args, format);
  s.Formatv(format, args);
  va_end(args);
}

// Adds the arguments one by one to the call, each with its own type.
template <class S, class C, class... A>
void Call(S& s, const C* format, bool list, const Arg* args, int n, A... a) {
  if constexpr (sizeof...(A) < kMaxArgs) {
    if (n > 0) switch (args->kind) {
      case kInt: case kStar: return Call(s, format, list, args + 1, n - 1, a..., args->i);
      case kLong: return Call(s, format, list, args + 1, n - 1, a..., args->l);
      case kDouble: return Call(s, format, list, args + 1, n - 1, a..., args->d);
      case kNarrow: return Call(s, format, list, args + 1, n - 1, a..., static_cast<const char*>(args->p));
      case kWide: return Call(s, format, list, args + 1, n - 1, a..., static_cast<const ka_wchar*>(args->p));
      case kPointer: return Call(s, format, list, args + 1, n - 1, a..., const_cast<void*>(args->p));
    }
  }
  if (list) FormatList(s, format, a...);
  else s.Format(format, a...);
}

template <class S, class C>
void Run(FuzzedDataProvider& in, std::basic_string<C> format) {
  format.resize(std::min(format.size(), format.find(C(0))));  // the engine stops at the first zero
  const std::vector<Kind> kinds = ArgumentKinds(format);
  const std::string narrow = in.ConsumeRandomLengthString(64);
  const std::basic_string<ka_wchar> wide = Wide(in.ConsumeRandomLengthString(64));
  // An IPv4 record for %pA and %pI, which read 4 and 8 bytes.
  unsigned char record[8];
  for (unsigned char& b : record) b = in.ConsumeIntegral<unsigned char>();
  std::vector<Arg> args;
  for (Kind k : kinds) {
    // Fields of up to a million characters are slow to fill: a * value is
    // mostly 16-bit (digits reach the bound at any time).
    const int i = k != kStar || in.ConsumeIntegral<uint8_t>() == 0xFF ? in.ConsumeIntegral<int>()
                                                                      : in.ConsumeIntegral<int16_t>();
    Arg a{k, i, in.ConsumeIntegral<long>(), 0.0, nullptr};
    const uint64_t bits = in.ConsumeIntegral<uint64_t>();
    std::memcpy(&a.d, &bits, sizeof(a.d));
    if (in.ConsumeBool()) a.p = k == kNarrow ? static_cast<const void*>(narrow.c_str())
                                : k == kWide ? static_cast<const void*>(wide.c_str()) : record;
    args.push_back(a);
  }
  S direct, inside(format.c_str());
  Call(direct, format.c_str(), false, args.data(), static_cast<int>(args.size()));
  Call(inside, static_cast<const C*>(inside), true, args.data(), static_cast<int>(args.size()));
  Check(Text(inside) == Text(direct), "Format and Formatv on the string's own text differ");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider in(data, size);
  const bool wide = in.ConsumeBool();
  const std::string format = in.ConsumeRandomLengthString(256);
  if (wide)
    Run<Ka_WString>(in, Wide(format));
  else
    Run<Ka_AString>(in, format);
  return 0;
}
