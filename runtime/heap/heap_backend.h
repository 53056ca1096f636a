// The interface of the three heaps. One of them is made when the runtime starts and stays for the rest of the process.
#pragma once

#include <cstddef>
#include <cstdint>

#include "runtime/heap/block_kind.h"
#include "runtime/threads/thread_state.h"

namespace vorn::runtime {

struct HeapUsage {
  std::uint64_t bytesLive;
  std::uint64_t collections;
};

// How the stress heap collects; the other heaps have nothing to choose.
struct StressSchedule {
  bool scansStacks;
  std::uint32_t collectOneIn;  // at least 1
  std::uint64_t seed;
  std::size_t recentBlocks;  // of each thread that stay alive
};

class HeapBackend {
 public:
  HeapBackend() = default;
  HeapBackend(const HeapBackend&) = delete;
  HeapBackend& operator=(const HeapBackend&) = delete;

  // A 16-byte aligned block, or null on exhaustion. The calling thread is attached.
  virtual void* allocate(std::size_t bytes, BlockKind kind) noexcept = 0;

  // A full collection, where the heap has such a thing. The calling thread is attached.
  virtual void collect() noexcept = 0;

  virtual HeapUsage usage() noexcept = 0;

  // Turns collecting at allocations on or off.
  virtual void setCollecting(bool collecting) noexcept = 0;

  // Makes the calling thread known, and unknown again. `claim` yields the state to use; a heap that must not be
  // collecting while the list of threads changes calls it at such a time. After detaching, the state is not in use.
  virtual ThreadState& attachThread(ThreadState& (*claim)()) = 0;
  virtual void detachThread(ThreadState& state) noexcept = 0;

  // Whether allocations must come through allocate(), instead of the short path for the collected heap.
  [[nodiscard]] virtual bool allocatesSlowly() const noexcept { return true; }

 protected:
  ~HeapBackend() = default;
};

}  // namespace vorn::runtime
