// The hash table by itself: lookups, growth, reuse of nodes, order, and a model of random operations.
#include "collections/keyed/hash_table.h"

#include <algorithm>
#include <stdexcept>
#include <unordered_map>

#include "tests/keyed/table_support.h"

namespace vorn::tests {
namespace {

using Table = collections::HashTable<NativeMapEntry>;

class HashTableTest : public RuntimeTest {
 protected:
  void SetUp() override { map_->hashed = true; }
  void TearDown() override {
    expectWhole();
    RuntimeTest::TearDown();
  }

  [[nodiscard]] Table& table() const { return map_->hash; }
  void expectWhole() const { EXPECT_EQ(collections::validateMapData(*map_), ""); }

  void put(const NativeCollectionKey& key, void* value) const {
    const Handle keep(value);
    const auto place = table().find(key);
    if (place.node != nullptr) {
      place.node->entry.value = value;
      return;
    }
    table().makeRoom();
    table().insert(place, key, {nullptr, value});
  }
  void put(std::int64_t key) const { put(integerCollectionKey(key), number(key)); }
  bool remove(const NativeCollectionKey& key) const {
    const auto place = table().find(key);
    if (place.node == nullptr) return false;
    table().remove(place.node);
    return true;
  }
  [[nodiscard]] std::vector<std::int64_t> keys() const {
    std::vector<std::int64_t> result;
    table().forEach([&](const NativeCollectionKey& key, const NativeMapEntry&) {
      result.push_back(static_cast<std::int64_t>(key.words[0]));
    });
    return result;
  }

