// What the runtime keeps about one attached thread.
//
// States live in malloc'ed memory for the rest of the process: a thread that ends gives its state back, and a later
// thread takes it over, counters included, so that sums over all states are sums over all threads that ever ran. That
// makes the list of states safe to walk at any time without a lock.
#pragma once

#include <pthread.h>

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "runtime/errors/pending_errors.h"
#include "runtime/heap/recent_blocks.h"
#include "runtime/heap/root_range_stack.h"
#include "runtime/heap/small_blocks.h"

namespace vorn::runtime {

struct ThreadState {
  // ---- Touched by every allocation; only the owner writes.

  // Whether allocations leave the short path: the heap is not the collected one, or a failure is armed.
  bool allocatesSlowly = true;
  // Read by other threads for statistics, hence atomic; never a read-modify-write.
  std::atomic<std::uint64_t> allocations{0};
  std::atomic<std::uint64_t> bytesAllocated{0};

  RootRangeStack roots;
  SmallBlocks smallBlocks;
  RecentBlocks recentBlocks;

  // ---- Touched now and then; owner only.

  PendingErrors errors;
  std::uint64_t errorsRaised = 0;  // since the thread was attached
  // Allocations that still succeed before the armed failure; negative when none is armed.
  std::int64_t allocationsBeforeFailure = -1;
  bool failureHappened = false;
  std::uint64_t randomState = 0;

  // ---- Owned by the registry and the heap.

  std::atomic<bool> inUse{false};
  ThreadState* next = nullptr;  // constant once the state is in the list
  pthread_t thread{};
  // Whether the collected heap's library learnt of this thread from us, so that we must take it back.
  bool registeredWithCollector = false;
  // The stress heap's view of the stack: its highest address, and how deep it reached when the thread was stopped.
  std::uintptr_t stackBase = 0;
  std::atomic<std::uintptr_t> stoppedAt{0};

  // Memory of a collection is not noted: whoever asks for it roots it or puts it into the collection, and buffers that a
  // growing list has left would stay alive with it.
  void handOut(void* block, std::size_t bytes, BlockUse use) noexcept {
    if (use == BlockUse::Handle) recentBlocks.note(block);
    allocations.store(allocations.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    bytesAllocated.store(bytesAllocated.load(std::memory_order_relaxed) + bytes, std::memory_order_relaxed);
  }
};

// The calling thread's state, or null while it is not attached. The initial-exec model makes reading it one
// instruction in the shared library too.
extern thread_local constinit ThreadState* currentThread __attribute__((tls_model("initial-exec")));

// Attaches the calling thread, starting the runtime if nobody has. The attached state.
ThreadState& attachCurrentThread();

// Detaches the calling thread: its errors, root ranges and armed failure are gone. Nothing when it is not attached.
void detachCurrentThread() noexcept;

// The calling thread's state; attaches it if need be.
inline ThreadState& attachedThread() {
  ThreadState* const thread = currentThread;
  if (thread == nullptr) [[unlikely]]
    return attachCurrentThread();
  return *thread;
}

// The newest state of the list of all states, those not in use included; follow `next`.
[[nodiscard]] ThreadState* firstThreadState() noexcept;

// Calls visit(state) for every attached thread. The caller sees to it that threads neither come nor go meanwhile, or
// does not mind.
template <class Visitor>
void forEachThread(Visitor&& visit) {
  for (ThreadState* state = firstThreadState(); state != nullptr; state = state->next) {
    if (state->inUse.load(std::memory_order_acquire)) visit(*state);
  }
}

}  // namespace vorn::runtime
