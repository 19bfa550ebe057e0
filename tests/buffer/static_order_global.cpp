// An application's own static object that uses buffers and the buffer
// handler's pool from its constructor, before main, and from its destructor,
// after main.
#include <kalbor/kalbor.h>

namespace {
struct EarlyBuffers {
  Ka_Buffer bytes;
  Ka_ObjBufData* slot;
  EarlyBuffers() : bytes(reinterpret_cast<const unsigned char*>("before main"), 11) {
    slot = Ka_Buffer::_KaBufferHandler.GetPool().Alloc();
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

const Ka_Buffer& EarlyBytes() { return g_early.bytes; }
bool EarlySlotTaken() { return g_early.slot != nullptr; }
