// The typed lists: text and byte overloads of Add and Insert, Find, the
// never-null accessors, MergeAll, RemoveDupList, and the buffer list's long
// indices (its byte order is the buffers' Compare, tested with the buffers).
#include <climits>
#include <cstdlib>
#include <cstring>
#include <vector>

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

TEST(StrList, MissingItemsReadAsOneSharedEmptyItem) {
  Ka_AStrList a;
  Fill(a, "x,~");
  EXPECT_TRUE(a.GetItemNN(1) == a.GetItemNN(-1) && a.GetItemNN(-1) == Ka_AStrList().GetItemNN(0) && a[1].GetData() == nullptr)
      << "an empty position and an index out of range read as one static empty string";
  EXPECT_EQ(a.GetSafeItem(2), nullptr) << "no growth through the typed accessor";
}

TEST(StrList, MergeAllJoinsTheNonEmptyItemsEitherWay) {
  Ka_AStrList l;
  EXPECT_EQ(l.MergeAll(0).GetData(), nullptr);
  Fill(l, "a,,~,bc");
  EXPECT_EQ(std::string(l.MergeAll(0)) + "|" + std::string(l.MergeAll(1)), "abc|bca");
}

TEST(StrList, RemoveDupListKeepsTheFirstOfEachValueIgnoringAsciiCaseAndLeavesCopies) {
  struct Row { const char *items, *kept; } rows[] = {
      {"", "0:"},                      // nothing
      {"b,~,,B,~,c", "3:b,~,c"},       // the first of each value stays, in place; empty positions are ""
      {"\xE9,\xC9", "2:\xE9,\xC9"},    // only ASCII letters fold
  };
  for (const Row& r : rows) {
    Ka_AStrList a, copy;
    Ka_WStrList w;  // the same items, wide
    Fill(a, r.items);
    for (int i = 0; i < a.Count(); ++i) {
      Ka_WString item(a[i], -1, 1252);
      w.InsertItem(i, a.GetItem(i) != nullptr ? &item : nullptr);
    }
    copy = a;
    const std::string before = Show(copy);
    EXPECT_EQ(a.RemoveDupList(), std::atoi(r.kept));
    EXPECT_EQ(w.RemoveDupList(), std::atoi(r.kept));
    EXPECT_EQ(Show(a) + " " + Show(w) + " " + Show(copy), std::string(r.kept) + " " + r.kept + " " + before);
  }
}

TEST(BuffList, TakesBytesAtLongIndices) {
  Ka_BuffList l;
  const unsigned char bytes[] = {'a', 0, 'b'};
  // Far past the end appends; a negative index is refused.
  const std::vector<long> at = {l.Add(bytes, 3), l.Insert(LONG_MAX, bytes, 1), l.Insert(LONG_MIN, Ka_Buffer(bytes, 2)),
                                l.Insert(0, Ka_Buffer(bytes + 2, 1)), l.Append(nullptr)};
  EXPECT_EQ(at, (std::vector<long>{0, 1, -1, 0, 3}));
  EXPECT_EQ(std::memcmp(l.GetItem(1)->GetPtr(0), bytes, 3), 0);
}

}  // namespace
