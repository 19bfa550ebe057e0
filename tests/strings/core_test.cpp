// Representation, sharing, copy on write, assignment, appending and the
// buffer members, over both widths.
#include <algorithm>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

#include "strings/string_support.h"

template <class S>
class Core : public ::testing::Test {};
TYPED_TEST_SUITE(Core, BothStrings);

TYPED_TEST(Core, NullStringOwnsNothing) {
  const TypeParam s;
  EXPECT_EQ(static_cast<const CharOf<TypeParam>*>(s), nullptr);
  EXPECT_EQ(s.GetData(), nullptr);
  EXPECT_EQ(s.GetLength(), 0);
  EXPECT_EQ(s.GetAllocLength(), 0);
  EXPECT_EQ(s.IsEmpty(), 1);
  EXPECT_EQ(s.GetAt(0), 0);
  EXPECT_EQ(TypeParam::_KaNullString.GetData(), nullptr);
}

TYPED_TEST(Core, ConstructionFromTextKeepsTheGivenLength) {
  typedef CharOf<TypeParam> C;
  struct Row {
    const char* text;  // null: a null pointer
    int n;
    std::string held;
  } rows[] = {
      {nullptr, -1, ""},                     // null text: the null string
      {"", -1, ""},                          // empty text: null, nothing allocated
      {"abc", 0, ""},                        // n = 0 empties
      {"abc", -1, "abc"},                    // n < 0: up to the zero
      {"abc", -7, "abc"},                    // any negative n
      {"abc", 2, "ab"},                      // a prefix
      {"a\0b", 3, std::string("a\0b", 3)},   // inner zeros are kept
  };
  for (const Row& r : rows) {
    const auto text = Chars<TypeParam>(r.text != nullptr ? std::string(r.text, r.n > 0 ? static_cast<size_t>(r.n) : std::strlen(r.text)) : "");
    const TypeParam s(r.text != nullptr ? text.c_str() : static_cast<const C*>(nullptr), r.n);
    EXPECT_EQ(Text(s), r.held) << r.n;
    EXPECT_EQ(s.GetData() == nullptr, r.held.empty()) << "an empty value never allocates";
    ExpectWellFormed(s);
  }
  // A null text with n > 0 gives n characters for the caller to write.
  const TypeParam room(static_cast<const C*>(nullptr), 5);
  EXPECT_EQ(room.GetLength(), 5);
  ExpectWellFormed(room);
}

TYPED_TEST(Core, CharacterConstructorRepeatsOrGivesNull) {
  typedef CharOf<TypeParam> C;
  struct Row {
    char c;
    int n;
    const char* held;
  } rows[] = {
      {'x', 0, ""},     // count 0: null
      {'x', -3, ""},    // negative count: null
      {0, 5, ""},       // the character 0: null whatever the count
      {'x', 1, "x"},    //
      {'x', 3, "xxx"},  //
  };
  for (const Row& r : rows) {
    const TypeParam s(static_cast<C>(r.c), r.n);
    EXPECT_EQ(Text(s), r.held);
    ExpectWellFormed(s);
  }
  // Three characters take the 32-byte group, which the wide header counts
  // in bytes: 32 narrow characters, 16 wide ones.
  EXPECT_EQ(TypeParam(C('x'), 3).GetAllocLength(), static_cast<int>(32 / sizeof(C)));
}

TYPED_TEST(Core, WideHeaderCountsBytesNarrowCountsCharacters) {
  const TypeParam s = Make<TypeParam>("hello");
  const Ka_BufferData* d = s.GetData();
  ASSERT_NE(d, nullptr);
  EXPECT_EQ(d->nDataLength, static_cast<int32_t>(5 * sizeof(CharOf<TypeParam>)));
  EXPECT_EQ(d->nAllocLength, 32u);
  EXPECT_EQ(s.GetAllocLength(), static_cast<int>(32 / sizeof(CharOf<TypeParam>)));
}

