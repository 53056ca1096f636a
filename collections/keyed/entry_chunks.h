// The elements of a hash table in the order in which they came, kept in chunks of the collected heap.
//
// A table that fits one chunk has a chunk of its own size, which grows as a vector does; beyond that all chunks are of
// one size and stay where they are.
//
// Invariants, checked by validateHashTable (keyed_validation.h):
//   - `directory_` is null, with a capacity of 0; or it is the address of `firstChunk_`, for one chunk with the
//     capacity's number of places; or it is an array with kChunk places in each of capacity / kChunk chunks, and
//     `firstChunk_` is null;
//   - the array has room for the next power of two of chunks, and what it has no chunk for is null.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <type_traits>

#include "collections/core/roots.h"
#include "collections/core/runtime_interface.h"

namespace vorn::collections {

template <class Node>
class EntryChunks {
 public:
  static constexpr std::uint32_t kChunkBits = 9;
  static constexpr std::uint64_t kChunk = std::uint64_t{1} << kChunkBits;
  static_assert(std::is_trivially_copyable_v<Node>);

  EntryChunks() = default;
  EntryChunks(const EntryChunks&) = delete;
  EntryChunks& operator=(const EntryChunks&) = delete;

  // How many places there are.
  [[nodiscard]] std::uint64_t capacity() const { return capacity_; }

  [[nodiscard]] Node& at(std::uint32_t place) const { return directory_[place >> kChunkBits][place & (kChunk - 1)]; }

  // Makes more places, all in use so far. Throws std::bad_alloc with nothing changed. Allocates.
  [[gnu::noinline]] void grow() {
    if (capacity_ < kChunk) return growFirst();
    const std::uint64_t chunks = capacity_ >> kChunkBits;
    RootedHandle directory(directory_);
    if (std::has_single_bit(chunks)) {
      directory = allocateZeroed(2 * chunks * sizeof(Node*));
      std::memcpy(directory.get(), directory_, chunks * sizeof(Node*));
    }
    auto* const chunk = static_cast<Node*>(allocate(kChunk * sizeof(Node)));
    directory_ = static_cast<Node**>(directory.get());
    directory_[chunks] = chunk;
    firstChunk_ = nullptr;
    capacity_ += kChunk;
  }

  // Gives memory back that so many places from the start do not need; at least one is wanted. Where that takes memory
  // and there is none, it keeps what it has. Allocates.
  void shrink(std::uint64_t places) {
    const std::uint64_t chunks = (places + kChunk - 1) >> kChunkBits;
    if (capacity_ > kChunk) {
      std::fill(directory_ + chunks, directory_ + (capacity_ >> kChunkBits), nullptr);
      capacity_ = chunks << kChunkBits;
      if (chunks > 1) return;
      firstChunk_ = directory_[0];
      directory_ = &firstChunk_;
    }
    const std::uint64_t wanted = firstCapacityFor(places);
    if (wanted >= capacity_) return;
    auto* const smaller = static_cast<Node*>(Vorn_gcAlloc(bytesOf(wanted)));
    if (smaller == nullptr) return;
    std::memcpy(static_cast<void*>(smaller), firstChunk_, places * sizeof(Node));
    firstChunk_ = smaller;
    capacity_ = wanted;
  }

  // Leaves everything to the collector.
  void clear() {
    directory_ = nullptr;
    firstChunk_ = nullptr;
    capacity_ = 0;
  }

  // For checks.
  [[nodiscard]] Node* const* directory() const { return directory_; }
  [[nodiscard]] bool isOneChunk() const { return directory_ == &firstChunk_; }
  [[nodiscard]] Node* firstChunk() const { return firstChunk_; }

 private:
  // The sizes of a single chunk are those that the collected heap has without waste.
  static constexpr std::size_t kFirstBytes = 256;

  static std::size_t bytesOf(std::uint64_t places) {
    return std::min(std::bit_ceil(std::max<std::size_t>(places * sizeof(Node), kFirstBytes)), kChunk * sizeof(Node));
  }
  static std::uint64_t firstCapacityFor(std::uint64_t places) {
    return std::min<std::uint64_t>(bytesOf(places) / sizeof(Node), kChunk);
  }

  static void* allocate(std::size_t bytes) {
    void* const block = Vorn_gcAlloc(bytes);
    if (block == nullptr) throw std::bad_alloc();
    return block;
  }
  static void* allocateZeroed(std::size_t bytes) { return std::memset(allocate(bytes), 0, bytes); }

  void growFirst() {
    const std::uint64_t wanted = firstCapacityFor(capacity_ + 1);
    auto* const larger = static_cast<Node*>(allocate(bytesOf(wanted)));
    if (capacity_ != 0) std::memcpy(static_cast<void*>(larger), firstChunk_, capacity_ * sizeof(Node));
    firstChunk_ = larger;
    directory_ = &firstChunk_;
    capacity_ = wanted;
  }

  Node** directory_ = nullptr;
  Node* firstChunk_ = nullptr;
  std::uint64_t capacity_ = 0;
};

}  // namespace vorn::collections
