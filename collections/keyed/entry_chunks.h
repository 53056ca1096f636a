// The elements of a hash table in the order in which they came, kept in chunks of the collected heap.
//
// A table that fits one chunk has a chunk of its own size, which grows as a vector does, from one place on; beyond that
// chunks stay where they are. A whole chunk is large enough that the directory of a large table is short, and of a size
// that the collected heap has without waste.
//
// A million map entries of 40 bytes take 40.1 MB in 2,004 blocks here. A std::vector moves them 20 times and leaves
// half of its 83.9 MB to the collector; a std::deque, whose chunks have 512 bytes, takes 83,349 blocks.
//
// Invariants, checked by validateHashTable (keyed_validation.h):
//   - `directory_` is null, with a capacity of 0; or it is the address of `firstChunk_`, for one chunk of at most kChunk
//     places, the capacity; or it is an array with kChunk places in each of capacity / kChunk chunks, and `firstChunk_`
//     is null;
//   - the array has room for the next power of two of chunks, and what it has no chunk for is null.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <type_traits>

#include "collections/core/port/memory.h"
#include "collections/core/port/roots.h"

namespace vorn::collections {

template <class Node>
class EntryChunks {
 public:
  static constexpr std::uint32_t kChunk = 512;
  static_assert(std::is_trivially_copyable_v<Node>);

  EntryChunks() = default;
  EntryChunks(const EntryChunks&) = delete;
  EntryChunks& operator=(const EntryChunks&) = delete;

  // How many places there are.
  [[nodiscard]] std::uint64_t capacity() const { return capacity_; }

  [[nodiscard]] Node& at(std::uint32_t place) const { return directory_[place / kChunk][place % kChunk]; }

  // How many places from this one on stand side by side, up to `end`.
  [[nodiscard]] std::uint64_t runFrom(std::uint32_t place, std::uint32_t end) const {
    return std::min<std::uint64_t>(end, std::uint64_t{place} / kChunk * kChunk + kChunk) - place;
  }

  // Makes more places, all in use so far. Throws std::bad_alloc with nothing changed. Allocates.
  [[gnu::noinline]] void grow() {
    if (capacity_ < kChunk) return growFirst();
    const std::uint64_t chunks = capacity_ / kChunk;
    RootedHandle directory(directory_);
    if (std::has_single_bit(chunks)) {
      directory = allocateDirectory(2 * chunks);
      std::memcpy(directory.get(), directory_, chunks * sizeof(Node*));
    }
    Node* const chunk = allocateChunk(kWholeChunk);
    directory_ = static_cast<Node**>(directory.get());
    directory_[chunks] = chunk;
    firstChunk_ = nullptr;
    capacity_ += kChunk;
  }

  // Gives memory back that so many places from the start do not need; at least one is wanted. Where that takes memory
  // and there is none, it keeps what it has. Allocates.
  void shrink(std::uint64_t places) {
    if (!isOneChunk()) {
      const std::uint64_t chunks = (places + kChunk - 1) / kChunk;
      std::fill(directory_ + chunks, directory_ + capacity_ / kChunk, nullptr);
      capacity_ = static_cast<std::uint32_t>(chunks * kChunk);
      if (chunks > 1) return;
      firstChunk_ = directory_[0];
      directory_ = &firstChunk_;
    }
    const std::size_t bytes = bytesOfFirst(places);
    if (bytes >= capacity_ * sizeof(Node)) return;
    auto* const smaller = static_cast<Node*>(Vorn_gcAlloc(bytes));
    if (smaller == nullptr) return;
    std::memcpy(static_cast<void*>(smaller), firstChunk_, places * sizeof(Node));
    firstChunk_ = smaller;
    capacity_ = static_cast<std::uint32_t>(bytes / sizeof(Node));
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
  static constexpr std::size_t kWholeChunk = kChunk * sizeof(Node);

  // Of a small table few sizes, each about three times the one before; then powers of two below the half of a whole
  // chunk, which the collected heap has without waste, then that.
  static std::size_t bytesOfFirst(std::uint64_t places) {
    for (const std::size_t few : {1, 4, 12}) {
      if (places <= few) return few * sizeof(Node);
    }
    const std::size_t bytes = std::bit_ceil(places * sizeof(Node));
    return 2 * bytes > kWholeChunk ? kWholeChunk : bytes;
  }

  static void* allocate(std::size_t bytes) {
    void* const block = Vorn_gcAlloc(bytes);
    if (block == nullptr) throw std::bad_alloc();
    return block;
  }
  static Node* allocateChunk(std::size_t bytes) { return static_cast<Node*>(allocate(bytes)); }
  static Node** allocateDirectory(std::uint64_t chunks) {
    auto** const directory = static_cast<Node**>(allocate(chunks * sizeof(Node*)));
    std::fill_n(directory, chunks, nullptr);
    return directory;
  }

  void growFirst() {
    const std::size_t bytes = bytesOfFirst(capacity_ + 1);
    Node* const larger = allocateChunk(bytes);
    if (capacity_ != 0) std::memcpy(static_cast<void*>(larger), firstChunk_, capacity_ * sizeof(Node));
    firstChunk_ = larger;
    directory_ = &firstChunk_;
    capacity_ = static_cast<std::uint32_t>(bytes / sizeof(Node));
  }

  Node** directory_ = nullptr;
  Node* firstChunk_ = nullptr;
  std::uint32_t capacity_ = 0;  // places have 32 bits
};

}  // namespace vorn::collections
