// The engine of the vector paths (see key_quicksort.h). Besides what block_sort.h asks for, V brings broadcast,
// split(reg, bound), which gathers the lanes not greater than the bound in front, keeps the order within each side and
// counts the greater ones, storeLanes(to, reg, from, end), anyGreater(a, b), reverse, and the mapping of keys
// toKey<order> and fromKey<order>.
#pragma once

#include <cstdint>

#include "collections/core/kernels/sort/block_sort.h"
#include "collections/core/kernels/sort/key_quicksort.h"
#include "collections/core/kernels/sort/sort_paths.h"

namespace vorn::collections {

// Takes keys out of the front and the back of a range and puts them back on their side of the bound. The place between
// what was written and what is yet to be read is free.
template <class V>
class SideWriter {
 public:
  using Slot = SortSlot<typename V::Key>;

  SideWriter(Slot* begin, Slot* end) : lower_(begin), upper_(end) {}

  // Both stores are full vectors: each spoils only free places, if there are two vectors of them in all or one vector
  // on each side. Storing just the lanes that count was four to five times slower outside of the caches.
  [[gnu::always_inline]] void put(typename V::Reg keys, typename V::Reg bound) {
    const auto sides = V::split(keys, bound);
    V::store(lower_, sides.gathered);
    V::store(upper_ - V::kLanes, sides.gathered);
    lower_ += V::kLanes - sides.greater;
    upper_ -= sides.greater;
  }

  // The same for the last keys, when free places are scarce. Lanes from `count` on hold the largest key.
  [[gnu::always_inline]] void putLast(typename V::Reg keys, typename V::Reg bound, std::int64_t count) {
    const auto sides = V::split(keys, bound);
    // Padding counts as greater, as no key is greater than a bound that equals the largest.
    const std::int64_t low = V::kLanes - sides.greater < count ? V::kLanes - sides.greater : count;
    V::storeLanes(lower_, sides.gathered, 0, low);
    V::storeLanes(upper_ - count, sides.gathered, low, count);
    lower_ += low;
    upper_ -= count - low;
  }

  [[nodiscard]] Slot* lower() const { return lower_; }
  [[nodiscard]] Slot* upper() const { return upper_; }

 private:
  Slot* lower_;
  Slot* upper_;
};

template <class V>
struct VectorEngine {
  using Key = typename V::Key;
  using Slot = SortSlot<Key>;
  using Reg = typename V::Reg;

  static constexpr std::int64_t kLanes = V::kLanes;
  static constexpr std::int64_t kUnroll = 8;
  static constexpr std::uint64_t kSmall = 16 * V::kLanes;
  // Counted keys are written run by run, and each run ends in a misprediction: runs of one or two took twice as long as
  // sorting them.
  static constexpr std::uint64_t kCountingRun = 4;

  static void sortSmall(Slot* slots, std::uint64_t count) { sortShort<V>(slots, count); }

  // Eight vectors from each end wait on the stack, which leaves as many places free at each end. Each round reads eight
  // vectors from the end with fewer free places, so that both ends have room for eight afterwards. (Choosing the end
  // without a branch cost 1.14 to 1.32 times: the branch predicts.)
  [[gnu::noinline]] static std::uint64_t partition(Slot* slots, std::uint64_t length, Key boundKey) {
    const auto count = static_cast<std::int64_t>(length);
    const Reg bound = V::broadcast(boundKey);
    Reg waiting[2 * kUnroll];
    for (int i = 0; i < kUnroll; ++i) {
      waiting[i] = V::load(slots + i * kLanes);
      waiting[kUnroll + i] = V::load(slots + count - (i + 1) * kLanes);
    }
    SideWriter<V> sides(slots, slots + count);
    const Slot* front = slots + kUnroll * kLanes;
    const Slot* back = slots + count - kUnroll * kLanes;
    while (back - front >= kUnroll * kLanes) {
      const Slot* from = front;
      if (front - sides.lower() <= sides.upper() - back) {
        front += kUnroll * kLanes;
        prefetchBlock(front, kPrefetchBytes);
      } else {
        back -= kUnroll * kLanes;
        from = back;
        prefetchBlock(back, -kPrefetchBytes - kBlockBytes);
      }
      const Reg keys[kUnroll] = {V::load(from),
                                 V::load(from + kLanes),
                                 V::load(from + 2 * kLanes),
                                 V::load(from + 3 * kLanes),
                                 V::load(from + 4 * kLanes),
                                 V::load(from + 5 * kLanes),
                                 V::load(from + 6 * kLanes),
                                 V::load(from + 7 * kLanes)};
      sides.put(keys[0], bound);
      sides.put(keys[1], bound);
      sides.put(keys[2], bound);
      sides.put(keys[3], bound);
      sides.put(keys[4], bound);
      sides.put(keys[5], bound);
      sides.put(keys[6], bound);
      sides.put(keys[7], bound);
    }
    while (back - front >= kLanes) {
      const Slot* from = front;
      if (front - sides.lower() <= sides.upper() - back) {
        front += kLanes;
      } else {
        back -= kLanes;
        from = back;
      }
      sides.put(V::load(from), bound);
    }
    const std::int64_t rest = back - front;
    const Reg tail = V::loadUpTo(front, rest);
    for (int i = 0; i < 2 * kUnroll - 1; ++i) sides.put(waiting[i], bound);
    sides.putLast(waiting[2 * kUnroll - 1], bound, kLanes);
    sides.putLast(tail, bound, rest);
    return static_cast<std::uint64_t>(sides.lower() - slots);
  }