TYPED_TEST(Core, CharacterAccessOutsideTheTextReadsZeroAndWritesNothing) {
  const TypeParam s = Make<TypeParam>("ab");
  for (int i : {-1, 2, 3, 1 << 30}) EXPECT_EQ(s.GetAt(i), 0) << i;
  EXPECT_EQ(s[1], CharOf<TypeParam>('b'));
  OnPrivateAndShared<TypeParam>("ab", [](TypeParam& t) {
    const Ka_BufferData* before = t.GetData();
    t.SetAt(-1, 'x');
    t.SetAt(2, 'x');
    EXPECT_EQ(Text(t), "ab");
    EXPECT_EQ(t.GetData(), before) << "an ignored write must not unshare";
  });
}

TYPED_TEST(Core, SharedTextIsCopiedOnWrite) {
  TypeParam a = Make<TypeParam>("shared");
  TypeParam b;
  b = a;
  EXPECT_EQ(a.GetData(), b.GetData());
  EXPECT_EQ(Refs(a), 2);
  b.SetAt(0, 'S');
  EXPECT_NE(a.GetData(), b.GetData());
  EXPECT_EQ(Text(a), "shared");
  EXPECT_EQ(Text(b), "Shared");
  EXPECT_EQ(Refs(a), 1);
  EXPECT_EQ(Refs(b), 1);
  const Ka_BufferData* own = b.GetData();
  b.SetAt(1, 'H');  // already private: written in place
  EXPECT_EQ(b.GetData(), own);
  EXPECT_EQ(Text(b), "SHared");
}

TYPED_TEST(Core, CopiesCountOwnersAndReleaseOnce) {
  TypeParam a = Make<TypeParam>("abc");
  {
    TypeParam b(a), c(a);
    EXPECT_EQ(Refs(a), 3);
    c = b;  // the same text: nothing changes
    EXPECT_EQ(Refs(a), 3);
    const TypeParam& same = b;
    b = same;
    EXPECT_EQ(Refs(a), 3);
    TypeParam d(std::move(c));
    EXPECT_EQ(c.GetData(), nullptr);
    EXPECT_EQ(Refs(a), 3) << "a move takes the reference over";
    d = TypeParam();
    EXPECT_EQ(Refs(a), 2);
  }
  EXPECT_EQ(Refs(a), 1);
  a.Empty();
  EXPECT_EQ(a.GetData(), nullptr);
}

TYPED_TEST(Core, AssigningTheZeroCharacterKeepsItAppendingItDoesNothing) {
  typedef CharOf<TypeParam> C;
  TypeParam s;
  s = C(0);  // deliberate: a one-character string holding 0
  EXPECT_EQ(s.GetLength(), 1);
  EXPECT_EQ(s.IsEmpty(), 1);
  EXPECT_EQ(Text(s), std::string(1, '\0'));
  OnPrivateAndShared<TypeParam>("ab", [](TypeParam& t) {
    t += C(0);
    EXPECT_EQ(Text(t), "ab");
  });
}

TYPED_TEST(Core, AppendingKeepsLengthsZerosAndTheOtherOwner) {
  typedef CharOf<TypeParam> C;
  struct Row {
    std::string tail;
    std::string held;
  } rows[] = {
      {"", "ab"},                                          // empty: nothing
      {"c", "abc"},                                        //
      {std::string("c\0d", 3), std::string("abc\0d", 5)},  // inner zeros are appended
      {std::string("\0d", 2), "ab"},                       // a leading zero appends nothing
      {std::string(40, 'x'), "ab" + std::string(40, 'x')}, // grows to the next group
  };
  for (const Row& r : rows) {
    SCOPED_TRACE(r.held);
    OnPrivateAndShared<TypeParam>("ab", [&](TypeParam& t) {
      t += Make<TypeParam>(r.tail);
      EXPECT_EQ(Text(t), r.held);
    });
  }
  OnPrivateAndShared<TypeParam>("ab", [](TypeParam& t) {
    t += static_cast<const C*>(nullptr);
    t += Chars<TypeParam>("").c_str();
    t += Chars<TypeParam>("cd").c_str();
    t += C('e');
    EXPECT_EQ(Text(t), "abcde");
  });
  TypeParam fromNull;
  fromNull += Chars<TypeParam>("xy").c_str();
  EXPECT_EQ(Text(fromNull), "xy");
}

