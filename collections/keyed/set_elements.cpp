// Adding to hash sets, removing from them, and membership.

#include <vorn/collections/hash_set.h>

#include "collections/core/port/borrowed_box.h"
#include "collections/core/port/pending_errors.h"
#include "collections/keyed/key_of.h"
#include "collections/keyed/set_data.h"
#include "collections/keyed/size_field.h"

namespace vc = vorn::collections;

namespace {

using Place = decltype(SetData::table)::Place;

// Adds or replaces at the place that a search came to, unless user code raised during it. All that can fail comes before
// the first change.
[[gnu::always_inline]] inline void addAt(SetData& set, Place place, const NativeCollectionKey& key, void* value) {
  vc::assertMayBeKept(value);
  if (place.failed) return;
  if (place.node != nullptr) {
    place.node->entry = value;
    return;
  }
  set.table.makeRoom(place, key);
  set.table.insert(place, key, value);
}

[[gnu::noinline]] void addAny(void* set, SetData& data, void* value) {
  const NativeCollectionKey key = vc::setKeyOf(value);
  if (hasPendingError()) return;
  const SetDataLock lock(data);
  addAt(data, data.table.find(key), key, value);
  vc::writeSizeField(set, data.count());
}

// Adds by a key whose words decide, to a plain set while no error is pending.
template <class Words>
[[gnu::always_inline]] inline void addByWords(void* set, SetData& data, const Words& words, void* value) {
  addAt(data, data.table.locateWords(words), words.key(), value);
  vc::writeSizeField(set, data.count());
}

[[gnu::noinline]] void addOther(void* set, SetData& data, void* value) {
  vc::withShortTextKey(
      value, [&](const vc::KeyWords& words) { addByWords(set, data, words, value); },
      [&] { addAny(set, data, value); });
}

bool removeAt(void* set, SetData& data, const Place& place) {
  if (place.node == nullptr) return false;
  data.table.remove(place);
  vc::writeSizeField(set, data.count());
  return true;
}

[[gnu::noinline]] bool removeAny(void* set, SetData& data, void* value) {
  const NativeCollectionKey key = vc::setKeyOf(value);
  if (hasPendingError()) return false;
  const SetDataLock lock(data);
  return removeAt(set, data, data.table.find(key));
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

// The common cases below, an integer or a short text and a plain set, need neither a key in memory nor a lock.

void vorn_collections_HashSet_add(void* set, void* value) {
  if (set == nullptr) return;
  SetData& data = *getSetData(set);
  if (data.synchronized || mayHavePendingError()) return addAny(set, data, value);
  vc::withIntegerKey(
      value, [&](vc::IntegerWords words) { addByWords(set, data, words, value); }, [&] { addOther(set, data, value); });
}

bool vorn_collections_HashSet_remove(void* set, void* value) {
  if (set == nullptr) return false;
  SetData& data = *getSetData(set);
  const auto otherwise = [&] { return removeAny(set, data, value); };
  if (data.synchronized || mayHavePendingError()) return otherwise();
  return vc::withIntegerKey(
      value, [&](vc::IntegerWords words) { return removeAt(set, data, data.table.locateWords(words)); }, otherwise);
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