  CollectedRecord<MapData> map_;
};

TEST_F(HashTableTest, NewTable_IsEmptyAndHasNoMemory) {
  EXPECT_EQ(table().count(), 0U);
  EXPECT_EQ(table().bucketCount(), 0U);
  EXPECT_FALSE(table().hasBuckets());
  EXPECT_EQ(table().pool().firstBlock(), nullptr);
  EXPECT_EQ(table().find(integerCollectionKey(1)).node, nullptr);
  EXPECT_EQ(keys(), std::vector<std::int64_t>{});
}

TEST_F(HashTableTest, Insert_FindsEveryKeyAndNoOther) {
  for (std::int64_t key = 0; key < 500; ++key) put(key * 3);
  EXPECT_EQ(table().count(), 500U);
  for (std::int64_t key = 0; key < 1500; ++key) {
    const auto place = table().find(integerCollectionKey(key));
    ASSERT_EQ(place.node != nullptr, key % 3 == 0) << key;
    if (place.node != nullptr) {
      EXPECT_EQ(valueOf(place.node->entry.value), key);
    }
  }
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

TEST_F(HashTableTest, Remove_VacatesAPlaceThatTheNextInsertionTakes) {
  for (std::int64_t key = 0; key < 4; ++key) put(key);
  EXPECT_TRUE(remove(integerCollectionKey(1)));
  EXPECT_EQ(keys(), (std::vector<std::int64_t>{0, 2, 3}));
  put(9);
  EXPECT_EQ(keys(), (std::vector<std::int64_t>{0, 9, 2, 3}));
}

TEST_F(HashTableTest, Remove_FreeNodesAreReusedBeforeNewBlocks) {
  for (std::int64_t key = 0; key < 100; ++key) put(key);
  const auto* const last = table().pool().lastBlock();
  const std::uint32_t used = last->used;
  for (int round = 0; round < 5; ++round) {
    for (std::int64_t key = 0; key < 100; ++key) EXPECT_TRUE(remove(integerCollectionKey(key)));
    EXPECT_EQ(table().count(), 0U);
    expectWhole();
    for (std::int64_t key = 0; key < 100; ++key) put(key);
  }
  EXPECT_EQ(table().pool().lastBlock(), last);
  EXPECT_EQ(last->used, used);
}

TEST_F(HashTableTest, Remove_MiddleOfAChain_LeavesTheOthers) {
  for (std::int64_t value = 0; value < 40; ++value) put(crowdedKey(value), nullptr);
  for (std::int64_t value = 0; value < 40; value += 3) EXPECT_TRUE(remove(crowdedKey(value)));
  for (std::int64_t value = 0; value < 40; ++value) {
    EXPECT_EQ(table().find(crowdedKey(value)).node != nullptr, value % 3 != 0);
  }
}

TEST_F(HashTableTest, Clear_KeepsBucketsAndDropsNodes) {
  for (std::int64_t key = 0; key < 100; ++key) put(key);
  const std::uint64_t buckets = table().bucketCount();
  table().clear();
  EXPECT_EQ(table().count(), 0U);
  EXPECT_EQ(table().bucketCount(), buckets);
  EXPECT_EQ(table().pool().firstBlock(), nullptr);
  EXPECT_EQ(table().find(integerCollectionKey(5)).node, nullptr);
  put(5);
  EXPECT_EQ(keys(), std::vector<std::int64_t>{5});
}

TEST_F(HashTableTest, Clear_OfANewTable_ChangesNothing) {
  table().clear();
  EXPECT_FALSE(table().hasBuckets());
}

TEST_F(HashTableTest, BucketCounts_ArePrimeAndAtLeastDouble) {
  std::uint64_t before = 0;
  for (std::uint64_t elements = 0; elements < 2000000; elements = before + 1) {
    const std::uint64_t count = Table::bucketCountFor(elements);
    EXPECT_GE(count, std::max<std::uint64_t>(elements, 2 * before));
    for (std::uint64_t divisor = 2; divisor * divisor <= count; ++divisor) ASSERT_NE(count % divisor, 0U) << count;
    EXPECT_EQ(Table::bucketCountFor(count), count);
    before = count;
  }
  EXPECT_EQ(Table::bucketCountFor(0), 7U);
}

TEST_F(HashTableTest, BucketOf_SpreadsHashesOverAllBuckets) {
  table().reserve(1);
  EXPECT_EQ(table().bucketOf(0), 0U);
  EXPECT_EQ(table().bucketOf(0xFFFFFFFFU), table().bucketCount() - 1);
}

TEST_F(HashTableTest, Growth_HappensWhenTheLoadFactorWouldExceedOne) {
  for (std::int64_t key = 0; key < 7; ++key) put(key);
  EXPECT_EQ(table().bucketCount(), 7U);
  put(7);
  EXPECT_EQ(table().bucketCount(), 17U);
}

TEST_F(HashTableTest, Reserve_MakesBucketsOnceAndForAll) {
  table().reserve(1000);
  const std::uint64_t buckets = table().bucketCount();
  EXPECT_EQ(buckets, 1361U);
  const std::uint64_t changes = table().changes();
  table().reserve(1000);
  table().reserve(1361);
  EXPECT_EQ(table().changes(), changes) << "rehashed for the same bucket count";
  for (std::int64_t key = 0; key < 1000; ++key) put(key);
  EXPECT_EQ(table().bucketCount(), buckets);
}

TEST_F(HashTableTest, Reserve_ForFewer_ShrinksToWhatThePresentElementsNeed) {
  table().reserve(1000);
  for (std::int64_t key = 0; key < 50; ++key) put(key);
  table().reserve(1);
  EXPECT_EQ(table().bucketCount(), 79U);
  for (std::int64_t key = 0; key < 50; ++key) EXPECT_NE(table().find(integerCollectionKey(key)).node, nullptr);
}

TEST_F(HashTableTest, Reserve_Impossible_ThrowsAndChangesNothing) {
  for (std::int64_t key = 0; key < 5; ++key) put(key);
  const std::uint64_t changes = table().changes();
  EXPECT_THROW(table().reserve(~std::uint64_t{0}), std::length_error);
  EXPECT_THROW(table().reserve(2874713498ULL), std::length_error);
  EXPECT_EQ(table().changes(), changes);
  EXPECT_EQ(table().bucketCount(), 7U);
}

TEST_F(HashTableTest, Changes_DifferAfterEveryStructuralChangeOnly) {
  put(1);
  std::uint64_t before = table().changes();
  const auto changed = [&] { return std::exchange(before, table().changes()) != table().changes(); };
  put(1);
  EXPECT_FALSE(changed()) << "replacing";
  put(2);
  EXPECT_TRUE(changed()) << "inserting";
  EXPECT_TRUE(remove(integerCollectionKey(2)));
  EXPECT_TRUE(changed()) << "removing";
  table().reserve(100);
  EXPECT_TRUE(changed()) << "rehashing";
  table().clear();
  EXPECT_TRUE(changed()) << "clearing";
}

TEST_F(HashTableTest, FailedAllocation_LeavesTheElements) {
  // 42 nodes fill the first blocks (5 + 10 + 21) and part of the next; 37 elements fill the buckets.
  for (std::int64_t key = 0; key < 37; ++key) put(key);
  const std::vector<std::int64_t> before = keys();
  const Handle value = number(5);
  for (std::int64_t key = 37; key < 400; ++key) {
    sweepAllocationFailures([&] { table().makeRoom(); },
                            [&] {
                              expectWhole();
                              EXPECT_EQ(table().count(), static_cast<std::uint64_t>(key));
                            });
    put(integerCollectionKey(key), value);
  }
  sweepAllocationFailures([&] { table().reserve(5000); }, [&] { expectWhole(); });
  EXPECT_EQ(table().count(), 400U);
  EXPECT_TRUE(std::equal(before.begin(), before.end(), keys().begin()));
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
  // 48 bytes of node, 8 per bucket, and the last block's slack.
  if (onStressHeap()) GTEST_SKIP() << "pages per block say nothing about memory";
  vorn_heap_statistics before;
  vorn_heap_get_statistics(&before);
  constexpr std::int64_t kCount = 1000000;
  table().reserve(kCount);
  for (std::int64_t key = 0; key < kCount; ++key) {
    table().makeRoom();
    table().insert({}, integerCollectionKey(key), {nullptr, nullptr});
  }
  vorn_heap_statistics after;
  vorn_heap_get_statistics(&after);
  EXPECT_LE(static_cast<double>(after.bytes_allocated - before.bytes_allocated) / kCount, 72.0);
  table().clear();
}

}  // namespace
}  // namespace vorn::tests
