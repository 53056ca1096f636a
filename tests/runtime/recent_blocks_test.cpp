// What keeps a thread's newest handles alive for embedders that hold them where no collector looks.
#include "runtime/heap/recent_blocks.h"

#include <vorn/collections/map.h>

#include <algorithm>

#include "collections/core/port/roots.h"
#include "tests/runtime/heap_probe.h"
#include "tests/support/threads.h"

namespace vorn::tests {
namespace {

using runtime::RecentBlocks;

// ---- The ring by itself

std::vector<void*> lastNoted(RecentBlocks& blocks, std::size_t count) {
  std::vector<void*> last;
  blocks.forLast(count, [&](void** first, void** end) { last.insert(last.end(), first, end); });
  return last;
}

void* number(std::size_t value) { return reinterpret_cast<void*>(value); }

TEST(RecentBlocksTest, ForLast_GivesTheBlocksThatWereNotedLastWhereverTheRingStands) {
  RecentBlocks blocks;
  for (std::size_t noted = 1; noted <= 3 * RecentBlocks::kMost; ++noted) {
    blocks.note(number(noted));
    for (const std::size_t count : {std::size_t{0}, std::size_t{1}, std::size_t{5}, RecentBlocks::kMost}) {
      std::vector<void*> last = lastNoted(blocks, count);
      ASSERT_EQ(last.size(), count);
      for (std::size_t back = 0; back < count && back < noted; ++back)
        ASSERT_EQ(std::count(last.begin(), last.end(), number(noted - back)), 1) << noted << ", " << back << " back";
    }
  }
}

TEST(RecentBlocksTest, Clear_LeavesNone) {
  RecentBlocks blocks;
  for (std::size_t noted = 1; noted <= 100; ++noted) blocks.note(number(noted));
  blocks.clear();
  EXPECT_EQ(lastNoted(blocks, RecentBlocks::kMost), std::vector<void*>(RecentBlocks::kMost));
}

// ---- On the heaps

// The options of these tests' heap with so many recent blocks, as its start takes them.
bool restartWithRecentBlocks(unsigned count) {
  vorn_runtime_stop();
  vorn_runtime_options options = testOptions();
  options.recent_blocks = count;
  return vorn_runtime_start(&options) != 0;
}

class RecentBlocksOnExactHeapTest : public RuntimeTest {
 protected:
  void SetUp() override {
    if (!onExactHeap()) GTEST_SKIP() << "only the exact heap frees whatever is not held";
  }

