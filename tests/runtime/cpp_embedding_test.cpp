// The embedding API for C++: handles as slots of the process, and the scope in which the runtime runs.
#include <vorn/runtime.hpp>

#include <cstdlib>
#include <memory>
#include <thread>
#include <type_traits>
#include <vector>

#include "runtime/heap/global_roots.h"
#include "tests/runtime/heap_probe.h"

namespace vorn::tests {
namespace {

class CppHandle : public RuntimeTest {
 protected:
  // How many root slots of the process hold the handle.
  static int slotsHolding(const void* handle) {
    int count = 0;
    runtime::GlobalRoots::instance().forEach([&](void** slot) { count += *slot == handle ? 1 : 0; });
    return count;
  }
};

TEST_F(CppHandle, KeepsItsObjectAliveAsLongAsItLives) {
  const std::uint64_t before = liveBytes();
  {
    const Handle kept = newNode(nullptr, 41);
    makeGarbage();
    EXPECT_EQ(nodeAt(kept)->value, 41);
  }
  EXPECT_TRUE(liveBytesAre(before));
}

TEST_F(CppHandle, KeepsItsObjectAliveInMemoryThatNoCollectorSearches) {
  const auto kept = std::make_unique<Handle>(newNode(nullptr, 42));
  makeGarbage();
  EXPECT_EQ(nodeAt(*kept)->value, 42);
}

TEST_F(CppHandle, Assignment_KeepsTheNewObjectAndLetsTheOldOneGo) {
  Handle kept = newNode(nullptr, 1);
  const std::uint64_t before = liveBytes();
  kept = newNode(nullptr, 2);
  EXPECT_TRUE(liveBytesAre(before));
  makeGarbage();
  EXPECT_EQ(nodeAt(kept)->value, 2);
  void* const slotted = kept;
  EXPECT_EQ(slotsHolding(slotted), 1);
}

TEST_F(CppHandle, Copy_IsASlotOfItsOwn) {
  Handle original = newNode(nullptr, 5);
  void* const node = original;
  Handle copy = original;
  EXPECT_EQ(slotsHolding(node), 2);
  original = nullptr;
  makeGarbage();
  EXPECT_EQ(copy.get(), node);
  EXPECT_EQ(nodeAt(copy)->value, 5);
  Handle assigned;
  assigned = copy;
  copy = nullptr;
  makeGarbage();
  EXPECT_EQ(nodeAt(assigned)->value, 5);
  EXPECT_EQ(slotsHolding(node), 1);
}

TEST_F(CppHandle, SelfAssignment_ChangesNothing) {
  Handle kept = newNode(nullptr, 6);
  const Handle& same = kept;
  kept = same;
  makeGarbage();
  EXPECT_EQ(nodeAt(kept)->value, 6);
  EXPECT_EQ(slotsHolding(kept), 1);
}

// There is no moving: what a container moves when it grows must leave no slot behind and lose none.
TEST_F(CppHandle, InAContainerThatGrows_StaysRegistered) {
  const Handle node = newNode(nullptr, 7);
  {
    std::vector<Handle> handles;
    for (int i = 0; i < 100; ++i) {
      handles.push_back(node);
      ASSERT_EQ(slotsHolding(node), 1 + static_cast<int>(handles.size()));
    }
    handles.erase(handles.begin(), handles.begin() + 60);
    EXPECT_EQ(slotsHolding(node), 41);
  }
  EXPECT_EQ(slotsHolding(node), 1);
}

TEST_F(CppHandle, WhatIsMovedFrom_KeepsItsHandle) {
  Handle first = newNode(nullptr, 8);
  const Handle second = std::move(first);
  EXPECT_EQ(first.get(), second.get());  // NOLINT(bugprone-use-after-move): this is what is tested
}

TEST_F(CppHandle, PassesForTheRawHandle) {
  const Handle kept = string("text");
  void* const raw = kept;
  EXPECT_EQ(raw, kept.get());
  EXPECT_STREQ(vorn_string_text(kept), "text");
  EXPECT_TRUE(kept == raw);
  EXPECT_TRUE(kept != nullptr);
  EXPECT_FALSE(Handle() != nullptr);
  EXPECT_TRUE((std::is_convertible_v<void*, Handle>));
  EXPECT_TRUE((std::is_nothrow_default_constructible_v<Handle>));
}

TEST_F(CppHandle, Out_IsTheSlotThatANativeFills) {
  Handle kept = newNode(nullptr, 9);
  long long* const elements = vorn_collections_ArrayList_newPrimitiveI64Data(2, "Long", kept.out());
  ASSERT_NE(elements, nullptr);
  makeGarbage();
  EXPECT_STREQ(vorn_type_name(kept), "vorn.collections.ArrayList");
  EXPECT_EQ(slotsHolding(kept), 1);
}

TEST_F(CppHandle, MayEndOnAnotherThread) {
  const std::uint64_t before = liveBytes();
  auto kept = std::make_unique<Handle>(newNode(nullptr, 10));
  std::thread([&] { kept.reset(); }).join();
  EXPECT_TRUE(liveBytesAre(before));
}

TEST_F(CppHandle, OutlivesTheRuntime) {
  const RestartsRuntime restarts;
  auto first = std::make_unique<Handle>(newNode(nullptr, 11));
  vorn_runtime_stop();
  const Handle second = first->get();
  void* const node = second;
  first.reset();
  EXPECT_EQ(slotsHolding(node), 1);
}

// ---- The scope of the runtime

class CppRuntimeScope : public RuntimeTest {
 protected:
  static bool collects() {
    const std::uint64_t before = statistics().collections;
    vorn_heap_collect();
    return statistics().collections > before;
  }
  static const char* heapOfThisRun() { return std::getenv("VORN_TEST_HEAP"); }
};

TEST_F(CppRuntimeScope, RunsTheRuntimeUntilItEnds) {
  const RestartsRuntime restarts;
  vorn_runtime_stop();
  ASSERT_FALSE(collects());
  {
    const RuntimeScope scope(heapOfThisRun());
    EXPECT_TRUE(scope.running());
    EXPECT_EQ(collects(), !onPlainHeap());
    vorn_raise("Exception", "left over");
  }
  EXPECT_FALSE(collects());
  EXPECT_EQ(vorn_error_count(), 0U);
}

TEST_F(CppRuntimeScope, Refused_LeavesWhatRunsAlone) {
  const char* const otherHeap = testOptions().heap == VORN_HEAP_PLAIN ? "heap=collected" : "heap=plain";
  for (const char* options : {"heap=none", "collected", otherHeap}) {
    const bool collected = collects();
    {
      const RuntimeScope scope(options);
      EXPECT_FALSE(scope.running()) << options;
    }
    EXPECT_EQ(collects(), collected) << options;
  }
}

TEST_F(CppRuntimeScope, NoOptions_MeanTheCollectedHeap) {
  const RestartsRuntime restarts;
  for (const char* options : {static_cast<const char*>(nullptr), ""}) {
    const RuntimeScope scope(options);
    EXPECT_EQ(scope.running(), testOptions().heap == VORN_HEAP_COLLECTED);
  }
}

}  // namespace
}  // namespace vorn::tests
