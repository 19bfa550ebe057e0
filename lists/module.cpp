// The lists' static objects: the empty narrow string, wide string and buffer
// that GetItemNN returns for a missing item.
//
// They live in static storage that needs no constructor, as the strings'
// objects do (strings/module.cpp): the first Ka_ListsModule to be
// constructed (every translation unit that includes kalbor/lists.h has one,
// after its string and buffer modules) builds them, the last one to be
// destroyed destroys them, so an application's static objects may use them
// before main and after it, in any order.
#include <new>

#include "lists/empty_items.h"

namespace {

int32_t g_moduleUsers = 0;
alignas(Ka_AString) unsigned char g_emptyNarrow[sizeof(Ka_AString)];
alignas(Ka_WString) unsigned char g_emptyWide[sizeof(Ka_WString)];
alignas(Ka_Buffer) unsigned char g_emptyBuffer[sizeof(Ka_Buffer)];

}  // namespace

namespace ka_detail {
const Ka_AString& EmptyNarrowItem() { return *std::launder(reinterpret_cast<const Ka_AString*>(g_emptyNarrow)); }
const Ka_WString& EmptyWideItem() { return *std::launder(reinterpret_cast<const Ka_WString*>(g_emptyWide)); }
const Ka_Buffer& EmptyBufferItem() { return *std::launder(reinterpret_cast<const Ka_Buffer*>(g_emptyBuffer)); }
}  // namespace ka_detail

Ka_ListsModule::Ka_ListsModule() {
  if (ka_interlocked_increment(&g_moduleUsers) != 1) return;
  ::new (static_cast<void*>(g_emptyNarrow)) Ka_AString();
  ::new (static_cast<void*>(g_emptyWide)) Ka_WString();
  ::new (static_cast<void*>(g_emptyBuffer)) Ka_Buffer();
}

Ka_ListsModule::~Ka_ListsModule() {
  if (ka_interlocked_decrement(&g_moduleUsers) != 0) return;
  const_cast<Ka_Buffer&>(ka_detail::EmptyBufferItem()).~Ka_Buffer();
  const_cast<Ka_WString&>(ka_detail::EmptyWideItem()).~Ka_WString();
  const_cast<Ka_AString&>(ka_detail::EmptyNarrowItem()).~Ka_AString();
}
