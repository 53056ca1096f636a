// The elements of a hash table in the order in which they came, kept in chunks of the collected heap.
//
// A table that fits one chunk has a chunk of its own size, which grows as a vector does, from one place on; beyond that chunks stay where
// they are. They are small at first, so that little memory is allocated for nothing, and large in a large table, so
// that its directory is short; the elements move once in between.
//
// A million map entries of 40 bytes take 40.1 MB in 2,004 blocks here. A std::vector moves them 20 times and leaves
// half of its 83.9 MB to the collector; a std::deque, whose chunks have 512 bytes, takes 83,349 blocks.
//
// Invariants, checked by validateHashTable (keyed_validation.h):
//   - `directory_` is null, with a capacity of 0; or it is the address of `firstChunk_`, for one chunk with the
//     capacity's number of places; or it is an array with chunkSize() places in each of capacity / chunkSize() chunks,
//     and `firstChunk_` is null;
//   - the array has room for the next power of two of chunks, and what it has no chunk for is null;
//   - a chunk has at most chunkSize() places, which is one of two powers of two.
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
  static constexpr std::uint32_t kSmallChunk = 32;
  static constexpr std::uint32_t kLargeChunk = 512;
  static constexpr std::uint64_t kMostSmallChunks = 32;
  static_assert(std::is_trivially_copyable_v<Node>);

  EntryChunks() = default;
  EntryChunks(const EntryChunks&) = delete;
  EntryChunks& operator=(const EntryChunks&) = delete;

  // How many places there are.
  [[nodiscard]] std::uint64_t capacity() const { return capacity_; }

  [[nodiscard]] std::uint64_t chunkSize() const { return std::uint64_t{placeMask_} + 1U; }

  [[nodiscard]] Node& at(std::uint32_t place) const { return directory_[place >> chunkBits_][place & placeMask_]; }

  // How many places from this one on stand side by side, up to `end`.
  [[nodiscard]] std::uint64_t runFrom(std::uint32_t place, std::uint32_t end) const {
    return std::min<std::uint64_t>(end, (std::uint64_t{place} | placeMask_) + 1) - place;
  }

  // Makes more places, all in use so far. Throws std::bad_alloc with nothing changed. Allocates.
  [[gnu::noinline]] void grow() {
    if (capacity_ < chunkSize()) return growFirst();
    const std::uint64_t chunks = capacity_ >> chunkBits_;
    if (chunkSize() == kSmallChunk && chunks == kMostSmallChunks) return growToLargeChunks();
    RootedHandle directory(directory_);
    if (std::has_single_bit(chunks)) {
      directory = allocateDirectory(2 * chunks);
      std::memcpy(directory.get(), directory_, chunks * sizeof(Node*));
    }
    Node* const chunk = allocateChunk(chunkSize() * sizeof(Node));
    directory_ = static_cast<Node**>(directory.get());
    directory_[chunks] = chunk;
    firstChunk_ = nullptr;
    capacity_ += static_cast<std::uint32_t>(chunkSize());
  }

  // Gives memory back that so many places from the start do not need; at least one is wanted. Where that takes memory
  // and there is none, it keeps what it has. Allocates.
  void shrink(std::uint64_t places) {
    if (!isOneChunk()) {
      const std::uint64_t chunks = (places + chunkSize() - 1) >> chunkBits_;
      std::fill(directory_ + chunks, directory_ + (capacity_ >> chunkBits_), nullptr);
      capacity_ = static_cast<std::uint32_t>(chunks << chunkBits_);
      if (chunks > 1) return;
      firstChunk_ = directory_[0];
      directory_ = &firstChunk_;
    }
    const std::uint64_t newChunkSize = places <= kSmallChunk ? kSmallChunk : chunkSize();
    const std::size_t bytes = bytesOfFirst(places, newChunkSize);
    if (bytes >= capacity_ * sizeof(Node)) return;
    auto* const smaller = static_cast<Node*>(Vorn_gcAlloc(bytes));
    if (smaller == nullptr) return;
    std::memcpy(static_cast<void*>(smaller), firstChunk_, places * sizeof(Node));
    firstChunk_ = smaller;
    capacity_ = static_cast<std::uint32_t>(bytes / sizeof(Node));
    setChunkSize(newChunkSize);
  }

  // Leaves everything to the collector.
  void clear() {
    directory_ = nullptr;
    firstChunk_ = nullptr;
    capacity_ = 0;
    setChunkSize(kSmallChunk);
  }

  // For checks.
  [[nodiscard]] Node* const* directory() const { return directory_; }
  [[nodiscard]] bool isOneChunk() const { return directory_ == &firstChunk_; }
  [[nodiscard]] Node* firstChunk() const { return firstChunk_; }

 private:
  void setChunkSize(std::uint64_t chunkSize) {
    chunkBits_ = static_cast<std::uint16_t>(std::countr_zero(chunkSize));
    placeMask_ = static_cast<std::uint16_t>(chunkSize - 1);
  }

  // Of a small table few sizes, each about three times the one before; then powers of two below the half of a whole
  // chunk, which the collected heap has without waste, then that.
  static std::size_t bytesOfFirst(std::uint64_t places, std::uint64_t chunkSize) {
    for (const std::size_t few : {1, 4, 12}) {
      if (places <= few) return few * sizeof(Node);
    }
    const std::size_t whole = sizeof(Node) * chunkSize;
    const std::size_t bytes = std::bit_ceil(places * sizeof(Node));
    return 2 * bytes > whole ? whole : bytes;
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
    const std::size_t bytes = bytesOfFirst(capacity_ + 1, chunkSize());
    Node* const larger = allocateChunk(bytes);
    if (capacity_ != 0) std::memcpy(static_cast<void*>(larger), firstChunk_, capacity_ * sizeof(Node));
    firstChunk_ = larger;
    directory_ = &firstChunk_;
    capacity_ = static_cast<std::uint32_t>(bytes / sizeof(Node));
  }

  void growToLargeChunks() {
    constexpr std::uint64_t kFilled = kSmallChunk * kMostSmallChunks / kLargeChunk;
    const RootedHandle root(allocateDirectory(std::bit_ceil(kFilled + 1)));
    auto** const directory = static_cast<Node**>(root.get());
    for (std::uint64_t i = 0; i <= kFilled; ++i) directory[i] = allocateChunk(kLargeChunk * sizeof(Node));
    for (std::uint64_t i = 0; i < kMostSmallChunks; ++i) {
      const std::uint64_t place = i * kSmallChunk;
      std::memcpy(static_cast<void*>(directory[place / kLargeChunk] + place % kLargeChunk), directory_[i],
                  kSmallChunk * sizeof(Node));
    }
    directory_ = directory;
    capacity_ = (kFilled + 1) * kLargeChunk;
    setChunkSize(kLargeChunk);
  }

  Node** directory_ = nullptr;
  Node* firstChunk_ = nullptr;
  std::uint32_t capacity_ = 0;                               // places have 32 bits
  std::uint16_t chunkBits_ = std::countr_zero(kSmallChunk);  // of chunkSize(), as placeMask_ is
  std::uint16_t placeMask_ = kSmallChunk - 1;
};

}  // namespace vorn::collections
