// Parse of both string lists: one table of (text, options, fields), the
// wide list's different end rule and escape widening, the narrow lead-byte
// step, and what Parse does to the list it replaces.
#include <type_traits>

#include "lists/list_support.h"

namespace {

// Text of L's width, one character per byte.
template <class L>
auto Chars(const std::string& bytes) {
  typedef typename std::conditional<std::is_same<L, Ka_WStrList>::value, ka_wchar, char>::type Char;
  const unsigned char* b = reinterpret_cast<const unsigned char*>(bytes.data());
  return std::basic_string<Char>(b, b + bytes.size());
}

// text or delimiters null: a null pointer; wideFields: where the wide list
// differs, else null. Runs of delimiters in mode 1 without quotes, brackets or
// escape are left to the fuzz target, which checks them against a plain split;
// stripped quotes and a bracket group hiding delimiters, an empty field
// between two delimiters and a leading delimiter in mode 1, to the Parse
// example of docs/lists.md, whose output the doc tests compare.
struct ParseRow {
  const char *text, *delimiters;
  char escape;
  int mode, quotes, strip, drop, brackets;
  const char *fields, *wideFields;
};

const ParseRow kRows[] = {
    {nullptr, ",", 0, 0, 0, 0, 1, 0, "0:", nullptr},               // null text
    {"a,b", nullptr, 0, 0, 0, 0, 1, 0, "1:a,b", nullptr},          // no delimiters
    {"a,b,", ",", 0, 0, 0, 0, 1, 0, "2:a|b", nullptr},             // a trailing delimiter adds nothing
    {"a,b,", ",", 0, 0, 0, 0, 0, 0, "3:a|,b|,", nullptr},          // dropDelimiter 0 starts fields with it
    {"\"a,b\",c", ",", 0, 0, 1, 0, 1, 0, "2:\"a,b\"|c", nullptr},  // quotes kept without stripQuotes
    {"x'a\"b'y", ",", 0, 0, 1, 1, 1, 0, "1:xa\"by", nullptr},      // the other quote is ordinary inside
    {"a,\"\"", ",", 0, 0, 1, 1, 1, 0, "2:a|", "1:a"},              // an empty quoted field at the end (wide: dropped)
    {"[a,{b],c", ",", 0, 0, 0, 0, 1, 1, "2:[a,{b]|c", nullptr},    // groups do not nest
    {"{a,\"b},c\"", ",", 0, 0, 1, 1, 1, 1, "2:{a,\"b}|c", nullptr}, // quotes are ordinary in a group
    {"a\\,b", ",", '\\', 0, 0, 0, 1, 0, "2:a|b", nullptr},         // outside quotes an escape only removes itself
    {"\"a\\nb\\\"c\\q\"", ",", '\\', 0, 1, 1, 1, 0, "1:a\nb\"cq", nullptr},  // escapes translated in quotes
    {"\"a\\tb\"", ",", '\\', 0, 1, 0, 1, 0, "1:\"a\\\tb\"", nullptr},  // without stripQuotes the escape stays (deliberate)
    {"\"a\\", ",", '\\', 0, 1, 0, 1, 0, "1:\"a\\", nullptr},       // an escape at the very end
    {"a\r\nb\r\n", "\n", 0, 0, 0, 0, 1, 0, "2:a|b", nullptr},      // CR before LF dropped in mode 0
    {"a\r\nb", "\n", 0, 2, 0, 0, 1, 0, "2:a\r|b", nullptr},        // but not in other modes
    {"a\rb", ",", 0, 0, 0, 0, 1, 0, "1:a\rb", nullptr},            // nor without LF among the delimiters
    {"a\xE9,b", ",", '\xE9', 0, 0, 0, 1, 0, "2:a|b", "2:a\xE9|b"},  // wide: the escape reads as 0xFFE9
};

template <class L>
class Parse : public ::testing::Test {};
typedef ::testing::Types<Ka_AStrList, Ka_WStrList> BothLists;
TYPED_TEST_SUITE(Parse, BothLists);

TYPED_TEST(Parse, SplitsTextIntoTheFieldsOfEachMode) {
  const bool wide = std::is_same<TypeParam, Ka_WStrList>::value;
  for (const ParseRow& r : kRows) {
    const auto text = Chars<TypeParam>(r.text != nullptr ? r.text : ""), delims = Chars<TypeParam>(r.delimiters ? r.delimiters : "");
    TypeParam l;
    l.Add(Chars<TypeParam>("old").c_str());  // replaced, whatever the text
    const int count = l.Parse(r.text ? text.c_str() : nullptr, r.delimiters ? delims.c_str() : nullptr, r.escape, r.mode,
                              r.quotes, r.strip, r.drop, r.brackets);
    EXPECT_EQ(count, l.Count());
    EXPECT_EQ(Show(l, '|'), wide && r.wideFields != nullptr ? r.wideFields : r.fields) << (r.text ? r.text : "null");
  }
}

TYPED_TEST(Parse, ReplacesTheListWithoutTouchingItsCopiesAndOrdersASortedOne) {
  const auto comma = Chars<TypeParam>(",");
  TypeParam l, sorted(1);
  l.Parse(Chars<TypeParam>("a,b").c_str(), comma.c_str(), 0, 0, 0, 0, 1, 0);
  const TypeParam copy(l);
  EXPECT_EQ(l.Parse(Chars<TypeParam>(std::string(3000, ',')).c_str(), comma.c_str(), 0, 0, 0, 0, 1, 0), 3000);
  EXPECT_EQ(Show(copy, '|'), "2:a|b");
  EXPECT_EQ(l.GetAllocLength(), int(Ka_BufferPool::GetBufferGroup(3000 * int(sizeof(void*))) / sizeof(void*)))
      << "an array sized once, exactly";
  EXPECT_EQ(sorted.Parse(Chars<TypeParam>("c,a,b,a").c_str(), comma.c_str(), 0, 0, 0, 0, 1, 0), 3);
  EXPECT_EQ(Show(sorted, '|'), "3:a|b|c") << "fields placed by order, equal ones merged";
}

TEST(ParseWidths, WideUnitsAbove255AndTheNarrowLeadByteStep) {
  Ka_WStrList w;
  const ka_wchar text[] = {'x', 0x3001, 'y', 0xFFE9, 0x3001, 'z', 0}, delimiters[] = {';', 0x3001, 0};
  EXPECT_EQ(w.Parse(text, delimiters, '\xE9', 0, 0, 0, 1, 0), 3) << "the escape 0xE9 reads as the unit 0xFFE9";
  EXPECT_EQ(Show(w, '|'), "3:x|y|z");
  const unsigned int old = KaSetLocaleCP(932);
  Ka_AStrList l;
  // 0x81 leads a pair in code page 932, yet is copied singly and the quote
  // after it closes the quoted run (deliberate).
  EXPECT_EQ(l.Parse("\"\x81\",x", ",", 0, 0, 1, 1, 1, 0), 2);
  EXPECT_EQ(Show(l, '|'), "2:\x81|x");
  KaSetLocaleCP(old);
}

}  // namespace
