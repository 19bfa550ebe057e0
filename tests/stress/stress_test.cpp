// Many threads share strings, buffers and their lists, copy them, edit their
// own copies, pass copies to one another and release them, while other
// threads allocate and free units of the same size-class pools. Afterwards
// the shared originals hold what they held with the reference counts they
// had, and every pool counts no more units as used than before. Under
// ThreadSanitizer (the tsan preset) the run also shows that no reference
// count or pool races. Wide strings, object lists and flat lists in threads
// are the strings' and the lists' own thread tests.
#include <gtest/gtest.h>
#include <kalbor/kalbor.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "memory/block_chain.h"

namespace {

const int kSharers = 4, kAllocators = 2, kRounds = 1000;

// Units counted as used by the nine size-class pools and the two item pools.
std::vector<int> UsedUnits() {
  std::vector<int> used;
  for (int i = 0; i < 9; ++i) used.push_back(ka_detail::SizeClassPool(i).GetUsedCount());
  used.push_back(Ka_AString::_KaAStringHandler.GetPool().GetUsedCount());
  used.push_back(Ka_Buffer::_KaBufferHandler.GetPool().GetUsedCount());
  return used;
}

std::string Bytes(const Ka_Buffer& b) { return std::string(static_cast<const char*>(b), size_t(b.GetLength())); }
int Refs(const Ka_BufferData* d) { return d != nullptr ? ka_interlocked_read(&const_cast<Ka_BufferData*>(d)->nRefs) : 0; }
int SlotRefs(const void* item) {
  return ka_interlocked_read(&Ka_ObjBufData::FromObject(const_cast<void*>(item))->refCount);
}

// The first few failed checks of any thread are reported, the rest counted.
struct Faults {
  std::atomic<int> count{0};
  void Check(bool ok, const char* what) {
    if (!ok && count++ < 5) ADD_FAILURE() << what;
  }
};

// The shared originals, one text per pool kind: a small unit, a large unit
// and a heap block above the largest size class.
struct Originals {
  std::vector<std::string> texts;
  std::vector<Ka_AString> narrow;
  std::vector<Ka_Buffer> buffers;
  Ka_AStrList strList;
  Ka_BuffList buffList;

  Originals() {
    for (size_t length : {5u, 700u, 9000u}) {
      std::string t;
      for (size_t i = 0; i < length; ++i) t += char('a' + (i * 7 + length) % 26);
      texts.push_back(t);
      narrow.emplace_back(t.c_str());
      buffers.emplace_back(reinterpret_cast<const unsigned char*>(t.data()), long(t.size()));
      strList.Add(t.c_str());
      buffList.Add(buffers.back());
    }
  }
  // Every reference count the originals hold: texts, blocks, arrays, item slots.
  std::vector<int> Counts() const {
    std::vector<int> c;
    for (size_t i = 0; i < texts.size(); ++i) {
      c.push_back(Refs(narrow[i].GetData()));
      c.push_back(Refs(Ka_BufferData::FromData(static_cast<const unsigned char*>(buffers[i]))));
      c.push_back(SlotRefs(strList.GetItem(int(i))));
      c.push_back(SlotRefs(buffList.GetItem(long(i))));
    }
    for (const Ka_BufferData* d : {strList.GetListData(), buffList.GetListData()}) c.push_back(Refs(d));
    return c;
  }
  bool Intact(size_t i) const {
    return std::string(narrow[i]) == texts[i] && Bytes(buffers[i]) == texts[i] &&
           std::string(strList[int(i)]) == texts[i] && Bytes(buffList[long(i)]) == texts[i];
  }
};

// Copies made by one thread and released by another.
struct Parcel {
  Ka_AString narrow;
  Ka_Buffer buffer;
  Ka_AStrList strList;
  Ka_BuffList buffList;
};

// One sharer's round: copies of original i, each edited privately, then
// checked against the text it came from.
void EditCopies(const Originals& o, size_t i, int t, Faults& f, Parcel& out) {
  const std::string& text = o.texts[i];
  const char tag = char('A' + t);
  Ka_AString formatted;
  formatted.Format("%d:%hs", t, static_cast<const char*>(o.narrow[i]));
  f.Check(std::string(formatted) == std::to_string(t) + ":" + text, "formatted copy");

  Ka_Buffer b(o.buffers[i]);
  b.SetAt(0, static_cast<unsigned char>(tag));
  b.Append(reinterpret_cast<const unsigned char*>("!"), 1);
  const Ka_Buffer decoded = Ka_Buffer().DecodeBase64(b.EncodeBase64(), -1);
  f.Check(Bytes(decoded) == tag + text.substr(1) + "!", "buffer copy through Base64");

  Ka_AStrList strList(o.strList), linked;
  strList.GetSafeItem(int(i))->MakeUpper();  // the item is copied before it is written
  strList.Add(formatted);
  linked.AddLink(const_cast<Ka_AString*>(o.strList.GetItem(int(i))));  // shares the original's slot
  f.Check(strList.Count() == 4 && std::string(linked[0]) == text, "string list copy");

  Ka_BuffList buffList(o.buffList);
  buffList.GetSafeItem(long(i))->SetAt(0, static_cast<unsigned char>(tag));
  buffList.Add(b);
  f.Check(buffList.Count() == 4 && buffList[long(i)][0] == static_cast<unsigned char>(tag), "buffer list copy");

  out.narrow = o.narrow[i];  // still shared when the next thread releases it
  out.buffer = b;
  out.strList = linked;
  out.buffList = o.buffList;
}

// What an allocator holds: a block of the size-class pools (or the heap),
// its size, and an item slot of the string object pool.
struct Held { void* block; int size; Ka_ObjBufData* slot; };

void GiveBack(const Held& h) {
  ka_free(h.block);
  if (h.slot != nullptr && h.slot->Release(nullptr) == 0) Ka_AString::_KaAStringHandler.GetPool().Free(h.slot);
}

// One allocator's round: a block of random size from any size class or the
// heap, filled with a byte only this thread writes, is taken; or a held one
// is checked and freed, or grown by _ka_realloc (which keeps its bytes).
void AllocateAndFree(std::mt19937& random, unsigned char mark, std::vector<Held>& held, Faults& f) {
  if (held.size() < 48 && random() % 3 != 0) {
    const int size = 1 + int(random() % 10000);
    void* p = _ka_malloc(size);
    if (p == nullptr) return f.Check(false, "allocation refused");
    std::memset(p, mark, size_t(size));
    held.push_back({p, size, Ka_AString::_KaAStringHandler.GetPool().Alloc()});
    return;
  }
  if (held.empty()) return;
  const size_t k = random() % held.size();
  const unsigned char* bytes = static_cast<const unsigned char*>(held[k].block);
  f.Check(std::count(bytes, bytes + held[k].size, mark) == held[k].size, "allocated block changed by another thread");
  if (random() % 4 == 0) {
    held[k].block = _ka_realloc(held[k].block, held[k].size * 2);
    f.Check(held[k].block != nullptr, "growth refused");
    if (held[k].block != nullptr) return;
  }
  GiveBack(held[k]);
  held.erase(held.begin() + std::ptrdiff_t(k));
}

}  // namespace

