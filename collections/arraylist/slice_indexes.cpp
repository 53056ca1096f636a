#include "collections/arraylist/slice_indexes.h"

#include <algorithm>

namespace vorn::collections {

namespace {

// A bound counted from the end when negative, and `floor` when it lies before the beginning even so. A negative number
// plus a non-negative length cannot overflow.
long long fromEnd(long long bound, long long length, long long floor) {
  return bound < 0 ? std::max(bound + length, floor) : bound;
}

// A bound of a negative step, in [-1, length - 1].
long long backwardBound(bool given, long long bound, long long length, long long omitted) {
  return given ? std::min(fromEnd(bound, length, -1), length - 1) : omitted;
}

// How many steps of `stride` fit in a positive distance, the first position included.
std::uint64_t positionsIn(std::uint64_t distance, std::uint64_t stride) { return (distance - 1) / stride + 1; }

}  // namespace

SliceBounds clampForwardBounds(long long length, long long start, long long stop, bool hasStart, bool hasStop) {
  return {hasStart ? std::min(fromEnd(start, length, 0), length) : 0,
          hasStop ? std::min(fromEnd(stop, length, 0), length) : length};
}

SliceSequence sliceSequence(long long length, long long start, long long stop, long long step, bool hasStart,
                            bool hasStop) {
  if (step == 0 || length < 0) return {};
  if (step > 0) {
    const auto [low, high] = clampForwardBounds(length, start, stop, hasStart, hasStop);
    if (high <= low) return {};
    return {low, step, positionsIn(static_cast<std::uint64_t>(high - low), static_cast<std::uint64_t>(step))};
  }
  const long long first = backwardBound(hasStart, start, length, length - 1);
  const long long last = backwardBound(hasStop, stop, length, -1);
  if (last >= first) return {};
  // Negating in unsigned arithmetic is exact for the smallest step too.
  return {first, step, positionsIn(static_cast<std::uint64_t>(first - last), 0 - static_cast<std::uint64_t>(step))};
}

}  // namespace vorn::collections

std::vector<long long> computeSliceIndexes(long long length, long long start, long long stop, long long step,
                                           bool hasStart, bool hasStop) {
  const auto sequence = vorn::collections::sliceSequence(length, start, stop, step, hasStart, hasStop);
  std::vector<long long> positions(sequence.count);
  auto position = static_cast<std::uint64_t>(sequence.first);
  for (long long& slot : positions) {
    slot = static_cast<long long>(position);
    position += static_cast<std::uint64_t>(sequence.step);  // wraps at most after the last position
  }
  return positions;
}
