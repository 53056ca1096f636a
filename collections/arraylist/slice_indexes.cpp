#include "collections/arraylist/slice_indexes.h"

#include <algorithm>

namespace vc = vorn::collections;

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

// Both bounds of a positive step, in [0, length].
SliceBounds clampForwardBounds(long long length, long long start, long long stop, bool hasStart, bool hasStop) {
  return {hasStart ? std::min(fromEnd(start, length, 0), length) : 0,
          hasStop ? std::min(fromEnd(stop, length, 0), length) : length};
}

}  // namespace

SliceBounds SliceExpression::forwardBounds(std::uint64_t length) const {
  return clampForwardBounds(static_cast<long long>(length), start, stop, startGiven != nullptr, stopGiven != nullptr);
}

}  // namespace vorn::collections

vc::SlicePositions computeSliceIndexes(long long length, long long start, long long stop, long long step, bool hasStart,
                                       bool hasStop) {
  if (step == 0 || length < 0) return {};
  if (step > 0) {
    const auto [low, high] = vc::clampForwardBounds(length, start, stop, hasStart, hasStop);
    if (high <= low) return {};
    return {low, step, vc::positionsIn(static_cast<std::uint64_t>(high - low), static_cast<std::uint64_t>(step))};
  }
  const long long first = vc::backwardBound(hasStart, start, length, length - 1);
  const long long last = vc::backwardBound(hasStop, stop, length, -1);
  if (last >= first) return {};
  // Negating in unsigned arithmetic is exact for the smallest step too.
  return {first, step, vc::positionsIn(static_cast<std::uint64_t>(first - last), 0 - static_cast<std::uint64_t>(step))};
}
