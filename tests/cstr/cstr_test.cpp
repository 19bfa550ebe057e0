// The C-string functions of both widths: comparisons (null rules, raw
// differences, signed narrow characters, the wide-with-narrow forms, and
// all forms against each other), copies and pieces, searches against the
// obvious method, in-place edits, and replacement against a std::string loop.
#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <random>
#include <string>
#include <vector>

// An ASCII (or Latin-1 byte) literal in the text type of width C.
template <class C>
std::basic_string<C> Txt(const char* s) {
  std::basic_string<C> out;
  for (; *s != 0; ++s) out.push_back(static_cast<C>(static_cast<unsigned char>(*s)));
  return out;
}

// A literal of width C that may be null, in a writable buffer with 16 spare
// places after its terminator.
template <class C>
struct Arg {
  explicit Arg(const char* s) : null(s == nullptr), buf(Txt<C>(s ? s : "")) {
    const size_t end = buf.size();
    buf.append(17, C('#'));
    buf[end] = 0;
  }
  C* p() { return null ? nullptr : &buf[0]; }
  std::basic_string<C> held() const { return buf.c_str(); }  // up to the terminator
  bool null;
  std::basic_string<C> buf;
};

#define KA_FN(name, S) static constexpr auto name = ka_##name##S;
#define KA_WIDTH_FUNCTIONS(S)                                                                 \
  KA_FN(strncmp, S) KA_FN(stricmp, S) KA_FN(strnicmp, S) KA_FN(strncat, S) KA_FN(substr, S) \
  KA_FN(right, S) KA_FN(replace, S) KA_FN(strrchr, S) KA_FN(stristr, S) KA_FN(strpbrk, S)  \
  KA_FN(strspn, S) KA_FN(countstr, S) KA_FN(strlwr, S) KA_FN(strupr, S) KA_FN(strrev, S)   \
  KA_FN(skipspace, S) KA_FN(findskip, S) KA_FN(findrskip, S) KA_FN(ltrim, S)               \
  KA_FN(rtrim, S) KA_FN(trim, S) KA_FN(lpad, S) KA_FN(rpad, S) KA_FN(packstr, S)           \
  KA_FN(findbrace, S) KA_FN(trimbrace, S) static constexpr auto strdup = _ka_strdup##S;

struct Narrow {
  typedef char Char;
  KA_WIDTH_FUNCTIONS(A)
};
struct Wide {
  typedef ka_wchar Char;
  KA_WIDTH_FUNCTIONS(W)
};
typedef ::testing::Types<Narrow, Wide> BothWidths;

template <class W>
class CStr : public ::testing::Test {};
TYPED_TEST_SUITE(CStr, BothWidths);

TYPED_TEST(CStr, NullRulesRawDifferencesAndLimits) {
  typedef typename TypeParam::Char C;
  // exact_n: ka_strncmp(a, b, n); fold_n: ka_strnicmp(a, b, n); fold: ka_stricmp(a, b)
  struct { const char *a, *b; int n, exact_n, fold_n, fold; } rows[] = {
      {nullptr, nullptr, 3, 0, 0, 0},                  // both null: equal
      {nullptr, "", 3, 0, 0, 0},                       // null reads as empty
      {nullptr, "xy", 3, -1, -1, -1},                  // null before text: exactly -1
      {"xy", nullptr, 3, 1, 1, 1},                     // text after null: exactly 1
      {"abc", "xyz", -5, 0, 0, -23},                   // n <= 0 compares nothing
      {"abc", "abd", 2, 0, 0, -1},                     // the difference lies past n
      {"a", "c", 1, -2, -2, -2},                       // raw difference, not -1
      {"ab", "abc", 5, -'c', -'c', -'c'},              // the terminator takes part
      {"ABC", "abc", 5, 'A' - 'a', 0, 0},              // only the i forms fold case
      {"B", "a", 1, 'B' - 'a', 1, 1},                  // i forms subtract the lower-cased pair
      {"[", "A", 1, '[' - 'A', '[' - 'a', '[' - 'a'},  // folding lowers, never raises
      {"\xC9", "\xE9", 1, 0xC9 - 0xE9, 0xC9 - 0xE9, 0xC9 - 0xE9},  // Latin-1 letters are not folded
  };
  for (auto& r : rows) {
    Arg<C> a(r.a), b(r.b);
    SCOPED_TRACE(::testing::Message() << (r.a ? r.a : "null") << " / " << (r.b ? r.b : "null") << " n=" << r.n);
    EXPECT_EQ(TypeParam::strncmp(a.p(), b.p(), r.n), r.exact_n);
    EXPECT_EQ(TypeParam::strnicmp(a.p(), b.p(), r.n), r.fold_n);
    EXPECT_EQ(TypeParam::stricmp(a.p(), b.p()), r.fold);
  }
}