TYPED_TEST(Core, ArgumentsInsideTheStringItselfStayValid) {
  typedef CharOf<TypeParam> C;
  // Each edit reads from the block it is about to move; the sanitizers see
  // any read of a freed block.
  OnPrivateAndShared<TypeParam>(std::string(20, 'a') + "bc", [](TypeParam& t) {
    t += t;
    EXPECT_EQ(Text(t), std::string(20, 'a') + "bc" + std::string(20, 'a') + "bc");
  });
  OnPrivateAndShared<TypeParam>("abcdefghijklmnopqrstuvwxyz0123", [](TypeParam& t) {
    t += static_cast<const C*>(t) + 20;
    EXPECT_EQ(Text(t), "abcdefghijklmnopqrstuvwxyz0123uvwxyz0123");
  });
  OnPrivateAndShared<TypeParam>("abcdef", [](TypeParam& t) {
    t.Set(static_cast<const C*>(t) + 2, 3);
    EXPECT_EQ(Text(t), "cde");
  });
  OnPrivateAndShared<TypeParam>(std::string(31, 'x') + "y", [](TypeParam& t) {
    EXPECT_EQ(t.Insert(1, static_cast<const C*>(t) + 30), 34);
    EXPECT_EQ(Text(t), "xxy" + std::string(30, 'x') + "y");
  });
}

TYPED_TEST(Core, ConcatenationCopiesTheLeftAndAppendsTheRight) {
  typedef CharOf<TypeParam> C;
  const TypeParam left = Make<TypeParam>("ab");
  const auto cd = Chars<TypeParam>("cd");
  EXPECT_EQ(Text(left + Make<TypeParam>("cd")), "abcd");
  EXPECT_EQ(Text(left + cd.c_str()), "abcd");
  EXPECT_EQ(Text(cd.c_str() + left), "cdab");
  EXPECT_EQ(Text(left + Make<TypeParam>(std::string("c\0d", 3))), std::string("abc\0d", 5));
  EXPECT_EQ(Text(static_cast<const C*>(nullptr) + left), "ab");
  // Nothing appended: the result shares the left text.
  EXPECT_EQ((left + static_cast<const C*>(nullptr)).GetData(), left.GetData());
  EXPECT_EQ((left + TypeParam()).GetData(), left.GetData());
  EXPECT_EQ(Text(left), "ab");
  EXPECT_EQ(Refs(left), 1);
}

TYPED_TEST(Core, SafeBufferGrowsToTheSizeGroupAndZeroFillsOnlyInPlace) {
  typedef CharOf<TypeParam> C;
  auto group = [](int n) {
    const int unit = static_cast<int>(sizeof(C));
    return static_cast<int>(Ka_BufferPool::GetBufferGroup(n * unit)) / unit;
  };

  // A 10-character text in its smallest group moves to the group of 40.
  TypeParam moved = Make<TypeParam>("0123456789");
  const Ka_BufferData* small = moved.GetData();
  C* p = moved.GetSafeBuffer(40);
  EXPECT_NE(moved.GetData(), small);
  EXPECT_EQ(moved.GetAllocLength(), group(40));
  EXPECT_EQ(moved.GetLength(), 40);
  EXPECT_EQ(Text(moved).substr(0, 10), "0123456789");
  EXPECT_EQ(p[10], 0) << "the old terminator travels with the text";
  EXPECT_EQ(p[40], 0);

  // The same length in a block that has room stays put and is zero-filled.
  moved.GetSafeBuffer(10);
  EXPECT_EQ(moved.GetAllocLength(), group(40)) << "capacity never shrinks";
  const Ka_BufferData* roomy = moved.GetData();
  for (int i = 10; i < 40; ++i) moved.GetSafeBuffer(40)[i] = C('#');
  moved.GetSafeBuffer(10);
  p = moved.GetSafeBuffer(40);
  EXPECT_EQ(moved.GetData(), roomy);
  EXPECT_EQ(Text(moved), "0123456789" + std::string(30, '\0'));

  // Negative n keeps the length; n = 0 empties a private text in place.
  EXPECT_EQ(moved.GetSafeBuffer(-1), p);
  EXPECT_EQ(moved.GetLength(), 40);
  EXPECT_EQ(moved.GetSafeBuffer(0), p);
  EXPECT_EQ(moved.GetLength(), 0);
  ExpectWellFormed(moved);
}

