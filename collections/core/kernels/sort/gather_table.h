// Permutations that gather the lanes on one side of a bound.
#pragma once

#include <cstdint>

namespace vorn::collections {

// For each set of greater lanes, the order of lanes that puts them last and keeps the order within each side. A lane
// counts as kPieces consecutive places, for permutations of units smaller than a lane. One row is eight bytes, to be
// widened when it is loaded: 2 KB for eight lanes.
template <int kLanes, int kPieces>
struct GatherTable {
  static_assert(kLanes * kPieces == 8);

  std::uint8_t places[1 << kLanes][8];

  constexpr GatherTable() : places() {
    for (int greater = 0; greater < (1 << kLanes); ++greater) {
      int next = 0;
      for (int side = 0; side < 2; ++side) {
        for (int lane = 0; lane < kLanes; ++lane) {
          if (((greater >> lane) & 1) != side) continue;
          for (int piece = 0; piece < kPieces; ++piece) {
            places[greater][next++] = static_cast<std::uint8_t>(lane * kPieces + piece);
          }
        }
      }
    }
  }
};

}  // namespace vorn::collections
