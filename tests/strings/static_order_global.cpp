// An application's own static object that uses strings from its
// constructor, before main, and from its destructor, after main: texts from
// the pools, objects from the handlers' pools and the static empty strings.
#include <kalbor/kalbor.h>

namespace {
struct EarlyStrings {
  Ka_AString narrow;
  Ka_WString* wide;
  bool nullWasEmpty;
  EarlyStrings() : narrow("made before main"), wide(new Ka_WString(KA_W("wide, before main"))) {
    nullWasEmpty = Ka_AString::_KaNullString.GetData() == nullptr && Ka_WString::_KaNullString.GetData() == nullptr;
    narrow += Ka_AString(Ka_AString::_KaNullString);
  }
  ~EarlyStrings() {
    // Still allowed to build, share, allocate and free after main has returned.
    Ka_AString late = narrow + ", gone after main";
    Ka_AString* object = new Ka_AString(late);
    delete object;
    Ka_WString copy(Ka_WString::_KaNullString);
    copy += *wide;
    delete wide;
  }
};
EarlyStrings g_early;
}  // namespace

const Ka_AString& EarlyNarrow() { return g_early.narrow; }
const Ka_WString* EarlyWide() { return g_early.wide; }
bool EarlyNullWasEmpty() { return g_early.nullWasEmpty; }
