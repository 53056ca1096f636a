#include "runtime/heap/heap_control.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <mutex>

#include "runtime/heap/collected_heap.h"
#include "runtime/heap/plain_heap.h"
#include "runtime/heap/stress_heap.h"
#include "runtime/keys/hash_seed.h"
#include "runtime/library_versions.h"
#include "runtime/threads/fast_random.h"

namespace vorn::runtime {

namespace {

constinit std::mutex startMutex;
constinit std::atomic<HeapBackend*> startedBackend{nullptr};
// Both guarded by startMutex.
vorn_heap_kind startedKind;
bool running;

// Both measured; see docs/heap.md.
constexpr unsigned kDefaultRoomMegabytes = 8;
constexpr unsigned kDefaultFreeSpaceDivisor = 1;

// More of them would keep more alive: results may be large, and a native that makes one roots few of its blocks after it.
constexpr unsigned kDefaultRecentBlocks = 16;

std::size_t recentBlocksOf(const vorn_runtime_options& options, unsigned byDefault) {
  if (options.recent_blocks == VORN_RECENT_NONE) return 0;
  return options.recent_blocks != 0 ? options.recent_blocks : byDefault;
}

CollectorTuning tuningOf(const vorn_runtime_options& options) {
  const unsigned room = options.collected_room_megabytes;
  const unsigned divisor = options.collected_free_space_divisor;
  return {std::size_t{room != 0 ? room : kDefaultRoomMegabytes} << 20,
          divisor != 0 ? divisor : kDefaultFreeSpaceDivisor, recentBlocksOf(options, kDefaultRecentBlocks),
          options.collected_small_pages == 0};
}

HeapBackend* makeHeap(const vorn_runtime_options& options) {
  switch (options.heap) {
    case VORN_HEAP_COLLECTED:
      return makeCollectedHeap(tuningOf(options));
    case VORN_HEAP_PLAIN:
      return makePlainHeap();
    case VORN_HEAP_STRESS:
      return makeStressHeap();
  }
  return nullptr;
}

bool startLocked(const vorn_runtime_options& options) {
  HeapBackend* heap = startedBackend.load(std::memory_order_relaxed);
  if (heap != nullptr && options.heap != startedKind) return false;
  if (running) return true;
  if (heap == nullptr) {
    heap = makeHeap(options);
    if (heap == nullptr) return false;
    drawKeyHashSeed(options.seed);
  }
  startedKind = options.heap;
  running = true;
  seedRandomStreams(options.seed);
  if (startedKind == VORN_HEAP_STRESS) {
    const std::uint32_t oneIn = options.stress_collect_one_in == 0 ? 1 : options.stress_collect_one_in;
    setStressSchedule({options.stress_scans_stacks != 0, oneIn, options.seed, recentBlocksOf(options, 0)});
  }
  heap->setCollecting(true);
  startedBackend.store(heap, std::memory_order_release);
  // A thread that outlived a stop draws from a new stream as well, so that a restart is as reproducible as a start.
  if (currentThread != nullptr) currentThread->randomState = nextRandomStream();
  return true;
}

}  // namespace

// Where debuggers find the heap of a library without a symbol table (tools/gdb).
extern "C" {
[[gnu::visibility("default")]] extern const std::atomic<HeapBackend*>* const vorn_debugger_heap;
const std::atomic<HeapBackend*>* const vorn_debugger_heap = &startedBackend;
}

vorn_runtime_options defaultOptions() {
  vorn_runtime_options options{};
  options.struct_size = sizeof(options);
  options.heap = VORN_HEAP_COLLECTED;
  options.stress_scans_stacks = 0;
  options.stress_collect_one_in = 1;
  options.seed = 0;
  options.collected_room_megabytes = kDefaultRoomMegabytes;
  options.collected_free_space_divisor = kDefaultFreeSpaceDivisor;
  options.recent_blocks = 0;
  options.collected_small_pages = 0;
  return options;
}

bool startHeap(const vorn_runtime_options& options) {
  const std::lock_guard lock(startMutex);
  return collectionsAreOfThisVersion() && startLocked(options);
}

void stopHeap() {
  const std::lock_guard lock(startMutex);
  if (HeapBackend* heap = startedBackend.load(std::memory_order_relaxed)) heap->setCollecting(false);
  running = false;
}

HeapBackend& startedHeap() {
  if (HeapBackend* heap = startedBackend.load(std::memory_order_acquire)) [[likely]]
    return *heap;
  const std::lock_guard lock(startMutex);
  if (startedBackend.load(std::memory_order_relaxed) == nullptr) {
    if (!collectionsAreOfThisVersion()) std::abort();
    if (!startLocked(defaultOptions())) {
      std::fputs("vorn: the runtime's heap cannot be made\n", stderr);
      std::abort();
    }
  }
  return *startedBackend.load(std::memory_order_relaxed);
}

}  // namespace vorn::runtime
