// The heap's contract, on whichever heap the tests run: blocks, exhaustion, statistics, options, random bits.
#include "runtime/heap/heap.h"

#include <cstring>
#include <limits>
#include <new>
#include <set>

#include "collections/core/port/text.h"
#include "runtime/heap/heap_control.h"
#include "runtime/threads/fast_random.h"
#include "tests/runtime/heap_probe.h"
#include "tests/support/threads.h"

namespace vorn::tests {
namespace {

using HeapTest = RuntimeTest;

constexpr std::size_t kSizes[] = {0, 1, 8, 15, 16, 17, 31, 32, 33, 4080, 4095, 4096, 4097, 100'000};

TEST_F(HeapTest, ScannedBlocks_AreAlignedAndZeroed) {
  for (const std::size_t size : kSizes) {
    const Handle block = runtime::allocateScanned(size);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block.get()) % 16, 0u) << size;
    const auto* bytes = static_cast<const unsigned char*>(block.get());
    for (std::size_t i = 0; i < size; ++i) ASSERT_EQ(bytes[i], 0) << size << " at " << i;
  }
}

// Memory that was used before must be cleared before it is handed out again.
TEST_F(HeapTest, ScannedBlocks_AreZeroedWhenTheirMemoryIsReused) {
  const int rounds = onStressHeap() ? 2'000 : 200'000;
  for (int i = 0; i < rounds; ++i) {
    auto* block = static_cast<std::uint64_t*>(runtime::allocateScanned(64));
    for (int word = 0; word < 8; ++word) ASSERT_EQ(block[word], 0u);
    std::memset(block, 0xFF, 64);
  }
}

TEST_F(HeapTest, AtomicBlocks_AreAlignedAndHoldWhatIsWritten) {
  for (const std::size_t size : kSizes) {
    const Handle block = runtime::allocateAtomic(size);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block.get()) % 16, 0u) << size;
    std::memset(block.get(), 0x5A, size);
    vorn_heap_collect();
    const auto* bytes = static_cast<const unsigned char*>(block.get());
    for (std::size_t i = 0; i < size; ++i) ASSERT_EQ(bytes[i], 0x5A) << size << " at " << i;
  }
}

TEST_F(HeapTest, ExportedAllocators_AreTheSameHeap) {
  const Handle scanned = Vorn_gcAlloc(48);
  const Handle atomic = Vorn_gcAllocAtomic(48);
  ASSERT_NE(scanned.get(), nullptr);
  ASSERT_NE(atomic.get(), nullptr);
  vorn_heap_collect();
  EXPECT_EQ(*static_cast<std::uint64_t*>(scanned.get()), 0u);
}

TEST_F(HeapTest, Chain_SurvivesThroughItsFirstNode) {
  const int nodes = onStressHeap() ? 500 : 50'000;
  Handle first;
  for (int i = 0; i < nodes; ++i) first = newNode(first, i);
  vorn_heap_collect();
  int expected = nodes;
  for (const Node* node = nodeAt(first); node != nullptr; node = node->next) ASSERT_EQ(node->value, --expected);
  EXPECT_EQ(expected, 0);
}

TEST_F(HeapTest, LastWordOfABigBlock_KeepsItsHandleAlive) {
  constexpr std::size_t kWords = (std::size_t{8} << 20) / sizeof(void*);
  const Handle block = runtime::allocateScanned(kWords * sizeof(void*));
  auto** words = static_cast<void**>(block.get());
  words[kWords - 1] = newNode(nullptr, 42);
  words[0] = newNode(nullptr, 41);
  vorn_heap_collect();
  makeGarbage();
  EXPECT_EQ(nodeAt(words[0])->value, 41);
  EXPECT_EQ(nodeAt(words[kWords - 1])->value, 42);
}

TEST_F(HeapTest, Garbage_IsReclaimed) {
  if (onPlainHeap()) GTEST_SKIP() << "the plain heap frees nothing";
  constexpr std::size_t kBytes = std::size_t{1} << 20;
  for (int i = 0; i < 1024; ++i) ASSERT_NE(runtime::allocateAtomic(kBytes), nullptr);
  EXPECT_LT(statistics().bytes_live, std::uint64_t{512} << 20);
}

