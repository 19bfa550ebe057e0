// The typed lists: text and byte overloads of Add and Insert, Find, the
// never-null accessors, MergeAll, RemoveDupList, and the buffer list's long
// indices (its byte order is the buffers' Compare, tested with the buffers);
// then Parse of both string lists: one table of (text, options, fields), each
// replacing a list whose copy keeps its item, the wide list's different end
// rule and escape widening, the narrow lead-byte step, and sorted lists.
#include <climits>
#include <cstdlib>
#include <cstring>
#include <type_traits>

#include "lists/list_support.h"

namespace {

typedef std::vector<int> Ints;

TEST(StrList, TextIsAddedByPositionInUnsortedListsAndByOrderInSorted) {
  Ka_AStrList l, sorted(1);
  Ka_WStrList wide;
  // Past the end appends, null is the null string, wide text goes in as
  // UTF-8, and Find is case-sensitive.
  const Ints at = {l.Add("b"), l.Insert(0, "a"), l.Insert(99, static_cast<const char*>(nullptr)),
                   l.Add(KA_W("\u00E9"), 65001), l.Insert(1, Ka_AString("ab")), l.Find("b"), l.Find("B")};
  EXPECT_EQ(at, (Ints{0, 0, 2, 3, 1, 2, -1}));
  EXPECT_EQ(Show(l), "5:a,ab,b,,\xC3\xA9");
  // A sorted list ignores Insert's index and merges an appended list by order.
  for (const char* text : {"m", "c", "x", "c"}) sorted.Add(text);
  EXPECT_EQ((Ints{sorted.Insert(3, KA_W("a"), 65001), sorted.Append(nullptr), sorted.Append(&l)}), (Ints{0, 4, 8}));
  EXPECT_EQ(Show(sorted), "8:,a,ab,b,c,m,x,\xC3\xA9");
  // The wide list takes narrow text in UTF-8.
  EXPECT_EQ((Ints{wide.Add("\xC3\xA9", 65001), wide.Insert(0, KA_W("w")), wide.Find(KA_W("\u00E9"))}), (Ints{0, 0, 1}));
}

TEST(StrList, MissingItemsReadAsOneSharedEmptyItemAndMergeAllJoinsTheOthersEitherWay) {
  Ka_AStrList a;
  EXPECT_EQ(a.MergeAll(0).GetData(), nullptr);
  Fill(a, "x,~,,bc");
  EXPECT_TRUE(a.GetItemNN(1) == a.GetItemNN(-1) && a.GetItemNN(-1) == Ka_AStrList().GetItemNN(0) && a[1].GetData() == nullptr)
      << "an empty position and an index out of range read as one static empty string";
  EXPECT_EQ(a.GetSafeItem(4), nullptr) << "no growth through the typed accessor";
  EXPECT_EQ(std::string(a.MergeAll(0)) + "|" + std::string(a.MergeAll(1)), "xbc|bcx");
}

TEST(StrList, RemoveDupListKeepsTheFirstOfEachValueIgnoringAsciiCaseAndLeavesCopies) {
  struct Row { const char *items, *kept; } rows[] = {
      {"", "0:"},                      // nothing
      {"b,~,,B,~,c", "3:b,~,c"},       // the first of each value stays, in place; empty positions are ""
      {"\xE9,\xC9", "2:\xE9,\xC9"},    // only ASCII letters fold
  };
  for (const Row& r : rows) {
    Ka_AStrList a;
    Ka_WStrList w;  // the same items, wide
    Fill(a, r.items);
    Fill<Ka_WString>(w, r.items);
    const Ka_AStrList copy(a);
    const std::string before = Show(copy);
    EXPECT_EQ(a.RemoveDupList() + w.RemoveDupList(), 2 * std::atoi(r.kept));
    EXPECT_EQ(Show(a) + " " + Show(w) + " " + Show(copy), std::string(r.kept) + " " + r.kept + " " + before);
  }
}

TEST(BuffList, TakesBytesAtLongIndices) {
  Ka_BuffList l;
  const unsigned char bytes[] = {'a', 0, 'b'};
  // Far past the end appends; a negative index is refused; the first item
  // ends up second, zero included.
  const std::vector<long> at = {l.Add(bytes, 3), l.Insert(LONG_MAX, bytes, 1), l.Insert(LONG_MIN, Ka_Buffer(bytes, 2)),
                                l.Insert(0, Ka_Buffer(bytes + 2, 1)), l.Append(nullptr), std::memcmp(l.GetItem(1)->GetPtr(0), bytes, 3)};
  EXPECT_EQ(at, (std::vector<long>{0, 1, -1, 0, 3, 0}));
}

// The string class of L's items.
template <class L>
using Item = typename std::conditional<std::is_same<L, Ka_WStrList>::value, Ka_WString, Ka_AString>::type;

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
  typedef Item<TypeParam> S;
  const bool wide = std::is_same<TypeParam, Ka_WStrList>::value;
  for (const ParseRow& r : kRows) {
    const auto text = Chars<S>(r.text != nullptr ? r.text : ""), delims = Chars<S>(r.delimiters ? r.delimiters : "");
    TypeParam l;
    l.Add(Chars<S>("old").c_str());  // replaced, whatever the text; its copy keeps it
    const TypeParam copy(l);
    const int count = l.Parse(r.text ? text.c_str() : nullptr, r.delimiters ? delims.c_str() : nullptr, r.escape, r.mode,
                              r.quotes, r.strip, r.drop, r.brackets);
    EXPECT_EQ(Show(l, '|') + (count == l.Count() ? " " : " (another count) ") + Show(copy),
              std::string(wide && r.wideFields != nullptr ? r.wideFields : r.fields) + " 1:old") << (r.text ? r.text : "null");
  }
}

TYPED_TEST(Parse, PlacesTheFieldsOfASortedListByOrderMergingEqualOnes) {
  typedef Item<TypeParam> S;
  TypeParam sorted(1);
  EXPECT_EQ(sorted.Parse(Chars<S>("c,a,b,a").c_str(), Chars<S>(",").c_str(), 0, 0, 0, 0, 1, 0), 3);
  EXPECT_EQ(Show(sorted, '|'), "3:a|b|c");
}

TEST(ParseWidths, WideUnitsAbove255AndTheNarrowLeadByteStep) {
  Ka_WStrList w;
  const ka_wchar text[] = {'x', 0x3001, 'y', 0xFFE9, 0x3001, 'z', 0}, delimiters[] = {';', 0x3001, 0};
  w.Parse(text, delimiters, '\xE9', 0, 0, 0, 1, 0);  // the escape 0xE9 reads as the unit 0xFFE9
  const unsigned int old = KaSetLocaleCP(932);
  Ka_AStrList l;
  // 0x81 leads a pair in code page 932, yet is copied singly and the quote
  // after it closes the quoted run (deliberate).
  l.Parse("\"\x81\",x", ",", 0, 0, 1, 1, 1, 0);
  KaSetLocaleCP(old);
  EXPECT_EQ(Show(w, '|') + " " + Show(l, '|'), "3:x|y|z 2:\x81|x");
}

}  // namespace
