// The fallback of the quicksort of keys, which no ordinary input reaches.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

#include "collections/core/kernels/sort/key_quicksort.h"

namespace vorn::tests {
namespace {

using collections::SortSlot;

// What the fallback asks of an engine; the pivots of this one are always the smallest key but one.
template <class KeyType>
struct UnluckyEngine {
  using Key = KeyType;
  using Slot = SortSlot<Key>;
  static constexpr std::uint64_t kSmall = 4;
  static constexpr std::uint64_t kCountingRun = 1;

  static inline std::uint64_t partitions = 0;

  static void sortSmall(Slot* slots, std::uint64_t count) { sort(slots, count); }
  static std::uint64_t partition(Slot* slots, std::uint64_t count, Key bound) {
    ++partitions;
    Slot* const middle = std::partition(slots, slots + count, [bound](const Slot& slot) { return slot.key <= bound; });
    return static_cast<std::uint64_t>(middle - slots);
  }
  static Key samplePivot(const Slot* slots, std::uint64_t count, collections::SampleRandom<UnluckyEngine>&) {
    std::vector<Slot> keys(slots, slots + count);
    sort(keys.data(), count);
    return keys[1].key;
  }

 private:
  static void sort(Slot* slots, std::uint64_t count) {
    std::sort(slots, slots + count, [](const Slot& left, const Slot& right) { return left.key < right.key; });
  }
};

template <class Key>
std::vector<SortSlot<Key>> randomSlots(std::size_t count, Key range) {
  std::mt19937_64 random(count);
  std::vector<SortSlot<Key>> slots(count);
  for (auto& slot : slots) slot.key = static_cast<Key>(random() % static_cast<std::uint64_t>(range)) - range / 2;
  return slots;
}

template <class Key>
std::vector<Key> keysOf(const std::vector<SortSlot<Key>>& slots) {
  std::vector<Key> keys;
  for (const auto& slot : slots) keys.push_back(slot.key);
  return keys;
}

template <class Key>
void expectHeapSorted(std::size_t count, Key range) {
  auto slots = randomSlots<Key>(count, range);
  auto expected = keysOf(slots);
  std::sort(expected.begin(), expected.end());
  collections::heapSortKeys<UnluckyEngine<Key>>(slots.data(), count);
  ASSERT_EQ(keysOf(slots), expected) << count;
}

TEST(HeapSortKeys, EverySize_IsInOrder) {
  for (std::size_t count = 0; count <= 300; ++count) {
    expectHeapSorted<std::int32_t>(count, 1'000'000);
    expectHeapSorted<std::int64_t>(count, 10);
  }
}

// Sorts 2,000 keys below `range` and gives how many partitions that took.
template <class Key>
std::uint64_t partitionsOf(Key range, unsigned depth) {
  using Engine = UnluckyEngine<Key>;
  using Limits = collections::KeyLimits<Key>;
  constexpr std::size_t kCount = 2'000;
  auto slots = randomSlots<Key>(kCount, range);
  auto expected = keysOf(slots);
  std::sort(expected.begin(), expected.end());
  collections::SampleRandom<Engine> random(1);
  Engine::partitions = 0;
  collections::quicksortKeys<Engine>(slots.data(), kCount, Limits::kSmallest, Limits::kLargest, depth, random);
  EXPECT_EQ(keysOf(slots), expected);
  return Engine::partitions;
}

TEST(QuicksortKeys, PivotsAlwaysBad_FallsBackToTheHeap) {
  constexpr unsigned kDepth = 20;
  EXPECT_EQ(partitionsOf<std::int32_t>(1'000'000, kDepth), kDepth);
}

// A pivot that is the smallest key makes no progress: that it is the smallest shows in the next round, which gathers
// its equals. Without that the rounds would go on until the heap takes over.
TEST(QuicksortKeys, FewDistinctKeys_ArePartitionedAtMostTwiceEach) {
  for (const std::int64_t distinct : {2, 3, 10}) {
    EXPECT_LE(partitionsOf<std::int64_t>(distinct, 100), 2 * static_cast<std::uint64_t>(distinct));
  }
}

}  // namespace
}  // namespace vorn::tests