TEST_F(HeapTest, ImpossibleSizes_AreNullOrBadAlloc) {
  constexpr std::size_t kMost = std::numeric_limits<std::size_t>::max();
  for (const std::size_t size : {kMost, kMost - 15, kMost / 2, std::size_t{1} << 46}) {
    EXPECT_EQ(Vorn_gcAlloc(size), nullptr);
    EXPECT_EQ(Vorn_gcAllocAtomic(size), nullptr);
    EXPECT_EQ(runtime::tryAllocateScanned(size), nullptr);
    EXPECT_EQ(runtime::tryAllocateAtomic(size), nullptr);
    EXPECT_THROW((void)runtime::allocateScanned(size), std::bad_alloc);
    EXPECT_THROW((void)runtime::allocateAtomic(size), std::bad_alloc);
  }
  EXPECT_NE(Vorn_gcAlloc(16), nullptr);
}

// ---- Armed failures

TEST_F(HeapTest, ArmedFailure_LetsThatManySucceedAndFailsOnce) {
  for (int after = 0; after < 4; ++after) {
    vorn_heap_fail_allocation(after);
    for (int i = 0; i < after; ++i) {
      EXPECT_NE(i % 2 == 0 ? Vorn_gcAlloc(32) : Vorn_gcAllocAtomic(32), nullptr);
      EXPECT_EQ(vorn_heap_failure_happened(), 0);
    }
    EXPECT_EQ(after % 2 == 0 ? Vorn_gcAlloc(32) : Vorn_gcAllocAtomic(32), nullptr);
    EXPECT_EQ(vorn_heap_failure_happened(), 1);
    for (int i = 0; i < 3; ++i) EXPECT_NE(Vorn_gcAlloc(32), nullptr);
  }
}

TEST_F(HeapTest, ArmedFailure_ThrowsFromTheThrowingForms) {
  vorn_heap_fail_allocation(0);
  EXPECT_THROW((void)runtime::allocateScanned(8), std::bad_alloc);
  vorn_heap_fail_allocation(0);
  EXPECT_THROW((void)runtime::allocateAtomic(8), std::bad_alloc);
  EXPECT_NE(runtime::allocateAtomic(8), nullptr);
}

TEST_F(HeapTest, ArmedFailure_CanBeDisarmedAndArmedAnew) {
  vorn_heap_fail_allocation(0);
  vorn_heap_fail_allocation(-1);
  EXPECT_NE(Vorn_gcAlloc(8), nullptr);
  EXPECT_EQ(vorn_heap_failure_happened(), 0);
  vorn_heap_fail_allocation(0);
  EXPECT_EQ(Vorn_gcAlloc(8), nullptr);
  vorn_heap_fail_allocation(-1);
  EXPECT_EQ(vorn_heap_failure_happened(), 1);
  vorn_heap_fail_allocation(5);
  EXPECT_EQ(vorn_heap_failure_happened(), 0);
}

TEST_F(HeapTest, ArmedFailure_CountsOnlyThisThread) {
  vorn_heap_fail_allocation(0);
  onAnotherThread([] {
    EXPECT_NE(Vorn_gcAlloc(8), nullptr);
    EXPECT_EQ(vorn_heap_failure_happened(), 0);
  });
  EXPECT_EQ(vorn_heap_failure_happened(), 0);
  EXPECT_EQ(Vorn_gcAlloc(8), nullptr);
}

// ---- Statistics

TEST_F(HeapTest, Statistics_CountThisThreadsBlocksAndBytes) {
  const vorn_heap_statistics before = statistics();
  for (int i = 0; i < 100; ++i) {
    (void)runtime::allocateAtomic(10);
    (void)runtime::allocateScanned(30);
  }
  vorn_heap_fail_allocation(0);
  EXPECT_EQ(Vorn_gcAlloc(1000), nullptr);
  const vorn_heap_statistics after = statistics();
  EXPECT_EQ(after.allocations - before.allocations, 200u);
  EXPECT_EQ(after.bytes_allocated - before.bytes_allocated, 4000u);
}

TEST_F(HeapTest, Statistics_CountThreadsThatEnded) {
  const vorn_heap_statistics before = statistics();
  for (int thread = 0; thread < 5; ++thread) {
    onAnotherThread([] {
      for (int i = 0; i < 20; ++i) (void)runtime::allocateAtomic(7);
    });
  }
  const vorn_heap_statistics after = statistics();
  EXPECT_EQ(after.allocations - before.allocations, 100u);
  EXPECT_EQ(after.bytes_allocated - before.bytes_allocated, 700u);
}

TEST_F(HeapTest, Statistics_CountCollections) {
  const std::uint64_t before = statistics().collections;
  vorn_heap_collect();
  vorn_heap_collect();
  EXPECT_EQ(statistics().collections - before, onPlainHeap() ? 0u : 2u);
}

