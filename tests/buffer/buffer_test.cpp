// The byte buffer: construction, sharing and copy on write, the edits (each
// on a private and on a shared buffer), GetSafeBuffer and the size members,
// byte access, the list order and the buffer lists' item handler. Copies
// shared across threads are the stress test's.
#include <climits>
#include <functional>
#include <vector>

#include "buffer/buffer_support.h"

namespace {

const std::string kFive = "abcde";

TEST(BufferCore, ConstructionCopiesNBytesThenAZeroAndCopiesAndMovesShareOneBlock) {
  const Ka_Buffer zeros(U(std::string("a\0cd", 4)), 3), room(nullptr, 40);
  EXPECT_EQ(std::string(zeros.GetPtr(0), zeros.GetPtr(4)), std::string("a\0c\0", 4)) << "zeros are bytes; a zero follows";
  EXPECT_EQ(room.GetLength(), 40) << "a null source leaves the bytes for the caller";
  EXPECT_EQ(room.GetAllocLength(), 64);
  Ka_Buffer a = MakeBuffer("shared"), b(a), c;
  c = b;
  c.Set(a);  // already the same block
  const Ka_Buffer moved(std::move(c));
  EXPECT_EQ(Refs(a), 3) << "a move takes the reference over";
  EXPECT_EQ(static_cast<const void*>(c), nullptr);
  b.SetAt(-1, 'x');  // out of range: ignored, and the block stays shared
  b.SetAt(6, 'x');
  EXPECT_EQ(b.GetPtr(0), a.GetPtr(0));
  b = Ka_Buffer();
  EXPECT_EQ(b.IsEmpty(), 1) << "assigning an empty buffer empties";
}

// One row: the bytes before, an edit of b returning a value (INT_MIN when
// it returns nothing), the bytes after, that value, and the byte after the
// end (Insert and Delete move it, Set and Append below the capacity write it).
struct EditRow { std::string before; std::function<long(Ka_Buffer&)> edit; std::string after; long result; char next = 0; };
#define EDIT(expr) [&](Ka_Buffer & b) -> long { return (expr); }
#define DO(statement) [&](Ka_Buffer & b) -> long { return (statement), long(INT_MIN); }

TEST(BufferEdit, EditsFollowTheirRangesReadTheirOwnBytesAndRefuseOversizedRequests) {
  const std::string xy = "xy";
  const Ka_WString wide(KA_W("a\u00E9\uAC00"));
  const std::vector<EditRow> rows = {
      {kFive, DO(b.Set(U(xy), 0)), "", 0},                                    // n below 1 empties
      {kFive, DO(b.Append(U(xy), 0)), kFive, 0},                              // nothing to append
      {kFive, DO(b.AppendStr(static_cast<const char*>(nullptr))), kFive, 0},  // null appends nothing
      {"x", DO(b.AppendStr(wide, 1, 1252)), "xa\xE9?", 0},  // wide text whole, in the page given: n is ignored (deliberate)
      {kFive, DO(b.Insert(99, U(xy), 2)), "abcdexy", 0},    // past the end: appends
      {kFive, DO(b.Insert(-4, U(xy), 2)), "xyabcde", 0},    // a negative position inserts in front
      {"", EDIT(b.Delete(0, 1)), "", 0},                    // empty: 0
      {kFive, EDIT(b.Delete(2, 100)), "ab", 3},             // lowered to the end
      {kFive, EDIT(b.Delete(7, 1)), kFive, -2},             // past the end: length - pos (deliberate)
      {kFive, EDIT(b.Delete(-3, 2)), "cde", 2},             // a negative position counts from 0
      {kFive, EDIT(b.Delete(1, -2)), kFive, -2},            // a negative count is returned as it is
      {kFive, EDIT(b.AddSize(-2)), "abc", 3, 'd'},          // shortens through GetSafeBuffer, which keeps the byte after
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
      EXPECT_TRUE(b.GetPtr(0) == nullptr || b.GetPtr(0)[b.GetLength()] == r.next) << "the byte after the end";
    });
  }
}