TYPED_TEST(Core, SafeBufferOfASharedTextLeavesTheOtherOwnerAlone) {
  TypeParam a = Make<TypeParam>("abcdef");
  TypeParam b(a);
  CharOf<TypeParam>* p = b.GetSafeBuffer(3);
  EXPECT_NE(p, static_cast<const CharOf<TypeParam>*>(a));
  EXPECT_EQ(Text(b), "abc");
  EXPECT_EQ(Text(a), "abcdef");
  EXPECT_EQ(Refs(a), 1);
  // n = 0 on a shared text gives the null string.
  TypeParam c(a);
  EXPECT_EQ(c.GetSafeBuffer(0), nullptr);
  EXPECT_EQ(c.GetData(), nullptr);
  EXPECT_EQ(Refs(a), 1);
  // So does any n on the null string: 0 allocates nothing.
  TypeParam d;
  EXPECT_EQ(d.GetSafeBuffer(-1), nullptr);
  EXPECT_EQ(d.GetSafeBuffer(0), nullptr);
  EXPECT_NE(d.GetSafeBuffer(1), nullptr);
  ExpectWellFormed(d);
}

TYPED_TEST(Core, RequestsBeyondTheLongestTextLeaveTheStringUnchanged) {
  typedef CharOf<TypeParam> C;
  const int most = TypeParam::Traits::kMaxLength;
  OnPrivateAndShared<TypeParam>("abc", [](TypeParam& t) {
    const int most = TypeParam::Traits::kMaxLength;
    const Ka_BufferData* before = t.GetData();
    EXPECT_EQ(t.GetSafeBuffer(most + 1), nullptr);
    EXPECT_EQ(t.GetSafeBuffer(0x7FFFFFFF), nullptr);
    EXPECT_EQ(t.GetData(), before);
    EXPECT_EQ(Text(t), "abc");
  });
  TypeParam none;
  EXPECT_EQ(none.GetSafeBuffer(most + 1), nullptr);
  EXPECT_EQ(none.GetData(), nullptr);
  // The capacity of the longest text still fits an int.
  EXPECT_LE(Ka_BufferPool::GetBufferGroup(most * static_cast<int>(sizeof(C))) / sizeof(C), 0x7FFFFFFFu);
}

TYPED_TEST(Core, GrowthPastTheLongestTextChangesNothing) {
  typedef CharOf<TypeParam> C;
  // A header that claims the longest length (never allocated for real):
  // every growing edit must refuse before it touches memory.
  TypeParam s = Make<TypeParam>("a b");
  const int32_t real = s.GetData()->nDataLength;
  s.GetData()->nDataLength = TypeParam::Traits::Stored(TypeParam::Traits::kMaxLength);
  const Ka_BufferData* before = s.GetData();
  s += C('x');
  s += Chars<TypeParam>("xy").c_str();
  EXPECT_EQ(s.Insert(0, C('x')), TypeParam::Traits::kMaxLength);
  EXPECT_EQ(s.Insert(0, Chars<TypeParam>("xy").c_str()), TypeParam::Traits::kMaxLength);
  EXPECT_EQ(s.Replace(Chars<TypeParam>(" ").c_str(), Chars<TypeParam>("--").c_str()), 0);
  EXPECT_EQ(s.GetData(), before);
  EXPECT_EQ(s.GetLength(), TypeParam::Traits::kMaxLength);
  s.GetData()->nDataLength = real;
  EXPECT_EQ(Text(s), "a b");
}

