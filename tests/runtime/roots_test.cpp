// Root ranges of a thread and root slots of the process. Where the heap is exact, the tests also see that what is no
// root any more dies.
#include "collections/core/port/roots.h"

#include <algorithm>
#include <random>
#include <set>

#include "runtime/heap/global_roots.h"
#include "runtime/heap/root_range_stack.h"
#include "tests/runtime/heap_probe.h"
#include "tests/support/threads.h"

namespace vorn::tests {
namespace {

using RootsTest = RuntimeTest;
using collections::HandleVector;
using collections::RootedHandle;

using Range = std::pair<void*, std::size_t>;

// What a collector sees: first word and number of bytes.
std::vector<Range> rangesOf(const runtime::RootRangeStack& stack) {
  std::vector<Range> ranges;
  stack.forEach([&](void** first, void** end) { ranges.emplace_back(first, (end - first) * sizeof(void*)); });
  return ranges;
}

TEST_F(RootsTest, Stack_RemovesTheYoungestRangeOfThatStartAndLength) {
  void* words[8] = {};
  runtime::RootRangeStack stack;
  stack.push(words, 16);
  stack.push(words, 32);
  stack.push(words, 16);
  stack.push(words + 4, 8);
  stack.remove(words, 16);
  EXPECT_EQ(rangesOf(stack), (std::vector<Range>{{words, 16}, {words, 32}, {words + 4, 8}}));
  stack.remove(words, 16);
  EXPECT_EQ(rangesOf(stack), (std::vector<Range>{{words, 32}, {words + 4, 8}}));
  stack.remove(words, 32);
  stack.remove(words + 4, 8);
  EXPECT_EQ(stack.size(), 0u);
}

TEST_F(RootsTest, Stack_IgnoresRangesThatItDoesNotHold) {
  void* words[4] = {};
  runtime::RootRangeStack stack;
  stack.remove(words, 8);
  stack.push(words, 8);
  stack.remove(words, 16);
  stack.remove(words + 1, 8);
  EXPECT_EQ(rangesOf(stack), (std::vector<Range>{{words, 8}}));
}

TEST_F(RootsTest, Stack_CutsRangesToWholeAlignedWords) {
  alignas(8) unsigned char bytes[40] = {};
  runtime::RootRangeStack stack;
  stack.push(bytes + 1, 23);  // words 1 and 2
  stack.push(bytes + 1, 14);  // no whole word but one: 8..15 ends at 15
  stack.push(bytes, 0);
  stack.push(bytes + 8, 15);  // one word
  EXPECT_EQ(rangesOf(stack), (std::vector<Range>{{bytes + 8, 16}, {bytes + 8, 8}}));
}

TEST_F(RootsTest, Stack_KeepsEverythingWhenItGrows) {
  constexpr std::size_t kMany = 5000;
  std::vector<void*> words(kMany);
  runtime::RootRangeStack stack;
  for (void*& word : words) stack.push(&word, sizeof(word));
  EXPECT_EQ(rangesOf(stack).size(), kMany);
  EXPECT_EQ(rangesOf(stack)[4321], (Range{&words[4321], 8}));
  for (std::size_t i = 0; i < kMany; i += 2) stack.remove(&words[i], 8);
  EXPECT_EQ(rangesOf(stack).size(), kMany / 2);
  EXPECT_EQ(rangesOf(stack)[1000], (Range{&words[2001], 8}));
}

TEST_F(RootsTest, GlobalRoots_MatchAModel) {
  auto roots = std::make_unique<runtime::GlobalRoots>();
  std::vector<void*> words(600);
  std::set<void**> model;
  std::mt19937 random(1);
  for (int step = 0; step < 20'000; ++step) {
    void** slot = &words[random() % words.size()];
    if (random() % 2 == 0) {
      roots->add(slot);
      model.insert(slot);
    } else {
      roots->remove(slot);
      model.erase(slot);
    }
    if (step % 1000 == 0 || step > 19'990) {
      std::multiset<void**> seen;
      roots->forEach([&](void** root) { seen.insert(root); });
      ASSERT_EQ(seen, std::multiset<void**>(model.begin(), model.end()));
    }
  }
}

// ---- The roots at work

TEST_F(RootsTest, RootedHandle_KeepsWhatItHoldsAndNothingElse) {
  const std::uint64_t before = liveBytes();
  {
    RootedHandle handle(newNode(nullptr, 1));
    makeGarbage();
    EXPECT_EQ(nodeAt(handle.get())->value, 1);
    handle = newNode(nullptr, 2);
    makeGarbage();
    EXPECT_EQ(nodeAt(handle.get())->value, 2);
    EXPECT_TRUE(liveBytesAre(before + sizeof(Node)));
  }
  EXPECT_TRUE(liveBytesAre(before));
}

TEST_F(RootsTest, NestedDuplicateRanges_LastUntilTheLastIsRemoved) {
  const std::uint64_t before = liveBytes();
  void* slots[3] = {};
  Vorn_gcRegisterRootRange(slots, sizeof(slots));
  Vorn_gcRegisterRootRange(slots, sizeof(slots));
  for (int i = 0; i < 3; ++i) slots[i] = newNode(nullptr, i);
  Vorn_gcUnregisterRootRange(slots, sizeof(slots));
  makeGarbage();
  for (int i = 0; i < 3; ++i) EXPECT_EQ(nodeAt(slots[i])->value, i);
  Vorn_gcUnregisterRootRange(slots, sizeof(slots));
  EXPECT_TRUE(liveBytesAre(before));
}

TEST_F(RootsTest, RangesRemovedOutOfOrder_LeaveTheOthersRooted) {
  const std::uint64_t before = liveBytes();
  void* slots[5] = {};
  for (int i = 0; i < 5; ++i) {
    Vorn_gcRegisterRootSlot(&slots[i]);
    slots[i] = newNode(nullptr, i);
  }
  Vorn_gcUnregisterRootSlot(&slots[0]);
  Vorn_gcUnregisterRootSlot(&slots[3]);
  makeGarbage();
  for (const int i : {1, 2, 4}) EXPECT_EQ(nodeAt(slots[i])->value, i);
  EXPECT_TRUE(liveBytesAre(before + 3 * sizeof(Node)));
  for (const int i : {1, 2, 4}) Vorn_gcUnregisterRootSlot(&slots[i]);
  EXPECT_TRUE(liveBytesAre(before));
}

TEST_F(RootsTest, RangeOutsideTheStack_IsScanned) {
  const auto slots = std::make_unique<void*[]>(1000);
  const collections::RootedRange root(slots.get(), 1000 * sizeof(void*));
  slots[0] = newNode(nullptr, 10);
  slots[999] = newNode(nullptr, 11);
  vorn_heap_collect();
  makeGarbage();
  EXPECT_EQ(nodeAt(slots[0])->value, 10);
  EXPECT_EQ(nodeAt(slots[999])->value, 11);
}

TEST_F(RootsTest, HandleVector_SurvivesItsOwnGrowth) {
  const int count = onStressHeap() ? 300 : 20'000;
  HandleVector handles;
  for (int i = 0; i < count; ++i) {
    handles->push_back(nullptr);  // growing may collect, and the new node is not rooted yet
    handles->back() = newNode(nullptr, i);
  }
  makeGarbage();
  for (int i = 0; i < count; ++i) ASSERT_EQ(nodeAt((*handles)[i])->value, i);
}

// In malloc'ed memory, where no collector looks by itself.
TEST_F(RootsTest, LocalRoot_LastsUntilItHasBeenRemovedAsOftenAsAdded) {
  const std::uint64_t before = liveBytes();
  const auto slot = std::make_unique<void*>(nullptr);
  vorn_local_root_add(slot.get());
  vorn_local_root_add(slot.get());
  *slot = newNode(nullptr, 78);
  vorn_local_root_remove(slot.get());
  makeGarbage();
  EXPECT_EQ(nodeAt(*slot)->value, 78);
  vorn_local_root_remove(slot.get());
  EXPECT_TRUE(liveBytesAre(before));
}

void* staticSlot;

TEST_F(RootsTest, GlobalRoot_LastsUntilItIsRemoved) {
  const std::uint64_t before = liveBytes();
  vorn_root_add(&staticSlot);
  vorn_root_add(&staticSlot);  // a slot may be added once; a second time is the same as once
  staticSlot = newNode(nullptr, 77);
  makeGarbage();
  EXPECT_EQ(nodeAt(staticSlot)->value, 77);
  vorn_root_remove(&staticSlot);
  EXPECT_TRUE(liveBytesAre(before));
  vorn_root_remove(&staticSlot);
  staticSlot = nullptr;
}

// The slots are in malloc'ed memory, where no collector looks by itself. Big blocks, so that their loss would show in
// the statistics even if nothing has overwritten them yet.
TEST_F(RootsTest, GlobalRoots_AddedByAThreadThatEndedStay) {
  const int count = onStressHeap() ? 100 : 2'000;
  constexpr std::size_t kBytes = 10'000;
  const auto slots = std::make_unique<void*[]>(count);
  const std::uint64_t before = liveBytes();
  onAnotherThread([&] {
    for (int i = 0; i < count; ++i) {
      vorn_root_add(&slots[i]);
      slots[i] = runtime::allocateAtomic(kBytes);
      *static_cast<int*>(slots[i]) = i;
    }
  });
  EXPECT_GE(liveBytes(), before + count * kBytes);
  makeGarbage();
  for (int i = 0; i < count; ++i) ASSERT_EQ(*static_cast<int*>(slots[i]), i);
  onAnotherThread([&] {
    for (int i = 0; i < count; ++i) vorn_root_remove(&slots[i]);
  });
  EXPECT_TRUE(liveBytesAre(before));
}

TEST_F(RootsTest, GlobalRoots_ManyHandlesInAnyOrder) {
  const int count = onStressHeap() ? 300 : 5'000;
  std::vector<std::unique_ptr<Handle>> handles;
  for (int i = 0; i < count; ++i) handles.push_back(std::make_unique<Handle>(newNode(nullptr, i)));
  std::mt19937 random(2);
  std::shuffle(handles.begin(), handles.end(), random);
  handles.resize(count / 2);
  makeGarbage();
  std::int64_t sum = 0;
  for (const auto& handle : handles) {
    ASSERT_GE(nodeAt(*handle)->value, 0);
    sum += nodeAt(*handle)->value;
  }
  EXPECT_GT(sum, 0);
}

}  // namespace
}  // namespace vorn::tests
