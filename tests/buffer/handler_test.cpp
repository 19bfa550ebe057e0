// The buffer lists' item handler: its pool, and the four item operations on
// object rooms taken from that pool, as a list uses them.
#include "buffer/buffer_support.h"

namespace {

TEST(BufferHandler, OwnsThePoolOfOneBufferObjectPerSlot) {
  Ka_ObjBufPool& pool = Ka_Buffer::_KaBufferHandler.GetPool();
  EXPECT_STREQ(pool.GetName(), "Ka_Buffer");
  EXPECT_EQ(pool.GetObjectSize(), static_cast<int>(sizeof(void*)));
  EXPECT_EQ(pool.GetCountPerBlock(), 64);
  const Ka_BufferHandler copy;
  EXPECT_STREQ(const_cast<Ka_BufferHandler&>(copy).GetPool().GetName(), "Ka_Buffer");
}

TEST(BufferHandler, ItemsAreBuiltAssignedComparedAndFreedInPoolSlots) {
  Ka_ListObjHandler& handler = Ka_Buffer::_KaBufferHandler;
  Ka_ObjBufPool& pool = handler.GetPool();
  Ka_ObjBufData* slots[2] = {pool.Alloc(), pool.Alloc()};
  ASSERT_NE(slots[0], nullptr);
  ASSERT_NE(slots[1], nullptr);
  void* item = slots[0]->object();
  void* other = slots[1]->object();
  EXPECT_EQ(handler._InitItem(item), item);
  EXPECT_EQ(handler._InitItem(other), other);
  EXPECT_EQ(static_cast<Ka_Buffer*>(item)->IsEmpty(), 1);

  const Ka_Buffer source = MakeBuffer("bytes");
  handler._AssignItem(item, const_cast<Ka_Buffer*>(&source));
  EXPECT_EQ(Refs(source), 2) << "assignment shares the block";
  handler._AssignItem(item, nullptr);  // ignored
  handler._AssignItem(nullptr, item);  // ignored
  EXPECT_EQ(Bytes(*static_cast<Ka_Buffer*>(item)), "bytes");

  const Ka_Buffer lower = MakeBuffer("bytea");
  EXPECT_EQ(handler._CompareItem(item, const_cast<Ka_Buffer*>(&lower)), 1);
  EXPECT_EQ(handler._CompareItem(item, const_cast<Ka_Buffer*>(&source)), 0);
  EXPECT_EQ(handler._CompareItem(other, item), -1) << "an empty item";
  EXPECT_EQ(handler._CompareItem(item, nullptr), 1) << "a null key is the empty buffer";
  EXPECT_EQ(handler._CompareItem(nullptr, nullptr), 0);

  handler._FreeItem(item);
  handler._FreeItem(other);
  handler._FreeItem(nullptr);  // ignored
  EXPECT_EQ(Refs(source), 1) << "freeing the item released its reference";
  for (Ka_ObjBufData* slot : slots) {
    slot->Release(&pool);
    pool.Free(slot);
  }
}

}  // namespace
