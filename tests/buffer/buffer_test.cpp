// The byte buffer: construction, sharing and copy on write, the edits (each
// on a private and on a shared buffer), GetSafeBuffer and the size members,
// byte access, the list order and the buffer lists' item handler.
#include <climits>
#include <functional>
#include <vector>

#include "buffer/buffer_support.h"

namespace {

const std::string kFive = "abcde";

TEST(BufferCore, ConstructionCopiesNBytesThenAZeroAndCopiesShareOneBlockUntilOneWrites) {
  const Ka_Buffer zeros(U(std::string("a\0cd", 4)), 3), room(nullptr, 40);
  EXPECT_EQ(Text(zeros), std::string("a\0c", 3)) << "zeros are bytes like any other";
  EXPECT_EQ(zeros.GetPtr(0)[3], 0) << "a zero after the bytes";
  EXPECT_EQ(room.GetLength(), 40) << "a null source leaves the bytes for the caller";
  EXPECT_EQ(room.GetAllocLength(), 64);

  Ka_Buffer a = MakeBuffer("shared");
  Ka_Buffer b(a), c;
  c = b;
  c.Set(a);  // already the same block
  EXPECT_EQ(Refs(a), 3);
  const Ka_Buffer moved(std::move(c));
  EXPECT_EQ(Refs(a), 3) << "a move takes the reference over";
  EXPECT_EQ(static_cast<const void*>(c), nullptr);
  b.SetAt(-1, 'x');  // out of range: ignored, and the block stays shared
  b.SetAt(6, 'x');
  EXPECT_EQ(b.GetPtr(0), a.GetPtr(0));
  b.SetAt(0, 'S');
  EXPECT_EQ(Text(b), "Shared");
  EXPECT_EQ(Text(a), "shared");
  EXPECT_EQ(Refs(a), 2);
  b = Ka_Buffer();
  EXPECT_EQ(b.IsEmpty(), 1) << "assigning an empty buffer empties";
}

// One row: the bytes before, an edit of b returning a value (INT_MIN when
// it returns nothing), the bytes after, and that value.
struct EditRow { std::string before; std::function<long(Ka_Buffer&)> edit; std::string after; long result; };
#define EDIT(expr) [&](Ka_Buffer & b) -> long { return (expr); }
#define DO(statement) [&](Ka_Buffer & b) -> long { return (statement), long(INT_MIN); }

TEST(BufferEdit, EditsFollowTheirRangesReadTheirOwnBytesAndRefuseOversizedRequests) {
  const std::string xy = "xy";
  const Ka_WString wide(KA_W("a\u00E9\uAC00"));
  const std::vector<EditRow> rows = {
      {kFive, DO(b.Set(U(xy), 0)), "", 0},                                    // n below 1 empties
      {kFive, DO(b.Append(U(xy), 0)), kFive, 0},                              // nothing to append
      {kFive, DO(b.AppendStr("fg")), "abcdefg", 0},                           // without the terminator
      {kFive, DO(b.AppendStr(static_cast<const char*>(nullptr))), kFive, 0},  // null appends nothing
      {"x", DO(b.AppendStr(wide, 1, 1252)), "xa\xE9?", 0},  // wide text whole, in the page given: n is ignored (deliberate)
      {kFive, DO(b.Insert(99, U(xy), 2)), "abcdexy", 0},    // past the end: appends
      {kFive, DO(b.Insert(-4, U(xy), 2)), "xyabcde", 0},    // a negative position inserts in front
      {"", EDIT(b.Delete(0, 1)), "", 0},                    // empty: 0
      {kFive, EDIT(b.Delete(2, 100)), "ab", 3},             // lowered to the end
      {kFive, EDIT(b.Delete(7, 1)), kFive, -2},             // past the end: length - pos (deliberate)
      {kFive, EDIT(b.Delete(-3, 2)), "cde", 2},             // a negative position counts from 0
      {kFive, EDIT(b.Delete(1, -2)), kFive, -2},            // a negative count is returned as it is
      {kFive, EDIT(b.AddSize(-2)), "abc", 3},               // AddSize shortens through GetSafeBuffer
      {kFive, EDIT(b.AddSize(-9)), kFive, 5},               // below 0 it only makes the block private
      // Arguments inside the buffer itself are read before they move.
      {kFive, DO(b.Set(b.GetPtr(1), 3)), "bcd", 0},                                    // a slice of itself
      {kFive, DO(b.Insert(1, b.GetPtr(3), 2)), "adebcde", 0},                          //
      {std::string(30, 'q'), DO(b.Append(b.GetPtr(0), 30)), std::string(60, 'q'), 0},  // growing to another group
      // Oversized requests leave the buffer as it was.
      {kFive, DO(b.Set(nullptr, Ka_Buffer::kMaxLength + 1)), kFive, 0},     //
      {kFive, DO(b.Append(nullptr, Ka_Buffer::kMaxLength - 4)), kFive, 0},  // the sum is one too many
      {kFive, DO(b.Insert(0, nullptr, LONG_MAX)), kFive, 0},                //
      {kFive, EDIT(b.AddSize(LONG_MAX)), kFive, 5},                         // no overflow of the sum
  };
  for (const EditRow& r : rows) {
    SCOPED_TRACE("\"" + r.before + "\" to \"" + r.after + "\"");
    OnPrivateAndShared<Ka_Buffer>(r.before, [&r](Ka_Buffer& b) {
      const long result = r.edit(b);
      EXPECT_EQ(Text(b), r.after);
      EXPECT_TRUE(result == INT_MIN || result == r.result) << result;
    });
  }
}

TEST(BufferEdit, TheByteAfterTheEndMovesWithInsertAndDeleteAndAppendWritesItBelowTheCapacity) {
  OnPrivateAndShared<Ka_Buffer>(kFive, [](Ka_Buffer& b) {
    b.Insert(1, U("XY"), 2);
    EXPECT_EQ(b.GetPtr(0)[7], 0) << "the zero after the old end moved up";
    EXPECT_EQ(b.Delete(0, 4), 4);
    EXPECT_EQ(b.GetPtr(0)[3], 0) << "and down again";
  });
  for (long length : {30L, 31L}) {
    Ka_Buffer b(U(std::string(static_cast<size_t>(length), 'a')), length);
    ASSERT_EQ(b.GetAllocLength(), 32);
    b.GetSafePtr(length + 1)[0] = 'X';
    b.Append(U("b"), 1);
    // length + 1 = 31 lies below the capacity of 32; 32 does not (deliberate).
    EXPECT_EQ(b.GetPtr(0)[length + 1], length == 30 ? 0 : 'X') << length;
  }
}

TEST(BufferSize, GetSafeBufferKeepsTheBytesAndTheOneAfterThemAndSetSizeWorksInPlaceEvenShared) {
  Ka_Buffer b = MakeBuffer("abcdef");
  const unsigned char* block = b.GetPtr(0);
  EXPECT_EQ(b.GetSafeBuffer(3), block) << "private with room: in place";
  EXPECT_EQ(b.GetLength(), 3);
  EXPECT_EQ(block[3], 'd') << "no zero is written";
  Ka_Buffer shared(b);
  unsigned char* copy = b.GetSafeBuffer(2);
  ASSERT_NE(copy, block);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(copy), 3), "abc") << "the kept bytes and the one after them";
  Ka_Buffer grown(shared);
  unsigned char* large = grown.GetSafeBuffer(100);
  ASSERT_NE(large, nullptr);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(large), 4), "abcd") << "the byte after the old end comes along";
  EXPECT_EQ(grown.GetAllocLength(), 128);
  Ka_Buffer zero(shared);
  EXPECT_EQ(zero.GetSafeBuffer(0), nullptr) << "0 on a shared block: empty";
  EXPECT_EQ(zero.IsEmpty(), 1);
  EXPECT_EQ(Text(shared), "abc");
  EXPECT_NE(b.GetSafeBuffer(0), nullptr) << "0 on a private block: length 0, same block";
  EXPECT_EQ(b.GetLength(), 0);

  Ka_Buffer sharer(shared);
  EXPECT_EQ(sharer.SetSize(2), 2);
  EXPECT_EQ(shared.GetLength(), 2) << "every sharer sees the new length (deliberate)";
  EXPECT_EQ(sharer.SetSize(32), 32) << "up to the capacity";
  EXPECT_EQ(sharer.SetSize(33), 32) << "above it: nothing";
  EXPECT_EQ(sharer.SetSize(-1), 32) << "negative: nothing";
  EXPECT_EQ(shared.GetPtr(0), sharer.GetPtr(0));
  EXPECT_EQ(Ka_Buffer().SetSize(5), 0) << "an empty buffer has capacity 0";
}