TEST_F(HeapTest, Statistics_LiveBytesCoverWhatIsRooted) {
  const Handle block = runtime::allocateScanned(3'000'000);
  vorn_heap_collect();
  EXPECT_GE(statistics().bytes_live, 3'000'000u);
  vorn_heap_get_statistics(nullptr);
}

// ---- Options, start and stop

TEST_F(HeapTest, ParseOptions_ReadsEveryOption) {
  vorn_runtime_options options;
  ASSERT_EQ(vorn_runtime_parse_options("heap=stress,stacks=1,one-in=37,seed=18446744073709551615", &options), 1);
  EXPECT_EQ(options.struct_size, sizeof(options));
  EXPECT_EQ(options.heap, VORN_HEAP_STRESS);
  EXPECT_EQ(options.stress_scans_stacks, 1);
  EXPECT_EQ(options.stress_collect_one_in, 37u);
  EXPECT_EQ(options.seed, 18446744073709551615u);
  ASSERT_EQ(vorn_runtime_parse_options("heap=plain", &options), 1);
  EXPECT_EQ(options.heap, VORN_HEAP_PLAIN);
  ASSERT_EQ(vorn_runtime_parse_options("heap=collected,room=262144,divisor=4294967295,recent=64,huge=0", &options), 1);
  EXPECT_EQ(options.collected_room_megabytes, 262'144u);
  EXPECT_EQ(options.collected_free_space_divisor, 4294967295u);
  EXPECT_EQ(options.recent_blocks, 64u);
  EXPECT_EQ(options.collected_small_pages, 1);
  ASSERT_EQ(vorn_runtime_parse_options("recent=0", &options), 1);
  EXPECT_EQ(options.recent_blocks, VORN_RECENT_NONE);
  EXPECT_EQ(options.collected_small_pages, 0);
}

TEST_F(HeapTest, ParseOptions_StartsFromTheDefaults) {
  vorn_runtime_options options;
  std::memset(&options, 0xEE, sizeof(options));
  ASSERT_EQ(vorn_runtime_parse_options("", &options), 1);
  EXPECT_EQ(options.struct_size, sizeof(options));
  EXPECT_EQ(options.heap, VORN_HEAP_COLLECTED);
  EXPECT_EQ(options.stress_scans_stacks, 0);
  EXPECT_EQ(options.stress_collect_one_in, 1u);
  EXPECT_EQ(options.seed, 0u);
  EXPECT_EQ(options.collected_room_megabytes, 8u);
  EXPECT_EQ(options.collected_free_space_divisor, 1u);
  EXPECT_EQ(options.recent_blocks, 0u) << "the heap's own default";
  EXPECT_EQ(options.collected_small_pages, 0);
}

TEST_F(HeapTest, ParseOptions_RefusesWhatItDoesNotKnowAndChangesNothing) {
  for (const char* text : {"heap",
                           "heap=",
                           "heap=other",
                           "Heap=plain",
                           "heap=plain ",
                           "stacks=2",
                           "stacks=",
                           "one-in=-1",
                           "one-in=x",
                           "one-in=4294967296",
                           "seed=1x",
                           "seed=18446744073709551616",
                           "room=",
                           "room=x",
                           "room=-1",
                           "room=1.5",
                           "room=8M",
                           "room=262145",
                           "room=4294967296",
                           "divisor=",
                           "divisor=-1",
                           "divisor=0.5",
                           "divisor=4294967296",
                           "recent=",
                           "recent=-1",
                           "recent=65",
                           "recent=4294967295",
                           "huge=",
                           "huge=2",
                           "heap=plain,",
                           ",heap=plain",
                           "heap=plain,,seed=1",
                           "colour=red",
                           "=1"}) {
    vorn_runtime_options options;
    std::memset(&options, 0xEE, sizeof(options));
    const vorn_runtime_options before = options;
    EXPECT_EQ(vorn_runtime_parse_options(text, &options), 0) << text;
    EXPECT_EQ(std::memcmp(&options, &before, sizeof(options)), 0) << text;
  }
  vorn_runtime_options options;
  EXPECT_EQ(vorn_runtime_parse_options(nullptr, &options), 0);
  EXPECT_EQ(vorn_runtime_parse_options("heap=plain", nullptr), 0);
}

TEST_F(HeapTest, Start_WhileRunningAcceptsOnlyTheSameHeap) {
  for (const vorn_heap_kind kind : {VORN_HEAP_COLLECTED, VORN_HEAP_PLAIN, VORN_HEAP_STRESS}) {
    vorn_runtime_options options = runtime::defaultOptions();
    options.heap = kind;
    EXPECT_EQ(vorn_runtime_start(&options), kind == testOptions().heap ? 1 : 0);
  }
  EXPECT_EQ(vorn_runtime_start(nullptr), testOptions().heap == VORN_HEAP_COLLECTED ? 1 : 0);
}

TEST_F(HeapTest, Start_RefusesOptionsThatMakeNoSense) {
  vorn_runtime_options options = testOptions();
  options.struct_size = 0;
  EXPECT_EQ(vorn_runtime_start(&options), 0);
  options = testOptions();
  options.heap = static_cast<vorn_heap_kind>(3);
  EXPECT_EQ(vorn_runtime_start(&options), 0);
  options = testOptions();
  options.collected_room_megabytes = 262'145;
  EXPECT_EQ(vorn_runtime_start(&options), 0);
  options = testOptions();
  options.recent_blocks = 65;
  EXPECT_EQ(vorn_runtime_start(&options), 0);
}

TEST_F(HeapTest, Start_TakesTheDefaultsForWhatAShorterStructLacks) {
  vorn_runtime_options options = testOptions();
  options.struct_size = offsetof(vorn_runtime_options, stress_scans_stacks);
  EXPECT_EQ(vorn_runtime_start(&options), 1);
  options.struct_size = offsetof(vorn_runtime_options, collected_room_megabytes);
  options.collected_room_megabytes = 262'145;
  EXPECT_EQ(vorn_runtime_start(&options), 1) << "what lies behind the struct is not read";
}

TEST_F(HeapTest, Stop_EndsCollectionsAndClearsErrorsAndRootsOfTheThread) {
  const RestartsRuntime restarts;
  const Handle kept = newNode(nullptr, 5);
  vorn_raise("Exception", "left over");
  void* slot = nullptr;
  Vorn_gcRegisterRootSlot(&slot);
  vorn_runtime_stop();
  EXPECT_EQ(vorn_error_count(), 0u);
  EXPECT_EQ(runtime::currentThread->roots.size(), 0u);
  const std::uint64_t collections = statistics().collections;
  vorn_heap_collect();
  EXPECT_EQ(statistics().collections, collections);
  EXPECT_NE(Vorn_gcAlloc(16), nullptr) << "allocation goes on, without collections";
  vorn_runtime_options other = testOptions();
  other.heap = other.heap == VORN_HEAP_PLAIN ? VORN_HEAP_COLLECTED : VORN_HEAP_PLAIN;
  EXPECT_EQ(vorn_runtime_start(&other), 0);
  const vorn_runtime_options same = testOptions();
  EXPECT_EQ(vorn_runtime_start(&same), 1);
  vorn_heap_collect();
  EXPECT_EQ(nodeAt(kept)->value, 5) << "process-wide roots outlive a stop";
}

// ---- Random bits

// Reference outputs of the published generator for the seed 1234567.
TEST_F(HeapTest, Random_IsSplitMix64) {
  std::uint64_t state = 1234567;
  EXPECT_EQ(runtime::nextRandom(state), 6457827717110365317u);
  EXPECT_EQ(runtime::nextRandom(state), 3203168211198807973u);
  EXPECT_EQ(runtime::nextRandom(state), 9817491932198370423u);
}

std::vector<std::uint64_t> randomAfterRestart(std::uint64_t seed) {
  const RestartsRuntime restarts;
  vorn_runtime_options options = testOptions();
  options.seed = seed;
  vorn_runtime_stop();
  EXPECT_EQ(vorn_runtime_start(&options), 1);
  std::vector<std::uint64_t> drawn;
  for (int i = 0; i < 100; ++i) drawn.push_back(nextFastRandomU64());
  return drawn;
}

TEST_F(HeapTest, Random_FollowsTheSeed) {
  const auto first = randomAfterRestart(11);
  EXPECT_EQ(randomAfterRestart(11), first);
  EXPECT_NE(randomAfterRestart(12), first);
  EXPECT_EQ(std::set<std::uint64_t>(first.begin(), first.end()).size(), first.size());
}

TEST_F(HeapTest, Random_ThreadsDrawDifferentStreams) {
  std::vector<std::uint64_t> here, there;
  Beside other([&] {
    for (int i = 0; i < 1000; ++i) there.push_back(nextFastRandomU64());
  });
  for (int i = 0; i < 1000; ++i) here.push_back(nextFastRandomU64());
  other.join();
  std::set<std::uint64_t> all(here.begin(), here.end());
  all.insert(there.begin(), there.end());
  EXPECT_EQ(all.size(), 2000u);
}

}  // namespace
}  // namespace vorn::tests
