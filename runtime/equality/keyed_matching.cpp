#include "runtime/equality/keyed_matching.h"

#include <algorithm>
#include <cstdint>

#include "collections/core/pending_error_watch.h"
#include "collections/core/port/object_layout.h"
#include "collections/keyed/map_data.h"
#include "collections/keyed/set_data.h"
#include "runtime/keys/key_rules.h"

namespace vorn::runtime {
namespace {

// Finds keys among those of one side. Collections that were filled alike have their keys at the same places, so that
// place is tried first; an index by hash is built only when that fails once. The index holds no handle.
class KeyFinder {
 public:
  explicit KeyFinder(const KeyedSnapshot& side) : side_(side), used_(side.keys->size(), false) {}

  // The position of an unused key equal to this one; nothing when there is none or a hook raised.
  std::optional<std::size_t> take(const NativeCollectionKey& key, std::size_t likelyPlace) {
    if (matches(key, likelyPlace)) return likelyPlace;
    if (raised_) return {};
    if (byHash_.empty()) buildIndex();
    auto at = std::lower_bound(byHash_.begin(), byHash_.end(), Entry{key.hash, 0});
    for (; at != byHash_.end() && at->hash == key.hash && !raised_; ++at) {
      if (at->place != likelyPlace && matches(key, at->place)) return at->place;
    }
    return {};
  }

  [[nodiscard]] bool raised() const { return raised_; }

 private:
  struct Entry {
    std::uint32_t hash;
    std::size_t place;
    friend bool operator<(const Entry& left, const Entry& right) { return left.hash < right.hash; }
  };

  bool matches(const NativeCollectionKey& key, std::size_t place) {
    const auto& other = side_.keys->at(place);
    if (used_[place] || other.hash != key.hash) return false;
    const collections::PendingErrorWatch errors;
    // Not as a lookup would ask, since this is part of the comparison that is going on.
    const bool equal = key.comparesByUserCode() ? judgeWholeKeys(Rule::KeyEquality, key, other) == Verdict::Same
                                                : NativeCollectionKeyEqual()(key, other);
    if (key.comparesByUserCode()) raised_ = errors.raised();
    used_[place] = equal && !raised_;
    return used_[place];
  }

  void buildIndex() {
    byHash_.reserve(side_.keys->size());
    for (std::size_t i = 0; i < side_.keys->size(); ++i) byHash_.push_back({side_.keys->at(i).hash, i});
    std::sort(byHash_.begin(), byHash_.end());
  }

  const KeyedSnapshot& side_;
  std::vector<bool> used_;
  std::vector<Entry> byHash_;
  bool raised_ = false;
};

// Whether the order of keys may hang on the addresses of objects that are equal. (A sequence may hold such objects.)
bool mayBeOrderedByAddress(const NativeCollectionKey& key) {
  if (key.tag == KeyTag::Instance) return !hasHook(Rule::Order, key.handle());
  return key.tag == KeyTag::Sequence;
}

// The verdict on two sorted maps, whose keys stand in the same order if they are the same; nothing when it cannot be
// told without hashes.
std::optional<Matching> matchPlaces(const KeyedSnapshot& left, const KeyedSnapshot& right,
                                    std::vector<std::size_t>& places) {
  places.reserve(left.keys->size());
  for (std::size_t i = 0; i < left.keys->size(); ++i) {
    const NativeCollectionKey& key = left.keys->at(i);
    const NativeCollectionKey& other = right.keys->at(i);
    const Verdict verdict = judgeWholeKeys(Rule::KeyEquality, key, other);
    if (verdict == Verdict::Raised) return Matching::Raised;
    if (verdict != Verdict::Same) {
      if (mayBeOrderedByAddress(key) && mayBeOrderedByAddress(other)) return {};
      return Matching::Missing;
    }
    places.push_back(i);
  }
  return Matching::Complete;
}

// Gives keys that have none their hashes; false when a hook raised.
bool makeHashes(KeyedSnapshot& snapshot) {
  if (snapshot.hashed) return true;
  for (NativeCollectionKey& key : *snapshot.keys) {
    const collections::PendingErrorWatch errors;
    key.hash = keyHash(key);
    if (key.comparesByUserCode() && errors.raised()) return false;
  }
  snapshot.hashed = true;
  return true;
}

}  // namespace

void snapshotMap(void* map, KeyedSnapshot& snapshot) {
  const MapData& data = *getMapData(map);
  const MapDataLock lock(data);
  snapshot.hashed = data.hashed;
  snapshot.keys->reserve(data.count());
  snapshot.values->reserve(data.count());
  data.forEach([&](const NativeCollectionKey& key, const NativeMapEntry& entry) {
    snapshot.keys->push_back(key);
    snapshot.values->push_back(entry.value);
  });
}

void snapshotSet(void* set, KeyedSnapshot& snapshot) {
  const SetData& data = *getSetData(set);
  const SetDataLock lock(data);
  snapshot.keys->reserve(data.count());
  data.forEach([&](const NativeCollectionKey& key, void*) { snapshot.keys->push_back(key); });
}

std::size_t sizeOfMap(void* map) {
  const MapData& data = *getMapData(map);
  const MapDataLock lock(data);
  return data.count();
}

std::size_t sizeOfSet(void* set) {
  const SetData& data = *getSetData(set);
  const SetDataLock lock(data);
  return data.count();
}

Matching matchKeys(KeyedSnapshot& left, KeyedSnapshot& right, std::vector<std::size_t>& places) {
  if (left.keys->size() != right.keys->size()) return Matching::Missing;
  if (!left.hashed && !right.hashed) {
    if (const auto matching = matchPlaces(left, right, places)) return *matching;
    places.clear();
  }
  if (!makeHashes(left) || !makeHashes(right)) return Matching::Raised;
  KeyFinder finder(right);
  places.reserve(left.keys->size());
  for (std::size_t i = 0; i < left.keys->size(); ++i) {
    const auto place = finder.take(left.keys->at(i), i);
    if (!place) return finder.raised() ? Matching::Raised : Matching::Missing;
    places.push_back(*place);
  }
  return Matching::Complete;
}

}  // namespace vorn::runtime
