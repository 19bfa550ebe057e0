// The C-string functions of both widths: every comparison against the
// obvious walk, copies and pieces against std::string, searches against the
// obvious method, in-place edits, and replacement against a std::string loop.
#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

#include <algorithm>
#include <new>
#include <random>
#include <string>
#include <tuple>
#include <vector>

// An ASCII (or Latin-1 byte) literal in the text type of width C.
template <class C>
std::basic_string<C> Txt(const char* s) {
  std::basic_string<C> out;
  for (; *s != 0; ++s) out.push_back(static_cast<C>(static_cast<unsigned char>(*s)));
  return out;
}

// The text at p, "<null>" for a null p.
template <class C>
std::basic_string<C> Str(const C* p) { return p ? std::basic_string<C>(p) : Txt<C>("<null>"); }

// A literal of width C that may be null, in a writable buffer with 16 spare
// places after its terminator.
template <class C>
struct Arg {
  explicit Arg(const char* s) : null(s == nullptr), buf(Txt<C>(s ? s : "") + C(0) + std::basic_string<C>(16, C('#'))) {}
  C* p() { return null ? nullptr : &buf[0]; }
  std::basic_string<C> held() const { return buf.c_str(); }  // up to the terminator
  bool null;
  std::basic_string<C> buf;
};

#define KA_FN(name, S) static constexpr auto name = ka_##name##S;
#define KA_WIDTH_FUNCTIONS(S)                                                                                      \
  KA_FN(strncat, S) KA_FN(substr, S) KA_FN(right, S) KA_FN(replace, S) KA_FN(strrchr, S) KA_FN(stristr, S)         \
  KA_FN(strpbrk, S) KA_FN(strspn, S) KA_FN(countstr, S) KA_FN(strlwr, S) KA_FN(strupr, S) KA_FN(strrev, S)         \
  KA_FN(skipspace, S) KA_FN(findskip, S) KA_FN(findrskip, S) KA_FN(ltrim, S) KA_FN(rtrim, S) KA_FN(trim, S)        \
  KA_FN(lpad, S) KA_FN(rpad, S) KA_FN(packstr, S) KA_FN(findbrace, S) KA_FN(trimbrace, S)                          \
  static constexpr auto strdup = _ka_strdup##S;

struct Narrow { typedef char Char; KA_WIDTH_FUNCTIONS(A) };
struct Wide { typedef ka_wchar Char; KA_WIDTH_FUNCTIONS(W) };
template <class W>
class CStr : public ::testing::Test {};
typedef ::testing::Types<Narrow, Wide> BothWidths;
TYPED_TEST_SUITE(CStr, BothWidths);

// A character as the case-insensitive functions see it: A-Z lowered, every
// other one (a narrow one signed) itself.
template <class C>
int Key(C c, bool fold) {
  const int v = sizeof(C) == 1 ? static_cast<signed char>(c) : static_cast<int>(c);  // char is unsigned on ARM
  return fold && v >= 'A' && v <= 'Z' ? v + 32 : v;
}

// The obvious walk: the difference of the first differing keys among at
// most n characters, the terminator taking part.
template <class C>
int Walk(const C* a, const C* b, int n, bool fold) {
  for (int i = 0; i < n; ++i)
    if (Key(a[i], fold) != Key(b[i], fold) || a[i] == 0) return Key(a[i], fold) - Key(b[i], fold);
  return 0;
}

// A random text of n characters from alphabet.
template <class C>
std::basic_string<C> RandomText(std::mt19937& rng, const std::basic_string<C>& alphabet, size_t n) {
  std::basic_string<C> t(n, C(0));
  for (C& c : t) c = alphabet[rng() % alphabet.size()];
  return t;
}

