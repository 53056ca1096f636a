// Threads that come, work, hold roots while others collect, and go.
#include <pthread.h>

#include <atomic>
#include <barrier>
#include <chrono>
#include <mutex>

#include "collections/core/port/pending_errors.h"
#include "collections/core/port/roots.h"
#include "collections/core/port/text.h"
#include "tests/runtime/heap_probe.h"
#include "tests/support/threads.h"

namespace vorn::tests {
namespace {

using ThreadsTest = RuntimeTest;
using collections::RootedHandle;

std::size_t attachedThreads() {
  std::size_t count = 0;
  runtime::forEachThread([&](const runtime::ThreadState&) { ++count; });
  return count;
}

TEST_F(ThreadsTest, EachEntry_AttachesTheThread) {
  void* slot = nullptr;
  const std::size_t before = attachedThreads();
  const auto attachesBy = [&](auto enter) {
    onAnotherThread([&] {
      EXPECT_EQ(attachedThreads(), before);
      enter();
      EXPECT_EQ(attachedThreads(), before + 1);
    });
    EXPECT_EQ(attachedThreads(), before);
  };
  attachesBy([] { vorn_thread_attach(); });
  attachesBy([] { EXPECT_NE(Vorn_gcAlloc(8), nullptr); });
  attachesBy([] { EXPECT_NE(Vorn_gcAllocAtomic(8), nullptr); });
  attachesBy([] { Vorn_raise("Exception", "of the thread"); });
  attachesBy([&] { Vorn_gcRegisterRootSlot(&slot); });
  attachesBy([] { vorn_heap_collect(); });
  attachesBy([] { (void)nextFastRandomU64(); });
}

TEST_F(ThreadsTest, DetachedThread_AttachesAgainWhenItEnters) {
  const std::size_t before = attachedThreads();
  onAnotherThread([&] {
    for (int i = 0; i < 3; ++i) {
      vorn_thread_attach();
      vorn_thread_attach();
      EXPECT_EQ(attachedThreads(), before + 1);
      RootedHandle node(newNode(nullptr, i));
      makeGarbage();
      EXPECT_EQ(nodeAt(node.get())->value, i);
      vorn_thread_detach();
      vorn_thread_detach();
      EXPECT_EQ(attachedThreads(), before);
    }
    (void)Vorn_gcAlloc(8);
    EXPECT_EQ(attachedThreads(), before + 1);
  });
  EXPECT_EQ(attachedThreads(), before);
}

TEST_F(ThreadsTest, FirstThread_CanDetachAndComeBack) {
  const Handle node = newNode(nullptr, 9);
  vorn_thread_detach();
  vorn_heap_collect();
  makeGarbage();
  EXPECT_EQ(nodeAt(node)->value, 9);
}

TEST_F(ThreadsTest, StatesOfEndedThreads_AreUsedAgain) {
  const auto states = [] {
    std::size_t count = 0;
    for (auto* state = runtime::firstThreadState(); state != nullptr; state = state->next) ++count;
    return count;
  };
  onAnotherThread([] { vorn_thread_attach(); });
  const std::size_t before = states();
  for (int i = 0; i < 100; ++i) onAnotherThread([] { vorn_thread_attach(); });
  EXPECT_EQ(states(), before);
}

// What a thread left registered when it ended roots nothing, and is not looked at: its stack is gone.
TEST_F(ThreadsTest, RootsOfAThreadThatEnded_AreGone) {
  const std::uint64_t before = liveBytes();
  for (int i = 0; i < 10; ++i) {
    onAnotherThread([] {
      vorn_thread_attach();
      EXPECT_EQ(runtime::currentThread->roots.size(), 0u) << "the state of an earlier thread came with its roots";
      void* slot = nullptr;
      Vorn_gcRegisterRootSlot(&slot);
      slot = newNode(nullptr, 1);
    });
    vorn_heap_collect();
  }
  EXPECT_TRUE(liveBytesAre(before));
}

struct EntersWhenDestroyed {
  std::atomic<int>* entered = nullptr;
  ~EntersWhenDestroyed() {
    if (entered == nullptr) return;
    if (Vorn_gcAlloc(16) != nullptr) ++*entered;
  }
};

TEST_F(ThreadsTest, DestructorsOfAnEndingThread_MayEnterTheRuntime) {
  std::atomic<int> entered{0};
  const std::size_t before = attachedThreads();
  onAnotherThread([&] {
    thread_local EntersWhenDestroyed last;
    last.entered = &entered;
    vorn_thread_attach();
  });
  EXPECT_EQ(entered, 1);
  EXPECT_EQ(attachedThreads(), before);
}

std::atomic<int> keyDestructorsRun{0};

// Destructors of thread-specific keys run in no particular order, so that one may come after the runtime's own.
TEST_F(ThreadsTest, KeyDestructorsOfAnEndingThread_MayEnterTheRuntime) {
  keyDestructorsRun = 0;
  const std::size_t before = attachedThreads();
  pthread_key_t key;
  ASSERT_EQ(pthread_key_create(&key,
                               [](void* rounds) {
                                 EXPECT_NE(Vorn_gcAlloc(16), nullptr);
                                 if (++keyDestructorsRun < 2)
                                   pthread_setspecific(*static_cast<pthread_key_t*>(rounds), rounds);
                               }),
            0);
  onAnotherThread([&] {
    vorn_thread_attach();
    pthread_setspecific(key, &key);
  });
  EXPECT_EQ(keyDestructorsRun, 2);
  EXPECT_EQ(attachedThreads(), before);
  pthread_key_delete(key);
}

TEST_F(ThreadsTest, RootsOfAWaitingThread_HoldWhileAnotherCollects) {
  std::barrier meeting(2);
  Beside holder([&] {
    void* slots[2] = {};
    const collections::RootedRange range(slots, sizeof(slots));
    slots[0] = newNode(nullptr, 1);
    slots[1] = newNode(nullptr, 2);
    meeting.arrive_and_wait();
    meeting.arrive_and_wait();
    EXPECT_EQ(nodeAt(slots[0])->value, 1);
    EXPECT_EQ(nodeAt(slots[1])->value, 2);
  });
  meeting.arrive_and_wait();
  for (int i = 0; i < 5; ++i) vorn_heap_collect();
  makeGarbage();
  meeting.arrive_and_wait();
  holder.join();
}

// Each thread builds and checks lists, moving handles between blocks and roots while the others collect.
TEST_F(ThreadsTest, ManyThreads_AllocateAtOnceAndLoseNothing) {
  const int rounds = onStressHeap() ? 40 : 300;
  constexpr int kThreads = 4;
  constexpr int kNodes = 20;
  std::atomic<int> wrong{0};
  runTogether(kThreads, [&](int number) {
    for (int round = 0; round < rounds; ++round) {
      RootedHandle list;
      for (int i = 0; i < kNodes; ++i) {
        auto* node = static_cast<Node*>(runtime::allocateScanned(sizeof(Node)));
        node->next = nodeAt(list.get());
        node->value = number * 1000 + i;
        list = node;
      }
      // Reverses the list: each node is for an instant only in a local of this thread.
      Node* reversed = nullptr;
      for (Node* node = nodeAt(list.get()); node != nullptr;) {
        Node* next = node->next;
        node->next = reversed;
        reversed = node;
        list = next;
        node = next;
      }
      list = reversed;
      (void)runtime::allocateAtomic(24);
      int expected = 0;
      for (const Node* node = nodeAt(list.get()); node != nullptr; node = node->next) {
        if (node->value != number * 1000 + expected++) ++wrong;
      }
      if (expected != kNodes) ++wrong;
    }
  });
  EXPECT_EQ(wrong, 0);
}

TEST_F(ThreadsTest, ThreadsThatComeAndGo_DoNotDisturbOthersCollecting) {
  std::atomic<bool> done{false};
  Beside collector([&] {
    while (!done) {
      vorn_heap_collect();
      (void)Vorn_gcAlloc(32);
      // The collector library's lock is not fair: without a pause the others would hardly ever get it.
      std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
  });
  for (int i = 0; i < 100; ++i) {
    onAnotherThread([&] {
      RootedHandle node(newNode(nullptr, i));
      (void)Vorn_gcAlloc(32);
      EXPECT_EQ(nodeAt(node.get())->value, i);
    });
  }
  done = true;
  collector.join();
}

// A thread that computes without ever entering the runtime must not hold up a collection.
TEST_F(ThreadsTest, BusyThread_DoesNotDelayACollection) {
  std::atomic<bool> done{false};
  std::atomic<bool> running{false};
  Beside busy([&] {
    vorn_thread_attach();
    running = true;
    while (!done.load(std::memory_order_relaxed)) {
    }
  });
  while (!running) std::this_thread::yield();
  for (int i = 0; i < 3; ++i) vorn_heap_collect();
  done = true;
  busy.join();
}

TEST_F(ThreadsTest, ThreadHoldingALock_CanBeStoppedWhileAnotherWaitsForIt) {
  std::mutex lock;
  int count = 0;
  const int rounds = onStressHeap() ? 100 : 1000;
  runTogether(3, [&](int) {
    for (int i = 0; i < rounds; ++i) {
      const std::lock_guard guard(lock);
      (void)Vorn_gcAlloc(16);
      ++count;
    }
  });
  EXPECT_EQ(count, 3 * rounds);
}

}  // namespace
}  // namespace vorn::tests
