// An application's own static object that uses lists from its constructor,
// before main, and from its destructor, after main: arrays from the pools,
// items from the handlers' pools and the static empty items.
#include <kalbor/kalbor.h>

namespace {
struct EarlyLists {
  Ka_AStrList words;
  bool emptyItems;
  EarlyLists() {
    words.Parse("made,before,main", ",", 0, 0, 0, 0, 1, 0);
    emptyItems = Ka_WStrList()[0].GetLength() + words[9].GetLength() + Ka_BuffList()[0].GetLength() == 0;
  }
  ~EarlyLists() {  // still allowed after main: share, edit, free, read the empty items
    Ka_AStrList copy(words);
    copy.Add(copy.GetItemNN(99)->GetLength() == 0 ? "gone after main" : "");
    Ka_BuffList().Add(reinterpret_cast<const unsigned char*>("ab"), 2);
  }
};
EarlyLists g_early;
}  // namespace

// What the global saw before main: its third word, and whether every empty
// item read as empty.
bool EarlyListsWorked() { return g_early.words[2].Compare("main") == 0 && g_early.emptyItems; }
