#include "collections/core/small_buffers.h"

#include <cstring>
#include <limits>
#include <new>

#include "collections/core/runtime_interface.h"

namespace {

// The capacity that doubling from `capacity` (or from `first` when that is 0) reaches for n elements. A size whose
// bytes cannot be counted is refused before anything is allocated.
std::uint64_t doubledCapacity(std::uint64_t capacity, std::uint64_t first, std::uint64_t n, std::uint64_t elementSize) {
  // Collectors take sizes as signed words, so half the address space is the most that any block can have.
  const std::uint64_t most = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()) / elementSize;
  if (n > most) throw std::bad_alloc();
  std::uint64_t grown = capacity == 0 ? first : capacity;
  while (grown < n) {
    if (grown > most / 2) throw std::bad_alloc();
    grown *= 2;
  }
  return grown;
}

}  // namespace

void SmallPrimitiveBuffer::grow(std::uint64_t n) {
  const std::uint64_t grown = doubledCapacity(capacity, 1, n, elementSize);
  auto* block = static_cast<unsigned char*>(Vorn_gcAllocAtomic(grown * elementSize));
  if (block == nullptr) throw std::bad_alloc();
  std::memcpy(block, data, size * elementSize);
  data = block;
  capacity = grown;
}

void SmallObjectVector::grow(std::uint64_t n) {
  const std::uint64_t grown = doubledCapacity(capacity, kInlineSlots, n, sizeof(void*));
  auto** block = static_cast<void**>(Vorn_gcAlloc(grown * sizeof(void*)));
  if (block == nullptr) throw std::bad_alloc();
  std::memcpy(block, data, size * sizeof(void*));
  // The collector may hand out blocks that are not zeroed, and the slack must never show it a stale handle.
  std::memset(block + size, 0, (grown - size) * sizeof(void*));
  data = block;
  capacity = grown;
}

void SmallObjectVector::clear() {
  std::memset(data, 0, size * sizeof(void*));
  size = 0;
}

void SmallObjectVector::insertAt(std::uint64_t index, void* handle) {
  reserve(size + 1);
  std::memmove(data + index + 1, data + index, (size - index) * sizeof(void*));
  data[index] = handle;
  ++size;
}

void SmallObjectVector::eraseAt(std::uint64_t index) {
  if (index >= size) return;
  std::memmove(data + index, data + index + 1, (size - index - 1) * sizeof(void*));
  --size;
  data[size] = nullptr;
}
