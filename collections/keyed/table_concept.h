// What a table of keys offers, whatever its layout: the natives of maps and sets are written against this.
#pragma once

#include <concepts>
#include <cstdint>

#include "collections/core/port/collection_key.h"

namespace vorn::collections {

// A table is searched, then changed with what the search came to:
//   find(key)            where the key is, or that it is absent, or that user code raised (`failed`). Runs user code for
//                        keys that compare by it, which may change the very table; the result holds on return;
//   makeRoom(place, key) all that an insertion can fail at: allocates, and throws with the elements unchanged. Brings
//                        the place that find() gave up to date;
//   insert(place, ...)   adds the key that find() did not find, after makeRoom(). Cannot fail;
//   remove(place)        removes what find() found. Cannot fail;
//   walk()               a cursor over the nodes in the table's order, valid while changes() stays;
//   changes()            differs after every change of where elements are.
// None of them locks.
template <class Table, class Entry>
concept KeyedTable = requires(Table& table, const Table& constTable, const NativeCollectionKey& key, const Entry& entry,
                              typename Table::Place& place, typename Table::Cursor& cursor) {
  { constTable.count() } -> std::same_as<std::uint64_t>;
  { constTable.changes() } -> std::same_as<std::uint64_t>;
  { constTable.find(key) } -> std::same_as<typename Table::Place>;
  { place.node->entry } -> std::convertible_to<Entry>;
  { place.failed } -> std::convertible_to<bool>;
  { table.makeRoom(place, key) } -> std::same_as<void>;
  { table.insert(place, key, entry) } -> std::same_as<void>;
  { table.remove(place) } -> std::same_as<void>;
  { table.clear() } -> std::same_as<void>;
  { constTable.walk() } -> std::same_as<typename Table::Cursor>;
  { cursor.next() } -> std::same_as<typename Table::Node*>;
};

}  // namespace vorn::collections
