// The typed lists: text and byte overloads of Add and Insert, Find, the
// never-null accessors, MergeAll, RemoveDupList, and the buffer list's long
// indices (its byte order is the buffers' Compare, tested with the buffers).
#include <climits>
#include <cstdlib>
#include <cstring>

#include "lists/list_support.h"

namespace {

TEST(StrList, TextIsAddedByPositionInUnsortedListsAndByOrderInSorted) {
  Ka_AStrList l, sorted(1);
  Ka_WStrList wide;
  EXPECT_EQ(l.Add("b"), 0);
  EXPECT_EQ(l.Insert(0, "a"), 0);
  EXPECT_EQ(l.Insert(99, static_cast<const char*>(nullptr)), 2) << "past the end appends; null is the null string";
  EXPECT_EQ(l.Add(KA_W("\u00E9"), 65001), 3) << "wide text in UTF-8";
  EXPECT_EQ(l.Insert(1, Ka_AString("ab")), 1);
  EXPECT_EQ(Show(l), "5:a,ab,b,,\xC3\xA9");
  EXPECT_EQ(l.Find("b"), 2);
  EXPECT_EQ(l.Find("B"), -1) << "case-sensitive";
  for (const char* text : {"m", "c", "x", "c"}) sorted.Add(text);
  EXPECT_EQ(sorted.Insert(3, KA_W("a"), 65001), 0) << "by order: the index is ignored";
  EXPECT_EQ(sorted.Append(nullptr), 4);
  EXPECT_EQ(sorted.Append(&l), 8) << "merged by order";
  EXPECT_EQ(Show(sorted), "8:,a,ab,b,c,m,x,\xC3\xA9");
  EXPECT_EQ(wide.Add("\xC3\xA9", 65001), 0);
  EXPECT_EQ(wide.Insert(0, KA_W("w")), 0);
  EXPECT_EQ(wide.Find(KA_W("\u00E9")), 1) << "narrow text converted from UTF-8";
}

TEST(StrList, MissingItemsReadAsOneSharedEmptyItemAndSharedItemsAreCopiedFirst) {
  Ka_AStrList a;
  a.Add("x");
  a.AddItem(nullptr);
  EXPECT_EQ(a.GetItem(-1), nullptr);
  EXPECT_EQ(a.GetItemNN(1)->GetData(), nullptr);
  EXPECT_EQ(a.GetItemNN(-1), Ka_AStrList().GetItemNN(0)) << "one static empty string";
  EXPECT_EQ(Ka_WStrList()[3].GetLength() + Ka_BuffList()[LONG_MIN].GetLength(), 0);
  const Ka_AStrList copy(a);
  a.GetSafeItem(0)->MakeUpper();
  EXPECT_EQ(Show(a) + " " + Show(copy), "2:X,~ 2:x,~");
  EXPECT_EQ(a.GetSafeItem(2), nullptr) << "no growth through the typed accessor";
}

TEST(StrList, MergeAllJoinsTheNonEmptyItemsEitherWay) {
  Ka_AStrList l;
  EXPECT_EQ(l.MergeAll(0).GetData(), nullptr);
  Fill(l, "a,,~,bc");
  EXPECT_STREQ(l.MergeAll(0), "abc");
  EXPECT_STREQ(l.MergeAll(1), "bca");
  Ka_WStrList w;
  w.Add(KA_W("a"));
  w.Add(KA_W("b"));
  EXPECT_EQ(w.MergeAll(1).Compare(KA_W("ba")), 0);
}

TEST(StrList, RemoveDupListKeepsTheFirstOfEachValueIgnoringAsciiCase) {
  struct Row { const char *items, *kept; } rows[] = {
      {"", "0:"},                      // nothing
      {"b,~,,B,~,c", "3:b,~,c"},       // empty positions count as empty strings
      {"x,y,X,z,y,Y,x", "3:x,y,z"},    // the first of each value stays, in place
      {"\xE9,\xC9", "2:\xE9,\xC9"},    // only ASCII letters fold
  };
  for (const Row& r : rows) {
    for (int shared = 0; shared < 2; ++shared) {
      Ka_AStrList a, copy;
      Ka_WStrList w;
      Fill(a, r.items);
      for (int i = 0; i < a.Count(); ++i) {
        Ka_WString item(a[i], -1, 1252);
        w.InsertItem(i, a.GetItem(i) != nullptr ? &item : nullptr);
      }
      if (shared) copy = a;
      const std::string before = Show(a);
      EXPECT_EQ(a.RemoveDupList(), std::atoi(r.kept));
      EXPECT_EQ(w.RemoveDupList(), std::atoi(r.kept));
      EXPECT_EQ(Show(a), r.kept);
      EXPECT_EQ(Show(w), r.kept);
      EXPECT_EQ(Show(copy), shared ? before : "0:") << "the copy changed";
    }
  }
}

TEST(BuffList, TakesBytesAtLongIndices) {
  Ka_BuffList l;
  const unsigned char bytes[] = {'a', 0, 'b'};
  EXPECT_EQ(l.Add(bytes, 3), 0);
  EXPECT_EQ(l.Insert(LONG_MAX, bytes, 1), 1) << "far past the end appends";
  EXPECT_EQ(l.Insert(LONG_MIN, Ka_Buffer(bytes, 2)), -1);
  EXPECT_EQ(l.Insert(0, Ka_Buffer(bytes + 2, 1)), 0);
  EXPECT_EQ(l.Append(nullptr), 3);
  EXPECT_EQ(std::memcmp(l.GetItem(1)->GetPtr(0), bytes, 3), 0);
  EXPECT_EQ(l.GetItem(LONG_MAX), nullptr);
}

}  // namespace
