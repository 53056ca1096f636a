// Synchronised lists under several threads at once. All collected memory that the threads cause to be allocated is
// allocated under the list's lock, so that these tests hold under an exact collector as well.
#include <algorithm>

#include "tests/arraylist/list_cases.h"
#include "tests/support/threads.h"

namespace vorn::tests {
namespace {

constexpr int kThreads = 4;

class Threads : public RuntimeTest {
 protected:
  static int rounds() { return onStressHeap() ? 25 : 2000; }
};

TEST_F(Threads, ConcurrentUnboxedAppends_AllArriveInEachThreadsOrder) {
  const Handle target = object("ArrayListSync<Int>");
  runTogether(kThreads, [&](int number) {
    for (int i = 0; i < rounds(); ++i) vorn_collections_ArrayList_addInt(target, number * 10000 + i);
  });
  ASSERT_EQ(vorn_collections_ArrayList_size(target), kThreads * rounds());
  int next[kThreads] = {};
  for (long long i = 0; i < kThreads * rounds(); ++i) {
    const long long value = vorn_collections_ArrayList_getInt(target, i);
    const auto thread = static_cast<std::size_t>(value / 10000);
    ASSERT_LT(thread, static_cast<std::size_t>(kThreads));
    EXPECT_EQ(value % 10000, next[thread]++);
  }
  EXPECT_AT_REST(target);
}

TEST_F(Threads, ConcurrentAddAndRemove_TotalsHold) {
  const Handle one = integer("Int", 1);
  for (const bool linked : {false, true}) {
    const Handle target = object(className(linked, true, "Int"));
    runTogether(kThreads, [&](int number) {
      for (int i = 0; i < rounds(); ++i) {
        // A thread never removes more than it has added, so that there is always an element to remove.
        vorn_collections_ArrayList_add(target, one);
        vorn_collections_ArrayList_addAt(target, 0, one);
        if (number % 2 == 0) {
          vorn_collections_ArrayList_removeAt(target, i % 3 == 0 ? -1 : 0);
        } else {
          EXPECT_TRUE(vorn_collections_ArrayList_remove(target, one));
        }
        EXPECT_EQ(vorn_collections_ArrayList_getInt(target, -1), 1);
        EXPECT_GE(vorn_collections_ArrayList_sizeFast(target), 1);
      }
    });
    EXPECT_EQ(vorn_collections_ArrayList_size(target), kThreads * rounds());
    EXPECT_EQ(vorn_collections_ArrayList_count(target, one), kThreads * rounds());
    EXPECT_AT_REST(target);
  }
}

TEST_F(Threads, MaterialisationIsNeverSeenHalfDone) {
  const Handle word = string("word");
  const Handle target = object("ArrayListSync");
  for (int i = 0; i < 20; ++i) vorn_collections_ArrayList_addInt(target, i);
  runTogether(kThreads, [&](int number) {
    for (int i = 0; i < rounds(); ++i) {
      if (number == 0 && i == rounds() / 2) vorn_collections_ArrayList_operator_in(target, word);
      EXPECT_EQ(vorn_collections_ArrayList_size(target), 20);
      EXPECT_EQ(vorn_collections_ArrayList_getInt(target, i % 20), i % 20);
      EXPECT_EQ(vorn_collections_ArrayList_getIntFast(target, -1), 19);
    }
  });
  EXPECT_EQ(storageOf(target), "objects");
  EXPECT_AT_REST(target);
}

TEST_F(Threads, ReplacementsAndClear_LeaveAWholeList) {
  const Handle one = integer("Int", 1);
  const Handle word = string("word");
  for (const bool linked : {false, true}) {
    const Handle target = object(className(linked, true));
    runTogether(kThreads, [&](int number) {
      for (int i = 0; i < rounds(); ++i) {
        switch ((number + i) % 5) {
          case 0:
            vorn_collections_ArrayList_add(target, one);
            break;
          case 1:
            vorn_collections_ArrayList_addAt(target, 0, word);
            break;
          case 2:
            vorn_collections_ArrayList_operator_index_eq(target, 0, number % 2 == 0 ? one : word);
            break;
          case 3:
            vorn_collections_ArrayList_remove(target, word);
            break;
          default:
            if (i % 10 == 0) vorn_collections_ArrayList_clear(target);
            break;
        }
      }
    });
    const long long size = vorn_collections_ArrayList_size(target);
    EXPECT_EQ(vorn_collections_ArrayList_count(target, one) + vorn_collections_ArrayList_count(target, word), size);
    EXPECT_AT_REST(target);
  }
}

TEST_F(Threads, SizeFast_NeverGivesASizeThatTheListDidNotHave) {
  // The owner moves the elements between storages; the list always has 20 of them, or 21 after the slice assignment.
  const Handle word = string("word");
  const Handle three = list("ArrayList", {word, word, word});
  const int rounds = onStressHeap() ? 30 : 3000;
  std::atomic<void*> current = nullptr;
  std::atomic<int> round = 0;
  std::atomic<long long> wrong = 0;
  Beside reader([&] {
    vorn_thread_attach();
    while (round.load() < rounds) {
      void* target = current.load();
      if (target == nullptr) continue;
      const long long size = vorn_collections_ArrayList_sizeFast(target);
      if (size != 20 && size != 21) wrong.store(size != 0 ? size : -1);
    }
  });
  Handle kept[2];  // the reader may still look at the list before the last
  for (; round.load() < rounds; ++round) {
    Handle& target = kept[round.load() % 2];
    Handle fresh = object("ArrayListSync");
    for (int i = 0; i < 20; ++i) vorn_collections_ArrayList_addInt(fresh, i);
    current.store(fresh.get());
    target = fresh;
    if (round.load() % 2 == 0) vorn_collections_ArrayList_operator_in(target, word);
    vorn_collections_ArrayList_sliceAssign(target, 0, 2, 1, word, word, three);
  }
  reader.join();
  EXPECT_EQ(wrong.load(), 0);
}

TEST_F(Threads, PendingErrors_BelongToTheThreadThatCausedThem) {
  const Handle target = list("ArrayListSync<Int>", {integer("Int", 1)});
  std::vector<std::string> errors;
  onAnotherThread([&] {
    vorn_collections_ArrayList_removeAt(target, 5);
    errors = takeErrors();
  });
  EXPECT_EQ(errors, Elements{kIndexError});
  EXPECT_NOTHING_RAISED();
}

}  // namespace
}  // namespace vorn::tests
