// An application's own static object that uses strings from its
// constructor, before main, and from its destructor, after main: texts from
// the pools, objects from the handlers' pools and the static empty strings.
#include <kalbor/kalbor.h>

namespace {
struct EarlyStrings {
  Ka_AString narrow = Ka_AString("made before main") + Ka_AString(Ka_AString::_KaNullString);
  Ka_WString* wide = new Ka_WString(KA_W("wide, before main"));
  bool nullWasEmpty = Ka_AString::_KaNullString.GetData() == nullptr && Ka_WString::_KaNullString.GetData() == nullptr;
  ~EarlyStrings() {
    // Still allowed to build, share, allocate and free after main has returned.
    delete new Ka_AString(narrow + ", gone after main");
    Ka_WString copy(Ka_WString::_KaNullString);
    copy += *wide;
    delete wide;
  }
};
EarlyStrings g_early;
}  // namespace

// What the global made before main, and whether the empty strings were ready.
bool EarlyStringsWorked() {
  return g_early.narrow.Compare("made before main") == 0 && g_early.wide != nullptr &&
         g_early.wide->Compare(KA_W("wide, before main")) == 0 && g_early.nullWasEmpty;
}
