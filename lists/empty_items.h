// The static empty items of the never-null accessors (internal to the
// lists; built and destroyed by Ka_ListsModule, lists/module.cpp).
#ifndef KALBOR_LISTS_EMPTY_ITEMS_H
#define KALBOR_LISTS_EMPTY_ITEMS_H

#include <kalbor/lists.h>

namespace ka_detail {

// Read-only: shared by every list of a kind.
const Ka_AString& EmptyNarrowItem();
const Ka_WString& EmptyWideItem();
const Ka_Buffer& EmptyBufferItem();

}  // namespace ka_detail

#endif  // KALBOR_LISTS_EMPTY_ITEMS_H
