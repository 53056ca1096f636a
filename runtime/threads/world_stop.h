// Stopping every other attached thread, for the stress heap.
//
// Threads are stopped by a signal, wherever they are: waiting for them at safe points would deadlock with a thread that
// holds a collection's lock while another one waits for it. A stopped thread has its registers on its own stack, in the
// frame that the kernel pushed for the signal, so that scanning the stack from `stoppedAt` to `stackBase` sees them.
#pragma once

#include "runtime/threads/thread_state.h"

namespace vorn::runtime {

// Installs the signal handler. Call once, before any thread can be stopped. False when the system refuses.
bool prepareToStopThreads();

// Fills in the stack base of the calling thread's state.
[[nodiscard]] std::uintptr_t stackBaseOfCallingThread();

// Every other attached thread is stopped while this lives. The caller holds the lock under which threads attach and
// detach, and while the world is stopped takes no other lock and neither allocates nor frees: a stopped thread may be
// inside malloc.
class StoppedWorld {
 public:
  explicit StoppedWorld(const ThreadState& self);
  ~StoppedWorld();
  StoppedWorld(const StoppedWorld&) = delete;
  StoppedWorld& operator=(const StoppedWorld&) = delete;

 private:
  bool stopped_ = false;
};

}  // namespace vorn::runtime
