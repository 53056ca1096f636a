// The stress heap proves things about other code, so that it must be proven first: it frees what is not rooted at the
// next allocation, traps what touches freed or foreign memory, and keeps all that is reachable.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>
#include <vector>

#include "collections/core/port/roots.h"
#include "runtime/heap/sanitizers.h"
#include "runtime/heap/stress_blocks.h"
#include "tests/runtime/heap_probe.h"
#include "tests/support/threads.h"

namespace vorn::tests {
namespace {

using collections::HandleVector;
using collections::RootedHandle;

class StressHeapTest : public RuntimeTest {
 protected:
  void SetUp() override {
    if (!onStressHeap()) GTEST_SKIP() << "runs with VORN_TEST_HEAP=heap=stress";
    restart("heap=stress");
  }
  void TearDown() override {
    if (onStressHeap()) {
      vorn_runtime_stop();
      const vorn_runtime_options options = testOptions();
      EXPECT_EQ(vorn_runtime_start(&options), 1);
    }
    RuntimeTest::TearDown();
  }
  // Another schedule or mode on the same heap.
  static void restart(const char* text) {
    vorn_runtime_options options;
    ASSERT_EQ(vorn_runtime_parse_options(text, &options), 1);
    vorn_runtime_stop();
    ASSERT_EQ(vorn_runtime_start(&options), 1);
  }
};

// Reads through a pointer that the optimiser knows nothing about.
template <class T>
T readAt(const T* address) {
  return *const_cast<const volatile T*>(address);
}

// Where a death test ends when nothing killed it.
[[noreturn]] void survive() { std::_Exit(0); }

// ---- What it catches

TEST_F(StressHeapTest, UnrootedBlock_DiesAtTheNextAllocation) {
  EXPECT_DEATH(
      {
        auto* lost = static_cast<Node*>(Vorn_gcAlloc(sizeof(Node)));
        (void)Vorn_gcAllocAtomic(16);
        (void)readAt(&lost->value);
        survive();
      },
      "");
}

TEST_F(StressHeapTest, UnrootedAtomicBlock_DiesToo) {
  EXPECT_DEATH(
      {
        auto* lost = static_cast<unsigned char*>(Vorn_gcAllocAtomic(100'000));
        (void)Vorn_gcAlloc(16);
        lost[50'000] = 1;
        survive();
      },
      "");
}

TEST_F(StressHeapTest, HandleOnlyInAnAtomicBlock_IsLost) {
  EXPECT_DEATH(
      {
        RootedHandle box(Vorn_gcAllocAtomic(sizeof(void*)));
        *static_cast<void**>(box.get()) = newNode(nullptr, 1);
        (void)Vorn_gcAlloc(16);
        (void)readAt(&nodeAt(*static_cast<void**>(box.get()))->value);
        survive();
      },
      "");
}

TEST_F(StressHeapTest, HandleOnlyInMallocMemory_IsLost) {
  EXPECT_DEATH(
      {
        std::vector<void*> handles(1, newNode(nullptr, 1));
        (void)Vorn_gcAlloc(16);
        (void)readAt(&nodeAt(handles[0])->value);
        survive();
      },
      "");
}

// A root is a handle, hence the base of a block.
TEST_F(StressHeapTest, PointerIntoTheMiddle_IsNoRoot) {
  EXPECT_DEATH(
      {
        auto* words = static_cast<std::uint64_t*>(Vorn_gcAlloc(64));
        RootedHandle middle(words + 2);
        (void)Vorn_gcAlloc(16);
        (void)readAt(words);
        survive();
      },
      "");
}

TEST_F(StressHeapTest, RootRemovedTooEarly_IsCaught) {
  EXPECT_DEATH(
      {
        void* slot = nullptr;
        Vorn_gcRegisterRootSlot(&slot);
        slot = newNode(nullptr, 1);
        Vorn_gcUnregisterRootSlot(&slot);
        (void)Vorn_gcAlloc(16);
        (void)readAt(&nodeAt(slot)->value);
        survive();
      },
      "");
}

TEST_F(StressHeapTest, BufferAbandonedByGrowth_IsCaught) {
  EXPECT_DEATH(
      {
        HandleVector handles;
        handles->reserve(1);
        handles->push_back(nullptr);
        void** stale = handles->data();
        handles->push_back(nullptr);
        handles->push_back(nullptr);
        (void)Vorn_gcAlloc(16);
        (void)readAt(stale);
        survive();
      },
      "");
}

TEST_F(StressHeapTest, WriteBehindABlock_IsCaught) {
  for (const std::size_t size : {16u, 64u, 4096u, 10'000u}) {
    EXPECT_DEATH(
        {
          RootedHandle block(Vorn_gcAllocAtomic(size));
          static_cast<volatile unsigned char*>(block.get())[(size + 15) / 16 * 16] = 1;
          survive();
        },
        "");
  }
}

TEST_F(StressHeapTest, AddressesAreNeverUsedAgain) {
  std::uintptr_t last = 0;
  for (int i = 0; i < 3000; ++i) {
    const auto address = reinterpret_cast<std::uintptr_t>(Vorn_gcAlloc(i % 3 == 0 ? 8000 : 32));
    ASSERT_GT(address, last);
    last = address;
  }
}

TEST_F(StressHeapTest, FreshAtomicBlocks_AreFilledNotZeroed) {
  const Handle block = Vorn_gcAllocAtomic(40);
  const auto* bytes = static_cast<const unsigned char*>(block.get());
  for (int i = 0; i < 40; ++i) ASSERT_EQ(bytes[i], runtime::kFreshAtomicByte);
}

// ---- What it keeps

TEST_F(StressHeapTest, LiveBytes_AreExact) {
  const std::uint64_t before = liveBytes();
  {
    const Handle first = newNode(nullptr, 1);
    const Handle second = Vorn_gcAlloc(1000);
    static_cast<void**>(second.get())[124] = Vorn_gcAllocAtomic(5);
    EXPECT_EQ(liveBytes(), before + sizeof(Node) + 1000 + 5);
    static_cast<void**>(second.get())[124] = nullptr;
    EXPECT_EQ(liveBytes(), before + sizeof(Node) + 1000);
  }
  EXPECT_EQ(liveBytes(), before);
}

TEST_F(StressHeapTest, CyclesAndSharedBlocks_AreMarkedOnceAndFreedTogether) {
  const std::uint64_t before = liveBytes();
  {
    const Handle ring = newNode(nullptr, 0);
    nodeAt(ring)->next = nodeAt(newNode(ring, 1));
    EXPECT_EQ(liveBytes(), before + 2 * sizeof(Node));
    EXPECT_EQ(nodeAt(ring)->next->next, nodeAt(ring));
  }
  EXPECT_EQ(liveBytes(), before);
}

// Marking keeps its own stack: a recursive marker overflows here.
TEST_F(StressHeapTest, LongChain_IsMarkedWithoutRecursion) {
  restart("heap=stress,one-in=1000000000,seed=1");
  constexpr int kNodes = 30'000;
  Handle first;
  for (int i = 0; i < kNodes; ++i) first = newNode(first, i);
  vorn_heap_collect();
  int count = 0;
  for (const Node* node = nodeAt(first); node != nullptr; node = node->next) ++count;
  EXPECT_EQ(count, kNodes);
}

TEST_F(StressHeapTest, HugeBlock_IsRefusedAndNothingBreaks) {
  EXPECT_EQ(Vorn_gcAlloc(std::size_t{5} << 30), nullptr);
  EXPECT_NE(Vorn_gcAlloc(16), nullptr);
}

// ---- Stacks mode

__attribute__((noinline)) bool survivesOnTheStack(bool interior) {
  // A volatile local stays in the frame.
  unsigned char* volatile kept = static_cast<unsigned char*>(Vorn_gcAlloc(256)) + (interior ? 100 : 0);
  const std::uint64_t live = statistics().bytes_live;
  (void)Vorn_gcAllocAtomic(16);
  (void)Vorn_gcAllocAtomic(16);
  kept[1] = 7;
  return kept[1] == 7 && live >= 256;
}

TEST_F(StressHeapTest, StacksMode_KeepsWhatOnlyTheStackHolds) {
  restart("heap=stress,stacks=1");
  EXPECT_TRUE(survivesOnTheStack(false));
  EXPECT_TRUE(survivesOnTheStack(true));
}

TEST_F(StressHeapTest, StacksMode_StillFreesWhatNothingHolds) {
  restart("heap=stress,stacks=1");
  const std::uint64_t before = liveBytes();
  for (int i = 0; i < 1000; ++i) (void)Vorn_gcAlloc(1000);
  EXPECT_LT(liveBytes(), before + 20'000);
}

// ---- Schedules

std::vector<bool> collectionsDuring(int allocations) {
  std::vector<bool> pattern;
  std::uint64_t last = statistics().collections;
  for (int i = 0; i < allocations; ++i) {
    (void)Vorn_gcAlloc(16);
    const std::uint64_t now = statistics().collections;
    pattern.push_back(now != last);
    last = now;
  }
  return pattern;
}

TEST_F(StressHeapTest, Schedule_DefaultCollectsAtEveryAllocation) {
  EXPECT_EQ(collectionsDuring(50), std::vector<bool>(50, true));
  restart("heap=stress,one-in=0");
  EXPECT_EQ(collectionsDuring(50), std::vector<bool>(50, true));
}

TEST_F(StressHeapTest, Schedule_RandomOneIsReproducibleFromTheSeed) {
  restart("heap=stress,one-in=4,seed=99");
  const std::vector<bool> first = collectionsDuring(1000);
  const auto collections = std::count(first.begin(), first.end(), true);
  EXPECT_GT(collections, 180);
  EXPECT_LT(collections, 320);
  restart("heap=stress,one-in=4,seed=99");
  EXPECT_EQ(collectionsDuring(1000), first);
  restart("heap=stress,one-in=4,seed=100");
  EXPECT_NE(collectionsDuring(1000), first);
}

// ---- Threads

// A thread that has just been handed a block must find it whole, however often another one collects meanwhile.
TEST_F(StressHeapTest, FreshBlocks_SurviveCollectionsOfOtherThreads) {
  std::atomic<bool> done{false};
  Beside collector([&] {
    vorn_thread_attach();
    while (!done) vorn_heap_collect();
  });
  for (int i = 0; i < 300; ++i) {
    auto* node = static_cast<Node*>(Vorn_gcAlloc(sizeof(Node)));
    for (int spin = 0; spin < 200; ++spin) {
      node->value = spin;
      ASSERT_EQ(readAt(&node->value), spin);
    }
  }
  done = true;
  collector.join();
}

// Another thread's collections are lenient with this one's stack; its own are not.
TEST_F(StressHeapTest, UnrootedBlock_DiesWithOtherThreadsAround) {
  if (runtime::kThreadSanitizer) GTEST_SKIP() << "ThreadSanitizer builds collect only while one thread is attached";
  EXPECT_DEATH(
      {
        std::thread other([] {
          vorn_thread_attach();
          for (;;) std::this_thread::yield();
        });
        auto* lost = static_cast<Node*>(Vorn_gcAlloc(sizeof(Node)));
        (void)Vorn_gcAllocAtomic(16);
        (void)readAt(&lost->value);
        survive();
      },
      "");
}

// ---- Speed: slow tests would not be run

TEST_F(StressHeapTest, TenThousandAllocations_TakeLittleTime) {
  const Handle kept = newNode(nullptr, 1);
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < 10'000; ++i) (void)Vorn_gcAlloc(32);
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  RecordProperty("microseconds_per_allocation", std::to_string(seconds.count() * 100));
  EXPECT_LT(seconds.count(), 2.0);
}

}  // namespace
}  // namespace vorn::tests
