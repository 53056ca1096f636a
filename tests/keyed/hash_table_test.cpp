// The hash table by itself: growth, order, what removals leave, and a model of random operations. What both tables have
// in common stands in keyed_table_test.cpp.
#include "collections/keyed/hash_table.h"

#include <algorithm>
#include <stdexcept>
#include <tuple>
#include <unordered_map>

#include "tests/keyed/table_support.h"

namespace vorn::tests {
namespace {

using Table = collections::HashTable<NativeMapEntry>;

using HashTableTest = TableTest<Hashed>;

TEST_F(HashTableTest, NewTable_IsEmptyAndHasNoMemory) {
  EXPECT_EQ(table().lines().furtherCapacity(), 0U);
  EXPECT_EQ(table().count(), 0U);
  EXPECT_EQ(table().bucketCount(), 0U);
  EXPECT_EQ(table().chunks().capacity(), 0U);
  EXPECT_EQ(table().find(integerCollectionKey(1)).node, nullptr);
  EXPECT_EQ(keys(), std::vector<std::int64_t>{});
}

TEST_F(HashTableTest, Insert_WithoutRemovals_KeepsInsertionOrderThroughGrowth) {
  std::vector<std::int64_t> expected;
  for (std::int64_t key = 0; key < 300; ++key) {
    put((key * 7919) % 1000);
    expected.push_back((key * 7919) % 1000);
  }
  EXPECT_EQ(keys(), expected);
  table().reserve(5000);
  EXPECT_EQ(keys(), expected);
}

TEST_F(HashTableTest, Insert_AfterRemovals_ComesLast) {
  for (std::int64_t key = 0; key < 4; ++key) put(key);
  EXPECT_TRUE(remove(integerCollectionKey(1)));
  EXPECT_EQ(keys(), (std::vector<std::int64_t>{0, 2, 3}));
  put(9);
  EXPECT_EQ(keys(), (std::vector<std::int64_t>{0, 2, 3, 9}));
  EXPECT_TRUE(remove(integerCollectionKey(9)));
  put(1);
  EXPECT_EQ(keys(), (std::vector<std::int64_t>{0, 2, 3, 1}));
}

TEST_F(HashTableTest, Replace_KeepsThePlace) {
  for (std::int64_t key = 0; key < 4; ++key) put(key);
  put(integerCollectionKey(1), number(77));
  EXPECT_EQ(keys(), (std::vector<std::int64_t>{0, 1, 2, 3}));
}

TEST_F(HashTableTest, Order_SurvivesGrowthAndCompaction) {
  std::vector<std::int64_t> expected;
  const std::int64_t count = onStressHeap() ? 200 : 3000;
  for (std::int64_t key = 0; key < count; ++key) put(key);
  for (std::int64_t key = 0; key < count; ++key) {
    if (key % 7 == 0) {
      expected.push_back(key);
    } else {
      EXPECT_TRUE(remove(integerCollectionKey(key)));
    }
  }
  EXPECT_LT(table().places(), static_cast<std::uint32_t>(count) / 2) << "nothing was compacted";
  EXPECT_EQ(keys(), expected);
  for (std::int64_t key = count; key < 2 * count; ++key) {
    put(key);
    expected.push_back(key);
  }
  EXPECT_EQ(keys(), expected);
}

TEST_F(HashTableTest, Insert_IntoATableOfVacantPlaces_UsesThemBeforeNewMemory) {
  const std::int64_t count = onStressHeap() ? 60 : 2000;
  for (std::int64_t key = 0; key < count; ++key) put(key);
  const std::uint64_t capacity = table().chunks().capacity();
  // As many come as go, so that room for a third more is enough for ever.
  for (std::int64_t key = 0; key < 5 * count; ++key) {
    EXPECT_TRUE(remove(integerCollectionKey(key)));
    put(key + count);
  }
  EXPECT_LE(table().chunks().capacity(), 2 * capacity);
  EXPECT_EQ(table().count(), static_cast<std::uint64_t>(count));
}

TEST_F(HashTableTest, Remove_BelowAQuarterOfThePlaces_GivesMemoryBack) {
  for (std::int64_t key = 0; key < 200; ++key) put(key);
  const std::uint64_t capacity = table().chunks().capacity();
  while (4 * table().count() > capacity) EXPECT_TRUE(remove(integerCollectionKey(keys().back())));
  EXPECT_EQ(4 * table().count(), capacity);
  EXPECT_EQ(table().chunks().capacity(), capacity);
  EXPECT_TRUE(remove(integerCollectionKey(keys().back())));
  EXPECT_LT(table().chunks().capacity(), capacity);
}

TEST_F(HashTableTest, Remove_ThatGivesMemoryBack_LeavesBucketsForTwiceTheElements) {
  table().reserve(3000);
  for (std::int64_t key = 0; key < 1000; ++key) put(integerCollectionKey(key), nullptr);
  const std::uint64_t buckets = table().bucketCount();
  std::int64_t key = 0;
  for (; table().places() != table().count() || key == 0; ++key) EXPECT_TRUE(remove(integerCollectionKey(key)));
  ASSERT_EQ(table().count(), 499U);
  ASSERT_LT(Table::bucketCountFor(2 * 499), buckets);
  EXPECT_EQ(table().bucketCount(), Table::bucketCountFor(2 * 499));
}

// ---- Small tables, which have no buckets ----------------------------------------------------------------------------

TEST_F(HashTableTest, SmallTable_HasNoBucketsUntilItOutgrowsItsTags) {
  for (const bool crowded : {false, true}) {
    SCOPED_TRACE(crowded);
    const auto keyFor = [&](std::int64_t value) { return crowded ? crowdedKey(value) : integerCollectionKey(value); };
    std::vector<std::int64_t> expected;
    for (std::int64_t value = 0; value < 40; ++value) {
      EXPECT_EQ(table().findPlain(keyFor(value)), nullptr);
      put(keyFor(value), number(value));
      expected.push_back(value);
      EXPECT_EQ(table().bucketCount() == 0, value < 16) << value;
      EXPECT_EQ(keys(), expected);
      for (std::int64_t present = 0; present <= value; ++present) {
        const Table::Node* const node = table().findPlain(keyFor(present));
        ASSERT_NE(node, nullptr) << present << " of " << value;
        EXPECT_EQ(valueOf(node->entry.value), present);
      }
      expectWhole();
    }
    while (table().count() != 0) EXPECT_TRUE(remove(keyFor(expected[table().count() - 1])));
    table().reserve(1);
    EXPECT_EQ(table().bucketCount(), 0U);
  }
}

TEST_F(HashTableTest, SmallTable_WhosePlacesAreUsedUp_MovesItsElementsTogether) {
  for (std::int64_t key = 0; key < 16; ++key) put(key);
  EXPECT_TRUE(remove(integerCollectionKey(3)));
  std::vector<std::int64_t> expected = keys();
  const std::uint64_t capacity = table().chunks().capacity();
  for (std::int64_t key = 16; key < 80; ++key) {
    put(key);
    expected.push_back(key);
    EXPECT_EQ(keys(), expected);
    expectWhole();
    EXPECT_TRUE(remove(integerCollectionKey(expected[5])));
    expected.erase(expected.begin() + 5);
    EXPECT_EQ(keys(), expected);
    expectWhole();
  }
  EXPECT_EQ(table().bucketCount(), 0U);
  EXPECT_EQ(table().chunks().capacity(), capacity);
}

TEST_F(HashTableTest, SmallAgain_AfterRemovalsClearOrReserve_HasNoBuckets) {
  const auto fill = [&] {
    for (std::int64_t key = 0; key < 60; ++key) put(key);
    EXPECT_NE(table().bucketCount(), 0U);
  };
  fill();
  for (std::int64_t key = 0; key < 53; ++key) EXPECT_TRUE(remove(integerCollectionKey(key)));
  EXPECT_EQ(table().bucketCount(), 0U);
  EXPECT_EQ(keys(), (std::vector<std::int64_t>{53, 54, 55, 56, 57, 58, 59}));
  expectWhole();
  fill();
  for (std::int64_t key = 0; key < 60; ++key) {
    if (key % 5 == 0) continue;
    EXPECT_TRUE(remove(integerCollectionKey(key)));
  }
  const std::vector<std::int64_t> left = keys();
  EXPECT_EQ(left.size(), 12U);
  table().reserve(2);
  EXPECT_EQ(table().bucketCount(), 0U);
  EXPECT_EQ(keys(), left);
  for (const std::int64_t key : left) EXPECT_NE(table().findPlain(integerCollectionKey(key)), nullptr);
  expectWhole();
  table().clear();
  std::vector<std::int64_t> expected;
  for (std::int64_t key = 0; key < 20; ++key) put(key);
  for (std::int64_t key = 0; key < 20; ++key) {
    if (key < 5 || key > 10) expected.push_back(key);
  }
  for (std::int64_t key = 5; key <= 10; ++key) EXPECT_TRUE(remove(integerCollectionKey(key)));
  EXPECT_EQ(table().places(), 20U) << "elements stand beyond the tags";
  table().reserve(1);
  EXPECT_EQ(table().bucketCount(), 0U);
  EXPECT_EQ(keys(), expected);
  for (const std::int64_t key : expected) EXPECT_NE(table().findPlain(integerCollectionKey(key)), nullptr);
  expectWhole();
  table().reserve(1000);
  table().clear();
  EXPECT_EQ(table().bucketCount(), 0U);
  put(1);
  EXPECT_EQ(keys(), std::vector<std::int64_t>{1});
}

TEST_F(HashTableTest, SmallAgain_WithAsManyElementsAsTags_HasNoBuckets) {
  for (int i = 0; i < 33; ++i) put(i);
  ASSERT_NE(table().bucketCount(), 0U);
  for (int i = 1; i <= 17; ++i) remove(i);
  EXPECT_EQ(table().count(), 16U);
  EXPECT_EQ(table().bucketCount(), 0U);
}

TEST_F(HashTableTest, SmallTable_FailedAllocationOnTheWayToBuckets_LeavesIt) {
  int failures = 0;
  for (std::int64_t key = 0; key < 18; ++key) {
    const std::vector<std::int64_t> before = keys();
    failures += sweepAllocationFailures([&] { put(integerCollectionKey(key), nullptr); },
                                        [&] {
                                          expectWhole();
                                          EXPECT_EQ(keys(), before);
                                        });
  }
  EXPECT_GE(failures, 5) << "four sizes of the chunk, and the buckets";
}

// ---- Costs, in places that are passed -------------------------------------------------------------------------------

TEST_F(HashTableTest, Walk_PassesAtMostTwoPlacesAnElement_WhateverWasRemoved) {
  const std::int64_t count = onStressHeap() ? 300 : 20000;
  for (std::int64_t key = 0; key < count; ++key) put(key);
  Randoms random(5);
  std::vector<std::int64_t> order;
  for (std::int64_t key = 0; key < count; ++key) order.push_back(key);
  for (std::size_t i = order.size(); i > 1; --i) std::swap(order[i - 1], order[random.below(i)]);
  for (const std::int64_t key : order) {
    EXPECT_TRUE(remove(integerCollectionKey(key)));
    EXPECT_LE(table().places() - table().firstPlace(), std::max<std::uint64_t>(2 * table().count(), 16));
  }
}

TEST_F(HashTableTest, Drain_FromEitherEnd_PassesEachPlaceAConstantNumberOfTimes) {
  const std::int64_t count = onStressHeap() ? 300 : 20000;
  for (const bool fromTheEnd : {false, true}) {
    SCOPED_TRACE(fromTheEnd);
    for (std::int64_t key = 0; key < count; ++key) put(key);
    std::uint64_t steps = 0;
    for (std::int64_t left = count; left > 0; --left) {
      const Table::Node* const node = table().nth(fromTheEnd ? table().count() - 1 : 0);
      ASSERT_EQ(node, &table().at(fromTheEnd ? table().places() - 1 : table().firstPlace()));
      const std::uint32_t firstBefore = table().firstPlace();
      const std::uint32_t placesBefore = table().places();
      const NativeCollectionKey key = node->key;
      EXPECT_EQ(static_cast<std::int64_t>(key.words[0]), fromTheEnd ? left - 1 : count - left);
      EXPECT_TRUE(remove(key));
      // An end moved over the places in between, or all elements moved down.
      const bool compacted = table().firstPlace() < firstBefore;
      steps += compacted ? placesBefore : table().firstPlace() - firstBefore + (placesBefore - table().places());
    }
    EXPECT_LE(steps, 4 * static_cast<std::uint64_t>(count));
  }
}

TEST_F(HashTableTest, Nth_FindsEveryPositionWithAndWithoutGaps) {
  for (std::int64_t key = 0; key < 100; ++key) put(key);
  const auto expectPositions = [&] {
    const std::vector<std::int64_t> expected = keys();
    for (std::size_t i = 0; i < expected.size(); ++i) {
      EXPECT_EQ(static_cast<std::int64_t>(table().nth(i)->key.words[0]), expected[i]) << i;
    }
  };
  expectPositions();
  for (const std::int64_t gone : {0, 1, 50, 51, 52, 70, 98, 99, 2, 97, 20}) {
    EXPECT_TRUE(remove(integerCollectionKey(gone)));
    expectPositions();
  }
}

// ---- Memory ---------------------------------------------------------------------------------------------------------

std::uint64_t memoryOf(const Table& table) {
  const auto& lines = table.lines();
  return (lines.bucketCount() + lines.furtherCapacity()) * sizeof(collections::BucketLine) +
         table.chunks().capacity() * sizeof(Table::Node);
}

TEST_F(HashTableTest, Memory_FollowsTheElements) {
  const std::int64_t count = onStressHeap() ? 2000 : 100000;
  for (const bool fromTheEnd : {false, true}) {
    for (std::int64_t key = 0; key < count; ++key) put(key);
    for (std::int64_t i = 0; i < count; ++i) {
      EXPECT_TRUE(remove(integerCollectionKey(fromTheEnd ? count - 1 - i : i)));
      // Twenty times the elements' own bytes at the most, and a little that any table has.
      ASSERT_LE(memoryOf(table()), table().count() * 20 * sizeof(Table::Node) + 6000) << table().count();
    }
    EXPECT_LE(memoryOf(table()), 1500U);
  }
}

TEST_F(HashTableTest, Memory_OfOverlongBucketsFollowsToo) {
  for (std::int64_t value = 0; value < 400; ++value) put(crowdedKey(value), nullptr);
  EXPECT_GT(table().lines().furtherUsed(), 40U);
  for (std::int64_t value = 0; value < 395; ++value) EXPECT_TRUE(remove(crowdedKey(value)));
  EXPECT_LE(memoryOf(table()), 3000U);
}

TEST_F(HashTableTest, Remove_WithoutMemoryToCompact_RemovesAllTheSame) {
  for (const bool fromTheEnd : {false, true}) {
    SCOPED_TRACE(fromTheEnd);
    const std::int64_t count = 1500;
    for (std::int64_t key = 0; key < count; ++key) put(integerCollectionKey(key), nullptr);
    for (std::int64_t i = 0; i < count; ++i) {
      vorn_heap_fail_allocation(0);
      EXPECT_TRUE(remove(integerCollectionKey(fromTheEnd ? count - 1 - i : i)));
      vorn_heap_fail_allocation(-1);
      if (i % 50 == 0) expectWhole();
      ASSERT_EQ(table().count(), static_cast<std::uint64_t>(count - 1 - i));
    }
    EXPECT_EQ(keys(), std::vector<std::int64_t>{});
  }
}

TEST_F(HashTableTest, Remove_WithEachAllocationOfACompactionFailing_LeavesTheOthers) {
  bool failed = true;
  for (int failing = 0; failed; ++failing) {
    ASSERT_LT(failing, 20);
    SCOPED_TRACE(failing);
    for (std::int64_t key = 0; key < 700; ++key) put(integerCollectionKey(key), nullptr);
    failed = false;
    for (std::int64_t key = 699; key >= 20; --key) {
      vorn_heap_fail_allocation(failing);
      EXPECT_TRUE(remove(integerCollectionKey(key)));
      failed |= vorn_heap_failure_happened() != 0;
      vorn_heap_fail_allocation(-1);
    }
    expectWhole();
    EXPECT_EQ(table().count(), 20U);
    for (std::int64_t key = 0; key < 20; ++key) EXPECT_NE(table().findPlain(integerCollectionKey(key)), nullptr);
  }
}

TEST_F(HashTableTest, Remove_MiddleOfAChain_LeavesTheOthers) {
  for (std::int64_t value = 0; value < 40; ++value) put(crowdedKey(value), nullptr);
  for (std::int64_t value = 0; value < 40; value += 3) EXPECT_TRUE(remove(crowdedKey(value)));
  for (std::int64_t value = 0; value < 40; ++value) {
    EXPECT_EQ(table().find(crowdedKey(value)).node != nullptr, value % 3 != 0);
  }
}

TEST_F(HashTableTest, Clear_KeepsFewBucketsAndDropsElements) {
  for (std::int64_t key = 0; key < 100; ++key) put(key);
  const std::uint64_t buckets = table().bucketCount();
  table().clear();
  EXPECT_EQ(table().count(), 0U);
  EXPECT_EQ(table().bucketCount(), buckets);
  EXPECT_EQ(table().chunks().capacity(), 0U);
  EXPECT_EQ(table().find(integerCollectionKey(5)).node, nullptr);
  put(5);
  EXPECT_EQ(keys(), std::vector<std::int64_t>{5});
}

TEST_F(HashTableTest, Clear_DropsManyBuckets) {
  table().reserve(100000);
  put(5);
  table().clear();
  EXPECT_EQ(table().bucketCount(), 0U);
  put(6);
  EXPECT_EQ(table().bucketCount(), 0U);
  EXPECT_EQ(keys(), std::vector<std::int64_t>{6});
}

TEST_F(HashTableTest, Clear_OfANewTable_ChangesNothing) {
  table().clear();
  EXPECT_EQ(table().bucketCount(), 0U);
}

TEST_F(HashTableTest, BucketCounts_ArePrimeAndAtLeastDouble) {
  EXPECT_EQ(Table::bucketCountFor(0), 0U);
  EXPECT_EQ(Table::bucketCountFor(16), 0U);
  EXPECT_EQ(Table::bucketCountFor(17), 5U);
  std::uint64_t before = 1;
  for (std::uint64_t elements = 17; elements < 20000000; elements = Table::elementLimit(before) + 1) {
    const std::uint64_t count = Table::bucketCountFor(elements);
    EXPECT_GE(count * 6, elements);
    EXPECT_GE(count, 2 * before);
    for (std::uint64_t divisor = 2; divisor * divisor <= count; ++divisor) ASSERT_NE(count % divisor, 0U) << count;
    EXPECT_EQ(Table::bucketCountFor(Table::elementLimit(count)), count);
    before = count;
  }
}

TEST_F(HashTableTest, BucketOf_SpreadsHashesOverAllBuckets) {
  table().reserve(100);
  EXPECT_EQ(table().lines().bucketOf(0), 0U);
  EXPECT_EQ(table().lines().bucketOf(0xFFFFFFFFU), table().bucketCount() - 1);
}

TEST_F(HashTableTest, Growth_HappensWhenTheLoadFactorWouldExceedItsMaximum) {
  for (std::int64_t key = 0; key < 16; ++key) put(key);
  EXPECT_EQ(table().bucketCount(), 0U);
  put(16);
  EXPECT_EQ(table().bucketCount(), 5U);
  for (std::int64_t key = 17; key < 30; ++key) put(key);
  EXPECT_EQ(table().bucketCount(), 5U);
  put(30);
  EXPECT_EQ(table().bucketCount(), 11U);
}

TEST_F(HashTableTest, Reserve_MakesBucketsOnceAndForAll) {
  table().reserve(1000);
  const std::uint64_t buckets = table().bucketCount();
  EXPECT_EQ(buckets, 197U);
  const std::uint64_t changes = table().changes();
  table().reserve(1000);
  table().reserve(1182);
  EXPECT_EQ(table().changes(), changes) << "rehashed for the same bucket count";
  for (std::int64_t key = 0; key < 1000; ++key) put(key);
  EXPECT_EQ(table().bucketCount(), buckets);
}

// Filling so many buckets looks some places ahead.
TEST_F(HashTableTest, Reserve_WithEveryPlaceTaken_LooksAtNoneBehindThem) {
  constexpr std::uint32_t kPlaces = 3 * Table::Chunks::kChunk;
  for (std::int64_t key = 0; key < kPlaces; ++key) put(integerCollectionKey(key), nullptr);
  ASSERT_EQ(table().places(), table().chunks().capacity());
  table().reserve(60000);
  EXPECT_GT(table().bucketCount(), 8192U);
  for (std::int64_t key = 0; key < kPlaces; ++key) EXPECT_NE(table().findPlain(integerCollectionKey(key)), nullptr);
}

TEST_F(HashTableTest, Reserve_ForFewer_ShrinksToWhatThePresentElementsNeed) {
  table().reserve(1000);
  for (std::int64_t key = 0; key < 50; ++key) put(key);
  table().reserve(1);
  EXPECT_EQ(table().bucketCount(), 11U);
  for (std::int64_t key = 0; key < 50; ++key) EXPECT_NE(table().find(integerCollectionKey(key)).node, nullptr);
}

TEST_F(HashTableTest, Reserve_Impossible_ThrowsAndChangesNothing) {
  for (std::int64_t key = 0; key < 5; ++key) put(key);
  const std::uint64_t changes = table().changes();
  EXPECT_THROW(table().reserve(~std::uint64_t{0}), std::length_error);
  EXPECT_THROW(table().reserve(2528638699ULL), std::length_error);
  EXPECT_EQ(table().changes(), changes);
  EXPECT_EQ(table().bucketCount(), 0U);
}

TEST_F(HashTableTest, Reserve_CountsAsAChange) {
  put(1);
  const std::uint64_t before = table().changes();
  table().reserve(100);
  EXPECT_NE(table().changes(), before);
}

// A search whose comparisons put elements has to hear of it even when the insertion itself then fails.
TEST_F(HashTableTest, MakeRoom_ThatMovesOrGrowsAnything_CountsAsAChange) {
  Randoms randoms(11);
  const auto memory = [&] {
    return std::tuple(table().chunks().directory(), table().chunks().firstChunk(), table().chunks().capacity(),
                      table().lines().lines(), table().lines().furtherCapacity(), table().bucketCount(),
                      table().firstPlace(), table().places());
  };
  int changes = 0;
  for (int step = 0; step < 4000; ++step) {
    const std::int64_t value = static_cast<std::int64_t>(randoms.below(step < 2000 ? 24 : 3000));
    const NativeCollectionKey key = step % 2 == 0 ? integerCollectionKey(value) : crowdedKey(value);
    auto place = table().find(key);
    if (place.node != nullptr) {
      table().remove(place);
      continue;
    }
    const auto memoryBefore = memory();
    const std::uint64_t before = table().changes();
    table().makeRoom(place, key);
    if (memory() != memoryBefore) {
      ++changes;
      ASSERT_NE(table().changes(), before) << step;
    }
    table().insert(place, key, {nullptr, nullptr});
  }
  EXPECT_GT(changes, 20);
}

TEST_F(HashTableTest, FailedAllocation_LeavesTheElements) {
  // Through chunks that grow, whole ones, directories, buckets, and further lines for crowded keys.
  const Handle value = number(5);
  int failures = 0;
  const std::int64_t count = onStressHeap() ? 700 : 1200;
  for (std::int64_t i = 0; i < count; ++i) {
    const NativeCollectionKey key = i % 3 == 0 ? crowdedKey(i) : integerCollectionKey(i);
    failures += sweepAllocationFailures(
        [&] {
          auto place = table().find(key);
          table().makeRoom(place, key);
        },
        [&] {
          expectWhole();
          EXPECT_EQ(table().count(), static_cast<std::uint64_t>(i));
        });
    put(key, value);
  }
  EXPECT_GE(failures, 20);
  const std::vector<std::int64_t> before = keys();
  EXPECT_GE(sweepAllocationFailures([&] { table().reserve(50000); }, [&] { expectWhole(); }), 1);
  EXPECT_EQ(keys(), before);
}

TEST_F(HashTableTest, RandomOperations_AgreeWithAModel) {
  for (const bool crowded : {false, true}) {
    const int steps = onStressHeap() ? 400 : 20000;
    std::unordered_map<std::int64_t, std::int64_t> model;
    table().clear();
    Randoms random(crowded ? 17 : 29);
    const auto keyFor = [&](std::int64_t value) { return crowded ? crowdedKey(value) : integerCollectionKey(value); };
    for (int step = 0; step < steps; ++step) {
      const auto value = static_cast<std::int64_t>(random.below(crowded ? 60 : 2000));
      switch (random.below(step % 1000 < 600 ? 8 : 16)) {
        case 0:
        case 8:
        case 9:
        case 10:
        case 11:
          EXPECT_EQ(remove(keyFor(value)), model.erase(value) == 1);
          break;
        case 1:
          if (random.below(200) == 0) {
            table().clear();
            model.clear();
          } else {
            table().reserve(random.below(3000));
          }
          break;
        default:
          put(keyFor(value), number(step));
          model[value] = step;
      }
      if (step % 97 == 0) expectWhole();
    }
    ASSERT_EQ(table().count(), model.size());
    std::size_t walked = 0;
    table().forEach([&](const NativeCollectionKey& key, const NativeMapEntry& entry) {
      ++walked;
      const auto expected = model.find(static_cast<std::int64_t>(key.words[0]));
      ASSERT_NE(expected, model.end());
      EXPECT_EQ(valueOf(entry.value), expected->second);
    });
    EXPECT_EQ(walked, model.size());
    expectWhole();
  }
}

TEST_F(HashTableTest, Memory_PerEntryAtAMillion) {
  // 40 bytes of element, a line of 64 for every five or so, lines for overlong buckets, and the directory.
  if (onStressHeap()) GTEST_SKIP() << "pages per block say nothing about memory";
  constexpr std::int64_t kCount = 1000000;
  for (std::int64_t key = 0; key < kCount; ++key) {
    const NativeCollectionKey made = integerCollectionKey(key);
    auto place = table().find(made);
    table().makeRoom(place, made);
    table().insert(place, made, {nullptr, nullptr});
  }
  EXPECT_LE(static_cast<double>(memoryOf(table())) / kCount, 60.0);
  table().clear();
}

}  // namespace
}  // namespace vorn::tests