TEST(CStrWidths, EveryComparisonGivesTheDifferenceOfTheObviousWalk) {
  // Every text of up to three characters over a letter in both cases, another
  // letter, a character between the cases and a Latin-1 pair (never folded;
  // signed when narrow; against a wide unit sign-extended, so never equal),
  // against every other, at every n around their lengths and past them.
  std::vector<std::string> texts{""};
  for (size_t i = 0; texts[i].size() < 3; ++i)
    for (char c : {'a', 'A', 'b', '[', '\xC9', '\xE9'}) texts.push_back(texts[i] + c);
  for (const std::string& a : texts)
    for (const std::string& b : texts) {
      const auto wa = Txt<ka_wchar>(a.c_str()), wb = Txt<ka_wchar>(b.c_str());
      std::basic_string<ka_wchar> sb;  // b's bytes sign-extended, as the wide-with-narrow forms count them
      for (char c : b) sb += ka_wchar(static_cast<signed char>(c));
      const char *na = a.c_str(), *nb = b.c_str();
      const ka_wchar *pa = wa.c_str(), *pb = wb.c_str(), *ps = sb.c_str();
      auto walks = [&](int n) {
        return std::vector<int>{Walk(na, nb, n, false), Walk(na, nb, n, true),  Walk(pa, pb, n, false),
                                Walk(pa, pb, n, true),  Walk(pa, ps, n, false), Walk(pa, ps, n, true)};
      };
      for (int n = -1; n <= 4; ++n)
        ASSERT_EQ((std::vector<int>{ka_strncmpA(na, nb, n), ka_strnicmpA(na, nb, n), ka_strncmpW(pa, pb, n),
                                    ka_strnicmpW(pa, pb, n), ka_strncmpWA(pa, nb, n), ka_strnicmpWA(pa, nb, n)}),
                  walks(n)) << a << " / " << b << " n=" << n;
      // The whole-text forms (the narrow exact one is the C runtime's).
      ASSERT_EQ((std::vector<int>{ka_strncmpA(na, nb, 9), ka_stricmpA(na, nb), ka_strcmpW(pa, pb), ka_stricmpW(pa, pb),
                                  ka_strcmpWA(pa, nb), ka_stricmpWA(pa, nb)}),
                walks(9)) << a << " / " << b;
    }
}

