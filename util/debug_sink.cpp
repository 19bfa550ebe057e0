// The debug sink: where the library's debug messages go.
#include <kalbor/util.h>

#include "platform/platform.h"
#include "util_internal.h"

namespace {
Ka_DebugSink g_sink = nullptr;  // null: the platform's default channel
}

Ka_DebugSink KaSetDebugSink(Ka_DebugSink sink) {
  return __atomic_exchange_n(&g_sink, sink, __ATOMIC_ACQ_REL);
}

namespace ka_detail {
void EmitDebugText(const ka_wchar* text) {
  const Ka_DebugSink sink = __atomic_load_n(&g_sink, __ATOMIC_ACQUIRE);
  if (sink != nullptr) sink(text); else ka_platform::DebugWrite(text);
}
}  // namespace ka_detail
