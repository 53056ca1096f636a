// Slices as a program writes them.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "tests/support/runtime_test.h"

namespace vorn::tests {

// A bound as the program wrote it; none when omitted.
using Bound = std::optional<long long>;
inline constexpr Bound kOmitted = std::nullopt;

// How a native takes a bound: the number, which would be wrong where the bound is omitted, and the mark that tells
// whether it was written, one of the two shared boxes.
inline long long boundOf(Bound bound) { return bound.value_or(2); }
inline void* markOf(Bound bound) { return bound ? vorn_box_boolean(true) : nullptr; }

Handle slice(void* list, Bound start, Bound stop, long long step = 1);
void sliceAssign(void* list, Bound start, Bound stop, long long step, void* source);

// The positions that start:stop:step selects of n elements, for bounds and steps of a moderate size.
std::vector<std::size_t> slicePositions(long long n, Bound start, Bound stop, long long step);

}  // namespace vorn::tests
