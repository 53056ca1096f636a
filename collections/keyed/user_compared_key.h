// Searching a table by keys whose comparison may run user code.
//
// That code may change the very table, raise, or answer inconsistently. A search therefore copies the key it compares
// and keeps its object alive, looks at the table's change counter and at pending errors after every comparison, and
// follows a node further only when the table is unchanged. Otherwise it starts again, kMaxRestarts times; user code
// that changes the table each time would keep it busy forever, so the last search asks no user code.
#pragma once

#include "collections/core/port/collection_key.h"
#include "collections/core/port/roots.h"

namespace vorn::collections {

inline constexpr int kMaxRestarts = 64;

// The copy of a key of a table, alive while user code may drop the original from the table.
class UserComparedKey {
 public:
  const NativeCollectionKey& copy(const NativeCollectionKey& key) {
    key_ = key;
    if (key.comparesByUserCode()) object_ = key.handle();
    return key_;
  }

 private:
  NativeCollectionKey key_;
  RootedHandle object_;
};

// Whether two keys agree in everything but their hashes, which ordered tables do without: of keys that compare by user
// code, that they are of the same object.
inline bool identicalKeys(const NativeCollectionKey& left, const NativeCollectionKey& right) {
  return left.tag == right.tag && left.shortLength == right.shortLength && left.words[0] == right.words[0] &&
         left.words[1] == right.words[1];
}

}  // namespace vorn::collections
