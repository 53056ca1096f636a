// The free small blocks that a thread holds on the collected heap, so that a block is taken without a call into the
// collector's library. The other heaps leave them empty.
//
// Invariants:
// - lists_[kind][i] links free blocks of i * 16 bytes through their first words; the rest of a scanned block is zero.
//   Nothing at all takes 16 bytes too.
// - Only the owner changes a list, except that the library fills an empty one under its own lock.
// - The collector's library knows nothing of these blocks, and one that is not marked is swept and handed out again. So
//   a collection marks every block of every list, one by one, since pointer-free blocks are not searched for the link.
// - It may stop the owner anywhere. A block therefore leaves its list by one store, and nothing is written into it
//   before that; from then on the owner's registers show it.
// - A list that is dropped is garbage: the next collection sweeps its blocks.
#pragma once

#include <atomic>
#include <cstddef>

#include "runtime/heap/block_kind.h"

namespace vorn::runtime {

class SmallBlocks {
 public:
  static constexpr std::size_t kGranule = 16;
  // Bytes: those of a list with a lock, the largest object of a collection.
  static constexpr std::size_t kLargest = 640;

  // A block of at most kLargest bytes, zeroed when it is a scanned one; null when none of that size is held.
  template <BlockKind kind>
  void* take(std::size_t bytes) noexcept {
    void*& list = listOf(kind, bytes);
    void* const block = list;
    if (block == nullptr) [[unlikely]]
      return nullptr;
    void* const next = nextOf(block);
    std::atomic_ref(list).store(next, std::memory_order_relaxed);
    std::atomic_signal_fence(std::memory_order_seq_cst);
    // The next block was last touched when its page was swept.
    __builtin_prefetch(next, 1);
    if constexpr (kind == BlockKind::Scanned) *static_cast<void**>(block) = nullptr;
    return block;
  }

  // Gets blocks of at least so many bytes, at most kLargest, when none of that size is held; false when the collector has
  // none. May collect.
  bool refill(BlockKind kind, std::size_t bytes) noexcept;

  void drop() noexcept;

  // Calls visit(block) for each block. For collectors: the owner is stopped, or is the caller.
  template <class Visitor>
  void forEach(Visitor&& visit) {
    for (auto& lists : lists_) {
      for (void*& list : lists) {
        for (void* block = std::atomic_ref(list).load(std::memory_order_relaxed); block != nullptr;) {
          void* const next = nextOf(block);
          visit(block);
          block = next;
        }
      }
    }
  }

 private:
  static void* nextOf(void* block) noexcept { return *static_cast<void**>(block); }

  static std::size_t granulesFor(std::size_t bytes) noexcept { return (bytes + kGranule - 1) / kGranule; }
  void*& listOf(BlockKind kind, std::size_t bytes) noexcept {
    return lists_[static_cast<std::size_t>(kind)][granulesFor(bytes)];
  }

  void* lists_[kBlockKinds][kLargest / kGranule + 1] = {};
};

}  // namespace vorn::runtime
