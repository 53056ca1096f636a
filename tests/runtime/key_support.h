// Questions about keys, asked in both directions.
#pragma once

#include "collections/core/port/collection_key.h"
#include "collections/core/port/keys.h"
#include "tests/support/runtime_test.h"
#include "tests/support/sequences.h"
#include "tests/support/user_objects.h"

namespace vorn::tests {

using KeyTag = NativeCollectionKey::Tag;

inline NativeCollectionKey keyFor(void* handle) { return makeNativeSetCollectionKey(handle); }

// Whether two handles are one key; then their hashes agree too.
inline bool sameKey(void* left, void* right) {
  const NativeCollectionKey leftKey = keyFor(left);
  const NativeCollectionKey rightKey = keyFor(right);
  const bool same = NativeCollectionKeyEqual()(leftKey, rightKey);
  EXPECT_EQ(NativeCollectionKeyEqual()(rightKey, leftKey), same);
  if (same) {
    EXPECT_EQ(NativeCollectionKeyHash()(leftKey), NativeCollectionKeyHash()(rightKey));
  }
  return same;
}

inline int order(void* left, void* right) {
  const NativeCollectionKey leftKey = keyFor(left);
  const NativeCollectionKey rightKey = keyFor(right);
  const int forward = compareNativeCollectionKeys(leftKey, rightKey);
  const int backward = compareNativeCollectionKeys(rightKey, leftKey);
  EXPECT_EQ(forward, -backward);
  EXPECT_EQ(NativeCollectionKeyLess()(leftKey, rightKey), forward < 0);
  EXPECT_EQ(NativeCollectionKeyLess()(rightKey, leftKey), backward < 0);
  return forward;
}

}  // namespace vorn::tests