TEST(CStrWidths, NullComparisonsWideCharacterSearchesAndCopiesAndTheirDeliberateOddities) {
  // A null text reads as empty, but against a non-empty one gives exactly -1
  // or 1 (one walk serves every form: one of each pair of widths here).
  struct { const char *a, *b; int want; } nulls[] = {
      {nullptr, nullptr, 0}, {nullptr, "", 0}, {nullptr, "xy", -1}, {"xy", nullptr, 1}};
  for (auto& r : nulls) {
    Arg<char> a(r.a), b(r.b);
    Arg<ka_wchar> wa(r.a), wb(r.b);
    EXPECT_EQ(std::tuple(ka_strnicmpA(a.p(), b.p(), 3), ka_strcmpW(wa.p(), wb.p()), ka_strncmpWA(wa.p(), b.p(), 3)),
              std::tuple(r.want, r.want, r.want)) << "row " << &r - nulls;
  }
  // Against the unit 0xFFE9 the byte 0xE9 stops the walk, yet the difference is 0 (deliberate).
  EXPECT_EQ(ka_strcmpWA(KA_W("\uFFE9z"), "\xE9y"), 0);
  EXPECT_EQ(ka_strchrW(KA_W("\u00E9"), 0x100E9), nullptr);  // beyond any unit (the searches' model finds the rest)
  EXPECT_EQ(ka_strrchrA("a\xE9", 0xE9), nullptr);  // narrow bytes match their signed value only
  // The wide copies: a null destination gives null, nothing written; a null text is empty.
  EXPECT_TRUE(!ka_strcpyW(nullptr, KA_W("a")) && !ka_strcatW(nullptr, KA_W("a")) &&
              !ka_strncpyW(nullptr, KA_W("a"), 1) && !ka_ascii2wide(nullptr, "a", 8) &&
              !ka_wide2ascii(nullptr, KA_W("a"), 8) && ka_strlenW(nullptr) == 0);
  Arg<ka_wchar> dst("xy"), out("#####");
  EXPECT_EQ(Str(ka_strcatW(ka_strcatW(dst.p(), nullptr), KA_W("z"))), KA_W("xyz"));  // into dst, returned
  EXPECT_EQ(Str(ka_strcpyW(dst.p(), nullptr)), KA_W(""));  // dst emptied
  ka_strncpyW(out.p(), KA_W("ab"), 5);  // stops after the terminator, then stores one more
  EXPECT_EQ(out.buf.substr(0, 5), Txt<ka_wchar>("ab").append(2, 0) + KA_W("#"));
  ka_strncpyW(out.p(), KA_W("abc"), -1);  // a negative n copies nothing, as a null text
  EXPECT_EQ(out.held() + Str(ka_ascii2wide(Arg<ka_wchar>("xy").p(), nullptr, 8)), Txt<ka_wchar>(""));
  char narrow[8];
  EXPECT_EQ(Str(ka_ascii2wide(out.p(), "\xE9\x80", 8)), KA_W("\u00E9\u0080"));  // no sign, no code page
  EXPECT_STREQ(ka_wide2ascii(narrow, KA_W("\u0141\u20E9\u0100b"), 8), "A\xE9");  // low bytes; 0x0100 ends (deliberate)
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
      EXPECT_EQ(TypeParam::right(src.p(), n, right.p()), right.p());
      EXPECT_EQ(cat.held() + C('|') + right.held(),
                Txt<C>(("xy" + t.substr(0, taken) + "|" + t.substr(t.size() - taken)).c_str())) << t << " " << n;
      for (int start = -2; start <= len + 1; ++start) {
        Arg<C> piece("garbage");
        const size_t from = static_cast<size_t>(std::clamp(start, 0, len)), count = static_cast<size_t>(std::max(n, 0));
        EXPECT_EQ(TypeParam::substr(src.p(), start, n, piece.p()), piece.p());
        EXPECT_EQ(piece.held(), Txt<C>(t.substr(from, count).c_str())) << start << "," << n;
      }
    }
  }
  Arg<C> a("a");
  EXPECT_TRUE(!TypeParam::strncat(nullptr, a.p(), 1) && !TypeParam::substr(a.p(), 0, 1, nullptr) &&
              !TypeParam::right(a.p(), 1, nullptr));  // a null destination gives null
  // Deliberately no empty copy, as for null (the replace tests copy every other text).
  EXPECT_EQ(TypeParam::strdup(Arg<C>("").p()), nullptr);
  // Case changes touch ASCII letters only; a null text is ignored.
  auto swapped = Txt<C>("aB1z[@\xC9\xE9"), lower = swapped, upper = swapped;
  TypeParam::strrev(&swapped[0]);  // swaps case and deliberately keeps the order
  TypeParam::strlwr(&lower[0]);
  TypeParam::strupr(&upper[0]);
  EXPECT_EQ(swapped + C('|') + lower + C('|') + upper, Txt<C>("Ab1Z[@\xC9\xE9|ab1z[@\xC9\xE9|AB1Z[@\xC9\xE9"));
  for (auto change : {TypeParam::strlwr, TypeParam::strupr, TypeParam::strrev}) change(nullptr);
}

// Wide lengths and the substring search's pair scan read aligned blocks:
// every start within a block and every end near the next ones, the
// terminator the only zero, and the pattern planted just before the text in
// the same block, where it must never be found.
TEST(CStrWidths, WideScansAtEveryAlignment) {
  for (int start = 0; start < 16; ++start)
    for (int length = 0; length < 48; ++length) {
      // In a block of exactly the text's size: no block wholly past its
      // terminator may be read (the valgrind CI target reports any such read).
      const size_t units = size_t(start + length + 1);
      ka_wchar* block = static_cast<ka_wchar*>(::operator new(units * sizeof(ka_wchar), std::align_val_t(32)));
      ka_wchar* const s = block + start;
      std::fill(block, s + length, ka_wchar('x'));
      if (start >= 2) std::copy_n(KA_W("yz"), 2, s - 2);
      s[length] = 0;
      // The pair at the very end; a lone y there must not pair with the zero.
      std::copy_n(KA_W("yz"), std::min(length, 2), s + std::max(length - 2, 0));
      EXPECT_EQ(ka_strlenW(s), length) << start;
      EXPECT_EQ(ka_strstrW(s, KA_W("yz")), length >= 2 ? s + length - 2 : nullptr) << start << "/" << length;
      EXPECT_EQ(ka_strstrW(s, KA_W("y")), length > 0 ? s + std::max(length - 2, 0) : nullptr) << start << "/" << length;
      ::operator delete(block, std::align_val_t(32));
    }
}

