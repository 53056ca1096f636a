#include "runtime/heap/plain_heap.h"

#include <cstdlib>

#include "runtime/heap/sanitizers.h"

namespace vorn::runtime {

namespace {

static_assert(alignof(std::max_align_t) >= 16, "malloc must align blocks as handles need it");

class PlainHeap final : public HeapBackend {
 public:
  // Atomic blocks stay uninitialised, so that valgrind sees a read of what was never written.
  void* allocate(std::size_t bytes, BlockKind kind) noexcept override {
    const LeaksOnPurpose leaks;
    const std::size_t size = bytes == 0 ? 1 : bytes;
    void* const block = kind == BlockKind::Scanned ? std::calloc(1, size) : std::malloc(size);
    if (block != nullptr) bytesLive_.fetch_add(bytes, std::memory_order_relaxed);
    return block;
  }

  void collect() noexcept override {}

  HeapUsage usage() noexcept override { return {bytesLive_.load(std::memory_order_relaxed), 0}; }

  void setCollecting(bool) noexcept override {}

  ThreadState& attachThread(ThreadState& (*claim)()) override {
    ThreadState& state = claim();
    state.thread = pthread_self();
    return state;
  }

  void detachThread(ThreadState& state) noexcept override { state.inUse.store(false, std::memory_order_release); }

 private:
  std::atomic<std::uint64_t> bytesLive_{0};
};

}  // namespace

HeapBackend* makePlainHeap() {
  static constinit PlainHeap heap;
  return &heap;
}

}  // namespace vorn::runtime
