// Adding to hash sets, removing from them, and membership.

#include <vorn/collections/hash_set.h>

#include "collections/core/port/pending_errors.h"
#include "collections/keyed/key_of.h"
#include "collections/keyed/set_data.h"
#include "collections/keyed/size_field.h"

namespace vc = vorn::collections;

namespace {

// Adds or replaces, unless user code raised during the search. All that can fail comes before the first change.
void addLocked(SetData& set, const NativeCollectionKey& key, void* value) {
  auto place = set.table.find(key);
  if (place.failed) return;
  if (place.node != nullptr) {
    place.node->entry = value;
    return;
  }
  set.table.makeRoom(place, key);
  set.table.insert(place, key, value);
}

[[gnu::noinline]] bool containsAny(const SetData& set, void* value) {
  const NativeCollectionKey key = vc::setKeyOf(value);
  if (hasPendingError()) return false;
  const SetDataLock lock(set);
  return set.table.find(key).node != nullptr;
}

[[gnu::noinline]] bool containsText(const SetData& set, void* value) {
  const auto otherwise = [&] { return containsAny(set, value); };
  if (set.synchronized || mayHavePendingError()) return otherwise();
  return vc::withShortTextKey(
      value, [&](const vc::KeyWords& words) { return set.table.findWords(words) != nullptr; }, otherwise);
}

}  // namespace

void vorn_collections_HashSet_add(void* set, void* value) {
  if (set == nullptr) return;
  const NativeCollectionKey key = vc::setKeyOf(value);
  if (hasPendingError()) return;
  SetData& data = *getSetData(set);
  const SetDataLock lock(data);
  addLocked(data, key, value);
  vc::writeSizeField(set, data.count());
}

bool vorn_collections_HashSet_remove(void* set, void* value) {
  if (set == nullptr) return false;
  const NativeCollectionKey key = vc::setKeyOf(value);
  if (hasPendingError()) return false;
  SetData& data = *getSetData(set);
  const SetDataLock lock(data);
  const auto place = data.table.find(key);
  if (place.node == nullptr) return false;
  data.table.remove(place);
  vc::writeSizeField(set, data.count());
  return true;
}

bool vorn_collections_HashSet_operator_in(void* set, void* value) {
  if (set == nullptr) return false;
  const SetData& data = *getSetData(set);
  const auto otherwise = [&] { return containsText(data, value); };
  if (data.synchronized || mayHavePendingError()) return otherwise();
  return vc::withIntegerKey(
      value, [&](vc::IntegerWords words) { return data.table.findWords(words) != nullptr; }, otherwise);
}

long long vorn_collections_HashSet_count(void* set, void* value) {
  return vorn_collections_HashSet_operator_in(set, value) ? 1 : 0;
}

void vorn_collections_HashSet_clear(void* set) {
  if (set == nullptr) return;
  SetData& data = *getSetData(set);
  const SetDataLock lock(data);
  data.table.clear();
  vc::writeSizeField(set, 0);
}
