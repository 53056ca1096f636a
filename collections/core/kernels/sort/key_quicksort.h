// The introspective quicksort of keys that all paths share. An engine brings what depends on the instruction set:
//
//   Key                                 a signed integer
//   kSmall                              the longest range that sortSmall takes
//   sortSmall(slots, count)
//   kCountingRun                        how many equal keys on average make counting keys of two bytes worth while
//   partition(slots, count, bound)      gathers the keys not greater than the bound in front and returns their number
//   samplePivot(slots, count, random)   a key of the range, near its median
//   settleSorted<order>(slots, count)   true when the range was in order, or in reverse order and has been turned
//   mapToKeys<order>, mapFromKeys<order>(slots, count)
#pragma once

#include <cstdint>

#include "collections/core/kernels/sort/counting_sort.h"
#include "collections/core/kernels/sort/key_order.h"
#include "collections/core/kernels/sort/sort_paths.h"

namespace vorn::collections {

// Where samples are taken. Seeded with the length of the input: the same input is sorted the same way every time.
template <class Engine>
class SampleRandom {
 public:
  explicit SampleRandom(std::uint64_t seed) : state_(seed * 0x9E3779B97F4A7C15U + 1) {}

  // Below the bound. The high half of a product scales without a division; for ranges beyond 2^32 keys the sample comes
  // from coarser places.
  std::uint64_t below(std::uint64_t bound) {
    state_ = state_ * 6364136223846793005U + 1442695040888963407U;
    const std::uint64_t draw = state_ >> 32U;
    return bound >> 32U == 0 ? (draw * bound) >> 32U : draw * (bound >> 32U);
  }

 private:
  std::uint64_t state_;
};

template <class Engine, class Slot = SortSlot<typename Engine::Key>>
void siftDownKey(Slot* heap, std::uint64_t root, std::uint64_t count) {
  const auto moved = heap[root].key;
  while (root < count / 2) {
    std::uint64_t child = 2 * root + 1;
    if (child + 1 < count && heap[child].key < heap[child + 1].key) ++child;
    if (heap[child].key <= moved) break;
    heap[root].key = heap[child].key;
    root = child;
  }
  heap[root].key = moved;
}

template <class Engine, class Slot = SortSlot<typename Engine::Key>>
[[gnu::noinline]] void heapSortKeys(Slot* heap, std::uint64_t count) {
  for (std::uint64_t root = count / 2; root > 0; --root) siftDownKey<Engine>(heap, root - 1, count);
  for (std::uint64_t last = count; last > 1; --last) {
    const auto largest = heap[0].key;
    heap[0].key = heap[last - 1].key;
    heap[last - 1].key = largest;
    siftDownKey<Engine>(heap, 0, last - 1);
  }
}

// All keys lie in [smallest, largest]. Partitioning below the pivot makes no progress when the pivot is the smallest
// key; as the pivot then bounds what is left, the next such pivot shows, and its equals are gathered and done with.
// That is also what makes many equal keys fast.
template <class Engine, class Key = typename Engine::Key>
void quicksortKeys(SortSlot<Key>* slots, std::uint64_t count, Key smallest, Key largest, unsigned depthLeft,
                   SampleRandom<Engine>& random) {
  while (count > Engine::kSmall) {
    if (smallest == largest) return;
    if constexpr (sizeof(Key) <= 2) {
      if (countingSortFits<Engine>(count, smallest, largest)) {
        countingSortKeys<Engine>(slots, count, smallest, largest);
        return;
      }
    }
    if (depthLeft == 0) {
      heapSortKeys<Engine>(slots, count);
      return;
    }
    --depthLeft;
    const Key pivot = Engine::samplePivot(slots, count, random);
    if (pivot == smallest) {
      const std::uint64_t equal = Engine::partition(slots, count, pivot);
      slots += equal;
      count -= equal;
      if (count == 0) return;
      smallest = static_cast<Key>(pivot + 1);
    } else {
      const auto below = static_cast<Key>(pivot - 1);
      const std::uint64_t lower = Engine::partition(slots, count, below);
      quicksortKeys<Engine>(slots, lower, smallest, below, depthLeft, random);
      slots += lower;
      count -= lower;
      smallest = pivot;
    }
  }
  Engine::sortSmall(slots, count);
}

template <class Engine, KeyOrder kOrder>
void sortInOrder(SortSlot<typename Engine::Key>* slots, std::uint64_t count) {
  using Limits = KeyLimits<typename Engine::Key>;
  if (count < 2 || Engine::template settleSorted<kOrder>(slots, count)) return;
  if constexpr (kOrder != KeyOrder::Signed) Engine::template mapToKeys<kOrder>(slots, count);
  unsigned depth = 4;
  for (std::uint64_t rest = count; rest > 1; rest /= 2) depth += 2;
  SampleRandom<Engine> random(count);
  quicksortKeys<Engine>(slots, count, Limits::kSmallest, Limits::kLargest, depth, random);
  if constexpr (kOrder != KeyOrder::Signed) Engine::template mapFromKeys<kOrder>(slots, count);
}

template <class Engine>
void sortByOrder(SortSlot<typename Engine::Key>* slots, std::uint64_t count, KeyOrder order) {
  switch (order) {
    case KeyOrder::Signed:
      sortInOrder<Engine, KeyOrder::Signed>(slots, count);
      return;
    case KeyOrder::Unsigned:
      sortInOrder<Engine, KeyOrder::Unsigned>(slots, count);
      return;
    case KeyOrder::Floating:
      if constexpr (sizeof(typename Engine::Key) >= 4) sortInOrder<Engine, KeyOrder::Floating>(slots, count);
      return;
  }
}

}  // namespace vorn::collections