TYPED_TEST(CStr, SearchesMatchTheObviousMethodAndFollowTheNullAndEdgeRules) {
  // Short and long texts (long ones take the block filter) from a small
  // alphabet, so that near-matches abound, half holding a planted pattern,
  // empty one time in nine; its characters are also the set and its first
  // (an empty one's terminator) the character searched.
  // 0xC1 and 0xE1 are a letter pair only in Latin-1; 0x0161 and 0x4141 share
  // low bytes with a and A: neither may match those. (Counts are the fuzz
  // target's business: ka_replace's length must agree with them.)
  typedef typename TypeParam::Char C;
  std::basic_string<C> alphabet = Txt<C>("aAbB[\xC1\xE1");
  if constexpr (sizeof(C) == 2) alphabet += {C(0x0161), C(0x4141)};
  std::mt19937 rng(12345);
  for (int round = 0; round < 3000; ++round) {
    const size_t len = round % 3 == 0 ? rng() % 20 : 200 + rng() % 400, m = rng() % 9;
    std::basic_string<C> s = RandomText(rng, alphabet, len), p = RandomText(rng, alphabet, m);
    if (len > m && rng() % 2) s.replace(rng() % (len - m), m, p);
    auto at = [&s](const C* hit) { return hit == nullptr ? s.npos : static_cast<size_t>(hit - s.c_str()); };
    auto same = [](C x, C y) { return Key(x, true) == Key(y, true); };
    const size_t folded = std::search(s.begin(), s.end(), p.begin(), p.end(), same) - s.begin();
    const C *text = s.c_str(), *pattern = p.c_str();  // an empty pattern is found at the start, even in an empty text
    std::vector<size_t> got{at(TypeParam::stristr(text, pattern)), at(TypeParam::strrchr(text, Key(p[0], false))),
                            at(TypeParam::strpbrk(text, pattern)), size_t(TypeParam::strspn(text, pattern))};
    std::vector<size_t> want{folded == len && m > 0 ? s.npos : folded, std::basic_string<C>(text, len + 1).rfind(p[0]),
                             s.find_first_of(p), std::min(s.find_first_not_of(p), len)};
    if constexpr (sizeof(C) == 2) {  // ka_strchrW never finds the terminator (deliberate)
      got.insert(got.end(), {at(ka_strstrW(text, pattern)), at(ka_strchrW(text, p[0]))});
      want.insert(want.end(), {s.find(p), s.find(p[0])});
    }
    ASSERT_EQ(got, want) << round;
  }
  // A long text is measured a step at a time as the search goes (steps of
  // 256, 512, ... 65536 starts); a match just before, across or just after
  // each step's end, or only near the text's end, must be found the same.
  const std::basic_string<C> none(140000, C('x'));  // the last row needs the whole text read
  for (size_t end = 256, step = 512; end < none.size(); end += step, step = std::min<size_t>(step * 2, 65536))
    for (size_t pos : {end - 4, end - 2, end - 1, end, none.size() - 3}) {
      const std::basic_string<C> text = none.substr(0, pos) + Txt<C>("abc") + none.substr(pos + 3);
      ASSERT_EQ(TypeParam::stristr(text.c_str(), Txt<C>("aBc").c_str()), text.c_str() + pos) << pos;
    }
  // A null text finds nothing and counts 0, as an empty pattern does (it
  // would never finish otherwise); for ka_strpbrk an empty text beats a null
  // set, which otherwise gives the text itself; ka_strspn gives -1 for either null.
  Arg<C> aab("aab"), a("a"), empty("");
  EXPECT_EQ((std::vector<C*>{TypeParam::stristr(nullptr, a.p()), TypeParam::strrchr(nullptr, 'a'),
                             TypeParam::strpbrk(nullptr, a.p()), TypeParam::strpbrk(empty.p(), nullptr),
                             TypeParam::strpbrk(aab.p(), nullptr)}),
            (std::vector<C*>{nullptr, nullptr, nullptr, nullptr, aab.p()}));
  EXPECT_EQ((std::vector<int>{TypeParam::countstr(nullptr, a.p()), TypeParam::countstr(aab.p(), empty.p()),
                              TypeParam::strspn(nullptr, a.p()), TypeParam::strspn(aab.p(), nullptr)}),
            (std::vector<int>{0, 0, -1, -1}));
}

