// The base case of the vector quicksorts: up to sixteen rows of lanes, sorted in registers without a branch.
//
// A network sorts the columns. Then groups of columns are merged pairwise until one group spans the row. A sorted group
// of g columns holds its keys row by row. To merge it with its right neighbour, each row is compared with the mirrored
// row of the block, lanes of the doubled group reversed: these pairs are the first half-cleaner of a bitonic merge, and
// they leave the lower half of the keys in the upper rows of the block, all lanes of the doubled group wide. The halves
// are mirrored bitonic sequences, so the same step sorts each of them further, down to single rows; lane steps finish.
// The doubled group thus ends row by row again, and the whole block in the order of memory: nothing is transposed.
//
// V brings the registers: Key, Reg, kLanes, load, store, loadUpTo, storeUpTo, min, max, reverseGroups<size>,
// swapLanes<distance> and lowerUpper<distance>(a, b): the smaller keys in lanes without the distance bit, the greater
// in lanes with it.
#pragma once

#include <cstdint>
#include <utility>

#include "collections/core/kernels/sort/column_networks.h"
#include "collections/core/kernels/sort/sort_paths.h"

namespace vorn::collections {

template <int kCount>
using Indexes = std::make_integer_sequence<int, kCount>;

template <class V, int kGroup>
[[gnu::always_inline]] inline void exchangeMirrored(typename V::Reg& upper, typename V::Reg& lower) {
  const auto mirrored = V::template reverseGroups<kGroup>(lower);
  lower = V::max(upper, mirrored);
  upper = V::min(upper, mirrored);
}

// Every block of kBlock rows: row i against row kBlock - 1 - i.
template <class V, int kGroup, int kBlock, int... kPair>
[[gnu::always_inline]] inline void mirrorRows(typename V::Reg* rows, std::integer_sequence<int, kPair...>) {
  constexpr int kHalf = kBlock / 2;
  (exchangeMirrored<V, kGroup>(rows[kPair / kHalf * kBlock + kPair % kHalf],
                               rows[kPair / kHalf * kBlock + kBlock - 1 - kPair % kHalf]),
   ...);
}

template <class V, int kRows, int kGroup, int kBlock>
[[gnu::always_inline]] inline void mirrorBlocks(typename V::Reg* rows) {
  if constexpr (kBlock >= 2) {
    mirrorRows<V, kGroup, kBlock>(rows, Indexes<kRows / 2>{});
    mirrorBlocks<V, kRows, kGroup, kBlock / 2>(rows);
  }
}

template <class V, int kDistance, int... kRow>
[[gnu::always_inline]] inline void cleanLanes(typename V::Reg* rows, std::integer_sequence<int, kRow...> sequence) {
  if constexpr (kDistance >= 1) {
    ((rows[kRow] = V::template lowerUpper<kDistance>(rows[kRow], V::template swapLanes<kDistance>(rows[kRow]))), ...);
    cleanLanes<V, kDistance / 2>(rows, sequence);
  }
}

template <class V, int kGroup, int... kRow>
[[gnu::always_inline]] inline void mirrorLanes(typename V::Reg* rows, std::integer_sequence<int, kRow...>) {
  ((rows[kRow] = V::template lowerUpper<kGroup / 2>(rows[kRow], V::template reverseGroups<kGroup>(rows[kRow]))), ...);
}

// Merges columns into groups of kGroup, then doubles on.
template <class V, int kRows, int kGroup>
[[gnu::always_inline]] inline void mergeGroups(typename V::Reg* rows) {
  if constexpr (kGroup <= V::kLanes) {
    mirrorBlocks<V, kRows, kGroup, kRows>(rows);
    mirrorLanes<V, kGroup>(rows, Indexes<kRows>{});
    cleanLanes<V, kGroup / 4>(rows, Indexes<kRows>{});
    mergeGroups<V, kRows, kGroup * 2>(rows);
  }
}

template <class V, int kRows>
[[gnu::always_inline]] inline void sortRows(typename V::Reg* rows) {
  sortColumns<V, kRows>(rows);
  mergeGroups<V, kRows, 2>(rows);
}

// Rows of the first half are full, unless there is only one. Missing keys read as the largest, so they end behind the
// real ones; a real key equal to it is the same bits.
template <class V, bool kFull>
[[gnu::always_inline]] inline typename V::Reg loadRow(const SortSlot<typename V::Key>* from, std::int64_t remaining) {
  if constexpr (kFull) return V::load(from);
  return V::loadUpTo(from, remaining);
}

template <class V, bool kFull>
[[gnu::always_inline]] inline void storeRow(SortSlot<typename V::Key>* to, typename V::Reg row,
                                            std::int64_t remaining) {
  if constexpr (kFull) {
    V::store(to, row);
  } else {
    V::storeUpTo(to, row, remaining);
  }
}

template <class V, int kRows, int... kRow>
[[gnu::always_inline]] inline void sortBlockOfRows(SortSlot<typename V::Key>* slots, std::int64_t count,
                                                   std::integer_sequence<int, kRow...>) {
  typename V::Reg rows[kRows];
  ((rows[kRow] = loadRow<V, (kRow < kRows / 2)>(slots + kRow * V::kLanes, count - kRow * V::kLanes)), ...);
  sortRows<V, kRows>(rows);
  (storeRow<V, (kRow < kRows / 2)>(slots + kRow * V::kLanes, rows[kRow], count - kRow * V::kLanes), ...);
}

// Sorts more than half of kRows rows, or any part of one.
template <class V, int kRows>
[[gnu::noinline]] void sortBlock(SortSlot<typename V::Key>* slots, std::int64_t count) {
  sortBlockOfRows<V, kRows>(slots, count, Indexes<kRows>{});
}

// Sorts up to sixteen rows.
template <class V>
inline void sortShort(SortSlot<typename V::Key>* slots, std::uint64_t count) {
  const auto length = static_cast<std::int64_t>(count);
  if (count <= V::kLanes) {
    sortBlock<V, 1>(slots, length);
  } else if (count <= 2 * V::kLanes) {
    sortBlock<V, 2>(slots, length);
  } else if (count <= 4 * V::kLanes) {
    sortBlock<V, 4>(slots, length);
  } else if (count <= 8 * V::kLanes) {
    sortBlock<V, 8>(slots, length);
  } else {
    sortBlock<V, 16>(slots, length);
  }
}

}  // namespace vorn::collections