TEST(CStrWidths, NarrowBytesCompareSignedWideUnitsUnsignedAndWideWithNarrowSignExtended) {
  EXPECT_EQ(ka_strncmpA("\xE9", "a", 1), -23 - 'a');  // 0xE9 is -23 and sorts first
  EXPECT_EQ(ka_strncmpW(KA_W("\u00E9"), KA_W("a"), 1), 0xE9 - 'a');
  EXPECT_EQ(ka_strcmpW(KA_W("\uFFFF"), KA_W("a")), 0xFFFF - 'a');
  EXPECT_EQ(ka_strcmpW(nullptr, KA_W("x")), -1);  // the whole-text forms keep the null rules
  EXPECT_EQ(ka_strcmpWA(KA_W("x"), nullptr), 1);
  // Wide with narrow: the narrow byte is sign-extended.
  EXPECT_EQ(ka_stricmpWA(KA_W("ABC"), "abc"), 0);
  EXPECT_EQ(ka_strcmpWA(KA_W("\u00E9"), "\xE9"), 0xE9 - 0xFFE9);  // 0xE9 never equals a unit
  EXPECT_EQ(ka_strncmpWA(KA_W("a\u00E9"), "a\xE9", 1), 0);        // the pair lies past n
  // Against the unit 0xFFE9 the walk stops, yet the difference is 0 (deliberate).
  EXPECT_EQ(ka_strcmpWA(KA_W("\uFFE9z"), "\xE9y"), 0);
}

TEST(CStrWidths, AllComparisonsAgreeOnAsciiText) {
  // Every string of up to three characters over a small alphabet against
  // every other, narrow, wide and wide-with-narrow.
  std::vector<std::string> texts{""};
  for (size_t i = 0; texts[i].size() < 3; ++i)
    for (char c : {'a', 'B', 'b', '~'}) texts.push_back(texts[i] + c);
  for (const std::string& a : texts) {
    const auto wa = Txt<ka_wchar>(a.c_str());
    for (const std::string& b : texts) {
      const auto wb = Txt<ka_wchar>(b.c_str());
      const int exact = ka_strncmpA(a.c_str(), b.c_str(), 8), fold = ka_stricmpA(a.c_str(), b.c_str());
      SCOPED_TRACE(a + " / " + b);
      ASSERT_EQ(exact < 0, std::strcmp(a.c_str(), b.c_str()) < 0);
      ASSERT_EQ(ka_strcmpW(wa.c_str(), wb.c_str()), exact);
      ASSERT_EQ(ka_strcmpWA(wa.c_str(), b.c_str()), exact);
      ASSERT_EQ(ka_stricmpW(wa.c_str(), wb.c_str()), fold);
      ASSERT_EQ(ka_stricmpWA(wa.c_str(), b.c_str()), fold);
      ASSERT_EQ(ka_strnicmpWA(wa.c_str(), b.c_str(), 2), ka_strnicmpA(a.c_str(), b.c_str(), 2));
    }
  }
}

