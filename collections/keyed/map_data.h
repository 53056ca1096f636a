// The storage record of every map class.
//
// Exactly one of two storages is used:
//   hashed   `hash` holds the entries (Map, HashMapSync);
//   else     `ordered` holds them (SortedMap, SortedMapSync).
// Further invariants, checked by validateMapData (keyed_validation.h):
//   - `hashed`, `synchronized` and `mutex` never change after creation, and a synchronised map has a mutex;
//   - the storage that is not used is empty and has no memory;
//   - keyType and valueType are null or a short type name, and null after clear; the names of lastKeyClass and
//     lastValueClass, where these are not null, have gone into them.
// The record belongs to its object and lives inside the object's block; it starts empty without allocating and is never
// destroyed. Its memory comes from the collector and is never freed. Only natives lock; nothing in this file
// does.
#pragma once

#include <pthread.h>

#include <cstdint>

#include "collections/core/port/object_layout.h"
#include "collections/core/port/type_name.h"
#include "collections/core/record_lock.h"
#include "collections/keyed/hash_table.h"
#include "collections/keyed/map_entry.h"
#include "collections/keyed/ordered_table.h"
#include "collections/keyed/table_concept.h"

struct MapData {
  void* runtimeHeader[2] = {};  // the runtime's words; never read or written here
  bool hashed = true;
  bool synchronized = false;
  RuntimeTypeName keyType;    // of the keys put since the last clear: their common one, "Object" when they differ
  RuntimeTypeName valueType;  // of the values likewise
  const RuntimeClass* lastKeyClass = nullptr;    // of the key put last; null when it was no object, and after clear
  const RuntimeClass* lastValueClass = nullptr;  // of the value likewise
  vorn::collections::OrderedTable ordered;
  vorn::collections::HashTable<NativeMapEntry> hash;
  pthread_mutex_t* mutex = nullptr;

  MapData() = default;
  MapData(const MapData&) = delete;
  MapData& operator=(const MapData&) = delete;

  // Whether it is hashed and not synchronised, as most are: one comparison of both flags.
  [[nodiscard]] bool isPlainHash() const {
    constexpr bool kPlainHash[2] = {true, false};
    return std::memcmp(&hashed, kPlainHash, sizeof(kPlainHash)) == 0;
  }

  // Calls visit(table) with the storage that is used: the one place where a map chooses.
  template <class Visit>
  decltype(auto) withTable(Visit visit) const {
    return hashed ? visit(hash) : visit(ordered);
  }
  template <class Visit>
  decltype(auto) withTable(Visit visit) {
    return hashed ? visit(hash) : visit(ordered);
  }

  // Number of entries.
  [[nodiscard]] std::uint64_t count() const {
    return withTable([](const auto& table) { return table.count(); });
  }

  // Differs after every change of which keys there are.
  [[nodiscard]] std::uint64_t changes() const {
    return withTable([](const auto& table) { return table.changes(); });
  }

  // Calls visit(key, entry) for every entry in storage order: ascending for ordered storage, that of hash_table.h for
  // hash storage. It must not change the map.
  template <class Visit>
  void forEach(Visit visit) const {
    withTable([&](const auto& table) { table.forEach(visit); });
  }
};
static_assert(sizeof(vorn::collections::HashTable<NativeMapEntry>::Node) == 40, "a key and two handles");
static_assert(vorn::collections::KeyedTable<vorn::collections::HashTable<NativeMapEntry>, NativeMapEntry>);
static_assert(vorn::collections::KeyedTable<vorn::collections::OrderedTable, NativeMapEntry>);

using MapDataLock = vorn::collections::RecordLock<MapData>;
