// The byte buffer: construction, sharing, byte access, the edits (each on a
// private and on a shared buffer), GetSafeBuffer and the size members, the
// list order and the buffer lists' item handler. Copy on write is the buffer
// guide's and the stress test's, which shares copies across threads.
// Base64: the encoder against a bit-by-bit reading of RFC 4648, and the
// decoder's rules (blanks, the end of the run, short last groups, n, the size
// of its block) against a model of the run it reads, both on random text,
// decoded from memory of exactly its size so that a read past the text is a
// heap overflow. The decode fuzz target runs round trips of any input.
#include <bitset>
#include <climits>
#include <functional>
#include <random>
#include <vector>

#include "buffer/buffer_support.h"

namespace {

const std::string kFive = "abcde";

TEST(BufferCore, ConstructionCopiesNBytesThenAZeroAndCopiesAndMovesShareOneBlock) {
  const Ka_Buffer zeros(U(std::string("a\0cd", 4)), 3), room(nullptr, 40);
  EXPECT_EQ(std::string(zeros.GetPtr(0), zeros.GetPtr(4)), std::string("a\0c\0", 4)) << "zeros are bytes; a zero follows";
  EXPECT_TRUE(room.GetLength() == 40 && room.GetAllocLength() == 64) << "a null source leaves the bytes for the caller";
  Ka_Buffer a = MakeBuffer("shared"), b(a), c(a);
  const Ka_Buffer moved(std::move(c));
  b.SetAt(-1, 'x');  // out of range: ignored, and the block stays shared
  b.SetAt(6, 'x');
  EXPECT_TRUE(Ka_BufferData::FromData(a.GetPtr(0))->nRefs == 3 && static_cast<const void*>(c) == nullptr &&
              b.GetPtr(0) == a.GetPtr(0)) << "a move takes the reference over";
  b = Ka_Buffer();
  EXPECT_EQ(b.IsEmpty(), 1) << "assigning an empty buffer empties";
  // Bytes read unsigned; reads outside the length give zero.
  const Ka_Buffer bytes = MakeBuffer("\x01\xFF");
  const std::vector<int> read = {bytes.GetAt(-1), bytes.GetAt(0), bytes.GetAt(1), bytes.GetAt(2),
                                 bytes[-1],       bytes[1],       bytes[2],       bytes[static_cast<unsigned long long>(-1)]};
  EXPECT_EQ(read, (std::vector<int>{0, 1, 0xFF, 0, 0, 0xFF, 0, 0})) << "the last index lies past LLONG_MAX";
}

// One row: the bytes before, an edit of b returning a value (INT_MIN when
// it returns nothing), the bytes after, that value, and the byte after the
// end (Insert and Delete move it, Set and Append below the capacity write it).
struct EditRow { std::string before; std::function<long(Ka_Buffer&)> edit; std::string after; long result; char next = 0; };
#define EDIT(expr) [&](Ka_Buffer & b) -> long { return (expr); }
#define DO(statement) [&](Ka_Buffer & b) -> long { return (statement), long(INT_MIN); }

TEST(BufferEdit, EditsFollowTheirRangesReadTheirOwnBytesAndRefuseOversizedRequests) {
  const std::string xy = "xy";
  const std::vector<EditRow> rows = {
      {kFive, DO(b.Set(U(xy), 0)), "", 0},                                                         // n below 1 empties
      {kFive, DO((b.Append(U(xy), 0), b.AppendStr(static_cast<const char*>(nullptr)))), kFive, 0},  // nothing to append
      // Wide text whole, in the page given: n is ignored (deliberate).
      {"x", DO(b.AppendStr(KA_W("a\u00E9\uAC00"), 1, 1252)), "xa\xE9?", 0},
      // Past the end: appends; at a negative position: in front.
      {kFive, DO((b.Insert(99, U(xy), 2), b.Insert(-4, U(xy), 2))), "xyabcdexy", 0},
      {"", EDIT(b.Delete(0, 1)), "", 0},                    // empty: 0
      {kFive, EDIT(b.Delete(2, 100)), "ab", 3},             // lowered to the end
      // Past the end: length - pos (deliberate); a negative count is returned as it is.
      {kFive, EDIT(b.Delete(7, 1) + b.Delete(1, -2)), kFive, -4},
      {kFive, EDIT(b.Delete(-3, 2)), "cde", 2},             // a negative position counts from 0
      {kFive, EDIT(b.AddSize(-2)), "abc", 3, 'd'},          // shortens through GetSafeBuffer, which keeps the byte after
      // Below 0 AddSize only makes the block private; no overflow of the sum.
      {kFive, EDIT(b.AddSize(-9) + b.AddSize(LONG_MAX)), kFive, 10},
      // Arguments inside the buffer itself are read before they move.
      {kFive, DO(b.Set(b.GetPtr(1), 3)), "bcd", 0},                                    // a slice of itself
      {kFive, DO(b.Insert(1, b.GetPtr(3), 2)), "adebcde", 0},                          //
      {std::string(30, 'q'), DO(b.Append(b.GetPtr(0), 30)), std::string(60, 'q'), 0},  // growing to another group
      // Oversized requests leave the buffer as it was (for Append the sum is one too many).
      {kFive, DO((b.Set(nullptr, Ka_Buffer::kMaxLength + 1), b.Insert(0, nullptr, LONG_MAX),
                  b.Append(nullptr, Ka_Buffer::kMaxLength - 4))), kFive, 0},
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
  // Up to the capacity; above it or negative: nothing; every sharer sees the
  // new length (deliberate); an empty buffer has capacity 0.
  const std::vector<long> lengths = {b.SetSize(32), b.SetSize(33), b.SetSize(-1), b.SetSize(3), grown.GetLength(),
                                     Ka_Buffer().SetSize(5)};
  EXPECT_EQ(lengths, (std::vector<long>{32, 32, 32, 3, 3, 0}));
  const unsigned char* large = grown.GetSafeBuffer(100);
  ASSERT_NE(large, nullptr);
  EXPECT_EQ(std::string(large, large + 4) + "/" + std::to_string(grown.GetAllocLength()), "abcd/128")
      << "the byte after the old end comes along";
  EXPECT_TRUE(zero.GetSafeBuffer(0) == nullptr && zero.IsEmpty()) << "0 on a shared block: empty";
  const unsigned char* block = b.GetPtr(0);
  EXPECT_TRUE(b.GetSafeBuffer(3) == block && b.GetSafeBuffer(0) == block && b.GetLength() == 0)
      << "private with room: in place; 0 on a private block: length 0, same block";
  // Append writes the zero after its bytes only below the capacity of 32 (deliberate).
  for (long length : {30L, 31L}) {
    Ka_Buffer full(U(std::string(static_cast<size_t>(length), 'a')), length);
    full.GetSafePtr(length + 1)[0] = 'X';
    full.Append(U("b"), 1);
    EXPECT_EQ(full.GetPtr(0)[length + 1], length == 30 ? 0 : 'X') << length;
  }
}

TEST(BufferOrder, CompareReadsTheLargerLengthButNothingOutsideEitherBlockAndTheHandlerReadsNullAsEmpty) {
  const auto cut = [](Ka_Buffer b, long n) { return b.SetSize(n), b; };  // bytes kept in the block past a shorter length
  // A key from the heap, whose block ends at its capacity of 16384.
  const Ka_Buffer heapKey = cut(MakeBuffer("a" + std::string(16383, '\0')), 1), empty;
  const Ka_Buffer heapItem = MakeBuffer("a" + std::string(19998, '\0') + "z");
  const struct { Ka_Buffer item, key; int expected; } rows[] = {
      {empty, MakeBuffer(std::string("\0x", 2)), 0},                           // only the first byte decides (deliberate)
      {MakeBuffer("\xFF"), MakeBuffer("a"), 1},                                // unsigned bytes
      {MakeBuffer("ab"), MakeBuffer("abc"), -1},                               // the shorter one's zero takes part
      {cut(MakeBuffer("abc"), 1), MakeBuffer("abc"), 0},                       // bytes past the length take part (deliberate)
      {heapItem, heapKey, 1},                                                  // past the key's capacity: zeros, not its memory
      {heapKey, heapItem, -1},                                                 //
  };
  for (const auto& r : rows)
    EXPECT_EQ(r.item.Compare(r.key), r.expected) << Text(r.item).size() << " against " << Text(r.key).size();
  // The item handler compares a null item or key as the empty buffer, which
  // a buffer with bytes follows; a null target or item to free is ignored.
  // Items shared, freed and compared through the pool are the buffer lists'.
  Ka_Buffer item = MakeBuffer("bytes");
  Ka_Buffer::_KaBufferHandler._AssignItem(nullptr, &item);
  Ka_Buffer::_KaBufferHandler._FreeItem(nullptr);
  EXPECT_EQ(std::make_pair(Ka_Buffer::_KaBufferHandler._CompareItem(&item, nullptr),
                           Ka_Buffer::_KaBufferHandler._CompareItem(nullptr, &item)), std::make_pair(1, -1));
}

// ---- Base64 ----------------------------------------------------------------------

const char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// RFC 4648 read literally: the bits in a row, six at a time, zero-filled,
// then "=" up to a multiple of four characters.
std::string ReferenceEncode(const std::string& bytes) {
  std::string bits, out;
  for (char b : bytes) bits += std::bitset<8>(static_cast<unsigned char>(b)).to_string();
  bits.resize((bits.size() + 5) / 6 * 6, '0');
  for (size_t i = 0; i < bits.size(); i += 6) out.push_back(kAlphabet[std::stoi(bits.substr(i, 6), nullptr, 2)]);
  out.resize((out.size() + 3) / 4 * 4, '=');
  return out;
}

// Decodes text held in memory of exactly its size, terminator included, over
// other contents. The bytes come with a zero after them, in a block sized by
// them, not by the text.
std::string Decode(const std::string& text, long n = -1) {
  Ka_Buffer b = MakeBuffer("previous contents");
  b.DecodeBase64(Exact(text + '\0').get(), n);
  EXPECT_TRUE(b.IsEmpty() || (b.GetPtr(0)[b.GetLength()] == 0 &&
                              b.GetAllocLength() <= long(Ka_BufferPool::GetBufferGroup(int(b.GetLength()) + 2))))
      << text;
  return Text(b);
}

TEST(Base64, DecodingFollowsTheRunOfAlphabetCharactersOnlyInBuffersAndStrings) {
  EXPECT_EQ(Ka_Buffer().EncodeBase64().GetData(), nullptr) << "an empty buffer encodes as the null string";
  struct { std::string text; long n; std::string bytes; } rows[] = {
      {"Zm9v", 0, ""},                                // n = 0 empties, even for valid text
      {"Z", -1, "d"},                                 // a lone character: its six bits, then two zero bits
      {"Zm9vYmFy", 1, "foobar"},                      // a positive n does not bound the run (deliberate)
      {"Zm9v" + std::string(300, '='), 304, "foo"},  // junk after the run: sized by the run, not by n
  };
  for (const auto& r : rows) EXPECT_EQ(Decode(r.text, r.n), r.bytes) << r.text << " with n " << r.n;
  EXPECT_EQ(MakeBuffer("kept").DecodeBase64(nullptr, 4).IsEmpty(), 1) << "a null text empties";
  // Decoding replaces the contents of a shared buffer privately, and may
  // read from the buffer's own bytes.
  OnPrivateAndShared<Ka_Buffer>("Zm9vYmFy", [](Ka_Buffer& s) {
    s.DecodeBase64(s, s.GetLength());
    EXPECT_EQ(Text(s), "foobar");
  });
  // Strings decode their text (the narrow one is the buffer guide's example),
  // wide ones through the code page given; a character outside it becomes
  // "?", which ends the run.
  EXPECT_EQ(Text(Ka_WString(KA_W(" Zm9v\uAC00YmFy")).DecodeBase64(1252)), "foo");
}

TEST(Base64, AnyBytesEncodeAsReadBitByBitAndAnyTextDecodesItsRunAloneWithoutReadingPastIt) {
  std::mt19937 random(5);
  const std::string pool = std::string(kAlphabet) + "= \t\n\x80\xFF-_";
  for (int round = 0; round < 3000; ++round) {
    std::string text;
    for (size_t i = random() % (round % 4 == 0 ? 200 : 24); i > 0; --i)
      text.push_back(round % 2 ? static_cast<char>(random()) : pool[random() % pool.size()]);
    ASSERT_EQ(Text(MakeBuffer(text).EncodeBase64()), ReferenceEncode(text)) << text;
    // Decoding gives the same bytes as decoding only the run after the
    // blanks, up to the first byte outside the alphabet (a zero too), alone.
    const std::string bytes = Decode(text, static_cast<long>(text.size()));
    const size_t start = text.find_first_not_of(" \t");
    const std::string run = start == std::string::npos ? "" : text.substr(start, text.find_first_not_of(kAlphabet, start) - start);
    ASSERT_EQ(bytes, Decode(run)) << text;
    ASSERT_EQ(bytes.size(), run.size() / 4 * 3 + (run.size() % 4 == 0 ? 0 : run.size() % 4 == 3 ? 2 : 1)) << text;
    // Text of exactly n bytes, without a terminator, that ends in a non-alphabet byte.
    ASSERT_EQ(Text(Ka_Buffer().DecodeBase64(Exact(run + "=").get(), static_cast<long>(run.size() + 1))), bytes) << text;
  }
}

}  // namespace