TYPED_TEST(CStr, AppendsDuplicatesPiecesAndCaseChangesKeepTheNullRules) {
  typedef typename TypeParam::Char C;
  // Appends and pieces against std::string: every count and start around
  // the text's ends, a null source read as empty.
  for (const char* text : {static_cast<const char*>(nullptr), "", "abcd"}) {
    const std::string t = text ? text : "";
    const int len = static_cast<int>(t.size());
    for (int n = -2; n <= len + 2; ++n) {
      const size_t taken = static_cast<size_t>(std::clamp(n, 0, len));
      Arg<C> src(text), cat("xy"), right("garbage");
      EXPECT_EQ(TypeParam::strncat(cat.p(), src.p(), n), cat.p());
      EXPECT_EQ(cat.held(), Txt<C>(("xy" + t.substr(0, taken)).c_str())) << t << " " << n;
      EXPECT_EQ(TypeParam::right(src.p(), n, right.p()), right.p());
      EXPECT_EQ(right.held(), Txt<C>(t.substr(t.size() - taken).c_str())) << t << " " << n;
      for (int start = -2; start <= len + 1; ++start) {
        Arg<C> piece("garbage");
        const size_t from = static_cast<size_t>(std::clamp(start, 0, len)), count = static_cast<size_t>(std::max(n, 0));
        EXPECT_EQ(TypeParam::substr(src.p(), start, n, piece.p()), piece.p());
        EXPECT_EQ(piece.held(), Txt<C>(t.substr(from, count).c_str())) << start << "," << n;
      }
    }
  }
  EXPECT_EQ(TypeParam::strncat(nullptr, Arg<C>("x").p(), 1), nullptr);
  EXPECT_EQ(TypeParam::strdup(nullptr), nullptr);
  EXPECT_EQ(TypeParam::strdup(Arg<C>("").p()), nullptr);  // deliberately no empty copy
  C* copy = TypeParam::strdup(Arg<C>("hello").p());
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(std::basic_string<C>(copy), Txt<C>("hello"));
  ka_free(copy);
  EXPECT_EQ(TypeParam::substr(Arg<C>("abc").p(), 0, 1, nullptr), nullptr);
  EXPECT_EQ(TypeParam::right(Arg<C>("abc").p(), 1, nullptr), nullptr);
  // Case changes touch ASCII letters only.
  auto s = Txt<C>("aB1z[@\xC9\xE9");
  TypeParam::strrev(&s[0]);  // swaps case and deliberately keeps the order
  EXPECT_EQ(s, Txt<C>("Ab1Z[@\xC9\xE9"));
  TypeParam::strlwr(&s[0]);
  EXPECT_EQ(s, Txt<C>("ab1z[@\xC9\xE9"));
  TypeParam::strupr(&s[0]);
  EXPECT_EQ(s, Txt<C>("AB1Z[@\xC9\xE9"));
  TypeParam::strlwr(nullptr);  // ignored
  TypeParam::strupr(nullptr);
  TypeParam::strrev(nullptr);
}

TEST(CStrWidths, WideCopiesKeepTheNullRulesWideningZeroExtendsNarrowingTruncates) {
  Arg<ka_wchar> dst("xy"), out("#####");
  EXPECT_EQ(ka_strlenW(nullptr), 0);
  EXPECT_EQ(ka_strcpyW(nullptr, KA_W("a")), nullptr);
  EXPECT_EQ(ka_strcatW(nullptr, KA_W("a")), nullptr);
  EXPECT_EQ(ka_strncpyW(nullptr, KA_W("a"), 1), nullptr);
  EXPECT_EQ(ka_strcatW(ka_strcatW(dst.p(), nullptr), KA_W("z")), dst.p());
  EXPECT_EQ(dst.held(), Txt<ka_wchar>("xyz"));
  EXPECT_EQ(ka_strcpyW(dst.p(), nullptr), dst.p());
  EXPECT_EQ(dst.held(), Txt<ka_wchar>(""));
  ka_strncpyW(out.p(), KA_W("ab"), 5);
  EXPECT_EQ(out.buf.substr(0, 5), Txt<ka_wchar>("ab").append(2, 0) + KA_W("#"));
  ka_strncpyW(out.p(), KA_W("abc"), -1);
  EXPECT_EQ(out.held(), Txt<ka_wchar>(""));  // a negative n copies nothing
  ka_wchar wide[8];
  char narrow[8];
  EXPECT_EQ(std::basic_string<ka_wchar>(ka_ascii2wide(wide, "ab", 1)), KA_W("a"));
  EXPECT_EQ(std::basic_string<ka_wchar>(ka_ascii2wide(wide, "\xE9\x80", 8)), KA_W("\u00E9\u0080"));  // no sign, no code page
  EXPECT_EQ(std::basic_string<ka_wchar>(ka_ascii2wide(wide, nullptr, 8)), KA_W(""));
  EXPECT_STREQ(ka_wide2ascii(narrow, KA_W("a\u0100b"), 8), "a");  // 0x0100 ends the text (deliberate)
  EXPECT_STREQ(ka_wide2ascii(narrow, KA_W("\u0141\u20E9"), 8), "A\xE9");  // low bytes only
  EXPECT_EQ(ka_wide2ascii(nullptr, KA_W("a"), 8), nullptr);
  EXPECT_EQ(ka_ascii2wide(nullptr, "a", 8), nullptr);
}

