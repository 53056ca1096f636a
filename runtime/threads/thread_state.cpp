#include "runtime/threads/thread_state.h"

#include <cstdio>
#include <cstdlib>

#include "runtime/heap/heap_control.h"
#include "runtime/threads/fast_random.h"

namespace vorn::runtime {

thread_local constinit ThreadState* currentThread __attribute__((tls_model("initial-exec"))) = nullptr;

namespace {

std::atomic<ThreadState*> firstState{nullptr};

// A state that no thread uses, marked as used. One that ended threads left comes first.
ThreadState& claimState() {
  for (ThreadState* state = firstThreadState(); state != nullptr; state = state->next) {
    bool expected = false;
    if (state->inUse.compare_exchange_strong(expected, true, std::memory_order_acq_rel)) return *state;
  }
  auto* const state = new ThreadState;
  state->inUse.store(true, std::memory_order_relaxed);
  state->next = firstState.load(std::memory_order_relaxed);
  while (!firstState.compare_exchange_weak(state->next, state, std::memory_order_release, std::memory_order_relaxed)) {
  }
  return *state;
}

// Ends an attached thread's membership when the thread ends. A later destructor of the same thread that enters the
// runtime attaches it again, which sets the key anew, and POSIX then calls this once more.
pthread_key_t detachKey() {
  static const pthread_key_t key = [] {
    pthread_key_t created;
    if (pthread_key_create(&created, [](void*) { detachCurrentThread(); }) != 0) {
      std::fputs("vorn: no thread-specific key is left for the runtime\n", stderr);
      std::abort();
    }
    return created;
  }();
  return key;
}

}  // namespace

// Where debuggers find the states of a library without a symbol table (tools/gdb).
extern "C" {
[[gnu::visibility("default")]] extern const std::atomic<ThreadState*>* const vorn_debugger_threads;
const std::atomic<ThreadState*>* const vorn_debugger_threads = &firstState;
}

ThreadState* firstThreadState() noexcept { return firstState.load(std::memory_order_acquire); }

ThreadState& attachCurrentThread() {
  if (currentThread != nullptr) return *currentThread;
  HeapBackend& heap = startedHeap();
  ThreadState& state = heap.attachThread(claimState);
  state.allocatesSlowly = heap.allocatesSlowly();
  state.randomState = nextRandomStream();
  currentThread = &state;
  pthread_setspecific(detachKey(), &state);
  return state;
}

void detachCurrentThread() noexcept {
  ThreadState* const state = currentThread;
  if (state == nullptr) return;
  currentThread = nullptr;
  pthread_setspecific(detachKey(), nullptr);
  state->roots.clear();
  state->smallBlocks.drop();
  state->recentBlocks.clear();
  clearPendingErrorsOf(state->errors);
  state->errors.shrink_to_fit();
  state->errorsRaised = 0;
  state->allocationsBeforeFailure = -1;
  state->failureHappened = false;
  startedHeap().detachThread(*state);
}

}  // namespace vorn::runtime
