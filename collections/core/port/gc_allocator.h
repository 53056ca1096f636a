// The standard-library allocator for containers that hold handles or live in collected memory.
#pragma once

#include <cstddef>
#include <limits>
#include <new>

#include "collections/core/port/memory.h"

// Takes blocks from the scanned heap. A block stays alive only while something the collector scans points at it: keep
// the container's own words rooted (HandleVector in roots.h) or inside a record.
template <class T>
struct VornGcAllocator {
  using value_type = T;

  VornGcAllocator() = default;
  template <class U>
  VornGcAllocator(const VornGcAllocator<U>&) noexcept {}  // NOLINT(google-explicit-constructor): allocators rebind

  T* allocate(std::size_t count) {
    if (count > std::numeric_limits<std::size_t>::max() / sizeof(T)) throw std::bad_array_new_length();
    void* block = Vorn_gcAlloc(count * sizeof(T));
    if (block == nullptr) throw std::bad_alloc();
    return static_cast<T*>(block);
  }

  // The collector reclaims.
  void deallocate(T*, std::size_t) noexcept {}

  template <class U>
  friend bool operator==(const VornGcAllocator&, const VornGcAllocator<U>&) noexcept {
    return true;
  }
};