// Wide lengths and the substring search's pair scan read aligned blocks:
// every start within a block and every end near the next ones, the
// terminator the only zero, and the pattern planted just before the text in
// the same block, where it must never be found.
TEST(CStrWidths, WideScansAtEveryAlignment) {
  alignas(32) ka_wchar text[80];
  for (int start = 0; start < 16; ++start)
    for (int length = 0; length < 48; ++length) {
      std::fill(text, text + 80, ka_wchar('x'));
      if (start >= 2) std::copy(KA_W("yz"), KA_W("yz") + 2, text + start - 2);
      text[start + length] = 0;
      // The pair at the very end; a lone y there must not pair with the zero.
      if (length >= 1) text[start + length - 1] = ka_wchar(length >= 2 ? 'z' : 'y');
      if (length >= 2) text[start + length - 2] = ka_wchar('y');
      const ka_wchar* const pair = length >= 2 ? text + start + length - 2 : nullptr;
      ASSERT_EQ(ka_strlenW(text + start), length) << start;
      EXPECT_EQ(ka_strstrW(text + start, KA_W("yz")), pair) << start << "/" << length;
      EXPECT_EQ(ka_strstrW(text + start, KA_W("y")), length > 0 ? text + start + std::max(length - 2, 0) : nullptr);
      // An exact-size copy on the heap: no block wholly past its terminator
      // may be read (the valgrind CI target reports any such read).
      const size_t units = size_t(start + length + 1);
      ka_wchar* exact = static_cast<ka_wchar*>(::operator new(units * sizeof(ka_wchar), std::align_val_t(32)));
      std::copy(text, text + units, exact);
      EXPECT_EQ(ka_strlenW(exact + start), length) << start;
      EXPECT_EQ(ka_strstrW(exact + start, KA_W("yz")), pair ? exact + (pair - text) : nullptr) << start;
      ::operator delete(exact, std::align_val_t(32));
    }
}

TYPED_TEST(CStr, FindersSetSearchAndSpanFollowTheNullAndEdgeRules) {
  // Where matches are and how many is the model test's business below.
  typedef typename TypeParam::Char C;
  Arg<C> text("xxABcb");
  C* s = text.p();
  EXPECT_EQ(TypeParam::stristr(s, Arg<C>("").p()), s);    // empty pattern, as a null one: the text
  EXPECT_EQ(TypeParam::stristr(nullptr, Arg<C>("a").p()), nullptr);
  EXPECT_EQ(TypeParam::strrchr(s, 'b'), s + 5);
  EXPECT_EQ(TypeParam::strrchr(s, 0), s + 6);  // the terminator's address
  EXPECT_EQ(TypeParam::strrchr(nullptr, 'a'), nullptr);
  EXPECT_EQ(TypeParam::countstr(nullptr, Arg<C>("a").p()), 0);
  EXPECT_EQ(TypeParam::countstr(s, Arg<C>("").p()), 0);  // would never finish otherwise
  // Set search and span.
  struct { const char *s, *set; int brk; int span; } sets[] = {  // index ka_strpbrk points at, -1 for null; ka_strspn
      {nullptr, "a", -1, -1},   // null text
      {"", "a", -1, 0},         // empty text: no hit, empty run
      {"", nullptr, -1, -1},    // empty text beats a null set for strpbrk
      {"aab", nullptr, 0, -1},  // null set: strpbrk gives the text itself
      {"aab", "", -1, 0},       // empty set matches nothing
      {"aab", "a", 0, 2},       // leading run of the set
      {"xyzb", "ba", 3, 0},     // first character in the set, anywhere in it
  };
  for (auto& r : sets) {
    Arg<C> str(r.s), set(r.set);
    const C* hit = TypeParam::strpbrk(str.p(), set.p());
    SCOPED_TRACE(::testing::Message() << (r.s ? r.s : "null") << " / " << (r.set ? r.set : "null"));
    EXPECT_EQ(hit == nullptr ? -1 : hit - str.p(), r.brk);
    EXPECT_EQ(TypeParam::strspn(str.p(), set.p()), r.span);
  }
}

