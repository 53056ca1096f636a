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

template <class Map>
std::uint32_t digestOfMap(const Map& map) {
  std::int64_t sum = 0;
  for (const auto& entry : map) sum += entry.second;
  return digestOfEntries(static_cast<std::int64_t>(map.size()), sum);
}

// Keys with their values, and a map.
template <class Map>
struct MapState {
  std::vector<typename Map::key_type> keys;
  std::vector<std::int32_t> values;
  Map map;
  std::vector<typename Map::key_type> wanted;
  std::int64_t result = 0;

  static void putAll(Map& map, const std::vector<typename Map::key_type>& keys,
                     const std::vector<std::int32_t>& values) {
    for (std::size_t i = 0; i < keys.size(); ++i) map[keys[i]] = values[i];
  }
};

template <class Map>
MapState<Map> mapState(std::int64_t n, bool filled) {
  using Key = typename Map::key_type;
  MapState<Map> state{keysFor<Key>(n, kPutOrder), shuffledOrder(n, kPutOrder), {}, {}};
  if (filled) MapState<Map>::putAll(state.map, state.keys, state.values);
  return state;
}

template <class Map>
Ready putting(std::int64_t n) {
  return sharing(
      n, mapState<Map>(n, false),
      [](MapState<Map>& state) {
        Map map;
        MapState<Map>::putAll(map, state.keys, state.values);
        state.map = std::move(map);
      },
      [](const MapState<Map>& state) { return digestOfMap(state.map); });
}

template <class Map, bool present>
Ready getting(std::int64_t n) {
  MapState<Map> filled = mapState<Map>(n, true);
  filled.wanted = keysFor<typename Map::key_type>(n, kGetOrder, present);
  return sharing(
      n, std::move(filled),
      [](MapState<Map>& state) {
        std::int64_t sum = 0;
        for (const auto& key : state.wanted) {
          const auto found = state.map.find(key);
          if (found != state.map.end()) sum += found->second;
        }
        state.result = sum;
      },
      [](const MapState<Map>& state) { return digestOfNumber(state.result); });
}

template <class Map>
Ready iterating(std::int64_t n) {
  return sharing(
      n, mapState<Map>(n, true),
      [](MapState<Map>& state) {
        std::int64_t sum = 0;
        for (const auto& entry : state.map) sum += entry.second;
        state.result = sum;
      },
      [](const MapState<Map>& state) { return digestOfNumber(state.result); });
}

template <class Map>
Ready removing(std::int64_t n) {
  MapState<Map> empty = mapState<Map>(n, false);
  empty.wanted = keysFor<typename Map::key_type>(n, kGetOrder);
  return sharing(
      n, std::move(empty),
      [](MapState<Map>& state) {
        Map map;
        MapState<Map>::putAll(map, state.keys, state.values);
        for (const auto& key : state.wanted) map.erase(key);
        state.map = std::move(map);
      },
      [](const MapState<Map>& state) { return digestOfMap(state.map); });
}

template <class Map>
struct ChurnState {
  std::vector<std::int32_t> order;
  Map map;
  std::int64_t oldest;
};

template <class Map>
Ready churning(std::int64_t n) {
  ChurnState<Map> first{shuffledOrder(2 * n, kPutOrder), {}, 0};
  for (std::size_t i = 0; i < static_cast<std::size_t>(n); ++i) first.map[keyOf(first.order[i])] = first.order[i];
  return sharing(
      n, std::move(first),
      [=](ChurnState<Map>& state) {
        for (std::int64_t i = 0; i < n; ++i) {
          const std::int64_t at = state.oldest;
          const std::int32_t newest = state.order[static_cast<std::size_t>(at < n ? at + n : at - n)];
          state.map.erase(keyOf(state.order[static_cast<std::size_t>(at)]));
          state.map[keyOf(newest)] = newest;
          state.oldest = at + 1 < 2 * n ? at + 1 : 0;
        }
      },
      [](const ChurnState<Map>& state) { return digestOfMap(state.map); });
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

// ---- Sets -----------------------------------------------------------------------------------------------------------

template <class Set>
struct SetState {
  std::vector<typename Set::key_type> keys;
  Set set;
  std::int64_t result = 0;
};

template <class Set>
Ready adding(std::int64_t n) {
  return sharing(
      n, SetState<Set>{keysFor<typename Set::key_type>(n, kPutOrder), {}},
      [](SetState<Set>& state) {
        Set set;
        for (const auto& key : state.keys) set.insert(key);
        state.set = std::move(set);
      },
      [](const SetState<Set>& state) { return digestOfNumber(static_cast<std::int64_t>(state.set.size())); });
}

template <class Set>
SetState<Set> filledSet(std::int64_t n) {
  using Key = typename Set::key_type;
  SetState<Set> state{keysFor<Key>(n, kGetOrder), {}};
  for (const Key& key : keysFor<Key>(n, kPutOrder)) state.set.insert(key);
  return state;
}

template <class Set>
Ready containing(std::int64_t n) {
  return sharing(
      n, filledSet<Set>(n),
      [](SetState<Set>& state) {
        std::int64_t found = 0;
        for (const auto& key : state.keys) found += state.set.contains(key) ? 1 : 0;
        state.result = found;
      },
      [](const SetState<Set>& state) { return digestOfNumber(state.result); });
}

template <class Set>
Ready iteratingSet(std::int64_t n) {
  return sharing(
      n, filledSet<Set>(n),
      [](SetState<Set>& state) {
        std::int64_t sum = 0;
        for (const auto key : state.set) sum += key;
        state.result = sum;
      },
      [](const SetState<Set>& state) { return digestOfNumber(state.result); });
}

// ---- The table ------------------------------------------------------------------------------------------------------

template <class Map, class Set>
void addHashed(Rows& rows, const char* form) {
  const char* const kind = kNameOf<typename Map::key_type>;
  rows.add(form, "map-put", kind, putting<Map>);
  rows.add(form, "map-get", kind, getting<Map, true>);
  rows.add(form, "map-miss", kind, getting<Map, false>);
  rows.add(form, "map-remove", kind, removing<Map>);
  rows.add(form, "set-add", kind, adding<Set>);
  rows.add(form, "set-contains", kind, containing<Set>);
}

// What is measured with numbers as keys only.
template <class Map, class Set, class SortedMap>
void addForNumbers(Rows& rows, const char* form) {
  rows.add(form, "map-iterate", "Int", iterating<Map>);
  rows.add(form, "map-churn", "Int", churning<Map>);
  rows.add(form, "small-maps", "Int", makingSmallMaps<Map>);
  rows.add(form, "set-iterate", "Int", iteratingSet<Set>);
  rows.add(form, "sorted-put", "Int", putting<SortedMap>);
  rows.add(form, "sorted-get", "Int", getting<SortedMap, true>);
  rows.add(form, "sorted-iterate", "Int", iterating<SortedMap>);
}

}  // namespace vorn::bench::report
