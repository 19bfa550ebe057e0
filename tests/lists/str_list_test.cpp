// The typed lists: text and byte overloads of Add and Insert, Find, the
// never-null accessors and their static empty items, MergeAll,
// RemoveDupList, and the buffer list's long indices and byte order.
#include <climits>
#include <cstdlib>
#include <cstring>

#include "lists/list_support.h"

namespace {

std::string Narrow(const Ka_WString& s) {
  std::string out;
  for (int k = 0; k < s.GetLength(); ++k) out += static_cast<char>(s.GetAt(k));
  return out;
}

TEST(StrList, TextIsAddedByPositionOrByOrder) {
  Ka_AStrList l;
  EXPECT_EQ(l.Add("b"), 0);
  EXPECT_EQ(l.Insert(0, "a"), 0);
  EXPECT_EQ(l.Insert(99, static_cast<const char*>(nullptr)), 2) << "past the end appends; null is the null string";
  EXPECT_EQ(l.Insert(-1, "z"), -1);
  EXPECT_EQ(l.Add(KA_W("\u00E9"), 65001), 3) << "wide text in UTF-8";
  EXPECT_EQ(l.Insert(1, Ka_AString("ab")), 1);
  EXPECT_EQ(Show(l), "5:a,ab,b,,\xC3\xA9");
  EXPECT_EQ(l.Find("b"), 2);
  EXPECT_EQ(l.Find("B"), -1) << "case-sensitive";
  Ka_AStrList sorted(1);
  for (const char* text : {"m", "c", "x", "c"}) sorted.Add(text);
  sorted.Insert(0, KA_W("a"), 65001);
  EXPECT_EQ(Show(sorted), "4:a,c,m,x");
  EXPECT_EQ(sorted.Find("m"), 2);
  EXPECT_EQ(sorted.Append(nullptr), 4);
  EXPECT_EQ(sorted.Append(&l), 8) << "merged by order: b, ab, the null string and é join";
  Ka_WStrList wide;
  EXPECT_EQ(wide.Add("\xC3\xA9", 65001), 0);
  EXPECT_EQ(wide.Insert(0, KA_W("w")), 0);
  EXPECT_EQ(wide.GetItem(1)->GetAt(0), 0xE9);
  EXPECT_EQ(wide.Find(KA_W("w")), 0);
}

TEST(StrList, MissingItemsReadAsOneSharedEmptyItem) {
  Ka_AStrList a;
  Ka_WStrList w;
  Ka_BuffList b;
  a.Add("x");
  a.Ka_ObjList::AddItem(nullptr);
  EXPECT_EQ(a.GetItem(-1), nullptr);
  EXPECT_EQ(a.GetItem(1), nullptr);
  ASSERT_NE(a.GetItemNN(-1), nullptr);
  EXPECT_EQ(a.GetItemNN(-1)->GetData(), nullptr);
  EXPECT_EQ(a.GetItemNN(1), a.GetItemNN(7)) << "one static empty string";
  EXPECT_EQ(a.GetItemNN(1), Ka_AStrList().GetItemNN(0));
  EXPECT_EQ(a[0].Compare("x"), 0);
  EXPECT_EQ(w[3].GetLength(), 0);
  EXPECT_EQ(b[LONG_MIN].IsEmpty(), 1);
  EXPECT_NE(w.GetItemNN(0), nullptr);
}

TEST(StrList, GetSafeItemCopiesASharedItemBeforeItIsWritten) {
  Ka_AStrList a;
  a.Add("shared");
  const Ka_AStrList copy(a);
  Ka_AString* item = a.GetSafeItem(0);
  ASSERT_NE(item, nullptr);
  item->MakeUpper();
  EXPECT_EQ(Show(a), "1:SHARED");
  EXPECT_EQ(Show(copy), "1:shared");
  EXPECT_EQ(a.GetSafeItem(1), nullptr) << "no growth through the typed accessor";
}

TEST(StrList, MergeAllJoinsTheNonEmptyItemsEitherWay) {
  Ka_AStrList l;
  EXPECT_EQ(l.MergeAll(0).GetData(), nullptr);
  l.Add("a");
  l.Add("");
  l.Ka_ObjList::AddItem(nullptr);
  l.Add("bc");
  EXPECT_STREQ(l.MergeAll(0), "abc");
  EXPECT_STREQ(l.MergeAll(1), "bca");
  Ka_WStrList w;
  w.Add(KA_W("a"));
  w.Add(KA_W("b"));
  EXPECT_EQ(Narrow(w.MergeAll(1)), "ba");
  EXPECT_EQ(Show(l), "4:a,,~,bc") << "the list is unchanged";
}

TEST(StrList, RemoveDupListKeepsTheFirstOfEachValueIgnoringCase) {
  struct Row {
    const char* items;
    const char* kept;
  } rows[] = {
      {"", "0:"},                          // nothing
      {"a", "1:a"},                        //
      {"A,b,a,B", "2:A,b"},                // the first occurrence stays, in place
      {"b,~,,B,~,c", "3:b,~,c"},           // empty positions count as empty strings
      {"x,y,X,z,y,Y,x", "3:x,y,z"},        //
      {"\xE9,\xC9", "2:\xE9,\xC9"},        // only ASCII letters fold
  };
  for (const Row& r : rows) {
    Ka_AStrList a;
    Ka_WStrList w;
    Fill(a, r.items);
    for (int i = 0; i < a.Count(); ++i) {
      if (a.GetItem(i) == nullptr) {
        w.Ka_ObjList::AddItem(nullptr);
        continue;
      }
      std::basic_string<ka_wchar> text;
      for (int k = 0; k < a[i].GetLength(); ++k) text += static_cast<ka_wchar>(static_cast<unsigned char>(a[i][k]));
      w.Add(text.c_str());
    }
    const Ka_AStrList copy(a);
    const std::string before = Show(a);
    EXPECT_EQ(a.RemoveDupList(), std::atoi(r.kept));
    EXPECT_EQ(w.RemoveDupList(), std::atoi(r.kept));
    EXPECT_EQ(Show(a), r.kept);
    EXPECT_EQ(Show(w), r.kept);
    EXPECT_EQ(Show(copy), before) << "the edit reached a copy";
    EXPECT_EQ(a.Validate(), 1);
  }
}

TEST(BuffList, TakesBytesAtLongIndicesAndOrdersByBytes) {
  Ka_BuffList l;
  const unsigned char bytes[] = {'a', 0, 'b'};
  EXPECT_EQ(l.Add(bytes, 3), 0);
  EXPECT_EQ(l.Insert(LONG_MAX, bytes, 1), 1) << "far past the end appends";
  EXPECT_EQ(l.Insert(LONG_MIN, Ka_Buffer(bytes, 2)), -1);
  EXPECT_EQ(l.Insert(0, Ka_Buffer(bytes + 2, 1)), 0);
  EXPECT_EQ(l.Append(nullptr), 3);
  EXPECT_EQ(l.GetItem(1)->GetLength(), 3);
  EXPECT_EQ(std::memcmp(l.GetItem(1)->GetPtr(0), bytes, 3), 0);
  EXPECT_EQ(l.GetItem(LONG_MAX), nullptr);
  EXPECT_EQ(l.GetItem(3), nullptr);
  EXPECT_EQ(l.GetSafeItem(3), nullptr);
  // A sorted list of buffers: lengths 3 and 5 compare 5 bytes of each, the
  // shorter buffer's spare bytes included, and none past its block.
  Ka_ObjList sorted(&Ka_Buffer::_KaBufferHandler, 1);
  Ka_Buffer shorter(reinterpret_cast<const unsigned char*>("abc"), 3), longer(reinterpret_cast<const unsigned char*>("abcde"), 5);
  std::memcpy(shorter.GetSafePtr(3), "de", 2);  // its spare room
  EXPECT_EQ(sorted.Add(&longer), 0);
  EXPECT_EQ(sorted.Add(&shorter), 0) << "equal over 5 bytes: merged";
  EXPECT_EQ(sorted.Count(), 1);
  Ka_Buffer wide(nullptr, 40);
  std::memset(wide.GetSafePtr(0), 0, 40);
  Ka_Buffer narrow(nullptr, 1);
  std::memset(narrow.GetSafePtr(0), 0, static_cast<size_t>(narrow.GetAllocLength()));
  EXPECT_EQ(Ka_Buffer::_KaBufferHandler._CompareItem(&narrow, &wide), 0) << "past its capacity a block reads as zero";
  wide.SetAt(39, 1);
  EXPECT_LT(Ka_Buffer::_KaBufferHandler._CompareItem(&narrow, &wide), 0);
}

}  // namespace