TYPED_TEST(CStr, MatchesAroundEveryMeasuringStepAreFound) {
  // A long text is measured a step at a time as the search goes (steps of
  // 256, 512, ... 65536 starts); a match just before, across or just after
  // each step's end, or only near the text's end, must be found the same.
  typedef typename TypeParam::Char C;
  const size_t length = 140000;
  std::vector<size_t> at;
  for (size_t end = 256, step = 512; end < length; end += step, step = step < 65536 ? step * 2 : step)
    for (size_t back : {4, 2, 1, 0}) at.push_back(end - back);
  at.push_back(length - 3);  // the last place a three-character match fits
  Arg<C> pat("aBc");
  for (size_t pos : at) {
    std::basic_string<C> text(length, static_cast<C>('x'));
    for (size_t i = 0; i < 3; ++i) text[pos + i] = static_cast<C>("abc"[i]);
    const C* hit = TypeParam::stristr(text.c_str(), pat.p());
    ASSERT_EQ(hit == nullptr ? -1 : hit - text.c_str(), static_cast<long>(pos));
  }
  const std::basic_string<C> none(length, static_cast<C>('x'));
  EXPECT_EQ(TypeParam::stristr(none.c_str(), pat.p()), nullptr);  // absent: the whole text read
}

// Leftmost match from `from` by the obvious method, to check the fast paths
// (first-character scan and block filter) against.
template <class C>
size_t NaiveFind(const std::basic_string<C>& s, const std::basic_string<C>& p, size_t from, bool fold) {
  auto key = [fold](C c) { return fold && c >= 'A' && c <= 'Z' ? c + 32 : static_cast<int>(c); };
  for (size_t i = from; i + p.size() <= s.size(); ++i) {
    size_t j = 0;
    while (j < p.size() && key(s[i + j]) == key(p[j])) ++j;
    if (j == p.size()) return i;
  }
  return std::basic_string<C>::npos;
}

template <class C>
void CheckAgainstNaive(const std::vector<C>& alphabet, C* (*find)(const C*, const C*), bool fold,
                       int (*count)(const C*, const C*)) {
  std::mt19937 rng(12345);
  for (int round = 0; round < 3000; ++round) {
    // Short and long texts (long ones take the block filter) from a small
    // alphabet, so that near-matches abound; half hold a planted pattern.
    const size_t len = round % 3 == 0 ? rng() % 20 : 200 + rng() % 400, m = 1 + rng() % 9;
    std::basic_string<C> s, p;
    for (size_t i = 0; i < len; ++i) s.push_back(alphabet[rng() % alphabet.size()]);
    for (size_t i = 0; i < m; ++i) p.push_back(alphabet[rng() % alphabet.size()]);
    if (len > m && rng() % 2) s.replace(rng() % (len - m), m, p);
    const C* got = find(s.c_str(), p.c_str());
    ASSERT_EQ(got == nullptr ? s.npos : static_cast<size_t>(got - s.c_str()), NaiveFind(s, p, 0, fold)) << round;
    int n = 0;
    for (size_t at = NaiveFind(s, p, 0, false); at != s.npos; at = NaiveFind(s, p, at + m, false)) ++n;
    if (count != nullptr) {
      ASSERT_EQ(count(s.c_str(), p.c_str()), n) << round;
    }
  }
}