TEST(Stress, SharedObjectsSurviveConcurrentCopiesEditsAndPoolTraffic) {
  const std::vector<int> usedBefore = UsedUnits();
  {
    const Originals o;
    const std::vector<int> countsBefore = o.Counts();
    Faults f;
    std::vector<std::mutex> locks(kSharers);
    std::vector<std::vector<Parcel>> boxes(kSharers);  // copies posted by the previous sharer
    std::vector<std::thread> threads;
    for (int t = 0; t < kSharers; ++t) {
      threads.emplace_back([&, t] {
        std::mt19937 random(unsigned(t) + 1);
        for (int round = 0; round < kRounds; ++round) {
          const size_t i = random() % o.texts.size();
          Parcel parcel;
          EditCopies(o, i, t, f, parcel);
          f.Check(o.Intact(i), "an original changed");
          std::vector<Parcel> received;
          {
            std::lock_guard<std::mutex> guard(locks[(t + 1) % kSharers]);
            boxes[(t + 1) % kSharers].push_back(std::move(parcel));
          }
          std::lock_guard<std::mutex> guard(locks[t]);
          if (boxes[t].size() > 8) received.swap(boxes[t]);  // released here, not by their maker
        }
      });
    }
    for (int t = 0; t < kAllocators; ++t) {
      threads.emplace_back([&, t] {
        std::mt19937 random(unsigned(t) + 100);
        std::vector<Held> held;
        for (int round = 0; round < kRounds * 8; ++round)
          AllocateAndFree(random, static_cast<unsigned char>(0x11 * (t + 1)), held, f);
        for (const Held& h : held) GiveBack(h);
      });
    }
    for (std::thread& th : threads) th.join();
    boxes.clear();
    EXPECT_EQ(f.count, 0) << "failed checks in the threads";
    for (size_t i = 0; i < o.texts.size(); ++i) EXPECT_TRUE(o.Intact(i)) << "original " << i;
    EXPECT_EQ(o.Counts(), countsBefore) << "every reference taken was given back";
  }
  EXPECT_EQ(UsedUnits(), usedBefore) << "every unit taken was given back";
  for (int i = 0; i < 9; ++i) EXPECT_EQ(ka_detail::SizeClassPool(i).Validate(), 1) << "size class " << i;
}
