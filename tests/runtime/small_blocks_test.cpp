// The free blocks that threads hold on the collected heap: never handed out twice, never lost to a collection, dropped
// when the thread goes.
#include "runtime/heap/small_blocks.h"

#include <algorithm>
#include <cstring>

#include "collections/core/port/roots.h"
#include "tests/runtime/heap_probe.h"
#include "tests/support/threads.h"

namespace vorn::tests {
namespace {

using runtime::SmallBlocks;

class SmallBlocksTest : public RuntimeTest {
 protected:
  void SetUp() override {
    if (testOptions().heap != VORN_HEAP_COLLECTED)
      GTEST_SKIP() << "threads hold free blocks on the collected heap only";
  }
};

std::vector<void*> heldBlocks(runtime::ThreadState& thread) {
  std::vector<void*> blocks;
  thread.smallBlocks.forEach([&](void* block) { blocks.push_back(block); });
  std::sort(blocks.begin(), blocks.end());
  return blocks;
}

// Leaves free blocks of every size and kind with the calling thread.
void holdBlocksOfEverySize() {
  for (std::size_t bytes = 0; bytes <= SmallBlocks::kLargest; ++bytes) {
    (void)runtime::allocateScanned(bytes);
    (void)runtime::allocateAtomic(bytes);
  }
}

// Takes so many blocks of every size and kind that what a collection freed is among them, and writes all over them.
std::vector<void*> takeAndSpoilBlocks() {
  std::vector<void*> taken;
  for (std::size_t bytes = SmallBlocks::kGranule; bytes <= SmallBlocks::kLargest; bytes += SmallBlocks::kGranule) {
    for (int i = 0; i < 2'000; ++i) {
      for (void* block : {runtime::allocateScanned(bytes), runtime::allocateAtomic(bytes)}) {
        std::memset(block, 0xAB, bytes);
        taken.push_back(block);
      }
    }
  }
  std::sort(taken.begin(), taken.end());
  return taken;
}

TEST_F(SmallBlocksTest, Blocks_ThatAThreadHoldsOutliveCollectionsAndGoToNobodyElse) {
  holdBlocksOfEverySize();
  const std::vector<void*> held = heldBlocks(*runtime::currentThread);
  EXPECT_GT(held.size(), SmallBlocks::kLargest / SmallBlocks::kGranule);
  for (int i = 0; i < 3; ++i) vorn_heap_collect();
  std::vector<void*> taken;
  onAnotherThread([&] { taken = takeAndSpoilBlocks(); });
  std::vector<void*> both;
  std::set_intersection(held.begin(), held.end(), taken.begin(), taken.end(), std::back_inserter(both));
  EXPECT_TRUE(both.empty()) << both.size() << " blocks were handed to another thread";
  EXPECT_EQ(heldBlocks(*runtime::currentThread), held);
}

TEST_F(SmallBlocksTest, Blocks_OfAnotherThreadOutliveACollectionByThisOne) {
  std::vector<void*> held, taken, heldAfterwards;
  onAnotherThread([&] {
    holdBlocksOfEverySize();
    held = heldBlocks(*runtime::currentThread);
    onAnotherThread([&] {
      vorn_heap_collect();
      taken = takeAndSpoilBlocks();
    });
    heldAfterwards = heldBlocks(*runtime::currentThread);
  });
  std::vector<void*> both;
  std::set_intersection(held.begin(), held.end(), taken.begin(), taken.end(), std::back_inserter(both));
  EXPECT_TRUE(both.empty()) << both.size() << " blocks were handed to another thread";
  EXPECT_EQ(heldAfterwards, held);
}

TEST_F(SmallBlocksTest, ScannedBlocks_OfEverySizeAreZeroedAlsoAfterCollections) {
  (void)takeAndSpoilBlocks();
  for (int round = 0; round < 3; ++round) {
    vorn_heap_collect();
    for (std::size_t bytes = 1; bytes <= SmallBlocks::kLargest + 16; ++bytes) {
      for (int i = 0; i < 20; ++i) {
        auto* const block = static_cast<unsigned char*>(runtime::allocateScanned(bytes));
        ASSERT_EQ(std::count(block, block + bytes, 0), static_cast<std::ptrdiff_t>(bytes)) << bytes;
        std::memset(block, 0xFF, bytes);
      }
    }
  }
}

TEST_F(SmallBlocksTest, Blocks_DoNotOverlapTheirNeighbours) {
  std::vector<std::pair<unsigned char*, std::size_t>> blocks;
  collections::HandleVector keep;
  for (int i = 0; i < 3'000; ++i) {
    const std::size_t bytes = static_cast<std::size_t>(i * 37) % (SmallBlocks::kLargest + 40);
    auto* const block =
        static_cast<unsigned char*>(i % 2 == 0 ? runtime::allocateScanned(bytes) : runtime::allocateAtomic(bytes));
    keep->push_back(block);
    std::memset(block, i % 251, bytes);
    blocks.emplace_back(block, bytes);
  }
  vorn_heap_collect();
  for (std::size_t i = 0; i < blocks.size(); ++i) {
    const auto [block, bytes] = blocks[i];
    ASSERT_EQ(std::count(block, block + bytes, i % 251), static_cast<std::ptrdiff_t>(bytes)) << i;
  }
}

TEST_F(SmallBlocksTest, DetachingThread_DropsItsBlocks) {
  runtime::ThreadState* state = nullptr;
  onAnotherThread([&] {
    holdBlocksOfEverySize();
    state = runtime::currentThread;
    vorn_thread_detach();
    EXPECT_TRUE(heldBlocks(*state).empty());
  });
  onAnotherThread([&] {
    holdBlocksOfEverySize();
    state = runtime::currentThread;
  });
  EXPECT_TRUE(heldBlocks(*state).empty()) << "of a thread that has ended";
}

TEST_F(SmallBlocksTest, DroppedBlocks_AreUsedAgain) {
  vorn_heap_collect();
  const std::uint64_t before = statistics().bytes_live;
  // Each thread leaves some hundred kilobytes behind.
  for (int thread = 0; thread < 500; ++thread) onAnotherThread(holdBlocksOfEverySize);
  vorn_heap_collect();
  EXPECT_LT(statistics().bytes_live, before + (std::uint64_t{16} << 20));
}

TEST_F(SmallBlocksTest, Stop_DropsTheBlocksOfTheThread) {
  const RestartsRuntime restarts;
  holdBlocksOfEverySize();
  vorn_runtime_stop();
  EXPECT_TRUE(heldBlocks(*runtime::currentThread).empty());
  EXPECT_NE(Vorn_gcAlloc(32), nullptr);
}

TEST_F(SmallBlocksTest, ArmedFailure_FailsWithFreeBlocksAtHand) {
  holdBlocksOfEverySize();
  for (const std::size_t bytes : {std::size_t{0}, std::size_t{32}, SmallBlocks::kLargest}) {
    vorn_heap_fail_allocation(0);
    EXPECT_EQ(Vorn_gcAllocAtomic(bytes), nullptr);
    EXPECT_EQ(vorn_heap_failure_happened(), 1);
    EXPECT_NE(Vorn_gcAllocAtomic(bytes), nullptr);
  }
}

// Each thread keeps the last blocks that it took, with a pattern of its own, while all of them collect now and then: a
// thread is stopped at every point of taking a block sooner or later.
TEST_F(SmallBlocksTest, ThreadsThatAllocateWhileOthersCollect_KeepWhatTheyWrote) {
  constexpr std::size_t kKept = 64;
  runTogether(4, [](int number) {
    void* kept[kKept] = {};
    const collections::RootedRange root(kept, sizeof(kept));
    for (std::size_t i = 0; i < 40'000; ++i) {
      const std::size_t bytes = 16 + (i * 48) % SmallBlocks::kLargest;
      void*& slot = kept[i % kKept];
      if (slot != nullptr) {
        const auto* const words = static_cast<std::uint64_t*>(slot);
        ASSERT_EQ(words[0], words[1]) << number << " at " << i;
        ASSERT_EQ(words[0] >> 32, static_cast<std::uint64_t>(number)) << number << " at " << i;
      }
      slot = i % 3 == 0 ? runtime::allocateScanned(bytes) : runtime::allocateAtomic(bytes);
      auto* const words = static_cast<std::uint64_t*>(slot);
      words[0] = words[1] = static_cast<std::uint64_t>(number) << 32 | i;
      if (i % 400 == 0 && number == static_cast<int>(i / 400 % 4)) vorn_heap_collect();
    }
  });
}

}  // namespace
}  // namespace vorn::tests