 private:
  RestartsRuntime restarts_;
};

void makeBlocks(int count) {
  for (int i = 0; i < count; ++i) (void)runtime::allocateAtomic(64);
}

TEST_F(RecentBlocksOnExactHeapTest, Collection_KeepsAsManyAsTheOptionsSay) {
  for (const unsigned count : {1u, 2u, 16u, 64u}) {
    ASSERT_TRUE(restartWithRecentBlocks(count));
    makeBlocks(100);
    const std::uint64_t before = liveBytes();
    makeBlocks(100);
    EXPECT_EQ(liveBytes(), before) << "the last " << count << " of either hundred";
    ASSERT_TRUE(restartWithRecentBlocks(VORN_RECENT_NONE));
    EXPECT_EQ(liveBytes() + count * 64u, before);
  }
}

TEST_F(RecentBlocksOnExactHeapTest, Collection_KeepsNoneByDefault) {
  ASSERT_TRUE(restartWithRecentBlocks(0));
  makeBlocks(1);
  const std::uint64_t before = liveBytes();
  makeBlocks(10);
  EXPECT_EQ(liveBytes(), before);
  ASSERT_TRUE(restartWithRecentBlocks(VORN_RECENT_NONE));
  EXPECT_EQ(liveBytes(), before);
}

TEST_F(RecentBlocksOnExactHeapTest, Collection_KeepsWhatARecentBlockHolds) {
  ASSERT_TRUE(restartWithRecentBlocks(2));
  Node* const node = nodeAt(newNode(newNode(newNode(nullptr, 3), 2), 1));
  vorn_heap_collect();
  EXPECT_EQ(node->value, 1);
  EXPECT_EQ(node->next->value, 2);
  EXPECT_EQ(node->next->next->value, 3);
}

// Not one of the buffers that the list has grown out of.
TEST_F(RecentBlocksOnExactHeapTest, Collection_KeepsNoMemoryThatACollectionHasLeft) {
  ASSERT_TRUE(restartWithRecentBlocks(16));
  const std::uint64_t before = liveBytes();
  const Handle list = vorn_object_new("ArrayList<Int>");
  for (int i = 0; i < 1'000; ++i) vorn_collections_ArrayList_addInt(list, i);
  const std::uint64_t listAndBuffer = sizeof(ListData) + 1024 * sizeof(std::int32_t);
  EXPECT_LT(liveBytes() - before, listAndBuffer + 256);
}

TEST_F(RecentBlocksOnExactHeapTest, Unrooting_MakesAHandleRecentHoweverManyBlocksCameAfterIt) {
  ASSERT_TRUE(restartWithRecentBlocks(2));
  Node* node = nullptr;
  {
    const collections::RootedHandle rooted(newNode(nullptr, 7));
    makeBlocks(100);
    node = nodeAt(rooted.get());
  }
  vorn_heap_collect();
  EXPECT_EQ(node->value, 7);
}

TEST_F(RecentBlocksOnExactHeapTest, Result_OfANativeThatMakesManyBlocksIsKept) {
  ASSERT_TRUE(restartWithRecentBlocks(8));
  const Handle map = object("Map<Int,Int>");
  for (std::int32_t i = 0; i < 100; ++i) {
    const Handle key = vorn_box_int(i);
    vorn_collections_Map_put(map, key, key);
  }
  void* const items = vorn_collections_Map_items(map);
  vorn_heap_collect();
  EXPECT_EQ(vorn_collections_ArrayList_size(items), 100);
  EXPECT_VALID_LIST(items);
}

TEST_F(RecentBlocksOnExactHeapTest, Stop_ForgetsThoseOfItsThread) {
  ASSERT_TRUE(restartWithRecentBlocks(VORN_RECENT_NONE));
  const std::uint64_t before = liveBytes();
  ASSERT_TRUE(restartWithRecentBlocks(64));
  makeBlocks(64);
  EXPECT_EQ(liveBytes(), before + 64 * 64);
  ASSERT_TRUE(restartWithRecentBlocks(64));
  EXPECT_EQ(liveBytes(), before);
}

TEST_F(RecentBlocksOnExactHeapTest, Detaching_ForgetsThoseOfItsThread) {
  ASSERT_TRUE(restartWithRecentBlocks(64));
  const std::uint64_t before = liveBytes();
  onAnotherThread([] { makeBlocks(64); });
  EXPECT_EQ(liveBytes(), before);
  onAnotherThread([before] { EXPECT_EQ(liveBytes(), before) << "a thread that takes the place of one that ended"; });
}

// A handle as a collector cannot recognise it.
class HiddenHandle {
 public:
  explicit HiddenHandle(void* handle = nullptr) : bits_(~reinterpret_cast<std::uintptr_t>(handle)) {}
  [[nodiscard]] void* get() const { return reinterpret_cast<void*>(~bits_); }

 private:
  std::uintptr_t bits_;
};

// Overwrites what earlier calls left on the stack.
__attribute__((noinline)) void clearStack() {
  volatile char bytes[4096];
  for (volatile char& byte : bytes) byte = 0;
}

class RecentBlocksOfThreadsTest : public RuntimeTest {
 protected:
  void SetUp() override {
    if (onStressHeap()) {
      ASSERT_TRUE(restartWithRecentBlocks(16));
    }
  }

 private:
  RestartsRuntime restarts_;
};

__attribute__((noinline)) void makeHiddenLists(HiddenHandle* lists, int count, int thread) {
  for (int i = 0; i < count; ++i) {
    lists[i] = HiddenHandle(vorn_object_new("ArrayList<Int>"));
    vorn_collections_ArrayList_addInt(lists[i].get(), thread * 1'000 + i);
  }
}

// Without the ring, the collected heap hands the memory of such lists to the next that asks.
TEST_F(RecentBlocksOfThreadsTest, Results_ThatNoCollectorSeesOutliveTheCollectionsOfOtherThreads) {
  constexpr int kLists = 3;
  const int rounds = onStressHeap() ? 20 : 200;
  runTogether(3, [&](int thread) {
    for (int round = 0; round < rounds; ++round) {
      HiddenHandle lists[kLists];
      makeHiddenLists(lists, kLists, thread);
      clearStack();
      onAnotherThread([] {
        vorn_heap_collect();
        makeGarbage();
      });
      for (int i = 0; i < kLists; ++i) {
        ASSERT_EQ(vorn_collections_ArrayList_size(lists[i].get()), 1);
        ASSERT_EQ(vorn_collections_ArrayList_getInt(lists[i].get(), 0), thread * 1'000 + i);
      }
    }
  });
}

}  // namespace
}  // namespace vorn::tests