TEST(BufferSize, SetSizeWorksInPlaceEvenSharedAndGetSafeBufferCopiesOnlyWhenItMust) {
  Ka_Buffer b = MakeBuffer("abcdef"), grown(b), zero(b);
  const std::vector<long> lengths = {b.SetSize(32), b.SetSize(33), b.SetSize(-1), b.SetSize(3)};
  EXPECT_EQ(lengths, (std::vector<long>{32, 32, 32, 3})) << "up to the capacity; above it or negative: nothing";
  EXPECT_EQ(grown.GetLength(), 3) << "every sharer sees the new length (deliberate)";
  EXPECT_EQ(Ka_Buffer().SetSize(5), 0) << "an empty buffer has capacity 0";
  const unsigned char* large = grown.GetSafeBuffer(100);
  ASSERT_NE(large, nullptr);
  EXPECT_EQ(std::string(large, large + 4), "abcd") << "the byte after the old end comes along";
  EXPECT_EQ(grown.GetAllocLength(), 128);
  EXPECT_TRUE(zero.GetSafeBuffer(0) == nullptr && zero.IsEmpty()) << "0 on a shared block: empty";
  const unsigned char* block = b.GetPtr(0);
  EXPECT_EQ(b.GetSafeBuffer(3), block) << "private with room: in place";
  EXPECT_TRUE(b.GetSafeBuffer(0) == block && b.GetLength() == 0) << "0 on a private block: length 0, same block";
  // Append writes the zero after its bytes only below the capacity of 32 (deliberate).
  for (long length : {30L, 31L}) {
    Ka_Buffer full(U(std::string(static_cast<size_t>(length), 'a')), length);
    full.GetSafePtr(length + 1)[0] = 'X';
    full.Append(U("b"), 1);
    EXPECT_EQ(full.GetPtr(0)[length + 1], length == 30 ? 0 : 'X') << length;
  }
}

TEST(BufferBytes, ReadsOutsideTheLengthGiveZero) {
  const Ka_Buffer b = MakeBuffer("\x01\xFF");
  const std::vector<int> read = {b.GetAt(-1), b.GetAt(0), b.GetAt(1), b.GetAt(2),
                                 b[-1],       b[1],       b[2],       b[static_cast<unsigned long long>(-1)]};
  EXPECT_EQ(read, (std::vector<int>{0, 1, 0xFF, 0, 0, 0xFF, 0, 0})) << "the last index lies past LLONG_MAX";
}

TEST(BufferOrder, CompareReadsTheLargerLengthButNothingOutsideEitherBlock) {
  const auto cut = [](Ka_Buffer b, long n) { return b.SetSize(n), b; };  // bytes kept in the block past a shorter length
  // A key from the heap, whose block ends at its capacity of 16384.
  const Ka_Buffer heapKey = cut(MakeBuffer("a" + std::string(16383, '\0')), 1), empty;
  const Ka_Buffer heapItem = MakeBuffer("a" + std::string(19998, '\0') + "z");
  const struct { Ka_Buffer item, key; int expected; } rows[] = {
      {empty, MakeBuffer(std::string("\0x", 2)), 0},                           // only the first byte decides (deliberate)
      {MakeBuffer("a"), empty, 1},                                             //
      {empty, MakeBuffer("a"), -1},                                            //
      {MakeBuffer("\xFF"), MakeBuffer("a"), 1},                                // unsigned bytes
      {MakeBuffer("ab"), MakeBuffer("abc"), -1},                               // the shorter one's zero takes part
      {cut(MakeBuffer("abc"), 1), MakeBuffer("abc"), 0},                       // bytes past the length take part (deliberate)
      {MakeBuffer("a" + std::string(39, '\0')), cut(MakeBuffer("a" + std::string(31, '\0')), 1), 0},  // past the shorter length, inside its block
      {heapItem, heapKey, 1},                                                  // past the key's capacity: zeros, not its memory
      {heapKey, heapItem, -1},                                                 //
  };
  for (const auto& r : rows)
    EXPECT_EQ(r.item.Compare(r.key), r.expected) << Text(r.item).size() << " against " << Text(r.key).size();
}

TEST(BufferHandler, NullItemsAndKeysAreTheEmptyBuffer) {
  // Items shared, freed and compared through the pool, and null sources, are
  // the buffer lists' tests; a null target or item to free is ignored.
  Ka_Buffer item = MakeBuffer("bytes");
  Ka_Buffer::_KaBufferHandler._AssignItem(nullptr, &item);
  Ka_Buffer::_KaBufferHandler._FreeItem(nullptr);
  EXPECT_EQ(Ka_Buffer::_KaBufferHandler._CompareItem(&item, nullptr), 1);
  EXPECT_EQ(Ka_Buffer::_KaBufferHandler._CompareItem(nullptr, &item), -1);
}

}  // namespace