TEST(CStrWidths, SearchesAndCountsMatchTheObviousMethod) {
  // 0xC1 and 0xE1 are a letter pair only in Latin-1: they must stay apart.
  CheckAgainstNaive<char>({'a', 'A', 'b', 'B', '[', '\xC1', '\xE1'}, ka_stristrA, true, ka_countstrA);
  // 0x0161 and 0x4141 share low bytes with a and A: they must never match them.
  const std::vector<ka_wchar> alphabet = {'a', 'A', 'b', 0x0161, 0x4141};
  CheckAgainstNaive<ka_wchar>(alphabet, ka_strstrW, false, ka_countstrW);
  CheckAgainstNaive<ka_wchar>(alphabet, ka_stristrW, true, nullptr);
}

TEST(CStrWidths, CharacterSearchRulesOfEachWidth) {
  const ka_wchar* w = KA_W("ab\u00E9");
  EXPECT_EQ(ka_strchrW(w, 'b'), w + 1);
  EXPECT_EQ(ka_strchrW(w, 0xE9), w + 2);
  EXPECT_EQ(ka_strchrW(w, 0), nullptr);        // deliberate: unlike strchr
  EXPECT_EQ(ka_strchrW(w, 0x100E9), nullptr);  // beyond any unit
  EXPECT_EQ(ka_strrchrW(w, 0xE9), w + 2);
  const char* s = "a\xE9";
  EXPECT_EQ(ka_strrchrA(s, -23), s + 1);       // narrow bytes match their signed value
  EXPECT_EQ(ka_strrchrA(s, 0xE9), nullptr);
}

TYPED_TEST(CStr, SkipsAndTrimsCountOnlyTheFourBlanks) {
  typedef typename TypeParam::Char C;
  // Every text of up to four characters of the four blanks, vertical tab,
  // form feed (not blanks) and a letter, against std::string; skips over
  // every n around the text's length, trims (the left ones return minus the
  // count removed, deliberately).
  const std::string blanks = " \t\r\n";
  std::vector<std::string> texts{""};
  for (size_t i = 0; texts[i].size() < 4; ++i)
    for (char c : std::string(" \t\r\n\v\fx")) texts.push_back(texts[i] + c);
  auto lead = [&blanks](const std::string& t) { return std::min(t.find_first_not_of(blanks), t.size()); };
  auto kept = [&blanks](const std::string& t) { return t.find_last_not_of(blanks) + 1; };  // npos + 1 is 0
  for (const std::string& t : texts) {
    const int len = static_cast<int>(t.size());
    for (int n = -1; n <= len + 2; ++n) {
      const std::string head = t.substr(0, static_cast<size_t>(std::clamp(n, 0, len)));
      Arg<C> s(t.c_str());
      EXPECT_EQ(TypeParam::findskip(s.p(), n), static_cast<int>(lead(head))) << t << " " << n;
      EXPECT_EQ(TypeParam::findrskip(s.p(), n), static_cast<int>(head.size() - kept(head))) << t << " " << n;
      EXPECT_EQ(TypeParam::skipspace(s.p(), n), s.p() + lead(head)) << t << " " << n;
    }
    Arg<C> left(t.c_str()), right(t.c_str()), both(t.c_str());
    const std::string rest = t.substr(lead(t)), trimmed = rest.substr(0, kept(rest));
    EXPECT_EQ(TypeParam::ltrim(left.p()), -static_cast<int>(lead(t))) << t;
    EXPECT_EQ(TypeParam::rtrim(right.p()), static_cast<int>(kept(t))) << t;
    EXPECT_EQ(TypeParam::trim(both.p()), static_cast<int>(trimmed.size())) << t;
    EXPECT_EQ(left.held() + C('|') + right.held() + C('|') + both.held(),
              Txt<C>((rest + '|' + t.substr(0, kept(t)) + '|' + trimmed).c_str())) << t;
  }
  EXPECT_EQ(TypeParam::skipspace(nullptr, 3), nullptr);  // null
  EXPECT_EQ(TypeParam::findskip(nullptr, 3) + TypeParam::findrskip(nullptr, 3), 0);
  EXPECT_EQ(TypeParam::ltrim(nullptr) + TypeParam::rtrim(nullptr) + TypeParam::trim(nullptr), 0);
}

