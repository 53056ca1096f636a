// The rows of libraries whose maps and sets have the interface of those of C++.
#pragma once

#include "bench/report/peer_rows.h"

namespace vorn::bench::report {

template <class Key>
std::vector<Key> keysFor(std::int64_t n, std::uint32_t seed, bool present = true) {
  if constexpr (std::is_same_v<Key, std::string>) {
    return textKeysInOrder(n, seed, present ? textKeyOf : absentTextKeyOf);
  } else {
    return keysInOrder(n, seed, present ? keyOf : absentKeyOf);
  }
}

// Maps and sets as one: sets have no values, and what is added up of them are the elements, of texts the lengths.
template <class Collection>
void putInto(Collection& collection, const typename Collection::key_type& key, std::int32_t value) {
  if constexpr (requires { typename Collection::mapped_type; }) {
    collection[key] = value;
  } else {
    collection.insert(key);
  }
}

template <class Collection>
std::int64_t sumOf(const Collection& collection) {
  std::int64_t sum = 0;
  for (const auto& element : collection) {
    if constexpr (requires { typename Collection::mapped_type; }) {
      sum += element.second;
    } else if constexpr (std::is_same_v<typename Collection::key_type, std::string>) {
      sum += static_cast<std::int64_t>(element.size());
    } else {
      sum += element;
    }
  }
  return sum;
}

// Keys with their values, and a collection.
template <class Collection>
struct KeyedState {
  using Key = typename Collection::key_type;
  std::vector<Key> keys;
  std::vector<std::int32_t> values;
  Collection collection;
  std::vector<Key> wanted;  // what is looked up or removed
  std::int64_t result = 0;

  explicit KeyedState(std::int64_t n) : keys(keysFor<Key>(n, kPutOrder)), values(shuffledOrder(n, kPutOrder)) {}

  // The first n keys.
  void putAll(Collection& target, std::int64_t n) const {
    for (std::size_t i = 0; i < static_cast<std::size_t>(n); ++i) putInto(target, keys[i], values[i]);
  }
};

template <class Collection>
KeyedState<Collection> filled(std::int64_t n) {
  KeyedState<Collection> state(n);
  state.putAll(state.collection, n);
  return state;
}

template <class Collection>
std::uint32_t digestOfCollection(const KeyedState<Collection>& state) {
  return digestOfEntries(static_cast<std::int64_t>(state.collection.size()), sumOf(state.collection));
}

template <class Collection>
std::uint32_t digestOfResult(const KeyedState<Collection>& state) {
  return digestOfNumber(state.result);
}

template <class Collection>
Ready adding(std::int64_t n) {
  return sharing(
      n, KeyedState<Collection>(n),
      [=](KeyedState<Collection>& state) {
        Collection collection;
        state.putAll(collection, n);
        state.collection = std::move(collection);
      },
      digestOfCollection<Collection>);
}

// Adds up the values of keys, or counts the elements, that are there.
template <class Collection, bool present>
Ready lookingUp(std::int64_t n) {
  KeyedState<Collection> state = filled<Collection>(n);
  state.wanted = keysFor<typename Collection::key_type>(n, kGetOrder, present);
  return sharing(
      n, std::move(state),
      [](KeyedState<Collection>& state) {
        std::int64_t sum = 0;
        for (const auto& key : state.wanted) {
          if constexpr (requires { typename Collection::mapped_type; }) {
            const auto found = state.collection.find(key);
            if (found != state.collection.end()) sum += found->second;
          } else {
            sum += state.collection.contains(key) ? 1 : 0;
          }
        }
        state.result = sum;
      },
      digestOfResult<Collection>);
}

template <class Collection>
Ready iterating(std::int64_t n) {
  return sharing(
      n, filled<Collection>(n), [](KeyedState<Collection>& state) { state.result = sumOf(state.collection); },
      digestOfResult<Collection>);
}

template <class Collection>
Ready removing(std::int64_t n) {
  KeyedState<Collection> state(n);
  state.wanted = keysFor<typename Collection::key_type>(n, kGetOrder);
  return sharing(
      n, std::move(state),
      [=](KeyedState<Collection>& state) {
        Collection collection;
        state.putAll(collection, n);
        for (const auto& key : state.wanted) collection.erase(key);
        state.collection = std::move(collection);
      },
      digestOfCollection<Collection>);
}

// Of twice as many keys, half are in the collection at any time.
template <class Collection>
Ready churning(std::int64_t n) {
  KeyedState<Collection> first(2 * n);
  first.putAll(first.collection, n);
  return sharing(
      n, std::move(first),
      [=, oldest = std::int64_t{0}](KeyedState<Collection>& state) mutable {
        for (std::int64_t i = 0; i < n; ++i) {
          const auto newest = static_cast<std::size_t>(oldest < n ? oldest + n : oldest - n);
          state.collection.erase(state.keys[static_cast<std::size_t>(oldest)]);
          putInto(state.collection, state.keys[newest], state.values[newest]);
          oldest = oldest + 1 < 2 * n ? oldest + 1 : 0;
        }
      },
      digestOfCollection<Collection>);
}

template <class Map>
Ready makingSmallMaps(std::int64_t n) {
  return sharing(
      n, std::int64_t{0},
      [=](std::int64_t& result) {
        std::int64_t sum = 0;
        for (std::int64_t i = 0; i < n; ++i) {
          Map map;
          for (std::int64_t j = 0; j < 8; ++j) map[static_cast<Int>(i + j)] = static_cast<std::int32_t>(i + j);
          sum += map.find(static_cast<Int>(i + 7))->second;
        }
        result = sum;
      },
      [](std::int64_t sum) { return digestOfNumber(sum); });
}

// ---- The table ------------------------------------------------------------------------------------------------------

template <class Map, class Set>
void addHashed(Rows& rows, const char* form) {
  const char* const kind = kNameOf<typename Map::key_type>;
  rows.add(form, "map-put", kind, adding<Map>);
  rows.add(form, "map-get", kind, lookingUp<Map, true>);
  rows.add(form, "map-miss", kind, lookingUp<Map, false>);
  rows.add(form, "map-iterate", kind, iterating<Map>);
  rows.add(form, "map-remove", kind, removing<Map>);
  rows.add(form, "map-churn", kind, churning<Map>);
  rows.add(form, "set-add", kind, adding<Set>);
  rows.add(form, "set-contains", kind, lookingUp<Set, true>);
  rows.add(form, "set-miss", kind, lookingUp<Set, false>);
  rows.add(form, "set-iterate", kind, iterating<Set>);
  rows.add(form, "set-remove", kind, removing<Set>);
  rows.add(form, "set-churn", kind, churning<Set>);
}

// What is measured with numbers as keys only.
template <class Map, class SortedMap>
void addForNumbers(Rows& rows, const char* form) {
  rows.add(form, "small-maps", "Int", makingSmallMaps<Map>);
  rows.add(form, "sorted-put", "Int", adding<SortedMap>);
  rows.add(form, "sorted-get", "Int", lookingUp<SortedMap, true>);
  rows.add(form, "sorted-iterate", "Int", iterating<SortedMap>);
}

}  // namespace vorn::bench::report
