// Lists of a map's keys, values and entries. They are filled while the map is not locked.

#include <vorn/collections/array_list.h>
#include <vorn/collections/map.h>

#include <string>
#include <string_view>

#include "collections/core/port/keys.h"
#include "collections/core/port/objects.h"
#include "collections/core/port/roots.h"
#include "collections/keyed/listing.h"
#include "collections/keyed/map_data.h"
#include "collections/keyed/map_snapshot.h"
#include "collections/keyed/map_types.h"

namespace vc = vorn::collections;

namespace {

// One handle of each entry, `part`, in storage order. A synchronised map is not locked while the list is filled, but a
// plain one needs no snapshot: nothing changes it meanwhile.
void* listingOf(void* map, void* NativeMapEntry::*part) {
  if (map == nullptr) return nullptr;
  const vc::RootedHandle list(Vorn_allocObject("ImmutableList"));
  if (list.get() == nullptr) return nullptr;
  const MapData& data = *getMapData(map);
  if (!data.synchronized) {
    vc::fillListing(list.get(), data.count(), [&](auto append) {
      data.forEach([&](const NativeCollectionKey&, const NativeMapEntry& entry) { append(entry.*part); });
    });
    return list.get();
  }
  vc::HandleVector handles;
  {
    const MapDataLock lock(data);
    handles->reserve(data.count());
    data.forEach([&](const NativeCollectionKey&, const NativeMapEntry& entry) { handles->push_back(entry.*part); });
  }
  vc::fillListing(list.get(), handles->size(), [&](auto append) {
    for (void* const handle : *handles) append(handle);
  });
  return list.get();
}

// The type name of a value as the type of an item names it: what the recorded name "Object" hides, the field of a boxed
// value may still tell.
std::string_view itemValueTypeName(void* value) {
  const std::string_view name = vc::mapValueTypeName(value);
  if (name != vc::kObjectTypeName || !hasObjectMagic(value)) return name;
  const ObjectField* const field = findObjectField(getObject(value), "_value");
  if (field == nullptr) return name;
  switch (field->kind) {
    case ObjectField::Kind::Integer:
      return "Int";
    case ObjectField::Kind::Floating:
      return "Double";
    case ObjectField::Kind::Boolean:
      return "Boolean";
    case ObjectField::Kind::Handle:
      break;
  }
  return name;
}

// The one type name of all values, or the recorded one when they differ or there are none.
std::string_view commonValueTypeName(const vc::MapEntryVector::Storage& entries, RuntimeTypeName recorded) {
  const std::string_view start = !recorded.empty() ? recorded.get() : vc::kObjectTypeName;
  if (entries.empty()) return start;
  // Objects of one class have one name, which is therefore looked at once in most maps.
  const std::string_view candidate = itemValueTypeName(entries.front().value);
  const RuntimeClass* const candidateClass = classOfObject(entries.front().value);
  for (const MapEntrySnapshot& entry : entries) {
    if (candidateClass != nullptr && classOfObject(entry.value) == candidateClass) continue;
    if (itemValueTypeName(entry.value) != candidate) return start;
  }
  return candidate;
}

// Makes `item` a new tuple of one entry; false when it cannot be had.
bool makeItem(vc::RootedHandle& item, const std::string& typeName, const MapEntrySnapshot& entry) {
  item = Vorn_allocObject(typeName.c_str());
  if (item.get() == nullptr) return false;
  Vorn_setField_ptr(item.get(), "_0", entry.key);
  Vorn_setField_ptr(item.get(), "_1", entry.value);
  Vorn_setField_i64(item.get(), "size", 2);
  return true;
}

}  // namespace

void* vorn_collections_Map_keys(void* map) { return listingOf(map, &NativeMapEntry::key); }

void* vorn_collections_Map_values(void* map) { return listingOf(map, &NativeMapEntry::value); }

void* vorn_collections_Map_items(void* map) {
  if (map == nullptr) return nullptr;
  const vc::RootedHandle list(Vorn_allocObject("ImmutableList"));
  if (list.get() == nullptr) return nullptr;
  std::string typeName = "Tuple<";
  typeName += resolveMapKeyTypeName(map);
  vc::MapEntryVector entries;
  RuntimeTypeName valueType;
  vc::snapshotTypedMapEntries(*getMapData(map), entries, valueType);
  typeName += ',';
  typeName += commonValueTypeName(*entries, valueType);
  typeName += '>';
  vc::RootedHandle item(nullptr);
  bool complete = true;
  vc::fillListing(list.get(), entries->size(), [&](auto append) {
    for (const MapEntrySnapshot& entry : *entries) {
      complete = makeItem(item, typeName, entry);
      if (!complete) return;
      append(item.get());
    }
  });
  return complete ? list.get() : nullptr;
}
