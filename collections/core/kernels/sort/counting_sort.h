// Sorting by counting, for keys of one and two bytes once their range is narrow.
#pragma once

#include <cstdint>

#include "collections/core/kernels/sort/sort_paths.h"

namespace vorn::collections {

// Four tables, because counting a run of equal keys in one would wait for its own last store each time. They fill 8 KB
// of stack.
constexpr std::uint64_t kCountingRange = 512;
constexpr std::uint64_t kCountingTables = 4;

// Below this length clearing and reading the tables costs more than sorting.
constexpr std::uint64_t kCountingMinimum = 384;

template <class Engine, class Key>
inline bool countingSortFits(std::uint64_t count, Key smallest, Key largest) {
  const auto range = static_cast<std::uint64_t>(static_cast<std::int64_t>(largest) - smallest) + 1;
  // A counter has 32 bits.
  if (range > kCountingRange || count < kCountingMinimum || count >= (std::uint64_t{1} << 32U)) return false;
  return sizeof(Key) == 1 || count >= Engine::kCountingRun * range;
}

template <class Engine, class Key>
[[gnu::noinline]] void countingSortKeys(SortSlot<Key>* slots, std::uint64_t count, Key smallest, Key largest) {
  std::uint32_t counts[kCountingTables][kCountingRange] = {};
  std::uint64_t i = 0;
  for (; i + kCountingTables <= count; i += kCountingTables) {
    for (std::uint64_t table = 0; table < kCountingTables; ++table) ++counts[table][slots[i + table].key - smallest];
  }
  for (; i < count; ++i) ++counts[0][slots[i].key - smallest];

  SortSlot<Key>* next = slots;
  const auto range = static_cast<std::uint64_t>(static_cast<std::int64_t>(largest) - smallest) + 1;
  for (std::uint64_t offset = 0; offset < range; ++offset) {
    const std::uint64_t total =
        std::uint64_t{counts[0][offset]} + counts[1][offset] + counts[2][offset] + counts[3][offset];
    const auto key = static_cast<Key>(smallest + static_cast<std::int64_t>(offset));
    if constexpr (sizeof(Key) == 1) {
      __builtin_memset(next, static_cast<unsigned char>(key), total);
    } else {
      for (std::uint64_t copy = 0; copy < total; ++copy) next[copy].key = key;
    }
    next += total;
  }
}

}  // namespace vorn::collections
