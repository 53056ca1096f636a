#include "runtime/heap/stress_blocks.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstring>

#include "runtime/heap/sanitizers.h"

namespace vorn::runtime {

namespace {

constexpr std::size_t kMostReserved = std::size_t{1} << 40;
constexpr std::size_t kLeastReserved = std::size_t{1} << 34;
constexpr std::size_t kMostBlocks = std::size_t{1} << 26;
constexpr std::size_t kLargestStressBlock = std::size_t{4} << 30;
constexpr std::size_t kSharedChunkBytes = std::size_t{16} << 20;
// Where open pages are bounded, a guarded block takes two mappings at worst, of the 65530 that Linux allows a process by
// default.
constexpr std::size_t kMostGuardedBlocks = 20000;

template <class T>
bool mapTable(T*& table, std::size_t count) {
  table = static_cast<T*>(mapReserved(count * sizeof(T), PROT_READ | PROT_WRITE));
  return table != nullptr;
}

constexpr std::size_t roundUp(std::size_t bytes, std::size_t unit) { return (bytes + unit - 1) / unit * unit; }

}  // namespace

bool StressBlocks::reserve(PageGuards guards, std::size_t pageBytes) {
  return pages_.reserve(kMostReserved, kLeastReserved, guards, pageBytes) &&
         mapTable(pageOwner_, pages_.pageAt(pages_.bytes())) && mapTable(blocks_, kMostBlocks) &&
         mapTable(liveSlots_, kMostBlocks) && mapTable(freeSlots_, kMostBlocks) && mapTable(markStack_, kMostBlocks);
}

void* StressBlocks::allocate(std::size_t bytes, BlockKind kind) {
  if (bytes > kLargestStressBlock || (freeCount_ == 0 && lastSlot_ + 1 == kMostBlocks)) return nullptr;
  const std::size_t blockBytes = std::max<std::size_t>(roundUp(bytes, 16), 16);
  const std::size_t pageBytes = roundUp(blockBytes, pages_.pageBytes());
  bool guarded = false;
  const std::uintptr_t pages = takePages(pageBytes, &guarded);
  if (pages == 0) return nullptr;

  const Slot slot = freeCount_ != 0 ? freeSlots_[--freeCount_] : ++lastSlot_;
  const std::uintptr_t start = pages + pageBytes - blockBytes;
  blocks_[slot] = {start, std::max<std::size_t>(bytes, 1), kind, false, guarded};
  liveSlots_[liveCount_++] = slot;
  std::fill_n(pageOwner_ + pages_.pageAt(pages - pages_.base()), pages_.pageAt(pageBytes), slot);
  bytesLive_ += blocks_[slot].bytes;
  guardedCount_ += guarded ? 1 : 0;

  auto* const block = reinterpret_cast<unsigned char*>(start);
  unpoisonMemory(reinterpret_cast<void*>(pages), pageBytes);
  if (kind == BlockKind::Atomic) std::memset(block, kFreshAtomicByte, blockBytes);
  poisonMemory(reinterpret_cast<void*>(pages), start - pages);
  poisonMemory(block + bytes, blockBytes - bytes);
  return block;
}

std::uintptr_t StressBlocks::takePages(std::size_t bytes, bool* guarded) {
  if (!pages_.bounded() || guardedCount_ < kMostGuardedBlocks) {
    if (const std::uintptr_t pages = takeGuardedPages(bytes)) {
      *guarded = true;
      return pages;
    }
  }
  *guarded = false;
  return takeSharedPages(bytes);
}

std::uintptr_t StressBlocks::takeGuardedPages(std::size_t bytes) {
  if (pages_.bytes() - used_ < bytes + pages_.pageBytes()) return 0;
  const std::uintptr_t pages = pages_.base() + used_;
  if (!pages_.open(pages, bytes)) return 0;
  used_ += bytes + pages_.pageBytes();
  return pages;
}

std::uintptr_t StressBlocks::takeSharedPages(std::size_t bytes) {
  if (sharedEnd_ - sharedNext_ < bytes) {
    const std::uintptr_t chunk = takeGuardedPages(std::max(bytes, kSharedChunkBytes));
    if (chunk == 0) return 0;
    sharedNext_ = chunk;
    sharedEnd_ = chunk + std::max(bytes, kSharedChunkBytes);
  }
  const std::uintptr_t pages = sharedNext_;
  sharedNext_ += bytes;
  return pages;
}

void StressBlocks::freeUnmarked() {
  std::size_t kept = 0;
  for (std::size_t i = 0; i < liveCount_; ++i) {
    const Slot slot = liveSlots_[i];
    Block& block = blocks_[slot];
    if (block.marked) {
      block.marked = false;
      liveSlots_[kept++] = slot;
    } else {
      releasePages(block);
      freeSlots_[freeCount_++] = slot;
    }
  }
  liveCount_ = kept;
}

void StressBlocks::releasePages(const Block& block) {
  const std::uintptr_t pages = pagesOf(block);
  const std::size_t bytes = roundUp(block.start + block.bytes - pages, pages_.pageBytes());
  std::fill_n(pageOwner_ + pages_.pageAt(pages - pages_.base()), pages_.pageAt(bytes), Slot{0});
  bytesLive_ -= block.bytes;
  auto* const memory = reinterpret_cast<void*>(pages);
  if (block.guarded) --guardedCount_;
  if (!block.guarded || !pages_.close(pages, bytes)) {
    unpoisonMemory(memory, bytes);
    std::memset(memory, kFreedByte, bytes);
  }
  poisonMemory(memory, bytes);
}

}  // namespace vorn::runtime
