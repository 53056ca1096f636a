// Walks over collections: the slots of what comes next are taken several at a time, so that a step is inline but for the
// first of them.
#include <vorn/collections/inline/walks.h>

#include <algorithm>

#include "collections/core/elements/primitive_values.h"
#include "collections/core/errors.h"
#include "collections/core/storage/list_data.h"
#include "collections/keyed/map_data.h"
#include "collections/keyed/set_data.h"

namespace vc = vorn::collections;

namespace {

constexpr std::uint32_t kSlots = VORN_INLINE_WALK_SLOTS;

// Where an entry keeps its handles: two of them in a map, one in a set.
void* const* slotOf(const NativeMapEntry& entry) { return &entry.key; }
void* const* slotOf(void* const& element) { return &element; }
static_assert(offsetof(NativeMapEntry, key) == 0 && offsetof(NativeMapEntry, value) == sizeof(void*) &&
                  sizeof(NativeMapEntry) == 2 * sizeof(void*),
              "a slot is the key, and the value behind it");

bool end(vorn_walk& walk) {
  walk.record = nullptr;
  walk.next = walk.end = 0;
  walk.key = walk.value = nullptr;
  return false;
}

// ---- Tables ---------------------------------------------------------------------------------------------------------

std::uint64_t firstPosition(const vc::OrderedTable& table) { return table.tree().first(); }
template <class Entry>
std::uint64_t firstPosition(const vc::HashTable<Entry>& table) {
  return table.firstPlace();
}

template <class Entry>
void takeSlots(vorn_walk& walk, const vc::HashTable<Entry>& table) {
  auto place = static_cast<std::uint32_t>(walk.position);
  std::uint32_t taken = 0;
  while (place != table.places() && taken != kSlots) {
    const auto* node = &table.at(place);
    for (std::uint64_t left = table.chunks().runFrom(place, table.places()); left != 0 && taken != kSlots; --left) {
      walk.slots[taken] = slotOf(node->entry);
      // A vacant place is overwritten by the next: they come in no pattern that a branch could learn.
      taken += static_cast<std::uint32_t>(node->key.tag != vc::HashTable<Entry>::kVacant);
      ++place;
      ++node;
    }
  }
  walk.position = place;
  walk.end = taken;
}

// The elements of a large table are in no cache, and in no order that a processor could guess.
constexpr std::uint64_t kElementsInCache = 4096;

void takeSlots(vorn_walk& walk, const vc::OrderedTable& table) {
  const bool prefetches = table.count() > kElementsInCache;
  auto place = static_cast<std::uint32_t>(walk.position);
  std::uint32_t taken = 0;
  for (; place != 0 && taken != kSlots; place = table.tree().at(place).next) {
    const NativeMapEntry& entry = table.at(place).entry;
    if (prefetches) __builtin_prefetch(&entry);
    walk.slots[taken++] = slotOf(entry);
  }
  for (std::uint32_t i = 0; prefetches && i != taken; ++i) __builtin_prefetch(walk.slots[i][1]);
  walk.position = place;
  walk.end = taken;
}

template <class Table>
bool tableWalkOn(vorn_walk& walk, const Table& table) {
  if (*walk.counter != walk.changes) {
    end(walk);
    vc::errors::raiseKeysChangedDuringWalk();
    return false;
  }
  walk.next = 0;
  takeSlots(walk, table);
  return walk.end != 0 || end(walk);
}

template <class Table>
void begin(vorn_walk& walk, const Table& table) {
  walk.counter = &table.changesCounter();
  walk.changes = *walk.counter;
  walk.position = firstPosition(table);
}

// ---- Lists ----------------------------------------------------------------------------------------------------------

// The slots of a linked list from the walk's index on, which is that of a node.
void takeSlots(vorn_walk& walk, LinkedHandles& nodes) {
  const LinkedHandles::Links* at = static_cast<const LinkedHandles::Links*>(walk.after);
  if (at == nullptr || nodes.changes != walk.changes) at = nodes.nodeAt(walk.position);
  std::uint32_t taken = 0;
  for (; at != &nodes.sentinel && taken != kSlots; at = at->next) {
    walk.slots[taken++] = &static_cast<const LinkedHandles::Node*>(at)->handle;
  }
  walk.after = at;
  walk.changes = nodes.changes;
  walk.position += taken;
  walk.end = taken;
}

bool give(vorn_walk& walk, void* element) {
  walk.key = walk.value = element;
  return true;
}

bool listWalkOn(vorn_walk& walk, ListData& list) {
  walk.position -= walk.end - walk.next;
  walk.next = walk.end = 0;
  if (walk.position >= list.logicalSize()) return end(walk);
  if (list.isUnboxed()) {
    void* const box = boxPrimitiveElement(list, walk.position);
    ++walk.position;
    return give(walk, box);
  }
  if (!list.linked) return give(walk, list.objects.data[walk.position++]);
  takeSlots(walk, list.linkedObjects);
  return give(walk, *walk.slots[walk.next++]);
}

}  // namespace

bool vorn_inline_begin_walk(vorn_walk* walk, void* record, int kind) {
  end(*walk);
  if (record == nullptr) return false;
  walk->kind = static_cast<std::uint32_t>(kind);
  walk->after = nullptr;
  const auto beginRecord = [&](const auto& data, auto beginPlain) {
    if (data.synchronized) return false;
    walk->record = record;
    beginPlain(data);
    return true;
  };
  if (kind == VORN_INLINE_MAP) {
    return beginRecord(*static_cast<const MapData*>(record),
                       [&](const MapData& map) { map.withTable([&](const auto& table) { begin(*walk, table); }); });
  }
  if (kind == VORN_INLINE_SET) {
    return beginRecord(*static_cast<const SetData*>(record), [&](const SetData& set) { begin(*walk, set.table); });
  }
  return beginRecord(*static_cast<const ListData*>(record), [&](const ListData& list) {
    walk->counter = &list.linkedObjects.changes;
    walk->changes = *walk->counter;
    walk->position = 0;
  });
}

bool vorn_inline_walk_on(vorn_walk* walk) {
  if (walk->record == nullptr) return end(*walk);
  switch (walk->kind) {
    case VORN_INLINE_MAP:
      if (!static_cast<const MapData*>(walk->record)->withTable([&](const auto& table) {
            return tableWalkOn(*walk, table);
          })) {
        return false;
      }
      return vorn_inline_Map_next(walk);
    case VORN_INLINE_SET:
      return tableWalkOn(*walk, static_cast<const SetData*>(walk->record)->table) && vorn_inline_HashSet_next(walk);
    default:
      return listWalkOn(*walk, *static_cast<ListData*>(walk->record));
  }
}
