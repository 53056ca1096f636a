// Questions of equality and order.
#pragma once

#include <string>

#include "collections/core/port/comparison.h"
#include "tests/support/runtime_test.h"

namespace vorn::tests {

inline int sign(int value) { return (value > 0) - (value < 0); }

// Both directions must agree.
inline bool equals(void* left, void* right) {
  const bool forward = Vorn_deepEquals(left, right) != 0;
  EXPECT_EQ(Vorn_deepEquals(right, left) != 0, forward);
  return forward;
}

// "<", "=" or ">" as both functions together say; "?" when they cannot tell.
inline std::string orderOf(void* left, void* right) {
  bool equal = false;
  bool less = false;
  bool greater = false;
  if (!Vorn_collectionObjectsEqual(left, right, equal)) return "?";
  if (equal) return "=";
  if (!Vorn_collectionObjectsLess(left, right, less)) return "!";
  EXPECT_TRUE(Vorn_collectionObjectsLess(right, left, greater));
  EXPECT_FALSE(less && greater);
  return less ? "<" : (greater ? ">" : "~");
}

}  // namespace vorn::tests
