// Which positions a slice selects, against a reference in 128-bit arithmetic.
#include "collections/arraylist/slice_indexes.h"

#include <climits>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/runtime_test.h"

namespace vorn::tests {
namespace {

using Wide = __int128;
using Bound = std::optional<long long>;
using Positions = std::vector<long long>;

constexpr Bound kOmitted = std::nullopt;

// Where a written bound points: negative ones count from the end, and the result is held within low..high.
Wide clampedBound(long long length, long long bound, Wide low, Wide high) {
  Wide position = bound;
  if (position < 0) position += length;
  if (position < low) return low;
  return position > high ? high : position;
}

Positions expectedPositions(long long length, Bound start, Bound stop, long long step) {
  Positions positions;
  if (step == 0 || length < 0) return positions;
  const Wide low = step > 0 ? 0 : -1;
  const Wide high = step > 0 ? Wide{length} : Wide{length} - 1;
  const Wide from = start ? clampedBound(length, *start, low, high) : (step > 0 ? low : high);
  const Wide to = stop ? clampedBound(length, *stop, low, high) : (step > 0 ? high : low);
  for (Wide at = from; step > 0 ? at < to : at > to; at += step) positions.push_back(static_cast<long long>(at));
  return positions;
}

// The positions of start:stop:step; omitted bounds carry the number `junk`.
Positions positionsOf(long long length, Bound start, Bound stop, long long step, long long junk = 77) {
  const auto selected =
      computeSliceIndexes(length, start.value_or(junk), stop.value_or(junk), step, start.has_value(), stop.has_value());
  Positions positions;
  for (const long long position : selected) positions.push_back(position);
  return positions;
}

std::string sliceText(long long length, Bound start, Bound stop, long long step) {
  const auto text = [](Bound bound) { return bound ? std::to_string(*bound) : std::string(); };
  return "[" + text(start) + ":" + text(stop) + ":" + std::to_string(step) + "] of " + std::to_string(length);
}

// The same positions, looked up one by one and from the last on.
Positions positionsByIndex(long long length, Bound start, Bound stop, long long step, long long junk) {
  const auto selected =
      computeSliceIndexes(length, start.value_or(junk), stop.value_or(junk), step, start.has_value(), stop.has_value());
  EXPECT_EQ(selected.empty(), selected.size() == 0);
  Positions positions(selected.size());
  for (std::uint64_t i = selected.size(); i-- > 0;) positions[i] = selected[i];
  return positions;
}

// Whether the range, walked and looked up, agrees with the reference; the callers stop at the first slice that fails.
::testing::AssertionResult agreesWithReference(long long length, Bound start, Bound stop, long long step,
                                               long long junk = 77) {
  const Positions expected = expectedPositions(length, start, stop, step);
  const Positions actual = positionsOf(length, start, stop, step, junk);
  if (actual != expected) {
    return ::testing::AssertionFailure() << sliceText(length, start, stop, step) << " gives "
                                         << ::testing::PrintToString(actual) << " instead of "
                                         << ::testing::PrintToString(expected);
  }
  const Positions byIndex = positionsByIndex(length, start, stop, step, junk);
  if (byIndex != expected) {
    return ::testing::AssertionFailure() << "by index " << sliceText(length, start, stop, step) << " gives "
                                         << ::testing::PrintToString(byIndex) << " instead of "
                                         << ::testing::PrintToString(expected);
  }
  return ::testing::AssertionSuccess();
}

std::vector<Bound> smallBounds() {
  std::vector<Bound> bounds = {kOmitted};
  for (long long bound = -9; bound <= 9; ++bound) bounds.emplace_back(bound);
  return bounds;
}

std::vector<Bound> extremeBounds() {
  return {kOmitted, LLONG_MIN, LLONG_MIN + 1, LLONG_MIN + 2, LLONG_MIN / 2, -8, -3, -1, 0, 1, LLONG_MAX / 2,
          3,        8,         LLONG_MAX - 2, LLONG_MAX - 1, LLONG_MAX};
}

class SliceIndexes : public RuntimeTest {};

TEST_F(SliceIndexes, WorkedValuesOfFiveElements) {
  struct Worked {
    Bound start;
    Bound stop;
    long long step;
    Positions positions;
  };
  const std::vector<Worked> cases = {
      {kOmitted, kOmitted, 1, {0, 1, 2, 3, 4}},
      {1, 4, 1, {1, 2, 3}},
      {-2, kOmitted, 1, {3, 4}},
      {kOmitted, kOmitted, 2, {0, 2, 4}},
      {kOmitted, kOmitted, -1, {4, 3, 2, 1, 0}},
      {3, 0, -1, {3, 2, 1}},
      {-1, -6, -2, {4, 2, 0}},
      {10, kOmitted, 1, {}},
      {3, 1, 1, {}},
      {-10, 2, 1, {0, 1}},
      {10, kOmitted, -1, {4, 3, 2, 1, 0}},
  };
  for (const Worked& worked : cases) {
    SCOPED_TRACE(sliceText(5, worked.start, worked.stop, worked.step));
    EXPECT_EQ(positionsOf(5, worked.start, worked.stop, worked.step), worked.positions);
    EXPECT_EQ(positionsByIndex(5, worked.start, worked.stop, worked.step, 77), worked.positions);
    // The reference that the other tests trust.
    EXPECT_EQ(expectedPositions(5, worked.start, worked.stop, worked.step), worked.positions);
  }
}

TEST_F(SliceIndexes, EverySmallSlice_AgreesWithTheReference) {
  const std::vector<Bound> bounds = smallBounds();
  for (long long length = 0; length <= 7; ++length) {
    for (const Bound start : bounds) {
      for (const Bound stop : bounds) {
        for (const long long step : {-4, -3, -2, -1, 1, 2, 3, 4}) {
          ASSERT_TRUE(agreesWithReference(length, start, stop, step));
        }
      }
    }
  }
}

TEST_F(SliceIndexes, ExtremeBoundsAndSteps_AreExact) {
  for (const long long length : {0LL, 1LL, 2LL, 7LL}) {
    for (const Bound start : extremeBounds()) {
      for (const Bound stop : extremeBounds()) {
        for (const long long step :
             {LLONG_MIN, LLONG_MIN + 1, LLONG_MIN / 2, -3LL, -1LL, 1LL, 3LL, LLONG_MAX / 2, LLONG_MAX - 1, LLONG_MAX}) {
          ASSERT_TRUE(agreesWithReference(length, start, stop, step));
        }
      }
    }
  }
}

TEST_F(SliceIndexes, ExtremeLengths_AreExact) {
  for (const long long length : {LLONG_MAX / 2, LLONG_MAX - 1, LLONG_MAX}) {
    for (const Bound start : extremeBounds()) {
      for (const Bound stop : extremeBounds()) {
        for (const long long step : {LLONG_MIN, LLONG_MIN + 1, LLONG_MIN / 2, LLONG_MIN / 4, LLONG_MAX / 4,
                                     LLONG_MAX / 2, LLONG_MAX - 1, LLONG_MAX}) {
          ASSERT_TRUE(agreesWithReference(length, start, stop, step));
        }
      }
    }
  }
}

TEST_F(SliceIndexes, EndsOfTheLongestLength) {
  EXPECT_EQ(positionsOf(LLONG_MAX, -3, kOmitted, 1), (Positions{LLONG_MAX - 3, LLONG_MAX - 2, LLONG_MAX - 1}));
  EXPECT_EQ(positionsOf(LLONG_MAX, -3, LLONG_MAX, 2), (Positions{LLONG_MAX - 3, LLONG_MAX - 1}));
  EXPECT_EQ(positionsOf(LLONG_MAX, LLONG_MAX, -4, -1), (Positions{LLONG_MAX - 1, LLONG_MAX - 2, LLONG_MAX - 3}));
  EXPECT_EQ(positionsOf(LLONG_MAX, kOmitted, kOmitted, LLONG_MAX), (Positions{0}));
  EXPECT_EQ(positionsOf(LLONG_MAX, kOmitted, kOmitted, LLONG_MAX - 1), (Positions{0, LLONG_MAX - 1}));
  EXPECT_EQ(positionsOf(LLONG_MAX, kOmitted, kOmitted, LLONG_MIN), (Positions{LLONG_MAX - 1}));
  EXPECT_EQ(positionsOf(LLONG_MAX, LLONG_MIN, 2, 1), (Positions{0, 1}));
}

TEST_F(SliceIndexes, ZeroStep_SelectsNothing) {
  for (const long long length : {0LL, 1LL, 5LL, LLONG_MAX}) {
    for (const Bound start : {kOmitted, Bound(0), Bound(-1), Bound(LLONG_MIN)}) {
      for (const Bound stop : {kOmitted, Bound(3), Bound(-1), Bound(LLONG_MAX)}) {
        EXPECT_EQ(positionsOf(length, start, stop, 0), Positions{}) << sliceText(length, start, stop, 0);
        EXPECT_EQ(positionsByIndex(length, start, stop, 0, 77), Positions{}) << sliceText(length, start, stop, 0);
      }
    }
  }
}

TEST_F(SliceIndexes, NegativeLength_SelectsNothing) {
  for (const long long length : {-1LL, -5LL, LLONG_MIN}) {
    for (const Bound start : {kOmitted, Bound(0), Bound(-1), Bound(LLONG_MIN), Bound(LLONG_MAX)}) {
      for (const Bound stop : {kOmitted, Bound(3), Bound(-1), Bound(LLONG_MIN), Bound(LLONG_MAX)}) {
        for (const long long step : {LLONG_MIN, -1LL, 0LL, 1LL, LLONG_MAX}) {
          EXPECT_EQ(positionsOf(length, start, stop, step), Positions{}) << sliceText(length, start, stop, step);
        }
      }
    }
  }
}

TEST_F(SliceIndexes, EmptyCollection_SelectsNothing) {
  for (const Bound start : smallBounds()) {
    for (const Bound stop : smallBounds()) {
      for (const long long step : {-2, -1, 1, 2}) {
        EXPECT_EQ(positionsOf(0, start, stop, step), Positions{}) << sliceText(0, start, stop, step);
      }
    }
  }
}

TEST_F(SliceIndexes, PositiveStep_StopBeforeTheFirstElement_SelectsNothing) {
  for (const Bound start : smallBounds()) {
    for (const long long stop : {-6LL, -100LL, LLONG_MIN}) {
      EXPECT_EQ(positionsOf(5, start, stop, 1), Positions{}) << sliceText(5, start, stop, 1);
    }
  }
}

TEST_F(SliceIndexes, NegativeStep_StartPastTheEnd_StartsAtTheLastElement) {
  for (const long long start : {4LL, 5LL, 100LL, LLONG_MAX}) {
    EXPECT_EQ(positionsOf(5, start, 1, -1), (Positions{4, 3, 2}));
  }
}

TEST_F(SliceIndexes, NegativeStep_StopPastTheEnd_SelectsNothing) {
  for (const Bound start : smallBounds()) {
    for (const long long stop : {5LL, 6LL, 100LL, LLONG_MAX}) {
      EXPECT_EQ(positionsOf(5, start, stop, -1), Positions{}) << sliceText(5, start, stop, -1);
    }
  }
}

TEST_F(SliceIndexes, StepLongerThanTheCollection_SelectsTheFirstVisited) {
  for (const long long step : {6LL, 100LL, LLONG_MAX}) {
    EXPECT_EQ(positionsOf(5, kOmitted, kOmitted, step), (Positions{0}));
    EXPECT_EQ(positionsOf(5, 2, kOmitted, step), (Positions{2}));
    EXPECT_EQ(positionsOf(5, kOmitted, kOmitted, -step), (Positions{4}));
    EXPECT_EQ(positionsOf(5, 2, kOmitted, -step), (Positions{2}));
  }
  EXPECT_EQ(positionsOf(5, kOmitted, kOmitted, LLONG_MIN), (Positions{4}));
}

TEST_F(SliceIndexes, OmittedBound_IgnoresItsNumber) {
  for (const long long junk : {LLONG_MIN, -6LL, -1LL, 0LL, 2LL, 5LL, LLONG_MAX}) {
    SCOPED_TRACE("ignored number " + std::to_string(junk));
    for (const long long step : {LLONG_MIN, -2LL, -1LL, 1LL, 2LL, LLONG_MAX}) {
      for (const Bound bound : smallBounds()) {
        EXPECT_TRUE(agreesWithReference(5, kOmitted, bound, step, junk));
        EXPECT_TRUE(agreesWithReference(5, bound, kOmitted, step, junk));
      }
    }
  }
}

TEST_F(SliceIndexes, ManyPositions_ComeInVisitingOrder) {
  constexpr long long kLength = 1000;
  Positions forward;
  for (long long at = 0; at < kLength; ++at) forward.push_back(at);
  EXPECT_EQ(positionsOf(kLength, kOmitted, kOmitted, 1), forward);
  EXPECT_EQ(positionsOf(kLength, kOmitted, kOmitted, -1), Positions(forward.rbegin(), forward.rend()));
}

TEST_F(SliceIndexes, ForwardBounds_AreClampedIntoTheCollection) {
  for (const long long length : {0LL, 5LL, LLONG_MAX}) {
    for (const Bound start : extremeBounds()) {
      for (const Bound stop : extremeBounds()) {
        const int given = 0;
        const vorn::collections::SliceExpression expression{start.value_or(77), stop.value_or(77), 1,
                                                            start ? &given : nullptr, stop ? &given : nullptr};
        const auto bounds = expression.forwardBounds(static_cast<std::uint64_t>(length));
        const std::string slice = sliceText(length, start, stop, 1);
        EXPECT_TRUE(bounds.start == (start ? clampedBound(length, *start, 0, length) : 0)) << slice;
        EXPECT_TRUE(bounds.stop == (stop ? clampedBound(length, *stop, 0, length) : Wide{length})) << slice;
      }
    }
  }
}

}  // namespace
}  // namespace vorn::tests
