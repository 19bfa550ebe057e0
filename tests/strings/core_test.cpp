// Representation, sharing, copy on write, appending, the buffer members,
// limits and string objects, over both widths.
#include <algorithm>
#include <memory>

#include "strings/string_support.h"

template <class S>
class Core : public ::testing::Test {};
TYPED_TEST_SUITE(Core, BothStrings);

TYPED_TEST(Core, ConstructionKeepsTheGivenLengthAndEmptyValuesOwnNothing) {
  typedef CharOf<TypeParam> C;
  struct Row { std::string text; int n; std::string held; } rows[] = {
      {"", -1, ""},                                          // empty text: null, nothing allocated
      {"abc", 0, ""},                                        // n = 0 empties
      {"abc", -7, "abc"},                                    // n < 0: up to the zero
      {std::string("a\0b", 3), 3, std::string("a\0b", 3)},  // inner zeros are kept
  };
  for (const Row& r : rows) {
    const TypeParam s(Chars<TypeParam>(r.text).c_str(), r.n);
    EXPECT_EQ(Text(s), r.held) << r.n;
    EXPECT_EQ(s.GetData() == nullptr, r.held.empty());
  }
  EXPECT_TRUE(TypeParam(static_cast<const C*>(nullptr), -1).GetData() == nullptr && TypeParam(C(0), 5).GetData() == nullptr);
  EXPECT_EQ(TypeParam(static_cast<const C*>(nullptr), 5).GetLength(), 5) << "room for the caller to write";
  // The 32-byte group; the wide header counts bytes, so 16 wide characters.
  const TypeParam xxx(C('x'), 3);
  EXPECT_EQ(Text(xxx) + "/" + std::to_string(xxx.GetAllocLength()), "xxx/" + std::to_string(32 / sizeof(C)));
}

TYPED_TEST(Core, SharedTextIsCopiedOnWrite) {
  TypeParam a = Make<TypeParam>("shared");
  {
    TypeParam b(a), c;
    c = a;
    c = b;  // already the same text: nothing changes
    const TypeParam moved(std::move(c));
    EXPECT_EQ(Refs(a), 3) << "a move takes the reference over";
    b.SetAt(-1, 'x');  // ignored writes do not unshare
    b.SetAt(6, 'x');
    EXPECT_EQ(b.GetData(), a.GetData());
    b.SetAt(0, 'S');
    const Ka_BufferData* own = b.GetData();
    b.SetAt(1, 'H');  // private now: written in place
    EXPECT_EQ(b.GetData(), own);
    EXPECT_EQ(Text(b) + " " + Text(a), "SHared shared");
  }
  EXPECT_EQ(Refs(a), 1);
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
  EXPECT_EQ(Text(ab + Make<S>(std::string("c\0d", 3))), std::string("abc\0d", 5));
  EXPECT_EQ(Text(ab + cd.c_str()) + Text(cd.c_str() + ab) + Text(static_cast<const C*>(nullptr) + ab), "abcdcdabab");
  EXPECT_EQ((ab + static_cast<const C*>(nullptr)).GetData(), ab.GetData()) << "nothing appended: shared";
}

TYPED_TEST(Core, SafeBufferKeepsTheOldTerminatorAndZeroFillsOnlyInPlaceAndFreeExtraOnlyFixesLengths) {
  typedef CharOf<TypeParam> C;
  TypeParam s = Make<TypeParam>("0123456789"), other(s);
  const C* p = s.GetSafeBuffer(40);  // shared and too small: a new block
  EXPECT_EQ(Text(other), "0123456789");
  EXPECT_EQ(Text(s).substr(0, 11), std::string("0123456789\0", 11)) << "the old terminator travels";
  std::fill(s.GetSafeBuffer(40) + 10, s.GetSafeBuffer(40) + 40, C('#'));
  s.GetSafeBuffer(10);
  EXPECT_EQ(s.GetSafeBuffer(40), p) << "private with room: in place, capacity kept";
  EXPECT_EQ(Text(s), "0123456789" + std::string(30, '\0'));
  EXPECT_EQ(s.GetSafeBuffer(-1), p) << "a negative size is the length";
  // FreeExtra frees nothing and sets the length of every sharer (deliberate).
  const int capacity = s.GetAllocLength();
  const TypeParam sharer(s);
  s.FreeExtra(50);  // above the length: nothing
  EXPECT_EQ(s.GetLength(), 40);
  s.FreeExtra(-1);  // up to the first zero
  EXPECT_EQ(Text(sharer), "0123456789");
  EXPECT_EQ(s.GetAllocLength(), capacity);
  TypeParam().FreeExtra(-1);
  const C* q = other;
  EXPECT_EQ(other.GetSafeBuffer(0), q) << "a private text is emptied in place";
  ExpectWellFormed(other);
  EXPECT_EQ(s.GetSafeBuffer(0), nullptr) << "a shared text becomes null";
  EXPECT_EQ(Refs(sharer), 1);
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
  s += C('x');
  s += xy.c_str();
  EXPECT_EQ(s.Insert(0, C('x')), most);
  EXPECT_EQ(s.Insert(0, xy.c_str()), most);
  EXPECT_EQ(s.Replace(Chars<S>(" ").c_str(), xy.c_str()), 0);
  EXPECT_EQ(s.GetLength(), most);
  s.GetData()->nDataLength = real;
  EXPECT_EQ(Text(s), "a b");
}

TYPED_TEST(Core, ObjectsComeFromTheHandlersPoolAndGoBackWhole) {
  Ka_ObjBufPool& pool = HandlerOf<TypeParam>().GetPool();
  const int blocksBefore = pool.GetBlockCount();
  std::vector<std::unique_ptr<TypeParam>> made;
  for (int i = 0; i < 300; ++i) made.emplace_back(new TypeParam(Make<TypeParam>("item")));  // three blocks' worth
  EXPECT_GE(pool.GetBlockCount(), 3) << "slots of the handler's pool";
  made.clear();
  EXPECT_EQ(pool.GetBlockCount(), std::max(blocksBefore, 1)) << "emptied blocks went back to the heap";
  EXPECT_EQ(pool.Validate(), 1);
  delete static_cast<TypeParam*>(nullptr);
}