  // The median of some vectors from random places. More vectors for longer ranges: neighbours resemble each other, so
  // the number of places is what counts.
  [[gnu::noinline]] static Key samplePivot(const Slot* slots, std::uint64_t count, SampleRandom<VectorEngine>& random) {
    constexpr int kMost = 8;
    Slot sample[kMost * V::kLanes];
    const int rows = count < 512 ? 2 : (count < 8192 ? 4 : kMost);
    for (int row = 0; row < rows; ++row) {
      V::store(sample + row * kLanes, V::load(slots + random.below(count - V::kLanes)));
    }
    sortShort<V>(sample, static_cast<std::uint64_t>(rows * kLanes));
    return sample[rows * kLanes / 2].key;
  }

  template <KeyOrder kOrder>
  static Reg loadKeys(const Slot* from) {
    return V::template toKey<kOrder>(V::load(from));
  }

  template <KeyOrder kOrder>
  static bool settleSorted(Slot* slots, std::uint64_t length) {
    const auto count = static_cast<std::int64_t>(length);
    if (count <= 4 * kLanes) return false;
    if (inOrder<kOrder, false>(slots, count)) return true;
    if (!inOrder<kOrder, true>(slots, count)) return false;
    reverseSlots(slots, count);
    return true;
  }

  template <KeyOrder kOrder>
  [[gnu::noinline]] static void mapToKeys(Slot* slots, std::uint64_t length) {
    const auto count = static_cast<std::int64_t>(length);
    std::int64_t i = 0;
    for (; i + kLanes <= count; i += kLanes) V::store(slots + i, V::template toKey<kOrder>(V::load(slots + i)));
    V::storeUpTo(slots + i, V::template toKey<kOrder>(V::loadUpTo(slots + i, count - i)), count - i);
  }

  template <KeyOrder kOrder>
  [[gnu::noinline]] static void mapFromKeys(Slot* slots, std::uint64_t length) {
    const auto count = static_cast<std::int64_t>(length);
    std::int64_t i = 0;
    for (; i + kLanes <= count; i += kLanes) V::store(slots + i, V::template fromKey<kOrder>(V::load(slots + i)));
    V::storeUpTo(slots + i, V::template fromKey<kOrder>(V::loadUpTo(slots + i, count - i)), count - i);
  }

 private:
  static constexpr std::int64_t kBlockBytes = kUnroll * kLanes * static_cast<std::int64_t>(sizeof(Slot));
  static constexpr std::int64_t kPrefetchBytes = 512;

  // The order in which blocks are read is no pattern that processors foresee: without this, AVX-512 took 2.3 times as
  // long on ranges beyond the caches. The address may lie outside of the range, so it is no pointer.
  [[gnu::always_inline]] static void prefetchBlock(const Slot* from, std::int64_t offset) {
    const auto address = reinterpret_cast<std::uintptr_t>(from) + static_cast<std::uintptr_t>(offset);
    for (std::int64_t line = 0; line < kBlockBytes; line += 64) {
      __builtin_prefetch(reinterpret_cast<const void*>(address + static_cast<std::uintptr_t>(line)));
    }
  }

  // Whether no neighbours stand the wrong way round. Longer than a vector.
  template <KeyOrder kOrder, bool kDescending>
  static bool inOrder(const Slot* slots, std::int64_t count) {
    std::int64_t i = 0;
    for (; i + 4 * kLanes < count; i += 4 * kLanes) {
      bool wrong = false;
      for (int part = 0; part < 4; ++part) wrong |= wrongWayRound<kOrder, kDescending>(slots + i + part * kLanes);
      if (wrong) return false;
    }
    for (; i + kLanes < count; i += kLanes) {
      if (wrongWayRound<kOrder, kDescending>(slots + i)) return false;
    }
    return !wrongWayRound<kOrder, kDescending>(slots + count - 1 - kLanes);
  }

  template <KeyOrder kOrder, bool kDescending>
  [[gnu::always_inline]] static bool wrongWayRound(const Slot* slots) {
    const Reg here = loadKeys<kOrder>(slots);
    const Reg next = loadKeys<kOrder>(slots + 1);
    return kDescending ? V::anyGreater(next, here) : V::anyGreater(here, next);
  }

  [[gnu::noinline]] static void reverseSlots(Slot* slots, std::int64_t count) {
    Slot* front = slots;
    Slot* back = slots + count;
    for (; back - front >= 2 * kLanes; front += kLanes) {
      back -= kLanes;
      const Reg low = V::reverse(V::load(front));
      V::store(front, V::reverse(V::load(back)));
      V::store(back, low);
    }
    for (; back - front >= 2; ++front) {
      --back;
      const Key low = front->key;
      front->key = back->key;
      back->key = low;
    }
  }
};

}  // namespace vorn::collections
