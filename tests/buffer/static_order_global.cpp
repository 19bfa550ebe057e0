// An application's own static object that uses buffers and the buffer
// handler's pool from its constructor, before main, and from its destructor,
// after main.
#include <kalbor/kalbor.h>

namespace {
struct EarlyBuffers {
  Ka_Buffer bytes{reinterpret_cast<const unsigned char*>("before main"), 11};
  Ka_ObjBufData* slot = Ka_Buffer::_KaBufferHandler.GetPool().Alloc();
  EarlyBuffers() {
    if (slot != nullptr) Ka_Buffer::_KaBufferHandler._InitItem(slot->object());
  }
  ~EarlyBuffers() {
    // Still allowed to share, decode, allocate and free after main has returned.
    Ka_Buffer late(bytes);
    late.DecodeBase64("YWZ0ZXIgbWFpbg==", -1);
    late.Append(bytes, bytes.GetLength());
    if (slot != nullptr) {
      Ka_Buffer::_KaBufferHandler._AssignItem(slot->object(), &late);
      Ka_Buffer::_KaBufferHandler._FreeItem(slot->object());
      slot->Release(&Ka_Buffer::_KaBufferHandler.GetPool());
      Ka_Buffer::_KaBufferHandler.GetPool().Free(slot);
    }
  }
};
EarlyBuffers g_early;
}  // namespace

// What the global made before main: its bytes and a slot of the handler's pool.
bool EarlyBuffersWorked() {
  return Ka_AString(static_cast<const char*>(g_early.bytes)).Compare("before main") == 0 && g_early.slot != nullptr;
}
