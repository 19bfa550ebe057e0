// Representation, sharing, copy on write, appending, the buffer members,
// limits, string objects and the item handlers that the lists build on, over
// both widths.
#include <algorithm>
#include <memory>

#include "strings/string_support.h"

template <class S>
class Core : public ::testing::Test {};
TYPED_TEST_SUITE(Core, BothStrings);

TYPED_TEST(Core, ConstructionKeepsTheGivenLengthAndEmptyValuesOwnNothing) {
  typedef TypeParam S;
  typedef CharOf<S> C;
  const auto text = Chars<S>(std::string("a\0b", 3)), empty = Chars<S>("");
  const C* const none = nullptr;
  auto show = [](const S& s) { return s.GetData() == nullptr ? std::string("null ") : "[" + Text(s) + "] "; };
  // n characters, inner zeros kept; n < 0: up to the zero; n = 0 and empty
  // values own no block; a character repeated, 0 repeated being empty.
  EXPECT_EQ(show(S(text.c_str(), 3)) + show(S(text.c_str(), -7)) + show(S(text.c_str(), 0)) + show(S(empty.c_str(), -1)) +
                show(S(none, -1)) + show(S(C(0), 5)) + show(S(C('x'), 3)),
            std::string("[a\0b] ", 6) + "[a] null null null null [xxx] ");
  // A null text leaves room for the caller to write; 3 characters take the
  // 32-byte group, the wide header counting bytes.
  EXPECT_EQ(std::make_pair(S(none, 5).GetLength(), S(C('x'), 3).GetAllocLength()), std::make_pair(5, int(32 / sizeof(C))));
}

TYPED_TEST(Core, SharedTextIsCopiedOnWriteAndIgnoredWritesKeepItShared) {
  TypeParam a = Make<TypeParam>("shared"), b(a), c(a);
  const TypeParam moved(std::move(c));
  b.SetAt(-1, 'x');  // ignored writes do not unshare
  b.SetAt(6, 'x');
  EXPECT_TRUE(Refs(a) == 3 && b.GetData() == a.GetData()) << "a move takes the reference over";
  b.SetAt(0, 'S');
  const Ka_BufferData* own = b.GetData();
  b.SetAt(1, 'H');  // private now: written in place
  EXPECT_EQ(Text(b) + " " + Text(a) + (b.GetData() == own ? "" : " (moved)"), "SHared shared");
}

TYPED_TEST(Core, AppendingKeepsLengthsAndZerosAndReadsArgumentsInsideTheTextBeforeTheyMove) {
  typedef TypeParam S;
  typedef CharOf<S> C;
  const auto cd = Chars<S>("cd");
  const std::string text = "abcdefghijklmnopqrstuvwxyz0123";
  RunEdits<S>({
      {"ab", DO(s += Make<S>(std::string("c\0d", 3))), std::string("abc\0d", 5), 0},  // inner zeros are appended
      {"ab", DO(s += Make<S>(std::string("\0d", 2))), "ab", 0},                       // a leading zero appends nothing
      {"ab", DO((s += static_cast<const C*>(nullptr), s += cd.c_str())), "abcd", 0},  // a null text appends nothing
      {"ab", DO((s += C(0), s += C('e'))), "abe", 0},                                 // nor does the zero character
      {"ab", DO(s = C(0)), std::string(1, '\0'), 0},                                  // but assigning it keeps it (deliberate)
      {text, DO((s += C('4'), s += C('5'), s += C('6'))), text + "456", 0},           // the third outgrows the 32-character group
      // Each edit below reads from the block it moves: the sanitizers see a
      // read of a freed block.
      {text, DO(s += s), text + text, 0},                                          //
      {text, DO(s += static_cast<const C*>(s) + 20), text + "uvwxyz0123", 0},      //
      {text, DO(s.Set(static_cast<const C*>(s) + 2, 3)), "cde", 0},                //
      {text + "45", EDIT(s.Insert(1, static_cast<const C*>(s) + 30)), "a45" + text.substr(1) + "45", 34},  //
      {"abcab", EDIT(s.Replace(static_cast<const C*>(s) + 3, static_cast<const C*>(s) + 1)), "bcabcbcab", 0},  // "ab" by "bcab"
  });
  const S ab = Make<S>("ab");
  EXPECT_EQ(Text(ab + Make<S>(std::string("c\0d", 3))) + Text(ab + cd.c_str()) + Text(cd.c_str() + ab) +
                Text(static_cast<const C*>(nullptr) + ab),
            std::string("abc\0dabcdcdabab", 15));
  EXPECT_EQ((ab + static_cast<const C*>(nullptr)).GetData(), ab.GetData()) << "nothing appended: shared";
}

