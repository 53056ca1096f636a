// The same work by std::unordered_map and std::map, GHashTable and GTree, absl::flat_hash_map and absl::btree_map.
// Numbers come out of heap blocks of their own, as they do from boxes.
#include <absl/container/btree_map.h>
#include <absl/container/flat_hash_map.h>
#include <glib.h>

#include <map>
#include <memory>
#include <unordered_map>

#include "bench/keyed_operations.h"

namespace vorn::bench {

namespace {

// A key and its block, the size of the runtime's boxes or larger for texts.
template <class Key>
struct Box {
  Key value;
  std::int64_t padding[3] = {};
};
template <class Key>
using Boxes = std::vector<std::unique_ptr<Box<Key>>>;

void makeKey(std::int64_t& key, std::size_t number, bool absent) {
  key = absent ? -1 - static_cast<std::int64_t>(number) : static_cast<std::int64_t>(number);
}
void makeKey(std::string& key, std::size_t number, bool absent) { key = textKey(number, absent); }

template <class Key>
Boxes<Key> makeKeys(std::int64_t elements, std::uint64_t seed, bool absent = false) {
  Boxes<Key> keys;
  for (const std::size_t number : shuffledOrder(elements, seed)) {
    keys.push_back(std::make_unique<Box<Key>>());
    makeKey(keys.back()->value, number, absent);
  }
  return keys;
}

// What the natives store for a key.
struct Entry {
  const void* key;
  const void* value;
};

template <class Map>
void put(benchmark::State& state, std::int64_t elements) {
  const auto keys = makeKeys<typename Map::key_type>(elements, kPutOrder);
  for (auto _ : state) {
    Map map;
    for (const auto& key : keys) map[key->value] = {key.get(), key.get()};
    keep(&map);
  }
  countElements(state, elements);
}

template <class Map>
void get(benchmark::State& state, std::int64_t elements, bool absent) {
  Map map;
  for (const auto& key : makeKeys<typename Map::key_type>(elements, kPutOrder)) map[key->value] = {};
  const auto keys = makeKeys<typename Map::key_type>(elements, kGetOrder, absent);
  for (auto _ : state) {
    for (const auto& key : keys) {
      const auto found = map.find(key->value);
      keep(found != map.end() ? found->second.value : nullptr);
    }
  }
  countElements(state, elements);
}

template <class Map>
void walkAll(benchmark::State& state, std::int64_t elements) {
  Map map;
  for (const auto& key : makeKeys<typename Map::key_type>(elements, kPutOrder)) map[key->value] = {};
  for (auto _ : state) {
    for (const auto& entry : map) keep(entry.second.value);
  }
  countElements(state, elements);
}

}  // namespace

#define VORN_KEYED_PEER(peer, IntMap, TextMap, SortedMap)                                                     \
  namespace peer {                                                                                            \
  void putInt(benchmark::State& state, std::int64_t elements) { put<IntMap>(state, elements); }               \
  void getInt(benchmark::State& state, std::int64_t elements) { get<IntMap>(state, elements, false); }        \
  void getAbsentInt(benchmark::State& state, std::int64_t elements) { get<IntMap>(state, elements, true); }   \
  void putText(benchmark::State& state, std::int64_t elements) { put<TextMap>(state, elements); }             \
  void getText(benchmark::State& state, std::int64_t elements) { get<TextMap>(state, elements, false); }      \
  void getAbsentText(benchmark::State& state, std::int64_t elements) { get<TextMap>(state, elements, true); } \
  void walk(benchmark::State& state, std::int64_t elements) { walkAll<IntMap>(state, elements); }             \
  void putSorted(benchmark::State& state, std::int64_t elements) { put<SortedMap>(state, elements); }         \
  void getSorted(benchmark::State& state, std::int64_t elements) { get<SortedMap>(state, elements, false); }  \
  void walkSorted(benchmark::State& state, std::int64_t elements) { walkAll<SortedMap>(state, elements); }    \
  }

using StandardIntMap = std::unordered_map<std::int64_t, Entry>;
using StandardTextMap = std::unordered_map<std::string, Entry>;
using StandardSortedMap = std::map<std::int64_t, Entry>;
VORN_KEYED_PEER(standard, StandardIntMap, StandardTextMap, StandardSortedMap)

using AbseilIntMap = absl::flat_hash_map<std::int64_t, Entry>;
using AbseilTextMap = absl::flat_hash_map<std::string, Entry>;
using AbseilSortedMap = absl::btree_map<std::int64_t, Entry>;
VORN_KEYED_PEER(abseil, AbseilIntMap, AbseilTextMap, AbseilSortedMap)

#undef VORN_KEYED_PEER

// GLib's tables keep pointers; the values are the keys' blocks.
namespace glib {

namespace {

const void* keyOf(const Box<std::int64_t>& box) { return &box.value; }
const void* keyOf(const Box<std::string>& box) { return box.value.c_str(); }

template <class Key>
GHashTable* newTable() {
  if constexpr (std::is_same_v<Key, std::string>) return g_hash_table_new(g_str_hash, g_str_equal);
  return g_hash_table_new(g_int64_hash, g_int64_equal);
}

gint compareIntegers(gconstpointer left, gconstpointer right) {
  const auto a = *static_cast<const std::int64_t*>(left);
  const auto b = *static_cast<const std::int64_t*>(right);
  return (a > b) - (a < b);
}

template <class Key>
void insertAll(GHashTable* table, const Boxes<Key>& keys) {
  for (const auto& key : keys) g_hash_table_insert(table, const_cast<void*>(keyOf(*key)), key.get());
}
void insertAll(GTree* tree, const Boxes<std::int64_t>& keys) {
  for (const auto& key : keys) g_tree_insert(tree, &key->value, key.get());
}

template <class Key>
void putTable(benchmark::State& state, std::int64_t elements) {
  const auto keys = makeKeys<Key>(elements, kPutOrder);
  for (auto _ : state) {
    GHashTable* const table = newTable<Key>();
    insertAll(table, keys);
    keep(table);
    g_hash_table_destroy(table);
  }
  countElements(state, elements);
}

template <class Key>
void getTable(benchmark::State& state, std::int64_t elements, bool absent) {
  const auto inserted = makeKeys<Key>(elements, kPutOrder);
  GHashTable* const table = newTable<Key>();
  insertAll(table, inserted);
  const auto keys = makeKeys<Key>(elements, kGetOrder, absent);
  for (auto _ : state) {
    for (const auto& key : keys) keep(g_hash_table_lookup(table, keyOf(*key)));
  }
  g_hash_table_destroy(table);
  countElements(state, elements);
}

}  // namespace

void putInt(benchmark::State& state, std::int64_t elements) { putTable<std::int64_t>(state, elements); }
void getInt(benchmark::State& state, std::int64_t elements) { getTable<std::int64_t>(state, elements, false); }
void getAbsentInt(benchmark::State& state, std::int64_t elements) { getTable<std::int64_t>(state, elements, true); }
void putText(benchmark::State& state, std::int64_t elements) { putTable<std::string>(state, elements); }
void getText(benchmark::State& state, std::int64_t elements) { getTable<std::string>(state, elements, false); }
void getAbsentText(benchmark::State& state, std::int64_t elements) { getTable<std::string>(state, elements, true); }

void walk(benchmark::State& state, std::int64_t elements) {
  const auto keys = makeKeys<std::int64_t>(elements, kPutOrder);
  GHashTable* const table = newTable<std::int64_t>();
  insertAll(table, keys);
  for (auto _ : state) {
    GHashTableIter iterator;
    g_hash_table_iter_init(&iterator, table);
    gpointer value = nullptr;
    while (g_hash_table_iter_next(&iterator, nullptr, &value) != 0) keep(value);
  }
  g_hash_table_destroy(table);
  countElements(state, elements);
}

void putSorted(benchmark::State& state, std::int64_t elements) {
  const auto keys = makeKeys<std::int64_t>(elements, kPutOrder);
  for (auto _ : state) {
    GTree* const tree = g_tree_new(compareIntegers);
    insertAll(tree, keys);
    keep(tree);
    g_tree_destroy(tree);
  }
  countElements(state, elements);
}

void getSorted(benchmark::State& state, std::int64_t elements) {
  const auto inserted = makeKeys<std::int64_t>(elements, kPutOrder);
  GTree* const tree = g_tree_new(compareIntegers);
  insertAll(tree, inserted);
  const auto keys = makeKeys<std::int64_t>(elements, kGetOrder);
  for (auto _ : state) {
    for (const auto& key : keys) keep(g_tree_lookup(tree, &key->value));
  }
  g_tree_destroy(tree);
  countElements(state, elements);
}

void walkSorted(benchmark::State& state, std::int64_t elements) {
  const auto keys = makeKeys<std::int64_t>(elements, kPutOrder);
  GTree* const tree = g_tree_new(compareIntegers);
  insertAll(tree, keys);
  const auto visit = [](gpointer, gpointer value, gpointer) -> gboolean { return keep(value), FALSE; };
  for (auto _ : state) g_tree_foreach(tree, visit, nullptr);
  g_tree_destroy(tree);
  countElements(state, elements);
}

}  // namespace glib

}  // namespace vorn::bench
