// The memory of the stress heap: blocks at addresses that are never used twice.
//
// Invariants:
//  - A range of addresses is reserved once and handed out upwards. Each block has pages of its own and ends, but for
//    the rounding to 16 bytes, where its last page ends; an inaccessible page follows. What a block does not use of its
//    pages is poisoned under AddressSanitizer.
//  - A freed block's pages become inaccessible for good, and poisoned under AddressSanitizer.
//  - Where the kernel bounds the number of open ranges, and too many guarded blocks live, further ones share accessible
//    pages without guards in between; those are filled with kFreedByte when they die, and stay readable.
//  - pageOwner_ tells the block of a page, 0 for none; liveSlots_ lists the slots in use, in no particular order.
//
// All tables are mappings of their own: marking runs while other threads are stopped, perhaps inside malloc. Nothing
// here locks; the stress heap's lock is held throughout.
#pragma once

#include <cstddef>
#include <cstdint>

#include "runtime/heap/guarded_pages.h"
#include "runtime/heap/heap_backend.h"

namespace vorn::runtime {

// What freed blocks are filled with where they stay readable, and atomic blocks when they are new. Neither reads as an
// object or as a likely number.
inline constexpr unsigned char kFreedByte = 0xDB;
inline constexpr unsigned char kFreshAtomicByte = 0xCD;

class StressBlocks {
 public:
  using Slot = std::uint32_t;  // 0: no block

  struct Block {
    std::uintptr_t start;
    std::size_t bytes;
    BlockKind kind;
    bool marked;
    bool guarded;
  };

  // Reserves addresses and tables. False when the system has none.
  bool reserve(PageGuards guards = PageGuards::Best, std::size_t pageBytes = systemPageBytes());

  // Null when the addresses or the memory are exhausted.
  void* allocate(std::size_t bytes, BlockKind kind);

  // The live block that starts at the address, or the one that the address lies in.
  [[nodiscard]] Slot blockAt(std::uintptr_t address) const {
    const Slot slot = blockContaining(address);
    return slot != 0 && blocks_[slot].start == address ? slot : 0;
  }
  [[nodiscard]] Slot blockContaining(std::uintptr_t address) const {
    const std::uintptr_t offset = address - pages_.base();
    if (offset >= used_) return 0;
    const Slot slot = pageOwner_[pages_.pageAt(offset)];
    return slot != 0 && address - blocks_[slot].start < blocks_[slot].bytes ? slot : 0;
  }

  [[nodiscard]] Block& operator[](Slot slot) { return blocks_[slot]; }

  // Frees the blocks that are not marked and unmarks the others.
  void freeUnmarked();

  // Room for as many slots as blocks can live.
  [[nodiscard]] Slot* markStack() { return markStack_; }

  [[nodiscard]] std::uint64_t bytesLive() const { return bytesLive_; }
  [[nodiscard]] std::size_t liveCount() const { return liveCount_; }

 private:
  // Accessible pages for a block; 0 when there are none.
  std::uintptr_t takePages(std::size_t bytes, bool* guarded);
  std::uintptr_t takeGuardedPages(std::size_t bytes);
  std::uintptr_t takeSharedPages(std::size_t bytes);
  void releasePages(const Block& block);
  [[nodiscard]] std::uintptr_t pagesOf(const Block& block) const { return block.start & ~(pages_.pageBytes() - 1); }

  GuardedPages pages_;
  std::size_t used_ = 0;  // bytes of the reservation handed out so far
  // The part of the shared pages that is still free.
  std::uintptr_t sharedNext_ = 0;
  std::uintptr_t sharedEnd_ = 0;

  Slot* pageOwner_ = nullptr;
  Block* blocks_ = nullptr;
  Slot* liveSlots_ = nullptr;
  Slot* freeSlots_ = nullptr;
  Slot* markStack_ = nullptr;
  std::size_t liveCount_ = 0;
  std::size_t freeCount_ = 0;
  Slot lastSlot_ = 0;
  std::size_t guardedCount_ = 0;
  std::uint64_t bytesLive_ = 0;
};

}  // namespace vorn::runtime
