// The heap: an arena, which takes memory from large blocks, front to back, and never gives any back.
#include "collections/core/port/memory.h"
#include "minimal_runtime.h"

void* minimal::take(std::size_t bytes) {
  constexpr std::size_t kBlock = std::size_t{1} << 20;
  static std::mutex mutex;
  static std::size_t left = 0;
  static char* next = nullptr;
  if (bytes > PTRDIFF_MAX - 16) return nullptr;
  bytes = (bytes + 15) / 16 * 16;  // calloc's blocks begin at multiples of 16, and so does then every piece
  if (bytes > kBlock / 4) return std::calloc(1, bytes);
  const std::lock_guard lock(mutex);
  if (bytes > left) {
    next = static_cast<char*>(std::calloc(1, kBlock));
    left = next != nullptr ? kBlock : 0;
    if (next == nullptr) return nullptr;
  }
  left -= bytes;
  return std::exchange(next, next + bytes);
}
void* Vorn_gcAlloc(std::size_t bytes) { return minimal::take(bytes); }
void* Vorn_gcAllocAtomic(std::size_t bytes) { return minimal::take(bytes); }
// What is never collected needs no roots.
void Vorn_gcRegisterRootRange(void*, std::size_t) {}
void Vorn_gcUnregisterRootRange(void*, std::size_t) {}
void Vorn_gcRegisterRootSlot(void**) {}
void Vorn_gcUnregisterRootSlot(void**) {}
