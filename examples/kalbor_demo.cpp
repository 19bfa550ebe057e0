// A tour of the library: what it offers, shown on its own output.
#include <kalbor/kalbor.h>

#include <cstdio>
#include <cstring>
#include <initializer_list>

namespace {

void ShowSizeClasses() {
  std::printf("Size classes: a request goes to the smallest group that holds it\n");
  for (int size : {1, 32, 33, 700, 8192, 8193, 20000})
    std::printf("  %6d bytes -> group %6u%s\n", size, Ka_BufferPool::GetBufferGroup(size),
                size > 8192 ? " (heap block)" : "");
}

void ShowAllocation() {
  std::printf("\nAllocation functions: blocks with a reference-counted header\n");
  char* text = static_cast<char*>(_ka_malloc(12));
  std::strcpy(text, "hello pools");
  Ka_BufferData* header = Ka_BufferData::FromData(text);
  std::printf("  \"%s\": capacity %u, length %d, owners %d\n", text, header->nAllocLength,
              header->nDataLength, header->nRefs);
  text = static_cast<char*>(_ka_realloc(text, 100));
  std::printf("  grown to 100 bytes: capacity %u, text kept: \"%s\"\n",
              Ka_BufferData::FromData(text)->nAllocLength, text);
  ka_free(text);
}

void ShowPoolLifecycle() {
  std::printf("\nA pool of 32-byte units, 4 to a block\n");
  Ka_BufferPool pool(32, 4);
  Ka_BufferData* units[9];
  for (auto& u : units) u = pool.Alloc();
  std::printf("  9 units live: %d blocks of %u bytes\n", pool.GetBlockCount(), pool.GetBlockBytes());
  for (int i = 4; i < 8; ++i) {
    units[i]->nRefs = 0;
    pool.Free(units[i]);
  }
  std::printf("  the second block emptied: %d blocks (it went back to the heap)\n", pool.GetBlockCount());
  units[1]->nRefs = 0;
  pool.Free(units[1]);
  Ka_BufferData* again = pool.Alloc();
  std::printf("  a unit freed in the head is the next one handed out: %s\n",
              again == units[1] ? "yes" : "no");
}

void ShowDoubles() {
  std::printf("\nDoubles as 8 bytes, most significant first\n");
  char bytes[8];
  ka_dtobyte(1.0, bytes);
  std::printf("  1.0 ->");
  for (char b : bytes) std::printf(" %02X", static_cast<unsigned char>(b));
  std::printf("  (exponent %d)\n", ka_dblexponent(1.0));
}

}  // namespace

int main() {
  std::printf("Kalbor400U demo\n\n");
  ShowSizeClasses();
  ShowAllocation();
  ShowPoolLifecycle();
  ShowDoubles();
  return 0;
}
