#include "runtime/heap/collected_heap.h"

#define GC_THREADS
#define GC_NO_THREAD_REDIRECTS
#include <gc/gc.h>
#include <gc/gc_mark.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "runtime/heap/global_roots.h"
#include "runtime/heap/heap_limit.h"
#include "runtime/heap/huge_pages.h"

namespace vorn::runtime {

namespace {

GC_push_other_roots_proc previousPushOtherRoots;
std::size_t recentBlocksKept;  // of each thread

bool isFirstThreadOfProcess() { return syscall(SYS_gettid) == getpid(); }

// Runs while the collector has stopped every other thread, each at an arbitrary instruction: it may take no lock and
// allocate nothing. A range on a stack is marked twice, which costs less than telling it from one that is not.
void pushRoots() {
  if (previousPushOtherRoots != nullptr) previousPushOtherRoots();
  forEachThread([](ThreadState& thread) {
    thread.roots.forEach([](void** first, void** end) { GC_push_all_eager(first, end); });
    thread.smallBlocks.forEach([](void* block) { GC_set_mark_bit(block); });
    thread.recentBlocks.forLast(recentBlocksKept, [](void** first, void** end) { GC_push_all_eager(first, end); });
  });
  GlobalRoots::instance().forEach([](void** slot) { GC_push_all_eager(slot, slot + 1); });
}

void initialiseCollector(const CollectorTuning& tuning) {
  // A handle in the heap is the base of its block; with interior pointers off, a block of 32 bytes takes 32 and false
  // retention is rarer. Pointers on stacks and in registers may be interior all the same.
  GC_set_all_interior_pointers(0);
  // Marking in parallel costs a lock per allocation refill and wins nothing on heaps of our size.
  GC_set_markers_count(1);
  GC_set_warn_proc(GC_ignore_warn_proc);
  GC_set_dont_precollect(1);
  // Constructed before the first collection: making it inside one could meet its own guard held by a stopped thread.
  GlobalRoots::instance();
  GC_INIT();
  // The library takes the thread that initialises it for the process's first one and assumes that one's stack.
  if (!isFirstThreadOfProcess()) {
    GC_stack_base base;
    if (GC_get_stack_base(&base) == GC_SUCCESS) {
      GC_call_with_alloc_lock(
          [](void* stackBase) -> void* {
            GC_set_stackbottom(nullptr, static_cast<GC_stack_base*>(stackBase));
            return nullptr;
          },
          &base);
    }
  }
  GC_set_free_space_divisor(tuning.freeSpaceDivisor);
  GC_set_min_bytes_allocd(tuning.roomBytes);
  keepHeapBelowLimit();
  if (GC_get_heap_size() < tuning.roomBytes) GC_expand_hp(tuning.roomBytes - GC_get_heap_size());
  GC_allow_register_threads();
  recentBlocksKept = tuning.recentBlocks;
  if (tuning.hugePages) wantHugePages();
  previousPushOtherRoots = GC_get_push_other_roots();
  GC_set_push_other_roots(pushRoots);
}

class CollectedHeap final : public HeapBackend {
 public:
  CollectedHeap() : initialiser_(pthread_self()) {}

  // The common case never comes here; see heap.cpp. The library has collected before it gave up, unless collecting is
  // off, but a second collection may find what the first one's stale registers held.
  void* allocate(std::size_t bytes, BlockKind kind) noexcept override {
    if (void* block = allocateOnce(bytes, kind)) return block;
    lookAtLimitAgain();
    GC_gcollect();
    return allocateOnce(bytes, kind);
  }

  void collect() noexcept override { GC_gcollect(); }

  HeapUsage usage() noexcept override {
    GC_prof_stats_s statistics{};
    GC_get_prof_stats(&statistics, sizeof(statistics));
    return {statistics.heapsize_full - statistics.free_bytes_full, statistics.gc_no};
  }

  // The library counts GC_disable calls, so each state is entered once.
  void setCollecting(bool collecting) noexcept override {
    if (collecting == collecting_) return;
    collecting_ = collecting;
    if (collecting) {
      GC_enable();
    } else {
      GC_disable();
    }
  }

  ThreadState& attachThread(ThreadState& (*claim)()) override {
    ThreadState& state = claim();
    state.thread = pthread_self();
    if (GC_thread_is_registered()) {
      // Either somebody else registered this thread, whose business it stays, or it initialised the library, which
      // registered it as the first thread; if it is not that, it will end and must be forgotten then.
      state.registeredWithCollector = pthread_equal(initialiser_, pthread_self()) != 0 && !isFirstThreadOfProcess();
      return state;
    }
    GC_stack_base base;
    if (GC_get_stack_base(&base) != GC_SUCCESS || GC_register_my_thread(&base) != GC_SUCCESS) {
      std::fputs("vorn: the collector cannot see this thread's stack\n", stderr);
      std::abort();
    }
    state.registeredWithCollector = true;
    return state;
  }

  void detachThread(ThreadState& state) noexcept override {
    if (state.registeredWithCollector) {
      if (pthread_equal(initialiser_, pthread_self()) != 0) initialiser_ = pthread_t{};
      GC_unregister_my_thread();
      state.registeredWithCollector = false;
    }
    state.inUse.store(false, std::memory_order_release);
  }

  [[nodiscard]] bool allocatesSlowly() const noexcept override { return false; }

 private:
  static void* allocateOnce(std::size_t bytes, BlockKind kind) {
    return kind == BlockKind::Scanned ? GC_malloc(bytes) : GC_malloc_atomic(bytes);
  }

  bool collecting_ = true;
  // The thread that made the heap, until it leaves; its id may be another thread's later.
  std::atomic<pthread_t> initialiser_;
};

}  // namespace

HeapBackend* makeCollectedHeap(const CollectorTuning& tuning) {
  initialiseCollector(tuning);
  static CollectedHeap heap;
  return &heap;
}

}  // namespace vorn::runtime