TYPED_TEST(CStr, SkipsTrimsAndPackingTakeOnlyTheFourBlanksAndPaddingFillsToTheWidth) {
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
    Arg<C> left(t.c_str()), right(t.c_str()), both(t.c_str());
    for (int n = -1; n <= len + 2; ++n) {
      const std::string head = t.substr(0, static_cast<size_t>(std::clamp(n, 0, len)));
      EXPECT_EQ(std::make_tuple(TypeParam::findskip(both.p(), n), TypeParam::findrskip(both.p(), n),
                                TypeParam::skipspace(both.p(), n)),
                std::make_tuple(int(lead(head)), int(head.size() - kept(head)), both.p() + lead(head))) << n << t;
    }
    const std::string rest = t.substr(lead(t)), trimmed = rest.substr(0, kept(rest));
    EXPECT_EQ(std::make_tuple(TypeParam::ltrim(left.p()), TypeParam::rtrim(right.p()), TypeParam::trim(both.p())),
              std::make_tuple(-int(lead(t)), int(kept(t)), int(trimmed.size()))) << t;
    EXPECT_EQ(left.held() + C('|') + right.held() + C('|') + both.held(),
              Txt<C>((rest + '|' + t.substr(0, kept(t)) + '|' + trimmed).c_str())) << t;
  }
  // Padding fills to the width; packing drops the blanks and the remove set.
  // (The fuzz target checks the lengths returned, never shorter than the text.)
  Arg<C> lpadded("7"), rpadded("7"), packed(" a b,\tc\r\n,"), spaced("a, b");
  TypeParam::lpad(lpadded.p(), C('0'), 3);
  TypeParam::rpad(rpadded.p(), C('0'), 3);
  TypeParam::packstr(packed.p(), Arg<C>(",").p());
  TypeParam::packstr(spaced.p(), nullptr);  // a null remove set: blanks only
  EXPECT_EQ(lpadded.held() + C('|') + rpadded.held() + C('|') + packed.held() + C('|') + spaced.held(),
            Txt<C>("007|700|abc|a,b"));
  // A null text: null or 0, nothing written.
  EXPECT_EQ(TypeParam::skipspace(nullptr, 3), nullptr);
  EXPECT_EQ((std::vector<int>{TypeParam::findskip(nullptr, 3), TypeParam::findrskip(nullptr, 3),
                              TypeParam::ltrim(nullptr), TypeParam::rtrim(nullptr), TypeParam::trim(nullptr),
                              TypeParam::lpad(nullptr, C('0'), 2), TypeParam::rpad(nullptr, C('0'), 2),
                              TypeParam::packstr(nullptr, nullptr), TypeParam::trimbrace(nullptr, 1)}),
            std::vector<int>(9, 0));
}

