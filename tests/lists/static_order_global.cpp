// An application's own static object that uses lists from its constructor,
// before main, and from its destructor, after main: arrays from the pools,
// items from the handlers' pools and the static empty items.
#include <kalbor/kalbor.h>

namespace {
struct EarlyLists {
  Ka_AStrList words;
  bool emptyItemsWereEmpty;
  EarlyLists() {
    words.Parse("made,before,main", ",", 0, 0, 0, 0, 1, 0);
    emptyItemsWereEmpty = Ka_WStrList().GetItemNN(0)->GetLength() == 0 && words.GetItemNN(9)->GetData() == nullptr &&
                          Ka_BuffList().GetItemNN(0)->IsEmpty() == 1;
  }
  ~EarlyLists() {
    // Still allowed to share, edit and free lists, and to read the empty items, after main.
    Ka_AStrList copy(words);
    copy.Add("gone after main");
    Ka_BuffList bytes;
    bytes.Add(reinterpret_cast<const unsigned char*>("ab"), 2);
    Ka_PtrList pointers;
    pointers.Add(&copy);
    if (copy.GetItemNN(99)->GetLength() + bytes.GetItemNN(-1)->GetLength() != 0) pointers.Pack();
  }
};
EarlyLists g_early;
}  // namespace

const Ka_AStrList& EarlyWords() { return g_early.words; }
bool EarlyEmptyItemsWereEmpty() { return g_early.emptyItemsWereEmpty; }