TEST(BufferBytes, ReadsOutsideTheLengthGiveZero) {
  const Ka_Buffer b = MakeBuffer("\x01\xFF");
  const struct { long i; unsigned char expected; } rows[] = {{-1, 0}, {0, 1}, {1, 0xFF}, {2, 0}};
  for (const auto& r : rows) {
    EXPECT_EQ(b.GetAt(r.i), r.expected) << r.i;
    EXPECT_EQ(b[r.i], r.expected) << r.i;
  }
  EXPECT_EQ(b[static_cast<unsigned long long>(-1)], 0) << "an index past LLONG_MAX";
}

TEST(BufferOrder, CompareReadsTheLargerLengthButNothingOutsideEitherBlock) {
  // a: "a" + 39 zeros; b: "a" alone, over 31 zero bytes of its block.
  const Ka_Buffer longZeros = MakeBuffer("a" + std::string(39, '\0'));
  Ka_Buffer shortA = MakeBuffer("a" + std::string(31, '\0'));
  shortA.SetSize(1);
  Ka_Buffer stale = MakeBuffer("abc");
  stale.SetSize(1);
  // A key from the heap, whose block ends at its capacity of 16384.
  Ka_Buffer heapKey = MakeBuffer("a" + std::string(16383, '\0'));
  heapKey.SetSize(1);
  const Ka_Buffer heapItem = MakeBuffer("a" + std::string(19998, '\0') + "z");
  const Ka_Buffer empty, zeroFirst = MakeBuffer(std::string("\0x", 2));
  const struct { Ka_Buffer item, key; int expected; } rows[] = {
      {empty, zeroFirst, 0},                       // only the first byte decides (deliberate)
      {MakeBuffer("a"), empty, 1},                 //
      {empty, MakeBuffer("a"), -1},                //
      {MakeBuffer("\xFF"), MakeBuffer("a"), 1},    // unsigned bytes
      {MakeBuffer("ab"), MakeBuffer("abc"), -1},   // the shorter one's zero takes part
      {stale, MakeBuffer("abc"), 0},               // bytes past the length take part (deliberate)
      {longZeros, shortA, 0},                      // past the shorter length, inside its block
      {heapItem, heapKey, 1},                      // past the key's capacity: zeros, not its memory
      {heapKey, heapItem, -1},                     //
  };
  for (const auto& r : rows)
    EXPECT_EQ(r.item.Compare(r.key), r.expected) << Text(r.item).size() << " against " << Text(r.key).size();
}

TEST(BufferHandler, ItemsShareTheirSourcesBlockAndNullArgumentsAreIgnoredOrEmpty) {
  Ka_ListObjHandler& handler = Ka_Buffer::_KaBufferHandler;
  alignas(Ka_Buffer) unsigned char room[sizeof(Ka_Buffer)];  // what a slot of its pool holds
  void* item = room;
  EXPECT_EQ(handler._InitItem(item), item);
  const Ka_Buffer source = MakeBuffer("bytes");
  handler._AssignItem(item, const_cast<Ka_Buffer*>(&source));
  EXPECT_EQ(Refs(source), 2) << "assignment shares the block";
  handler._AssignItem(item, nullptr);  // ignored, as is a null target
  handler._AssignItem(nullptr, item);
  EXPECT_EQ(Text(*static_cast<Ka_Buffer*>(item)), "bytes");
  EXPECT_EQ(handler._CompareItem(item, nullptr), 1) << "a null key is the empty buffer";
  EXPECT_EQ(handler._CompareItem(nullptr, item), -1) << "and so is a null item";
  handler._FreeItem(item);
  handler._FreeItem(nullptr);  // ignored
  EXPECT_EQ(Refs(source), 1) << "freeing the item released its reference";
}

}  // namespace
