// The strings' static objects: the two empty strings and the two item
// handlers (with the object pools that serve the classes' operator new).
//
// They live in static storage that needs no constructor. The documented
// static members are references bound to that storage; binding a reference
// to the address of a static array is an address constant, which every
// supported compiler initialises before any code runs, so the references are
// valid in any static object's constructor. The objects themselves are built
// by the first Ka_StringsModule to be constructed (every translation unit
// that includes kalbor/strings.h has one, after its Ka_MemoryModule) and
// destroyed by the last one to go, in the reverse order.
#include <kalbor/strings.h>

#include <new>

namespace {

int32_t g_moduleUsers = 0;
alignas(Ka_AString) unsigned char g_narrowNull[sizeof(Ka_AString)];
alignas(Ka_AStringHandler) unsigned char g_narrowHandler[sizeof(Ka_AStringHandler)];
alignas(Ka_WString) unsigned char g_wideNull[sizeof(Ka_WString)];
alignas(Ka_WStringHandler) unsigned char g_wideHandler[sizeof(Ka_WStringHandler)];

}  // namespace

const Ka_AString& Ka_AString::_KaNullString = reinterpret_cast<const Ka_AString&>(g_narrowNull);
Ka_AStringHandler& Ka_AString::_KaAStringHandler = reinterpret_cast<Ka_AStringHandler&>(g_narrowHandler);
const Ka_WString& Ka_WString::_KaNullString = reinterpret_cast<const Ka_WString&>(g_wideNull);
Ka_WStringHandler& Ka_WString::_KaWStringHandler = reinterpret_cast<Ka_WStringHandler&>(g_wideHandler);

Ka_StringsModule::Ka_StringsModule() {
  if (ka_interlocked_increment(&g_moduleUsers) != 1) return;
  ::new (static_cast<void*>(g_narrowNull)) Ka_AString();
  ::new (static_cast<void*>(g_narrowHandler)) Ka_AStringHandler();
  ::new (static_cast<void*>(g_wideNull)) Ka_WString();
  ::new (static_cast<void*>(g_wideHandler)) Ka_WStringHandler();
}

Ka_StringsModule::~Ka_StringsModule() {
  if (ka_interlocked_decrement(&g_moduleUsers) != 0) return;
  Ka_WString::_KaWStringHandler.~Ka_WStringHandler();
  const_cast<Ka_WString&>(Ka_WString::_KaNullString).~Ka_WString();
  Ka_AString::_KaAStringHandler.~Ka_AStringHandler();
  const_cast<Ka_AString&>(Ka_AString::_KaNullString).~Ka_AString();
}
