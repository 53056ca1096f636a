// Roots, and what they prove. For the thread whose allocation collects, exact mode knows registered roots only, so that
// a handle which its code forgot to root is freed at its own next allocation. Other threads are stopped between two
// arbitrary instructions, perhaps holding in a register a handle that they have just been given or are about to root;
// for them, stacks and registers count as well, in either mode. Nothing is lost by that: each of them collects in its
// turn, and then is held to exact roots itself.
#include "runtime/heap/stress_heap.h"

#include <mutex>
#include <new>

#include "runtime/heap/global_roots.h"
#include "runtime/heap/sanitizers.h"
#include "runtime/heap/stress_blocks.h"
#include "runtime/threads/fast_random.h"
#include "runtime/threads/world_stop.h"

namespace vorn::runtime {

namespace {

class StressHeap final : public HeapBackend {
 public:
  bool prepare() { return blocks_.reserve() && prepareToStopThreads(); }

  void setSchedule(const StressSchedule& schedule) {
    const std::lock_guard lock(mutex_);
    schedule_ = schedule;
    scheduleState_ = mixRandomBits(schedule.seed);
  }

  void* allocate(std::size_t bytes, BlockKind kind) noexcept override {
    const std::lock_guard lock(mutex_);
    if (collecting_ && collectionIsDue()) collectLocked();
    return blocks_.allocate(bytes, kind);
  }

  void collect() noexcept override {
    const std::lock_guard lock(mutex_);
    if (collecting_) collectLocked();
  }

  HeapUsage usage() noexcept override {
    const std::lock_guard lock(mutex_);
    return {blocks_.bytesLive(), collections_};
  }

  void setCollecting(bool collecting) noexcept override {
    const std::lock_guard lock(mutex_);
    collecting_ = collecting;
  }

  // Threads come and go only between collections.
  ThreadState& attachThread(ThreadState& (*claim)()) override {
    const std::uintptr_t stackBase = stackBaseOfCallingThread();
    const std::lock_guard lock(mutex_);
    ThreadState& state = claim();
    state.thread = pthread_self();
    state.stackBase = stackBase;
    return state;
  }

  void detachThread(ThreadState& state) noexcept override {
    const std::lock_guard lock(mutex_);
    state.inUse.store(false, std::memory_order_release);
  }

 private:
  // A random schedule, since a fixed period resonates with the code under test: collecting at every third allocation
  // missed a missing root in a loop that allocated three times.
  bool collectionIsDue() {
    return schedule_.collectOneIn == 1 || nextRandom(scheduleState_) % schedule_.collectOneIn == 0;
  }

  void collectLocked();
  __attribute__((noinline)) void markFromStackPointer(const ThreadState& self);
  void markRoots(const ThreadState& self, std::uintptr_t ownStackPointer);
  void markReachable();
  VORN_READS_FOREIGN_WORDS void markBases(void** first, void** end);
  VORN_READS_FOREIGN_WORDS void markStack(std::uintptr_t first, std::uintptr_t end);
  void markBlock(StressBlocks::Slot slot);

  std::mutex mutex_;
  StressBlocks blocks_;
  StressSchedule schedule_{false, 1, 0, 0};
  std::uint64_t scheduleState_ = 0;
  std::uint64_t collections_ = 0;
  std::size_t pending_ = 0;  // marked blocks on the mark stack, not yet searched
  bool collecting_ = false;
};

// Freeing needs no stopped world: nobody can reach what is freed.
void StressHeap::collectLocked() {
  const ThreadState& self = *currentThread;
  if (kThreadSanitizer) {
    // ThreadSanitizer holds signals back until a thread enters the C library, so that stopping threads could wait for
    // ever. A missed collection is always sound.
    bool alone = true;
    forEachThread([&](const ThreadState& state) { alone = alone && &state == &self; });
    if (!alone) return;
  }
  {
    const StoppedWorld stopped(self);
    // Spills the callee-saved registers into this frame, which the callee's stack pointer is below.
    __builtin_unwind_init();
    markFromStackPointer(self);
  }
  blocks_.freeUnmarked();
  ++collections_;
}

void StressHeap::markFromStackPointer(const ThreadState& self) {
  markRoots(self, reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0)));
  markReachable();
}

void StressHeap::markRoots(const ThreadState& self, std::uintptr_t ownStackPointer) {
  forEachThread([&](ThreadState& state) {
    state.recentBlocks.forLast(schedule_.recentBlocks, [this](void** first, void** end) { markBases(first, end); });
    state.roots.forEach([this](void** first, void** end) { markBases(first, end); });
    if (&state != &self) {
      markStack(state.stoppedAt.load(std::memory_order_acquire), state.stackBase);
    } else if (schedule_.scansStacks) {
      markStack(ownStackPointer, state.stackBase);
    }
  });
  GlobalRoots::instance().forEach([this](void** slot) { markBases(slot, slot + 1); });
}

void StressHeap::markReachable() {
  while (pending_ != 0) {
    const StressBlocks::Block& block = blocks_[blocks_.markStack()[--pending_]];
    auto** const first = reinterpret_cast<void**>(block.start);
    markBases(first, first + block.bytes / sizeof(void*));
  }
}

// Each block enters the stack once, so that the stack cannot overflow.
void StressHeap::markBlock(StressBlocks::Slot slot) {
  StressBlocks::Block& block = blocks_[slot];
  if (block.marked) return;
  block.marked = true;
  if (block.kind == BlockKind::Scanned) blocks_.markStack()[pending_++] = slot;
}

// Registered roots and scanned blocks hold handles, and a handle is the base of its block.
void StressHeap::markBases(void** first, void** end) {
  for (void** word = first; word < end; ++word) {
    const auto address = reinterpret_cast<std::uintptr_t>(__atomic_load_n(word, __ATOMIC_RELAXED));
    if (const StressBlocks::Slot slot = blocks_.blockAt(address)) markBlock(slot);
  }
}

// A compiler may keep only a pointer into a block.
void StressHeap::markStack(std::uintptr_t first, std::uintptr_t end) {
  for (std::uintptr_t at = first & ~(sizeof(void*) - 1); at < end; at += sizeof(void*)) {
    const std::uintptr_t address = __atomic_load_n(reinterpret_cast<std::uintptr_t*>(at), __ATOMIC_RELAXED);
    if (const StressBlocks::Slot slot = blocks_.blockContaining(address)) markBlock(slot);
  }
}

StressHeap& theHeap() {
  alignas(StressHeap) static unsigned char storage[sizeof(StressHeap)];
  static auto* const heap = new (storage) StressHeap;
  return *heap;
}

}  // namespace

HeapBackend* makeStressHeap() { return theHeap().prepare() ? &theHeap() : nullptr; }

void setStressSchedule(const StressSchedule& schedule) { theHeap().setSchedule(schedule); }

}  // namespace vorn::runtime