TYPED_TEST(CStr, ClosingBracketsAreFoundAndOuterPairsStripped) {
  // The closer of the bracket or quote at pos, then the text with its outer
  // pair stripped, escapes decoded when asked (the fuzz target checks the
  // lengths returned; the guide's example nests brackets and quotes a closer).
  typedef typename TypeParam::Char C;
  struct { const char* s; int pos, close, unescape; const char* stripped; } rows[] = {
      {nullptr, 0, -1, 1, ""},                       // null
      {" x(a(b)c) ", 4, 6, 1, "x(a(b)c)"},           // an inner opener, counted from s; no pair first: just trimmed
      {"(abc", 0, -1, 1, "abc"},                     // no closer: only the opener goes
      {"(a'\\')')", 0, 7, 1, "a'\\')'"},             // a backslash escapes inside an inner quote, kept in brackets
      {"[a(b]", 0, 4, 1, "a(b"},                     // other kinds are ordinary characters
      {"\"a\\\"b\"c", 0, 5, 0, "a\\"},               // an escaped quote does not close, unless not unescaping
      {"'a\\", 0, -1, 1, "a\\"},                     // an escape before the terminator stops, and is kept
      {"{'}", 0, -1, 1, "'}"},                       // an inner quote left open hides the closer
      {"{abc}def", 0, 4, 1, "abc"},                  // text after the bracket goes
      {" \"\\n\\r\\t\\q\\\"\" ", 1, 12, 1, "\n\n\tq\""},  // \n and \r both a line feed (deliberate), \t a tab
  };
  for (auto& r : rows) {
    Arg<C> s(r.s);
    const int close = TypeParam::findbrace(s.p(), r.pos);
    TypeParam::trimbrace(s.p(), r.unescape);
    EXPECT_EQ(std::make_tuple(close, s.held()), std::make_tuple(r.close, Txt<C>(r.stripped))) << r.s << " at " << r.pos;
  }
}

TYPED_TEST(CStr, ReplaceKeepsTheNullRulesMovesOnlyWhenTheBlockIsTooSmallAndMatchesAStringLoop) {
  typedef typename TypeParam::Char C;
  Arg<C> x("x"), y("y");
  EXPECT_EQ(TypeParam::replace(nullptr, x.p(), y.p()), nullptr);
  C* s = static_cast<C*>(_ka_malloc(sizeof(C)));
  s[0] = 0;
  EXPECT_EQ(TypeParam::replace(s, nullptr, nullptr), s);    // both null: even an empty text comes back
  EXPECT_EQ(TypeParam::replace(s, x.p(), y.p()), nullptr);  // an empty text otherwise gives null
  ka_free(s);
  // (A null replacement deletes: the fuzz target checks that.)
  s = TypeParam::strdup(Txt<C>("abab").c_str());
  EXPECT_EQ(TypeParam::replace(s, nullptr, x.p()), s);  // null pattern, as an empty one
  // The arguments are read before the text changes or moves: the pattern is
  // the text's own tail, then the replacement is the text itself, until the
  // result outgrows the block.
  s = TypeParam::replace(s, s + 2, x.p());  // "xx", doubled three times (only "xx" ends as 256 x's)
  for (int i = 0; i < 3; ++i) s = TypeParam::replace(s, x.p(), s);
  EXPECT_EQ(Str(s), std::basic_string<C>(256, C('x')));
  ka_free(s);
  // Random texts against a std::string replace loop; the block stays where
  // the result fits it (else it had to move).
  std::mt19937 rng(777);
  const std::basic_string<C> ab = Txt<C>("abAB");
  for (int round = 0; round < 1500; ++round) {
    const auto text = RandomText(rng, ab, 1 + rng() % (round % 2 ? 30 : 700));
    const auto from = RandomText(rng, ab, 1 + rng() % 6), to = RandomText(rng, ab, rng() % 9);
    std::basic_string<C> want = text;
    for (size_t at = want.find(from); at != want.npos; at = want.find(from, at + to.size()))
      want.replace(at, from.size(), to);
    C* const block = TypeParam::strdup(text.c_str());
    const bool fits = (want.size() + 1) * sizeof(C) <= Ka_BufferData::FromData(block)->nAllocLength;
    C* got = TypeParam::replace(block, from.c_str(), to.c_str());
    ASSERT_EQ(std::tuple(Str(got), !fits || got == block), std::tuple(want, true)) << round;
    ka_free(got);
  }
}