TYPED_TEST(Core, FreeExtraOnlyFixesTheLengthOfEverySharer) {
  typedef CharOf<TypeParam> C;
  TypeParam s;
  C* p = s.GetSafeBuffer(20);
  const auto abc = Chars<TypeParam>("abc");
  std::copy(abc.c_str(), abc.c_str() + 4, p);
  const int capacity = s.GetAllocLength();
  s.FreeExtra(50);  // above the length: nothing
  EXPECT_EQ(s.GetLength(), 20);
  s.FreeExtra(-1);
  EXPECT_EQ(Text(s), "abc");
  EXPECT_EQ(s.GetAllocLength(), capacity) << "frees nothing";
  // Deliberately not unshared: a sharer sees the new length.
  TypeParam other(s);
  s.FreeExtra(1);
  EXPECT_EQ(s.GetData(), other.GetData());
  EXPECT_EQ(Text(other), "a");
  ExpectWellFormed(other);
  TypeParam none;
  none.FreeExtra(-1);
  EXPECT_EQ(none.GetData(), nullptr);
}

TYPED_TEST(Core, SetKeepsEveryCharacterAndEmptiesOnZero) {
  OnPrivateAndShared<TypeParam>("old text", [](TypeParam& t) {
    const auto text = Chars<TypeParam>(std::string("x\0y", 3));
    t.Set(text.data(), 3);
    EXPECT_EQ(Text(t), std::string("x\0y", 3));
    t.Set(text.data(), 0);
    EXPECT_EQ(t.GetData(), nullptr);
  });
  OnPrivateAndShared<TypeParam>("old text", [](TypeParam& t) {
    t = Chars<TypeParam>("new").c_str();
    EXPECT_EQ(Text(t), "new");
  });
}

TYPED_TEST(Core, ObjectsMadeWithNewComeFromTheHandlersPool) {
  Ka_ObjBufPool& pool =
      std::is_same<TypeParam, Ka_AString>::value ? Ka_AString::_KaAStringHandler.GetPool() : Ka_WString::_KaWStringHandler.GetPool();
  EXPECT_EQ(pool.GetObjectSize(), static_cast<int>(sizeof(void*)));
  EXPECT_EQ(pool.GetCountPerBlock(), 128);
  const char* name = std::is_same<TypeParam, Ka_AString>::value ? "Ka_AString" : "Ka_WString";
  EXPECT_STREQ(pool.GetName(), name);

  const int blocksBefore = pool.GetBlockCount();
  std::vector<TypeParam*> made;
  for (int i = 0; i < 300; ++i) {  // three blocks' worth
    TypeParam* s = new TypeParam(Make<TypeParam>("item"));
    ASSERT_NE(s, nullptr);
    EXPECT_EQ(Ka_ObjBufData::FromObject(s)->refCount, 1);
    made.push_back(s);
  }
  EXPECT_GE(pool.GetBlockCount(), 3);
  EXPECT_EQ(Text(*made[299]), "item");
  for (TypeParam* s : made) delete s;
  // Every slot came back at count 0, so the emptied blocks went to the heap.
  EXPECT_EQ(pool.GetBlockCount(), std::max(blocksBefore, 1));
  EXPECT_EQ(pool.Validate(), 1);
  delete static_cast<TypeParam*>(nullptr);
}

TYPED_TEST(Core, InPlaceLifetimeLeavesTheMemoryToTheCaller) {
  alignas(TypeParam) unsigned char room[sizeof(TypeParam)];
  std::fill(room, room + sizeof room, 0xA5);
  TypeParam* s = reinterpret_cast<TypeParam*>(room);
  TypeParam::InitWithMemory(s);
  EXPECT_EQ(s->GetData(), nullptr);
  *s = Make<TypeParam>("text");
  TypeParam keep(*s);
  TypeParam::FreeWithMemory(s);
  EXPECT_EQ(Refs(keep), 1) << "destroying in place released the text";
  TypeParam::InitWithMemory(nullptr);
  TypeParam::FreeWithMemory(nullptr);
}
