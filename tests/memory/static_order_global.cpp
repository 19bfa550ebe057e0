// An application's own static object that uses the pools from its
// constructor, before main, and from its destructor, after main.
#include <kalbor/kalbor.h>

#include <cstring>

namespace {
struct EarlyUser {
  char* text;
  EarlyUser() : text(static_cast<char*>(_ka_malloc(64))) {
    if (text != nullptr) std::strcpy(text, "made before main");
  }
  ~EarlyUser() {
    // Still allowed to allocate and free after main has returned.
    void* late = _ka_malloc(5000);
    ka_free(late);
    ka_free(text);
  }
};
EarlyUser g_early;
}  // namespace

const char* EarlyUserText() { return g_early.text; }
