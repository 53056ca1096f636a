// Growable buffers with inline capacity, the storage behind list and array records.
//
// Invariants shared by all of them: `data` points at the buffer's own inline storage or at a block of `capacity`
// elements from the collected heap; size <= capacity; capacity grows by doubling and never shrinks; replaced blocks are
// abandoned to the collector. The buffers point into themselves, so they are neither copied nor moved.
//
// A std::vector with the collector's allocator has no inline storage, and most collections are small: filled one by one
// it takes 4 blocks for 8 Ints and 6 for 32, where these take none; for 100 it takes 8, these 2. For 4 handles it takes
// 3 blocks, these none. Nor does it let compiled code write behind its size, or keep that memory null.
#pragma once

#include <cstddef>
#include <cstdint>

// Unboxed elements, `elementSize` bytes each (1, 2, 4 or 8), packed in native byte order. Heap blocks come from the
// collector's pointer-free memory.
struct SmallPrimitiveBuffer {
  static constexpr std::uint64_t kInlineBytes = 128;

  alignas(16) unsigned char inlineBytes[kInlineBytes] = {};
  unsigned char* data = inlineBytes;
  std::uint64_t size = 0;
  std::uint64_t capacity = kInlineBytes;
  std::uint64_t elementSize = 1;

  SmallPrimitiveBuffer() = default;
  SmallPrimitiveBuffer(const SmallPrimitiveBuffer&) = delete;
  SmallPrimitiveBuffer& operator=(const SmallPrimitiveBuffer&) = delete;

  // Guarantees room for n elements: pure doubling from the present capacity. Throws std::bad_alloc, with nothing
  // changed, when the size cannot be held or the collector has no memory. Allocates.
  void reserve(std::uint64_t n) {
    if (n > capacity) [[unlikely]]
      grow(n);
  }

  // Empties the buffer for n elements of the given width: inline storage again when the width differs, then grown as by
  // reserve. Throws as reserve does, with nothing changed. Allocates.
  void resetFor(std::uint64_t width, std::uint64_t n);

  // Back to empty inline storage of the given element width (1 to 128).
  void resetToInline(std::uint64_t width) {
    data = inlineBytes;
    size = 0;
    capacity = kInlineBytes / width;
    elementSize = width;
  }

 private:
  void grow(std::uint64_t n);
};

// Element handles. Heap blocks come from scanned memory; slots from size to capacity are null, and so are the inline
// slots once a block has taken their place, so that the collector never sees a stale handle.
struct SmallObjectVector {
  static constexpr std::uint64_t kInlineSlots = 4;

  void* inlineSlots[kInlineSlots] = {};
  void** data = inlineSlots;
  std::uint64_t size = 0;
  std::uint64_t capacity = kInlineSlots;

  SmallObjectVector() = default;
  SmallObjectVector(const SmallObjectVector&) = delete;
  SmallObjectVector& operator=(const SmallObjectVector&) = delete;

  // Guarantees room for n handles; grows and fails as SmallPrimitiveBuffer does. Allocates.
  void reserve(std::uint64_t n) {
    if (n > capacity) [[unlikely]]
      grow(n);
  }

  // Nulls the used slots and makes the vector empty.
  void clear();

  // Replaces the contents by n handles, which must not be this vector's own. Throws as reserve does, with nothing
  // changed. Allocates when there is no room.
  void assign(void* const* handles, std::uint64_t n);

  // Appends one handle. Allocates when full.
  void pushBack(void* handle) {
    reserve(size + 1);
    data[size] = handle;
    ++size;
  }

  // Inserts a handle before `index` (at most size). Allocates when full.
  void insertAt(std::uint64_t index, void* handle);

  // Inserts n handles before `index` (at most size); they must not be this vector's own. Allocates when full.
  void insertAllAt(std::uint64_t index, void* const* handles, std::uint64_t n);

  // Removes the handle at `index` and nulls the vacated slot; an index at or past the end is ignored.
  void eraseAt(std::uint64_t index);

 private:
  void grow(std::uint64_t n);
};

// An export mirror: a widened copy of primitive elements, handed out to compiled code as a raw pointer.
template <class Element, std::size_t kInline>
struct SmallMirror {
  Element inlineValues[kInline] = {};
  Element* data = inlineValues;
  std::uint64_t size = 0;
  std::uint64_t capacity = kInline;

  SmallMirror() = default;
  SmallMirror(const SmallMirror&) = delete;
  SmallMirror& operator=(const SmallMirror&) = delete;

  // Guarantees room for n values: doubling from the present capacity, or from the inline one when that is 0. Throws
  // std::bad_alloc with nothing changed. Allocates.
  void reserve(std::uint64_t n) {
    if (n > capacity) [[unlikely]]
      grow(n);
  }

 private:
  void grow(std::uint64_t n);
};
