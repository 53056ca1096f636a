// Which positions a slice expression start:stop:step selects; shared by lists and arrays.
#pragma once

#include <cstdint>
#include <vector>

// The positions of start:stop:step over a collection of `length` elements, in visiting order, each in [0, length).
// Negative bounds count from the end and are clamped; a bound whose flag is false is omitted and its value ignored.
// Empty for step 0 (callers raise first) and for a negative length. Exact for every 64-bit argument. Raises nothing;
// std::bad_alloc can escape.
std::vector<long long> computeSliceIndexes(long long length, long long start, long long stop, long long step,
                                           bool hasStart, bool hasStop);

namespace vorn::collections {

// The same positions as an arithmetic sequence first, first + step, ... of `count` members, for callers that need no
// vector.
struct SliceSequence {
  long long first = 0;
  long long step = 1;
  std::uint64_t count = 0;
};
SliceSequence sliceSequence(long long length, long long start, long long stop, long long step, bool hasStart,
                            bool hasStop);

// Start and stop as a positive step clamps them, both in [0, length]; stop may be below start.
struct SliceBounds {
  long long start = 0;
  long long stop = 0;
};
SliceBounds clampForwardBounds(long long length, long long start, long long stop, bool hasStart, bool hasStop);

}  // namespace vorn::collections
