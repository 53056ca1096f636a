// The blocks that a thread was handed last, which collections keep alive for it. A handle is then safe from the moment
// when it is made until its new owner has put it into a root, even where that owner keeps it in a form that no collector
// recognises, and other threads collect meanwhile.
//
// A handle that leaves a root slot counts as handed out as well: a native roots its result while it allocates further
// blocks, perhaps a million of them, and returns it right after the slot is gone.
//
// Only the owner writes. Collectors read while it is stopped, or is the caller. A block that is being handed out is in a
// register of its thread until it is noted here, and those count on every heap while the thread is stopped by another.
#pragma once

#include <atomic>
#include <cstddef>

namespace vorn::runtime {

class RecentBlocks {
 public:
  static constexpr std::size_t kMost = 64;

  // As many are noted whatever a heap keeps of them, so that noting one decides nothing.
  void note(void* block) noexcept {
    const std::size_t noted = noted_.load(std::memory_order_relaxed);
    std::atomic_ref(blocks_[noted % kMost]).store(block, std::memory_order_relaxed);
    noted_.store(noted + 1, std::memory_order_relaxed);
  }

  void clear() noexcept {
    for (void*& block : blocks_) std::atomic_ref(block).store(nullptr, std::memory_order_relaxed);
  }

  // Calls visit(first, end) for the slots of the `count` blocks noted last; slots without one are null.
  template <class Visitor>
  void forLast(std::size_t count, Visitor&& visit) {
    // An owner that was stopped between its two stores has written where the oldest block was.
    const std::size_t end = noted_.load(std::memory_order_relaxed) % kMost;
    const std::size_t inFront = count < end ? count : end;
    if (inFront != 0) visit(blocks_ + (end - inFront), blocks_ + end);
    if (count > inFront) visit(blocks_ + kMost - (count - inFront), blocks_ + kMost);
  }

 private:
  void* blocks_[kMost] = {};
  std::atomic<std::size_t> noted_{0};
};

}  // namespace vorn::runtime
