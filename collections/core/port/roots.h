// Roots as types: handles that only a native's frame holds, kept alive across allocations.
#pragma once

#include <cstddef>
#include <vector>

#include "collections/core/port/gc_allocator.h"
#include "collections/core/port/memory.h"

namespace vorn::collections {

// One rooted handle. Assigning to it keeps the new handle alive instead.
class RootedHandle {
 public:
  explicit RootedHandle(void* handle = nullptr) : handle_(handle) { Vorn_gcRegisterRootSlot(&handle_); }
  ~RootedHandle() { Vorn_gcUnregisterRootSlot(&handle_); }
  RootedHandle(const RootedHandle&) = delete;
  RootedHandle& operator=(const RootedHandle&) = delete;

  RootedHandle& operator=(void* handle) {
    handle_ = handle;
    return *this;
  }
  [[nodiscard]] void* get() const { return handle_; }

 private:
  void* handle_;
};

// Registers an existing range of handle slots for a scope.
class RootedRange {
 public:
  RootedRange(void* start, std::size_t bytes) : start_(start), bytes_(bytes) {
    if (bytes_ != 0) Vorn_gcRegisterRootRange(start_, bytes_);
  }
  ~RootedRange() {
    if (bytes_ != 0) Vorn_gcUnregisterRootRange(start_, bytes_);
  }
  RootedRange(const RootedRange&) = delete;
  RootedRange& operator=(const RootedRange&) = delete;

 private:
  void* start_;
  std::size_t bytes_;
};

// A vector of handles, or of plain records that hold handles, whose block lives in collected memory and stays reachable
// through the vector's own words, which are the registered range. During growth both blocks are reachable: the old one
// through the vector, and nothing allocates between the new block's birth and its being stored.
template <class Element>
class RootedVector {
 public:
  using Storage = std::vector<Element, VornGcAllocator<Element>>;

  RootedVector() : root_(&storage_, sizeof(storage_)) {}
  RootedVector(const RootedVector&) = delete;
  RootedVector& operator=(const RootedVector&) = delete;

  Storage& operator*() { return storage_; }
  Storage* operator->() { return &storage_; }
  const Storage* operator->() const { return &storage_; }

 private:
  Storage storage_;
  RootedRange root_;
};

using HandleVector = RootedVector<void*>;

}  // namespace vorn::collections
