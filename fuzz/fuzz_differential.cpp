// A sequence of operations drawn from the input, applied to a Ka_AString and
// a std::string, and to a Ka_IntList and a std::vector<int>, wherever the
// library's contracts give the standard behaviour; after every step both
// must hold the same. A shared copy taken along the way must keep its text
// (copy on write).
#include <fuzzer/FuzzedDataProvider.h>
#include <kalbor/kalbor.h>

#include <algorithm>
#include <string>
#include <vector>

#include "fuzz/fuzz_support.h"

namespace {

const std::string kBlanks = " \t\n\r";

std::string NoZero(std::string s) {
  s.erase(std::remove(s.begin(), s.end(), '\0'), s.end());
  return s;
}

int Clamp(int i, size_t size) { return std::max(0, std::min(i, static_cast<int>(size))); }

void Strings(FuzzedDataProvider& in) {
  Ka_AString s, copy;
  std::string model, copyModel;
  while (in.remaining_bytes() > 0) {
    const int i = in.ConsumeIntegralInRange(-2, 40), k = in.ConsumeIntegralInRange(-2, 40);
    const char c = in.ConsumeIntegral<char>();
    const std::string t = NoZero(in.ConsumeRandomLengthString(6));
    // Searching, trimming and Replace stop at the first zero character;
    // they are mirrored only on texts without one.
    const bool zeroFree = model.find('\0') == std::string::npos;
    switch (in.ConsumeIntegralInRange(0, 11)) {
      case 0: Check(s.Insert(i, c) == static_cast<int>(model.size()) + 1, "Insert(c) length");
        model.insert(static_cast<size_t>(Clamp(i, model.size())), 1, c);
        break;
      case 1: s.Insert(i, t.c_str()); model.insert(static_cast<size_t>(Clamp(i, model.size())), t); break;
      case 2: s.Delete(i, k);
        if (k > 0) model.erase(static_cast<size_t>(Clamp(i, model.size())), static_cast<size_t>(k));
        break;
      case 3: {
        const size_t from = static_cast<size_t>(Clamp(i, model.size()));
        Check(Text(s.Mid(i, k)) == model.substr(from, static_cast<size_t>(std::max(k, 0))), "Mid");
        break;
      }
      case 4:
        if (!zeroFree || t.empty()) break;
        s.Replace(t.c_str(), c == 0 ? nullptr : std::string(1, c).c_str());
        for (size_t at = model.find(t); at != std::string::npos; at = model.find(t, at + (c != 0)))
          model.replace(at, t.size(), c == 0 ? "" : std::string(1, c));
        break;
      case 5:
        if (!zeroFree) break;
        s.Trim();
        model.erase(0, std::min(model.size(), model.find_first_not_of(kBlanks)));
        model.erase(model.find_last_not_of(kBlanks) + 1);
        break;
      case 6:
        if (!zeroFree || t.empty()) break;
        s.TrimLeft(t.c_str());
        model.erase(0, std::min(model.size(), model.find_first_not_of(t)));
        break;
      case 7:
        if (!zeroFree || t.empty()) break;
        s.TrimRight(t.c_str());
        model.erase(model.find_last_not_of(t) + 1);
        break;
      case 8: s += t.c_str(); model += t; break;
      case 9: Check(s.Remove(c) == static_cast<int>(std::count(model.begin(), model.end(), c)), "Remove count");
        model.erase(std::remove(model.begin(), model.end(), c), model.end());
        break;
      case 10:
        if (zeroFree && !model.empty()) Check(s.Find(t.c_str(), i) == (i > static_cast<int>(model.size()) ? -1
                                                       : static_cast<int>(model.find(t, static_cast<size_t>(std::max(i, 0))))),
                            "Find");
        break;
      default: copy = s; copyModel = model; break;
    }
    Check(Text(s) == model, "Ka_AString and std::string differ");
    Check(Text(copy) == copyModel, "a shared copy changed with its original");
  }
}

void Lists(FuzzedDataProvider& in) {
  Ka_IntList list;
  std::vector<int> model;
  while (in.remaining_bytes() > 0) {
    const int a = in.ConsumeIntegralInRange(-2, 40), b = in.ConsumeIntegralInRange(-2, 40);
    const int value = in.ConsumeIntegral<int>();
    const int size = static_cast<int>(model.size());
    const bool inA = a >= 0 && a < size, inB = b >= 0 && b < size;
    switch (in.ConsumeIntegralInRange(0, 8)) {
      case 0: Check(list.Add(value) == size, "Add index"); model.push_back(value); break;
      case 1: Check(list.Insert(a, value) == (a < 0 ? -1 : std::min(a, size)), "Insert index");
        if (a >= 0) model.insert(model.begin() + std::min(a, size), value);
        break;
      case 2: Check(list.Delete(a, b) == (inA ? 0 : -1), "Delete result");
        if (inA && b > 0) model.erase(model.begin() + a, model.begin() + std::min(a + b, size));
        break;
      case 3: Check(list.Set(a, value) == (inA ? 0 : -1), "Set result");
        if (inA) model[static_cast<size_t>(a)] = value;
        break;
      case 4:  // an index with itself gives 0 at once, in range or not
        Check(list.Exchange(a, b) == (inA && inB ? 0 : -1) || a == b, "Exchange result");
        if (inA && inB) std::swap(model[static_cast<size_t>(a)], model[static_cast<size_t>(b)]);
        break;
      case 5: Check(list.Move(a, b) == (inA && inB ? 0 : -1), "Move result");
        if (inA && inB) {
          const int moved = model[static_cast<size_t>(a)];
          model.erase(model.begin() + a);
          model.insert(model.begin() + b, moved);
        }
        break;
      case 6: {
        const auto at = std::find(model.begin(), model.end(), value);
        Check(list.IndexOf(value) == (at == model.end() ? -1 : static_cast<int>(at - model.begin())), "IndexOf");
        break;
      }
      case 7: {
        const Ka_IntList sub = list.GetSubList(a, b);
        const int expected = inA ? std::max(0, std::min(b, size - a)) : 0;
        Check(sub.Count() == expected, "GetSubList count");
        for (int j = 0; j < expected; ++j) Check(sub.GetItem(j) == model[static_cast<size_t>(a + j)], "GetSubList");
        break;
      }
      default:
        list.Reset(a);
        if (a > size) model.resize(static_cast<size_t>(a));
        for (int j = 0; j < a; ++j) model[static_cast<size_t>(j)] = j;
        break;
    }
    Check(list.Count() == static_cast<int>(model.size()) && list.Validate() == 1, "Ka_IntList count");
    for (size_t j = 0; j < model.size(); ++j) Check(list.GetItem(static_cast<int>(j)) == model[j], "Ka_IntList item");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider in(data, size);
  if (in.ConsumeBool())
    Strings(in);
  else
    Lists(in);
  return 0;
}