TYPED_TEST(Core, SafeBufferKeepsTheOldTerminatorAndZeroFillsOnlyInPlaceAndFreeExtraOnlyFixesLengths) {
  typedef CharOf<TypeParam> C;
  TypeParam s = Make<TypeParam>("0123456789"), other(s);
  const C* p = s.GetSafeBuffer(40);  // shared and too small: a new block
  EXPECT_EQ(Text(other) + "|" + Text(s).substr(0, 11), std::string("0123456789|0123456789\0", 22))
      << "the other owner keeps its text, the old terminator travels";
  std::fill(s.GetSafeBuffer(40) + 10, s.GetSafeBuffer(40) + 40, C('#'));
  s.GetSafeBuffer(10);
  EXPECT_TRUE(s.GetSafeBuffer(40) == p && s.GetSafeBuffer(-1) == p) << "private with room: in place; -1 is the length";
  EXPECT_EQ(Text(s), "0123456789" + std::string(30, '\0'));
  // FreeExtra frees nothing and sets the length of every sharer (deliberate).
  const int capacity = s.GetAllocLength();
  const TypeParam sharer(s);
  s.FreeExtra(50);  // above the length: nothing
  const int kept = s.GetLength();
  s.FreeExtra(-1);  // up to the first zero
  TypeParam().FreeExtra(-1);
  EXPECT_EQ(Text(sharer) + "/" + std::to_string(kept) + "/" + std::to_string(s.GetAllocLength()),
            "0123456789/40/" + std::to_string(capacity));
  const C* q = other;
  EXPECT_TRUE(other.GetSafeBuffer(0) == q && other.GetLength() == 0 && q[0] == 0) << "a private text is emptied in place";
  EXPECT_TRUE(s.GetSafeBuffer(0) == nullptr && Refs(sharer) == 1) << "a shared text becomes null";
  EXPECT_EQ(s.GetSafeBuffer(-1), nullptr) << "the null string allocates nothing for 0";
}

TYPED_TEST(Core, RequestsPastTheLongestTextChangeNothing) {
  typedef TypeParam S;
  typedef CharOf<S> C;
  const int most = S::Traits::kMaxLength;
  S s = Make<S>("a b");
  EXPECT_TRUE(s.GetSafeBuffer(most + 1) == nullptr && s.GetSafeBuffer(0x7FFFFFFF) == nullptr);
  // A header that claims the longest length (never allocated for real):
  // every growing edit must refuse before it touches memory.
  const int32_t real = s.GetData()->nDataLength;
  const auto xy = Chars<S>("xy");
  s.GetData()->nDataLength = S::Traits::Stored(most);
  const std::vector<int> results = {(s += C('x'), 0), (s += xy.c_str(), 0), s.Insert(0, C('x')), s.Insert(0, xy.c_str()),
                                    s.Replace(Chars<S>(" ").c_str(), xy.c_str()), s.GetLength()};
  s.GetData()->nDataLength = real;
  EXPECT_EQ(results, (std::vector<int>{0, 0, most, most, 0, most}));
  EXPECT_EQ(Text(s), "a b");
}

TYPED_TEST(Core, ObjectsAndItemsLiveInTheHandlersPoolShareOnAssignAndCompareByTheClassRules) {
  Ka_ListObjHandler& handler = HandlerOf<TypeParam>();
  Ka_ObjBufPool& pool = handler.GetPool();
  const int used = pool.GetUsedCount();
  std::unique_ptr<TypeParam> made(new TypeParam(Make<TypeParam>("item")));
  EXPECT_EQ(pool.GetUsedCount(), used + 1);
  made.reset();  // the slot is released before it is freed, or its block never empties
  EXPECT_TRUE(pool.GetUsedCount() == used && pool.Validate() == 1);
  delete static_cast<TypeParam*>(nullptr);
  // An item: shared on assignment; a missing key counts as the null string,
  // and the narrow rules order items too (deliberate).
  TypeParam key = Make<TypeParam>("key"), none, zero = Make<TypeParam>(std::string(1, '\0'));
  alignas(TypeParam) unsigned char room[sizeof(TypeParam)];
  void* const item = handler._InitItem(room);
  handler._AssignItem(item, &key);
  const std::vector<int> seen = {Refs(key), handler._CompareItem(item, &key), Sign(handler._CompareItem(item, nullptr)),
                                 Sign(handler._CompareItem(&zero, &none))};
  EXPECT_EQ(seen, (std::vector<int>{2, 0, 1, std::is_same<TypeParam, Ka_AString>::value ? -1 : 0}));
  handler._FreeItem(item);
  handler._FreeItem(nullptr);
  handler._AssignItem(nullptr, &key);
  handler._AssignItem(&key, nullptr);
  EXPECT_TRUE(Refs(key) == 1 && Text(key) == "key" && handler._InitItem(nullptr) == nullptr) << "freed, nulls ignored";
}
