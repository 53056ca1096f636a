// Synchronised maps and sets under several threads at once.

#include "tests/support/threads.h"
#include "collections/core/port/objects.h"
#include "tests/keyed/keyed_cases.h"

namespace vorn::tests {
namespace {

constexpr int kThreads = 4;

class Threads : public RuntimeTest {
 protected:
  static int rounds() { return onStressHeap() ? 15 : 1500; }

  // Keys and values that all threads use, made before there are threads.
  void SetUp() override {
    for (int i = 0; i < kThreads * rounds(); ++i) numbers_.push_back(number(i));
  }
  [[nodiscard]] void* numberOf(int thread, int round) const {
    return numbers_[static_cast<std::size_t>(thread * rounds() + round)];
  }

  std::vector<Handle> numbers_;
};

TEST_F(Threads, ConcurrentPuts_AllArrive) {
  for (const char* type : {"HashMapSync", "SortedMapSync"}) {
    SCOPED_TRACE(type);
    const Handle map = object(type);
    runTogether(kThreads, [&](int thread) {
      for (int i = 0; i < rounds(); ++i) vorn_collections_Map_put(map, numberOf(thread, i), numberOf(thread, i));
    });
    EXPECT_EQ(vorn_collections_Map_size(map), kThreads * rounds());
    for (const Handle& each : numbers_) ASSERT_EQ(vorn_collections_Map__get(map, each), each.get());
    EXPECT_MAP_AT_REST(map);
  }
}

TEST_F(Threads, ConcurrentPutAndRemove_TotalsHold) {
  for (const char* type : {"HashMapSync", "SortedMapSync"}) {
    SCOPED_TRACE(type);
    const Handle map = object(type);
    runTogether(kThreads, [&](int thread) {
      for (int i = 0; i < rounds(); ++i) {
        vorn_collections_Map_put(map, numberOf(thread, i), numberOf(thread, 0));
        EXPECT_TRUE(vorn_collections_Map_operator_in(map, numberOf(thread, i)));
        if (i % 3 != 0) {
          EXPECT_TRUE(vorn_collections_Map_remove(map, numberOf(thread, i)));
        }
        EXPECT_GE(vorn_collections_Map_size(map), 1);
      }
    });
    EXPECT_EQ(vorn_collections_Map_size(map), kThreads * ((rounds() + 2) / 3));
    EXPECT_MAP_AT_REST(map);
  }
}

TEST_F(Threads, WholeMapReadersSeeWholeEntries) {
  for (const char* type : {"HashMapSync", "SortedMapSync"}) {
    SCOPED_TRACE(type);
    const Handle map = object(type);
    vorn_collections_Map_put(map, numberOf(0, 0), numberOf(0, 0));
    runTogether(kThreads, [&](int thread) {
      for (int i = 1; i < rounds(); ++i) {
        if (thread != 0) {
          vorn_collections_Map_put(map, numberOf(thread, i % 50), numberOf(thread, i % 50));
          if (i % 5 == 0) vorn_collections_Map_remove(map, numberOf(thread, (i / 2) % 50));
          continue;
        }
        if (i % 10 != 0) continue;
        const collections::RootedHandle items(vorn_collections_Map_items(map));
        const long long count = vorn_collections_ArrayList_size(items.get());
        EXPECT_GE(count, 1);
        for (long long at = 0; at < count; ++at) {
          void* const item = vorn_collections_ArrayList_operator_index(items.get(), at);
          EXPECT_EQ(Vorn_getField_ptr(item, "_0"), Vorn_getField_ptr(item, "_1"));
        }
        const collections::RootedHandle keys(vorn_collections_Map_keys(map));
        EXPECT_GE(vorn_collections_ArrayList_size(keys.get()), 1);
      }
    });
    EXPECT_MAP_AT_REST(map);
  }
}

TEST_F(Threads, ConcurrentClearAndReserve_LeaveTheRecordWhole) {
  const Handle map = object("HashMapSync");
  const Handle set = object("HashSetSync");
  runTogether(kThreads, [&](int thread) {
    for (int i = 0; i < rounds(); ++i) {
      vorn_collections_Map_put(map, numberOf(thread, i), nullptr);
      vorn_collections_HashSet_add(set, numberOf(thread, i));
      if (thread == 0 && i % 40 == 0) {
        vorn_collections_Map_clear(map);
        vorn_collections_HashSet_clear(set);
      }
      if (thread == 1 && i % 30 == 0) {
        vorn_collections_Map_reserve(map, i);
        vorn_collections_HashSet_reserve(set, 2 * i);
      }
    }
  });
  EXPECT_MAP_AT_REST(map);
  EXPECT_SET_AT_REST(set);
}

TEST_F(Threads, ConcurrentSetOperations_TotalsHold) {
  const Handle set = object("HashSetSync");
  runTogether(kThreads, [&](int thread) {
    for (int i = 0; i < rounds(); ++i) {
      vorn_collections_HashSet_add(set, numberOf(thread, i));
      EXPECT_EQ(vorn_collections_HashSet_count(set, numberOf(thread, i)), 1);
      if (i % 2 == 1) {
        EXPECT_TRUE(vorn_collections_HashSet_remove(set, numberOf(thread, i)));
      }
      if (i % 50 == 10) {
        const collections::RootedHandle items(vorn_collections_HashSet_items(set));
        EXPECT_GE(vorn_collections_ArrayList_size(items.get()), 1);
        vorn_collections_HashSet_operator_index(set, 0);
      }
    }
  });
  EXPECT_EQ(vorn_collections_HashSet_size(set), kThreads * ((rounds() + 1) / 2));
  EXPECT_SET_AT_REST(set);
}

}  // namespace
}  // namespace vorn::tests