TYPED_TEST(CStr, PaddingNeverShortensAndPackingDropsBlanksAndTheRemoveSet) {
  typedef typename TypeParam::Char C;
  struct { const char* s; int width; const char *left, *right; } rows[] = {
      {nullptr, 2, "", ""},    // null: length 0
      {"7", -1, "7", "7"},     // negative width
      {"77", 1, "77", "77"},   // wider: never shortened
      {"7", 3, "007", "700"},  // padded
  };
  for (auto& r : rows) {
    Arg<C> l(r.s), rt(r.s);
    const int want = static_cast<int>(std::strlen(r.left));  // the new length
    EXPECT_EQ(TypeParam::lpad(l.p(), C('0'), r.width), want) << r.s << "," << r.width;
    EXPECT_EQ(TypeParam::rpad(rt.p(), C('0'), r.width), want) << r.s << "," << r.width;
    EXPECT_EQ(l.held(), Txt<C>(r.left));
    EXPECT_EQ(rt.held(), Txt<C>(r.right));
  }
  // Packing drops every blank and the remove set.
  Arg<C> s(" a b,\tc\r\n,"), t("a, b");
  EXPECT_EQ(TypeParam::packstr(s.p(), Arg<C>(",").p()), 3);
  EXPECT_EQ(s.held(), Txt<C>("abc"));
  EXPECT_EQ(TypeParam::packstr(t.p(), nullptr), 3);
  EXPECT_EQ(t.held(), Txt<C>("a,b"));
  EXPECT_EQ(TypeParam::packstr(nullptr, nullptr), 0);
}

TYPED_TEST(CStr, ClosingBracketsAreFoundAndOuterPairsStripped) {
  typedef typename TypeParam::Char C;
  struct { const char* s; int pos, close; } rows[] = {
      {nullptr, 0, -1},       // null
      {"", 0, -1},            // empty: the terminator opens nothing, as any other character
      {"(ab)", -1, -1},       // negative pos
      {"(ab)", 9, -1},        // pos past the terminator is never read
      {"x(a(b)c)", 3, 5},     // an inner opener; the index counts from s
      {"(abc", 0, -1},        // no closer
      {"(a(b)c)", 0, 6},      // nesting of the same kind
      {"(a\")\"b)", 0, 6},    // a quoted closer is skipped
      {"(a'\\')')", 0, 7},    // a backslash escapes inside an inner quote
      {"[a(b]", 0, 4},        // other kinds are ordinary characters
      {"\"a\\\"b\"", 0, 5},   // an escaped quote does not close
      {"'a\\", 0, -1},        // an escape before the terminator stops
      {"{'}", 0, -1},         // an inner quote left open hides the closer
  };
  for (auto& r : rows) EXPECT_EQ(TypeParam::findbrace(Arg<C>(r.s).p(), r.pos), r.close) << r.s << " at " << r.pos;
  // The outer pair is stripped and escapes optionally decoded.
  struct { const char* s; int unescape; const char* result; } strips[] = {
      {"", 1, ""},                          // empty
      {" plain ", 1, "plain"},              // no pair: just trimmed
      {" \"\\n\\r\\t\\q\\\"\" ", 1, "\n\n\tq\""},  // \n and \r both a line feed (deliberate), \t a tab
      {"\"a\\\"b\"", 0, "a\\"},             // without unescaping a backslash is kept and cannot protect
      {"'ab'cd", 1, "ab"},                  // text after the closing quote goes
      {"'ab\\", 1, "ab\\"},                 // a lone final backslash is kept
      {"{abc}def", 1, "abc"},               // text after the bracket goes
      {"{abc", 1, "abc"},                   // no closer: only the opener goes
      {"( a )", 1, " a "},                  // the content is not trimmed again
  };
  for (auto& r : strips) {
    Arg<C> s(r.s);
    EXPECT_EQ(TypeParam::trimbrace(s.p(), r.unescape), static_cast<int>(std::strlen(r.result))) << r.s;
    EXPECT_EQ(s.held(), Txt<C>(r.result)) << r.s;
  }
  EXPECT_EQ(TypeParam::trimbrace(nullptr, 1), 0);
}

