// The table of operations on maps and sets, and the loops that are measured: the same ones for every library.
//
// A library is a class with
//   kName                      its column in the table
//   kLargestGrowth             the size up to which growth is measured, which is as far as it is quick;
//   kLargestSortedMap          the same for sorted maps
//   Box<Key>                   a pointer to a number or text in a block of its own
//   box(key), drop(box)        makes one and gives it back
//   number(value)              reads the number in the box of a value
//   Boxes<Key>                 boxes that stay alive: reserve(n), push(box), [i], size()
//   Map<Key>, SortedMap        put(box, value), find(box), remove(box), forEach(visit), and the whole as a list:
//                              listKeys(), listValues(), listItems(), of which only the last may be missing
//   SyncMap                    put and find
//   Set                        put(box, box), find(box), listValues()
//   MapOfMaps                  put(box, box, value), find(box, box)
// Values are boxes. Maps and sets of boxes that were made in the loop give them back by dropBoxes().
#pragma once

#include <algorithm>
#include <array>
#include <thread>
#include <type_traits>
#include <utility>

#include "bench/keyed_operations.h"

namespace vorn::bench::keyed {

template <class Library, class Key>
void makeKeys(typename Library::template Boxes<Key>& keys, std::int64_t elements, std::uint64_t seed,
              bool absent = false) {
  keys.reserve(elements);
  for (const std::uint32_t number : shuffledOrder(elements, seed)) {
    if constexpr (std::is_same_v<Key, Text>) {
      keys.push(Library::box(textKey(number, absent)));
    } else {
      keys.push(Library::box(intKey(number, absent)));
    }
  }
}

template <class Map, class Boxes>
void putAll(Map& map, const Boxes& keys) {
  for (std::size_t i = 0; i < keys.size(); ++i) map.put(keys[i], keys[i]);
}

// ---- With keys made before ------------------------------------------------------------------------------------------

template <class Library, class Map, class Key>
void put(benchmark::State& state, std::int64_t elements) {
  typename Library::template Boxes<Key> keys;
  makeKeys<Library, Key>(keys, elements, kPutOrder);
  for (auto _ : state) {
    Map map;
    putAll(map, keys);
    keep(&map);
  }
  countElements(state, elements);
}

template <class Library, class Map, class Key, bool absent>
void find(benchmark::State& state, std::int64_t elements) {
  typename Library::template Boxes<Key> inserted;
  typename Library::template Boxes<Key> keys;
  Map map;
  makeKeys<Library, Key>(inserted, elements, kPutOrder);
  putAll(map, inserted);
  makeKeys<Library, Key>(keys, elements, kGetOrder, absent);
  for (auto _ : state) {
    for (std::size_t i = 0; i < keys.size(); ++i) keep(map.find(keys[i]));
  }
  countElements(state, elements);
}

// Runs `work(map)` on one map of numbers.
template <class Library, class Map, class Work>
void onMap(benchmark::State& state, std::int64_t elements, Work work) {
  typename Library::template Boxes<Int> keys;
  Map map;
  makeKeys<Library, Int>(keys, elements, kPutOrder);
  putAll(map, keys);
  for (auto _ : state) work(map);
  countElements(state, elements);
}

template <class Library, class Map>
void walk(benchmark::State& state, std::int64_t elements) {
  onMap<Library, Map>(state, elements, [](const Map& map) { map.forEach([](const void* value) { keep(value); }); });
}

// Removes every entry, in another order than they came in.
template <class Library>
void drain(benchmark::State& state, std::int64_t elements) {
  using Map = typename Library::template Map<Int>;
  typename Library::template Boxes<Int> inserted;
  typename Library::template Boxes<Int> removed;
  makeKeys<Library, Int>(inserted, elements, kPutOrder);
  makeKeys<Library, Int>(removed, elements, kGetOrder);
  std::array<Map, preparedCollections(kSmall)> maps;
  const std::int64_t prepared = preparedCollections(elements);
  for (auto _ : state) {
    state.PauseTiming();
    for (std::int64_t at = 0; at < prepared; ++at) putAll(maps[static_cast<std::size_t>(at)], inserted);
    state.ResumeTiming();
    for (std::int64_t at = 0; at < prepared; ++at) {
      Map& map = maps[static_cast<std::size_t>(at)];
      for (std::size_t i = 0; i < removed.size(); ++i) keep(map.remove(removed[i]));
    }
  }
  countElements(state, elements * prepared);
}

// Half of the keys are in the map; each step takes the oldest out and puts the one in that has been out longest.
template <class Library>
void churn(benchmark::State& state, std::int64_t elements) {
  typename Library::template Boxes<Int> keys;
  typename Library::template Map<Int> map;
  makeKeys<Library, Int>(keys, 2 * elements, kPutOrder);
  const std::size_t count = keys.size();
  std::size_t oldest = 0;
  for (std::size_t i = 0; i < count / 2; ++i) map.put(keys[i], keys[i]);
  for (auto _ : state) {
    for (std::int64_t i = 0; i < elements; ++i) {
      const std::size_t newest = oldest < count / 2 ? oldest + count / 2 : oldest - count / 2;
      keep(map.remove(keys[oldest]));
      map.put(keys[newest], keys[newest]);
      oldest = oldest + 1 < count ? oldest + 1 : 0;
    }
  }
  countElements(state, elements);
}

// ---- With keys and values boxed in the loop, as compiled code does --------------------------------------------------

// `putOne(map, number)` makes the boxes.
template <class Map, class PutOne>
void fillBoxed(benchmark::State& state, std::int64_t elements, PutOne putOne) {
  const std::vector<std::uint32_t>& order = shuffledOrder(elements, kPutOrder);
  for (auto _ : state) {
    Map map;
    for (const std::uint32_t number : order) putOne(map, intKey(number, false));
    keep(&map);
    map.dropBoxes();
  }
  countElements(state, elements);
}

template <class Library>
void putBoxed(benchmark::State& state, std::int64_t elements) {
  using Map = typename Library::template Map<Int>;
  fillBoxed<Map>(state, elements, [](Map& map, Int number) { map.put(Library::box(number), Library::box(number)); });
}

template <class Library>
void addBoxed(benchmark::State& state, std::int64_t elements) {
  using Set = typename Library::Set;
  fillBoxed<Set>(state, elements, [](Set& set, Int number) {
    const auto box = Library::box(number);
    set.put(box, box);
  });
}

// Looks numbers up and hands `use` what is found. withKey(number, find) makes the key and calls find(key).
template <class Library, class Map, bool absent, class WithKey, class Use>
void findMade(benchmark::State& state, std::int64_t elements, WithKey withKey, Use use) {
  typename Library::template Boxes<Int> inserted;
  Map map;
  makeKeys<Library, Int>(inserted, elements, kPutOrder);
  putAll(map, inserted);
  const std::vector<std::uint32_t>& order = shuffledOrder(elements, kGetOrder);
  for (auto _ : state) {
    for (const std::uint32_t number : order) {
      withKey(intKey(number, absent), [&](const auto& key) { use(map.find(key)); });
    }
  }
  countElements(state, elements);
}

template <class Library, class Map, bool absent, class Use>
void findBoxed(benchmark::State& state, std::int64_t elements, Use use) {
  const auto boxed = [](Int number, auto find) {
    const auto key = Library::box(number);
    find(key);
    Library::drop(key);
  };
  findMade<Library, Map, absent>(state, elements, boxed, use);
}

// For the library that has borrowed keys.
template <class Library, class Map, class Use>
void findBorrowed(benchmark::State& state, std::int64_t elements, Use use) {
  findMade<Library, Map, false>(
      state, elements, [](Int number, auto find) { Library::withBorrowed(number, find); }, use);
}
template <class Library>
constexpr bool borrowsKeys = requires {
  Library::withBorrowed(Int{}, [](const auto&) {});
};

template <class Library>
void getBoxed(benchmark::State& state, std::int64_t elements) {
  findBoxed<Library, typename Library::template Map<Int>, false>(
      state, elements, [](const auto& found) { keep(Library::number(found)); });
}

template <class Library, class Map, bool absent>
void containsBoxed(benchmark::State& state, std::int64_t elements) {
  findBoxed<Library, Map, absent>(state, elements, [](const auto& found) { keep(found); });
}

// ---- Maps of maps ---------------------------------------------------------------------------------------------------

// Entries of an inner map. The keys of the outer ones are numbers too.
inline constexpr std::int64_t kInner = 10;

template <class Library, class Visit>
void forEachPair(const typename Library::template Boxes<Int>& keys, const std::vector<std::uint32_t>& order,
                 Visit visit) {
  for (const std::uint32_t number : order) visit(keys[number / kInner], keys[number % kInner]);
}

template <class Library>
void makeKeysInOrder(typename Library::template Boxes<Int>& keys, std::int64_t elements) {
  keys.reserve(elements);
  for (std::int64_t i = 0; i < elements; ++i) keys.push(Library::box(Int{i}));
}

template <class Library>
void putInMaps(benchmark::State& state, std::int64_t elements) {
  typename Library::template Boxes<Int> keys;
  makeKeysInOrder<Library>(keys, elements / kInner);
  const std::vector<std::uint32_t>& order = shuffledOrder(elements, kPutOrder);
  for (auto _ : state) {
    typename Library::MapOfMaps maps;
    forEachPair<Library>(keys, order, [&](const auto& outer, const auto& inner) { maps.put(outer, inner, inner); });
    keep(&maps);
  }
  countElements(state, elements);
}

template <class Library>
void getInMaps(benchmark::State& state, std::int64_t elements) {
  typename Library::template Boxes<Int> keys;
  typename Library::MapOfMaps maps;
  makeKeysInOrder<Library>(keys, elements / kInner);
  forEachPair<Library>(keys, shuffledOrder(elements, kPutOrder),
                       [&](const auto& outer, const auto& inner) { maps.put(outer, inner, inner); });
  const std::vector<std::uint32_t>& order = shuffledOrder(elements, kGetOrder);
  for (auto _ : state) {
    forEachPair<Library>(keys, order, [&](const auto& outer, const auto& inner) { keep(maps.find(outer, inner)); });
  }
  countElements(state, elements);
}

// ---- One synchronised map -------------------------------------------------------------------------------------------

// Every key is put once more and got, the keys shared out among the threads.
template <class Library, int threads>
void putAndGetShared(benchmark::State& state, std::int64_t elements) {
  typename Library::template Boxes<Int> keys;
  typename Library::SyncMap map;
  makeKeys<Library, Int>(keys, elements, kPutOrder);
  putAll(map, keys);
  const std::int64_t passes = preparedCollections(elements);
  const auto work = [&](std::size_t first, std::size_t last) {
    for (std::int64_t pass = 0; pass < passes; ++pass) {
      for (std::size_t i = first; i < last; ++i) {
        map.put(keys[i], keys[i]);
        keep(map.find(keys[i]));
      }
    }
  };
  for (auto _ : state) {
    if constexpr (threads == 1) {
      work(0, keys.size());
    } else {
      std::thread other(work, 0, keys.size() / 2);
      work(keys.size() / 2, keys.size());
      other.join();
    }
  }
  countElements(state, elements * passes * 2);
}

// ---- The table ------------------------------------------------------------------------------------------------------

template <class Library>
void addTo(Benchmarks& benchmarks) {
  using IntMap = typename Library::template Map<Int>;
  using TextMap = typename Library::template Map<Text>;
  using Set = typename Library::Set;
  using SortedMap = typename Library::SortedMap;
  const auto row = [&benchmarks](const char* operation, Measured measured) {
    for (const std::int64_t elements : {kSmall, kLarge}) add(benchmarks, operation, Library::kName, measured, elements);
  };

  row("put Int", put<Library, IntMap, Int>);
  row("get Int", find<Library, IntMap, Int, false>);
  row("get absent Int", find<Library, IntMap, Int, true>);
  row("put String", put<Library, TextMap, Text>);
  row("get String", find<Library, TextMap, Text, false>);
  row("get absent String", find<Library, TextMap, Text, true>);
  for (std::int64_t elements = 10; elements <= std::min(Library::kLargestGrowth, largestGrowth()); elements *= 10) {
    add(benchmarks, "put boxed Int", Library::kName, putBoxed<Library>, elements);
    if (elements > kLarge) benchmarks.back().repetitions = 1;  // some seconds each, and no limit depends on it
  }
  row("get boxed Int", getBoxed<Library>);
  row("get boxed absent Int", containsBoxed<Library, IntMap, true>);
  if constexpr (borrowsKeys<Library>) {
    row("get borrowed Int", [](benchmark::State& state, std::int64_t elements) {
      findBorrowed<Library, IntMap>(state, elements, [](const auto& found) { keep(Library::numberInline(found)); });
    });
  }
  row("drain Int", drain<Library>);
  row("churn Int", churn<Library>);
  add(benchmarks, "make and drop a map", Library::kName, put<Library, IntMap, Int>, 8);
  row("put in maps of 10", putInMaps<Library>);
  row("get in maps of 10", getInMaps<Library>);

  row("walk", walk<Library, IntMap>);
  row("keys", [](benchmark::State& state, std::int64_t elements) {
    onMap<Library, IntMap>(state, elements, [](const IntMap& map) { map.listKeys(); });
  });
  row("values", [](benchmark::State& state, std::int64_t elements) {
    onMap<Library, IntMap>(state, elements, [](const IntMap& map) { map.listValues(); });
  });
  if constexpr (requires(const IntMap map) { map.listItems(); }) {
    row("items", [](benchmark::State& state, std::int64_t elements) {
      onMap<Library, IntMap>(state, elements, [](const IntMap& map) { map.listItems(); });
    });
  }

  row("set add Int", put<Library, Set, Int>);
  row("set contains Int", find<Library, Set, Int, false>);
  row("set add boxed Int", addBoxed<Library>);
  row("set contains boxed Int", containsBoxed<Library, Set, false>);
  if constexpr (borrowsKeys<Library>) {
    row("set contains borrowed Int", [](benchmark::State& state, std::int64_t elements) {
      findBorrowed<Library, Set>(state, elements, [](bool found) { keep(found); });
    });
  }
  row("set items", [](benchmark::State& state, std::int64_t elements) {
    onMap<Library, Set>(state, elements, [](const Set& set) { set.listValues(); });
  });

  const auto sortedRow = [&](const char* operation, Measured measured) {
    for (const std::int64_t elements : {kSmall, kLarge}) {
      if (elements <= Library::kLargestSortedMap) add(benchmarks, operation, Library::kName, measured, elements);
    }
  };
  sortedRow("sorted put Int", put<Library, SortedMap, Int>);
  sortedRow("sorted get Int", find<Library, SortedMap, Int, false>);
  sortedRow("sorted walk", walk<Library, SortedMap>);
  const auto sharedRow = [&](const char* operation, Measured measured) {
    for (const std::int64_t elements : {kSmall, kLarge}) {
      add(benchmarks, operation, Library::kName, measured, elements);
      benchmarks.back().clock = Clock::Wall;
    }
  };
  sharedRow("shared by one thread", putAndGetShared<Library, 1>);
  sharedRow("shared by two threads", putAndGetShared<Library, 2>);
}

}  // namespace vorn::bench::keyed
