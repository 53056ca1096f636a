#include "collections/core/storage/small_buffers.h"

#include <cstring>
#include <limits>
#include <new>

#include "collections/core/port/memory.h"

namespace {

// The capacity that doubling from `capacity` (or from `first` when that is 0) reaches for n elements. A size that it
// cannot reach is refused before anything is allocated.
std::uint64_t doubledCapacity(std::uint64_t capacity, std::uint64_t first, std::uint64_t n, std::uint64_t elementSize) {
  // Collectors take sizes as signed words, so half the address space is the most that any block can have.
  const std::uint64_t most = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()) / elementSize;
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

void SmallPrimitiveBuffer::resetFor(std::uint64_t width, std::uint64_t n) {
  const std::uint64_t kept = width == elementSize ? capacity : kInlineBytes / width;
  if (n > kept) {
    const std::uint64_t grown = doubledCapacity(kept, 1, n, width);
    auto* block = static_cast<unsigned char*>(Vorn_gcAllocAtomic(grown * width));
    if (block == nullptr) throw std::bad_alloc();
    data = block;
    capacity = grown;
    elementSize = width;
  } else if (width != elementSize) {
    resetToInline(width);
  }
  size = 0;
}

template <class Element, std::size_t kInline>
void SmallMirror<Element, kInline>::grow(std::uint64_t n) {
  const std::uint64_t grown = doubledCapacity(capacity, kInline, n, sizeof(Element));
  auto* block = static_cast<Element*>(Vorn_gcAllocAtomic(grown * sizeof(Element)));
  if (block == nullptr) throw std::bad_alloc();
  // Compiled code writes past the size, up to the capacity, before it commits.
  std::memcpy(block, data, capacity * sizeof(Element));
  data = block;
  capacity = grown;
}

template struct SmallMirror<long long, 16>;
template struct SmallMirror<double, 8>;

void SmallObjectVector::grow(std::uint64_t n) {
  const std::uint64_t grown = doubledCapacity(capacity, kInlineSlots, n, sizeof(void*));
  auto** block = static_cast<void**>(Vorn_gcAlloc(grown * sizeof(void*)));
  if (block == nullptr) throw std::bad_alloc();
  std::memcpy(block, data, size * sizeof(void*));
  // The collector may hand out blocks that are not zeroed, and the slack must never show it a stale handle.
  std::memset(block + size, 0, (grown - size) * sizeof(void*));
  // The inline slots are never used again, but they stay inside the record, where the collector sees them.
  if (data == inlineSlots) std::memset(inlineSlots, 0, sizeof(inlineSlots));
  data = block;
  capacity = grown;
}

void SmallObjectVector::clear() {
  std::memset(data, 0, size * sizeof(void*));
  size = 0;
}

void SmallObjectVector::assign(void* const* handles, std::uint64_t n) {
  reserve(n);
  if (n != 0) std::memcpy(data, handles, n * sizeof(void*));
  if (n < size) std::memset(data + n, 0, (size - n) * sizeof(void*));
  size = n;
}

void SmallObjectVector::insertAt(std::uint64_t index, void* handle) { insertAllAt(index, &handle, 1); }

void SmallObjectVector::insertAllAt(std::uint64_t index, void* const* handles, std::uint64_t n) {
  reserve(size + n);
  std::memmove(data + index + n, data + index, (size - index) * sizeof(void*));
  std::memcpy(data + index, handles, n * sizeof(void*));
  size += n;
}

void SmallObjectVector::eraseAt(std::uint64_t index) {
  if (index >= size) return;
  std::memmove(data + index, data + index + 1, (size - index - 1) * sizeof(void*));
  --size;
  data[size] = nullptr;
}
