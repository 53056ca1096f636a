// What the natives allocate in the collected heap: exactly, and nothing for lookups; and what holds when an allocation
// fails.
#include <new>

#include "tests/keyed/keyed_cases.h"
#include "tests/support/heap_statistics.h"

namespace vorn::tests {
namespace {

#define EXPECT_ALLOCATIONS(operation, expected) EXPECT_EQ(allocationsOf([&] { operation; }), expected) << #operation

const std::string kLong = "a text that is longer than sixteen bytes";

class MapAllocation : public MapTest {};
INSTANTIATE_MAP_TESTS(MapAllocation);

TEST_P(MapAllocation, LookupsByNumberAndText_AllocateNothing) {
  const Handle map = countingMap(type(), 20);
  vorn_collections_Map_put(map, string("short"), number(1));
  vorn_collections_Map_put(map, string(kLong), number(2));
  void* slot = nullptr;
  for (const Handle& handle : {number(5), integer("Long", 99), floating("Double", 2.5), integer("ULong", -1),
                               string("short"), text("short"), string(kLong), string(kLong + "!"), boolean(true)}) {
    void* const key = handle;
    void* const raw = map;
    EXPECT_ALLOCATIONS(vorn_collections_Map__get(raw, key), 0U);
    EXPECT_ALLOCATIONS(vorn_collections_Map_operator_in(raw, key), 0U);
    EXPECT_ALLOCATIONS(vorn_collections_Map_tryGet(raw, key, &slot), 0U);
    EXPECT_ALLOCATIONS(vorn_collections_Map_containsValue(raw, key), 0U);
    EXPECT_ALLOCATIONS(vorn_collections_Map_remove(raw, key), 0U);
  }
  void* const raw = map;
  EXPECT_ALLOCATIONS(vorn_collections_Map_size(raw), 0U);
  EXPECT_ALLOCATIONS(vorn_collections_Map_clear(raw), 0U);
}

TEST_P(MapAllocation, PutOfAPresentKey_AllocatesNothing) {
  const Handle map = countingMap(type(), 20);
  const Handle handle = number(3);
  void* const raw = map;
  void* const key = handle;
  EXPECT_ALLOCATIONS(vorn_collections_Map_put(raw, key, key), 0U);
}

TEST_P(MapAllocation, Puts_AllocateBlocksOfNodesAndBucketsOnly) {
  const Handle map = object(type());
  std::vector<Handle> keys;
  for (int i = 0; i < 1000; ++i) keys.push_back(number(i));
  for (std::uint64_t i = 0; i < keys.size(); ++i) {
    const auto& table = getMapData(map)->hash;
    const std::uint64_t capacity = table.chunks().capacity();
    const std::uint64_t buckets = table.bucketCount();
    const std::uint64_t further = table.lines().furtherCapacity();
    const auto& ordered = getMapData(map)->ordered;
    const std::uint64_t places = ordered.chunks().capacity();
    const std::uint64_t links = ordered.tree().capacity();
    void* const raw = map;
    void* const key = keys[i];
    const std::uint64_t allocations = allocationsOf([&] { vorn_collections_Map_put(raw, key, key); });
    if (sorted()) {
      const bool moreLinks = ordered.tree().capacity() != links;
      EXPECT_EQ(moreLinks, links <= i + 1) << i << ": one place is the missing child's";
      const bool morePlaces = ordered.chunks().capacity() != places;
      EXPECT_EQ(morePlaces, places == i) << i;
      EXPECT_GE(allocations, (morePlaces ? 1U : 0U) + (moreLinks ? 1U : 0U)) << i;
      EXPECT_LE(allocations, (morePlaces ? 2U : 0U) + (moreLinks ? 1U : 0U)) << i << ": with a directory";
      continue;
    }
    const bool morePlaces = table.chunks().capacity() != capacity;
    const bool moreBuckets = table.bucketCount() != buckets;
    // How many buckets are overlong hangs on the seed of the hashes.
    const bool furtherLines = table.lines().furtherCapacity() != further;
    // A chunk may come with a directory, and buckets with further lines.
    EXPECT_GE(allocations, (morePlaces ? 1U : 0U) + (moreBuckets ? 1U : 0U)) << i;
    EXPECT_LE(allocations, (morePlaces ? 2U : 0U) + (moreBuckets ? 1U : 0U) + (moreBuckets || furtherLines ? 2U : 0U))
        << i;
  }
  EXPECT_MAP_AT_REST(map);
}

TEST_P(MapAllocation, SmallMaps_AllocateLittle) {
  const Handle map = object(type());
  std::vector<Handle> keys;
  for (int i = 0; i < 8; ++i) keys.push_back(number(i));
  vorn_heap_statistics before;
  vorn_heap_statistics after;
  vorn_heap_get_statistics(&before);
  for (int i = 0; i < 3; ++i) vorn_collections_Map_put(map, keys[i], nullptr);
  vorn_heap_get_statistics(&after);
  EXPECT_LE(after.allocations - before.allocations, sorted() ? 3U : 2U);
  EXPECT_LE(after.bytes_allocated - before.bytes_allocated, sorted() ? 320U : 208U);
  for (int i = 3; i < 8 && !sorted(); ++i) vorn_collections_Map_put(map, keys[i], nullptr);
  vorn_heap_get_statistics(&after);
  EXPECT_LE(after.allocations - before.allocations, 3U);
  EXPECT_LE(after.bytes_allocated - before.bytes_allocated, 832U);
}

TEST_P(MapAllocation, AMapOfOneAndOfTenEntries_HoldsLittle) {
  if (sorted()) GTEST_SKIP() << "of hash maps";
  const auto held = [&](int entries) {
    std::vector<Handle> keys;
    for (int i = 0; i < entries; ++i) keys.push_back(number(i));
    vorn_heap_statistics before;
    vorn_heap_statistics after;
    vorn_heap_get_statistics(&before);
    const Handle map = object(type());
    vorn_heap_get_statistics(&after);
    for (const Handle& key : keys) vorn_collections_Map_put(map, key, key);
    const auto& table = getMapData(map)->hash;
    EXPECT_EQ(table.bucketCount(), 0U);
    return after.bytes_allocated - before.bytes_allocated -
           (getMapData(map)->mutex != nullptr ? sizeof(pthread_mutex_t) : 0) +
           table.chunks().capacity() * sizeof(collections::HashTable<NativeMapEntry>::Node);
  };
  EXPECT_LE(held(1), 280U);
  EXPECT_LE(held(10), 800U);
}

TEST_P(MapAllocation, PutAfterRemove_NeedsNoMoreMemoryInTheLongRun) {
  const Handle map = countingMap(type(), 20);
  const Handle key = number(3);
  void* const raw = map;
  void* const rawKey = key;
  const auto removeAndPut = [&] {
    for (int i = 0; i < 1000; ++i) {
      vorn_collections_Map_remove(raw, rawKey);
      vorn_collections_Map_put(raw, rawKey, rawKey);
    }
  };
  EXPECT_LE(allocationsOf(removeAndPut), sorted() ? 0U : 1U) << "a larger chunk, where most are kept";
  EXPECT_ALLOCATIONS(removeAndPut(), 0U);
}

TEST_P(MapAllocation, FailureInPut_LeavesTheMap) {
  const Handle map = object(type());
  int failures = 0;
  for (int i = 0; i < 120; ++i) {
    const Handle key = i % 2 == 0 ? number(i) : string(kLong + std::to_string(i));
    const MapState before(map);
    failures += sweepAllocationFailures([&] { vorn_collections_Map_put(map, key, key); },
                                        [&] {
                                          EXPECT_EQ(MapState(map), before);
                                          EXPECT_MAP_AT_REST(map);
                                        });
    EXPECT_EQ(vorn_collections_Map_size(map), i + 1);
  }
  EXPECT_GE(failures, 5);
  EXPECT_MAP_AT_REST(map);
}

TEST_P(MapAllocation, FailureInReserve_LeavesTheMap) {
  const Handle map = countingMap(type(), 10);
  const MapState before(map);
  const int failures = sweepAllocationFailures([&] { vorn_collections_Map_reserve(map, 1000); },
                                               [&] {
                                                 EXPECT_EQ(MapState(map), before);
                                                 EXPECT_MAP_AT_REST(map);
                                               });
  EXPECT_EQ(failures, sorted() ? 0 : 1);
}

// How many entries there are is known before the first is copied.
TEST_P(MapAllocation, Copies_TakeAsManyBlocksForManyEntriesAsForFew) {
  std::uint64_t ofFew[3] = {};
  for (const int count : {60, 600}) {
    const Handle map = object(type());
    for (int i = 0; i < count; ++i) vorn_collections_Map_put(map, string(std::to_string(i)), string("x"));
    const std::uint64_t blocks[] = {allocationsOf([&] { vorn_collections_Map_keys(map); }),
                                    allocationsOf([&] { vorn_collections_Map_values(map); }),
                                    allocationsOf([&] { vorn_collections_Map_toString(map); })};
    for (int i = 0; i < 3; ++i) {
      if (count == 60) ofFew[i] = blocks[i];
      EXPECT_EQ(blocks[i], ofFew[i]) << i;
    }
  }
}

TEST_P(MapAllocation, FailureInListings_LeavesTheMapUnlocked) {
  const Handle map = object(type());
  for (int i = 0; i < 12; ++i) vorn_collections_Map_put(map, string(std::to_string(i)), string(kLong));
  const MapState before(map);
  for (const auto listing : {vorn_collections_Map_keys, vorn_collections_Map_values, vorn_collections_Map_items}) {
    const int failures = sweepAllocationFailures([&] { listing(map); },
                                                 [&] {
                                                   EXPECT_EQ(MapState(map), before);
                                                   EXPECT_MAP_AT_REST(map);
                                                 });
    EXPECT_GE(failures, listing == vorn_collections_Map_items ? 15 : 2);
  }
}

TEST_P(MapAllocation, FailureWithUserKeys_LeavesTheMap) {
  const Handle map = object(type());
  for (int i = 0; i < 40; ++i) {
    const Handle key = userKey(i);
    const MapState before(map);
    sweepAllocationFailures([&] { vorn_collections_Map_put(map, key, key); },
                            [&] {
                              EXPECT_EQ(MapState(map), before);
                              EXPECT_MAP_AT_REST(map);
                            });
  }
  EXPECT_EQ(vorn_collections_Map_size(map), 40);
}

class SetAllocation : public SetTest {};
INSTANTIATE_SET_TESTS(SetAllocation);

TEST_P(SetAllocation, MembershipOfNumbersAndTexts_AllocatesNothing) {
  const Handle set = countingSet(type(), 20);
  vorn_collections_HashSet_add(set, string(kLong));
  void* const raw = set;
  for (const Handle& handle : {number(5), integer("Long", 99), string("short"), string(kLong), Handle(nullptr)}) {
    void* const value = handle;
    EXPECT_ALLOCATIONS(vorn_collections_HashSet_operator_in(raw, value), 0U);
    EXPECT_ALLOCATIONS(vorn_collections_HashSet_count(raw, value), 0U);
    EXPECT_ALLOCATIONS(vorn_collections_HashSet_remove(raw, value), 0U);
  }
  EXPECT_ALLOCATIONS(vorn_collections_HashSet_operator_index(raw, 2), 0U);
  EXPECT_ALLOCATIONS(vorn_collections_HashSet_size(raw), 0U);
  EXPECT_ALLOCATIONS(vorn_collections_HashSet_clear(raw), 0U);
}

TEST_P(SetAllocation, Display_TakesAsManyBlocksForManyElementsAsForFew) {
  const auto blocksOf = [&](int count) {
    const Handle set = object(type());
    for (int i = 0; i < count; ++i) vorn_collections_HashSet_add(set, string(std::to_string(i)));
    return allocationsOf([&] { vorn_collections_HashSet_toString(set); });
  };
  EXPECT_EQ(blocksOf(60), blocksOf(600));
}

TEST_P(SetAllocation, FailureInAddReserveOrItems_LeavesTheSet) {
  const Handle set = object(type());
  int failures = 0;
  const auto sweep = [&](const std::function<void()>& attempt) {
    const std::vector<void*> before = elementsOfSet(set);
    failures += sweepAllocationFailures(attempt, [&] {
      EXPECT_EQ(elementsOfSet(set), before);
      EXPECT_SET_AT_REST(set);
    });
  };
  for (int i = 0; i < 120; ++i) {
    const Handle value = string(std::to_string(i));
    sweep([&] { vorn_collections_HashSet_add(set, value); });
  }
  EXPECT_EQ(vorn_collections_HashSet_size(set), 120);
  EXPECT_GE(failures, 5);
  failures = 0;
  sweep([&] { vorn_collections_HashSet_reserve(set, 1000); });
  EXPECT_EQ(failures, 1);
  // The first allocation is the list itself, whose maker answers null; the second is room in it.
  const std::vector<void*> before = elementsOfSet(set);
  vorn_heap_fail_allocation(0);
  EXPECT_EQ(vorn_collections_HashSet_items(set), nullptr);
  EXPECT_NE(vorn_heap_failure_happened(), 0);
  vorn_heap_fail_allocation(1);
  EXPECT_THROW(vorn_collections_HashSet_items(set), std::bad_alloc);
  vorn_heap_fail_allocation(2);
  EXPECT_NE(vorn_collections_HashSet_items(set), nullptr);
  EXPECT_EQ(vorn_heap_failure_happened(), 0);
  vorn_heap_fail_allocation(-1);
  EXPECT_EQ(elementsOfSet(set), before);
  EXPECT_SET_AT_REST(set);
}

}  // namespace
}  // namespace vorn::tests
