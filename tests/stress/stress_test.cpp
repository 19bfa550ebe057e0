// Many threads share strings, buffers, a string list and a flat list, copy
// them, edit their own copies, pass copies to one another and release them,
// while other threads allocate and free blocks of the same size-class pools.
// Afterwards the shared originals hold what they held with the reference
// counts they had, and every pool counts no more units as used than before.
// Under ThreadSanitizer (the tsan preset) the run also shows that no
// reference count or pool races. Wide strings count their blocks with the
// narrow class's code, and the buffer list shares items as the string list.
#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "memory/block_chain.h"

namespace {

const int kSharers = 4, kAllocators = 2, kRounds = 1000;

// Units counted as used by the string object pool and the nine size-class pools.
std::vector<int> UsedUnits() {
  std::vector<int> used{Ka_AString::_KaAStringHandler.GetPool().GetUsedCount()};
  for (int i = 0; i < 9; ++i) used.push_back(ka_detail::SizeClassPool(i).GetUsedCount());
  return used;
}

std::string Bytes(const Ka_Buffer& b) { return std::string(static_cast<const char*>(b), size_t(b.GetLength())); }
int Refs(const Ka_BufferData* d) { return ka_interlocked_read(&const_cast<Ka_BufferData*>(d)->nRefs); }
int SlotRefs(const void* item) { return ka_interlocked_read(&Ka_ObjBufData::FromObject(const_cast<void*>(item))->refCount); }

// Any thread may fail a check; the first few failures are reported.
std::atomic<int> g_failures{0};
void Check(bool ok, const char* what) {
  if (!ok && g_failures++ < 5) ADD_FAILURE() << what;
}

// The shared originals, one text per pool kind: a small unit, a large unit
// and a heap block above the largest size class.
struct Originals {
  std::vector<std::string> texts;
  std::vector<Ka_AString> narrow;
  std::vector<Ka_Buffer> buffers;
  Ka_AStrList strList;
  Ka_IntList lengths;

  Originals() {
    for (int length : {5, 700, 9000}) {
      std::string t;
      for (int i = 0; i < length; ++i) t += char('a' + (i * 7 + length) % 26);
      texts.push_back(t);
      narrow.emplace_back(t.c_str());
      buffers.emplace_back(reinterpret_cast<const unsigned char*>(t.data()), long(t.size()));
      strList.Add(t.c_str());
      lengths.Add(length);
    }
  }
  // Every reference count the originals hold: arrays, texts, blocks, item slots.
  std::vector<int> Counts() const {
    std::vector<int> c{Refs(strList.GetListData()), Refs(lengths.GetListData())};
    for (size_t i = 0; i < texts.size(); ++i)
      c.insert(c.end(), {Refs(narrow[i].GetData()), Refs(Ka_BufferData::FromData(buffers[i])), SlotRefs(strList.GetItem(int(i)))});
    return c;
  }
  bool Intact(size_t i) const {
    return std::string(narrow[i]) == texts[i] && Bytes(buffers[i]) == texts[i] && std::string(strList[int(i)]) == texts[i] &&
           lengths.GetItem(int(i)) == int(texts[i].size());
  }
};

// Copies made by one thread and released by another.
typedef std::tuple<Ka_AString, Ka_Buffer, Ka_AStrList, Ka_IntList> Parcel;

// One sharer's round: copies of original i, each edited privately and
// checked against the text it came from; copies still shared go out.
Parcel EditCopies(const Originals& o, size_t i, int t) {
  const std::string& text = o.texts[i];
  const unsigned char tag = static_cast<unsigned char>('A' + t);
  Ka_Buffer b(o.buffers[i]);
  b.SetAt(0, tag);
  b.Append(reinterpret_cast<const unsigned char*>("!"), 1);
  Check(Bytes(Ka_Buffer().DecodeBase64(b.EncodeBase64(), -1)) == char(tag) + text.substr(1) + "!", "buffer copy");
  Ka_AStrList strList(o.strList), linked;
  strList.GetSafeItem(int(i))->MakeUpper();  // the item is copied before it is written
  strList.Add(Ka_AString().Format("%d:%hs", t, static_cast<const char*>(o.narrow[i])));
  linked.AddLink(const_cast<Ka_AString*>(o.strList.GetItem(int(i))));  // shares the original's slot
  Check(strList.Count() == 4 && std::string(strList[3]) == std::to_string(t) + ":" + text && std::string(linked[0]) == text,
        "string list copy");
  Ka_IntList lengths(o.lengths);
  lengths.Add(t);  // the array is copied before it grows
  Check(lengths.Count() == 4 && lengths.GetItem(3) == t, "flat list copy");
  return Parcel(o.narrow[i], b, linked, o.lengths);
}

// One allocator: blocks of random size (any size class or the heap), each
// filled with a byte only this thread writes, taken and given back in random
// order; a block that changed under its owner fails the test.
void Allocate(unsigned char mark) {
  std::mt19937 random(mark);
  std::vector<std::pair<unsigned char*, int>> held;
  for (int round = 0; round < kRounds * 8; ++round) {
    if (held.size() < 48 && random() % 3 != 0) {
      const int size = 1 + int(random() % 10000);
      void* const p = _ka_malloc(size);
      Check(p != nullptr, "allocation refused");
      if (p != nullptr) held.emplace_back(static_cast<unsigned char*>(std::memset(p, mark, size_t(size))), size);
    } else if (!held.empty()) {
      std::swap(held[random() % held.size()], held.back());
      Check(std::count(held.back().first, held.back().first + held.back().second, mark) == held.back().second,
            "a block changed under its owner");
      ka_free(held.back().first);
      held.pop_back();
    }
  }
  for (const auto& h : held) ka_free(h.first);
}

}  // namespace

TEST(Stress, SharedObjectsSurviveConcurrentCopiesEditsAndPoolTraffic) {
  const std::vector<int> usedBefore = UsedUnits();
  {
    const Originals o;
    const std::vector<int> countsBefore = o.Counts();
    std::mutex lock;
    std::vector<Parcel> slots(8);  // a parcel left here is taken, and released, by another sharer
    std::vector<std::thread> threads;
    for (int t = 0; t < kSharers; ++t) {
      threads.emplace_back([&, t] {
        std::mt19937 random(unsigned(t) + 1);
        for (int round = 0; round < kRounds; ++round) {
          const size_t i = random() % o.texts.size();
          Parcel parcel = EditCopies(o, i, t);
          Check(o.Intact(i), "an original changed");
          std::lock_guard<std::mutex> guard(lock);
          std::swap(parcel, slots[random() % slots.size()]);
        }  // the parcel taken is released after the lock
      });
    }
    for (int t = 0; t < kAllocators; ++t) threads.emplace_back(Allocate, static_cast<unsigned char>(0x11 * (t + 1)));
    for (std::thread& th : threads) th.join();
    slots.clear();
    for (size_t i = 0; i < o.texts.size(); ++i) EXPECT_TRUE(o.Intact(i)) << "original " << i;
    EXPECT_EQ(o.Counts(), countsBefore) << "every reference taken was given back";
  }
  EXPECT_EQ(UsedUnits(), usedBefore) << "every unit taken was given back";
  for (int i = 0; i < 9; ++i) EXPECT_EQ(ka_detail::SizeClassPool(i).Validate(), 1) << "size class " << i;
}