TYPED_TEST(CStr, ReplaceKeepsTheNullRulesMovesOnlyWhenTheBlockIsTooSmallAndMatchesAStringLoop) {
  typedef typename TypeParam::Char C;
  Arg<C> x("X"), y("Y");
  EXPECT_EQ(TypeParam::replace(nullptr, x.p(), y.p()), nullptr);
  C* s = static_cast<C*>(_ka_malloc(sizeof(C)));
  s[0] = 0;
  EXPECT_EQ(TypeParam::replace(s, nullptr, nullptr), s);    // both null: even an empty text comes back
  EXPECT_EQ(TypeParam::replace(s, x.p(), y.p()), nullptr);  // an empty text otherwise gives null
  ka_free(s);
  s = TypeParam::strdup(Txt<C>("aXb").c_str());
  EXPECT_EQ(TypeParam::replace(s, nullptr, y.p()), s);  // null pattern, as an empty one
  EXPECT_EQ(TypeParam::replace(s, x.p(), nullptr), s);  // a null replacement deletes
  EXPECT_EQ(std::basic_string<C>(s), Txt<C>("ab"));
  ka_free(s);
  // Growth past the block moves the text (the random texts below check that
  // nothing else does), and reads the arguments before they move.
  s = TypeParam::strdup(Txt<C>("aYYbYYc").c_str());
  const std::string longer(40, 'L');
  C* moved = TypeParam::replace(s, Arg<C>("b").p(), Arg<C>(longer.c_str()).p());
  ASSERT_NE(moved, nullptr);
  EXPECT_NE(moved, s);  // the old block was released (the sanitizers watch it)
  EXPECT_EQ(std::basic_string<C>(moved), Txt<C>(("aYY" + longer + "YYc").c_str()));
  // the block _ka_realloc would give for the new length
  EXPECT_EQ(Ka_BufferData::FromData(moved)->nAllocLength,
            Ka_BufferPool::GetBufferGroup(static_cast<int>((longer.size() + 7) * sizeof(C))));
  ka_free(moved);
  s = TypeParam::strdup(Txt<C>("abab").c_str());
  s = TypeParam::replace(s, s + 2, Arg<C>("x").p());  // the pattern is the text's own tail
  EXPECT_EQ(std::basic_string<C>(s), Txt<C>("xx"));
  s = TypeParam::replace(s, Arg<C>("x").p(), s);  // the replacement is the text itself
  EXPECT_EQ(std::basic_string<C>(s), Txt<C>("xxxx"));
  ka_free(s);
  // Random texts against a std::string replace loop; the block stays where
  // the result fits it.
  std::mt19937 rng(777);
  auto random_text = [&rng](size_t n) {
    std::basic_string<C> t;
    while (t.size() < n) t.push_back(static_cast<C>("abAB"[rng() % 4]));
    return t;
  };
  for (int round = 0; round < 1500; ++round) {
    const auto text = random_text(1 + rng() % (round % 2 ? 30 : 700));
    const auto from = random_text(1 + rng() % 6), to = random_text(rng() % 9);
    std::basic_string<C> want = text;
    for (size_t at = want.find(from); at != want.npos; at = want.find(from, at + to.size()))
      want.replace(at, from.size(), to);
    C* const block = TypeParam::strdup(text.c_str());
    const bool fits = (want.size() + 1) * sizeof(C) <= Ka_BufferData::FromData(block)->nAllocLength;
    C* got = TypeParam::replace(block, from.c_str(), to.c_str());
    ASSERT_NE(got, nullptr) << round;
    ASSERT_EQ(std::basic_string<C>(got), want) << round;
    ASSERT_TRUE(!fits || got == block) << round;
    ka_free(got);
  }
}
