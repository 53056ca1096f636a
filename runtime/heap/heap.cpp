// The allocation path. On the collected heap a small allocation is three tests, two counters and a block off a list of
// the thread's own, and a larger one the collector library's call; everything rarer is in allocateSlowly.
#include "runtime/heap/heap.h"

#include <gc/gc.h>

#include <new>

#include "collections/core/port/memory.h"
#include "runtime/heap/global_roots.h"
#include "runtime/heap/heap_control.h"
#include "runtime/heap/huge_pages.h"

namespace vorn::runtime {

namespace {

// No heap hands out a larger block. The bound keeps sizes clear of overflow, and of requests for which an allocator in
// a sanitizer build would end the process instead of answering null.
constexpr std::size_t kLargestBlock = std::size_t{1} << 38;

// Whether this very allocation is the one that was armed to fail. Fires once.
bool armedFailureFires(ThreadState& thread) {
  if (thread.allocationsBeforeFailure < 0) return false;
  if (thread.allocationsBeforeFailure-- > 0) return false;
  thread.failureHappened = true;
  thread.allocatesSlowly = startedHeap().allocatesSlowly();
  return true;
}

__attribute__((noinline, cold)) void* allocateSlowly(std::size_t bytes, BlockKind kind, BlockUse use) noexcept {
  ThreadState& thread = attachedThread();
  if (armedFailureFires(thread) || bytes > kLargestBlock) return nullptr;
  void* const block = startedHeap().allocate(bytes, kind);
  if (block != nullptr) thread.handOut(block, bytes, use);
  return block;
}

template <BlockKind kind>
inline void* largerBlock(std::size_t bytes) noexcept {
  void* const block = kind == BlockKind::Scanned ? GC_malloc(bytes) : GC_malloc_atomic(bytes);
  if (block != nullptr) [[likely]]
    putOnHugePages(block, bytes);
  return block;
}

// A block off a list of the thread's own, which is nearly every one; null when that will not do. All else is kept out of
// it, so that it needs no stack.
template <BlockKind kind, BlockUse use>
inline void* allocateAtOnce(std::size_t bytes) noexcept {
  ThreadState* const thread = currentThread;
  if (bytes > SmallBlocks::kLargest || thread == nullptr || thread->allocatesSlowly) [[unlikely]]
    return nullptr;
  void* const block = thread->smallBlocks.take<kind>(bytes);
  if (block != nullptr) [[likely]]
    thread->handOut(block, bytes, use);
  return block;
}

// What cannot be had at once: larger blocks, the first of many small ones, and everything rarer.
template <BlockKind kind>
inline void* tryOtherwise(std::size_t bytes, BlockUse use) noexcept {
  ThreadState* const thread = currentThread;
  if (thread == nullptr || thread->allocatesSlowly || bytes > kLargestBlock) [[unlikely]]
    return allocateSlowly(bytes, kind, use);
  const bool small = bytes <= SmallBlocks::kLargest;
  void* const block = !small                                    ? largerBlock<kind>(bytes)
                      : thread->smallBlocks.refill(kind, bytes) ? thread->smallBlocks.take<kind>(bytes)
                                                                : nullptr;
  if (block == nullptr) [[unlikely]]
    return allocateSlowly(bytes, kind, use);
  thread->handOut(block, bytes, use);
  return block;
}

// Who asks for a handle catches an exception; who asks for memory is answered null.
template <BlockKind kind, BlockUse use>
__attribute__((noinline)) void* allocateOtherwise(std::size_t bytes) noexcept(use == BlockUse::Memory) {
  void* const block = tryOtherwise<kind>(bytes, use);
  if constexpr (use == BlockUse::Handle) {
    if (block == nullptr) throw std::bad_alloc();
  }
  return block;
}

template <BlockKind kind, BlockUse use>
inline void* allocate(std::size_t bytes) noexcept(use == BlockUse::Memory) {
  void* const block = allocateAtOnce<kind, use>(bytes);
  return block != nullptr ? block : allocateOtherwise<kind, use>(bytes);
}

}  // namespace

void* allocateScanned(std::size_t bytes) { return allocate<BlockKind::Scanned, BlockUse::Handle>(bytes); }

void* allocateAtomic(std::size_t bytes) { return allocate<BlockKind::Atomic, BlockUse::Handle>(bytes); }

void* tryAllocateScanned(std::size_t bytes) noexcept { return allocate<BlockKind::Scanned, BlockUse::Memory>(bytes); }

void* tryAllocateAtomic(std::size_t bytes) noexcept { return allocate<BlockKind::Atomic, BlockUse::Memory>(bytes); }

void addGlobalRoot(void** slot) { GlobalRoots::instance().add(slot); }

void removeGlobalRoot(void** slot) { GlobalRoots::instance().remove(slot); }

void armAllocationFailure(std::int64_t after) {
  ThreadState& thread = attachedThread();
  thread.allocationsBeforeFailure = after < 0 ? -1 : after;
  if (after >= 0) thread.failureHappened = false;
  thread.allocatesSlowly = after >= 0 || startedHeap().allocatesSlowly();
}

}  // namespace vorn::runtime

void* Vorn_gcAlloc(std::size_t bytes) { return vorn::runtime::tryAllocateScanned(bytes); }

void* Vorn_gcAllocAtomic(std::size_t bytes) { return vorn::runtime::tryAllocateAtomic(bytes); }

void Vorn_gcRegisterRootRange(void* start, std::size_t bytes) {
  vorn::runtime::attachedThread().roots.push(start, bytes);
}

void Vorn_gcUnregisterRootRange(void* start, std::size_t bytes) {
  vorn::runtime::attachedThread().roots.remove(start, bytes);
}

void Vorn_gcRegisterRootSlot(void** slot) { vorn::runtime::attachedThread().roots.push(slot, sizeof(void*)); }

void Vorn_gcUnregisterRootSlot(void** slot) {
  vorn::runtime::ThreadState& thread = vorn::runtime::attachedThread();
  thread.recentBlocks.note(*slot);
  thread.roots.remove(slot, sizeof(void*));
}
