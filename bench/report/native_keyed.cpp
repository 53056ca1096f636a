// Maps and sets. Compiled code boxes the numbers that it puts; it looks numbers and texts up without a box by the
// inline forms, and walks by them.
#include <vorn/collections/hash_set.h>
#include <vorn/collections/map.h>

#include <vector>

#include "bench/report/native_rows.h"
#include "collections/core/port/object_layout.h"

namespace vorn::bench::report {

namespace {

// ---- Keys -----------------------------------------------------------------------------------------------------------

template <class Value>
using SharedVector = std::shared_ptr<std::vector<Value>>;

template <class Value>
SharedVector<Value> keepVector(std::vector<Value> values) {
  return std::make_shared<std::vector<Value>>(std::move(values));
}

// A key as a program has it: a number without a box, or a String.
using Text = void*;

template <class Key>
inline constexpr const char* kKind = std::is_same_v<Key, Int> ? "Int" : "String";

// Keys that are there before the clock starts. A list keeps texts alive.
template <class Key>
struct Keys {
  SharedVector<Key> values;
  Shared owner;
};

template <class Key>
Keys<Key> keysInto(std::int64_t n, std::uint32_t seed, bool present = true) {
  if constexpr (std::is_same_v<Key, Int>) {
    return {keepVector(keysInOrder(n, seed, present ? keyOf : absentKeyOf)), nullptr};
  } else {
    Keys<Text> made{keepVector(std::vector<Text>()), share(vorn_object_new("ArrayList<String>"))};
    Handle text;
    for (const std::string& bytes : textKeysInOrder(n, seed, present ? textKeyOf : absentTextKeyOf)) {
      text = newText(bytes);
      vorn_collections_ArrayList_add(*made.owner, text);
      made.values->push_back(text);
    }
    return made;
  }
}

// What is put for a key.
void* ownedKey(Int number) { return vorn_box_int(number); }
void* ownedKey(Text text) { return text; }

// What is looked up or removed for one.
void* borrowedKey(vorn_borrowed_box& box, Int number) { return vorn_borrow_int(&box, number); }
void* borrowedKey(vorn_borrowed_box& /*box*/, Text text) { return text; }

// What is added up of the elements of a set: numbers, and the lengths of Strings, which compiled code loads.
std::int64_t lengthIn(void* string) {
  const auto* const object = static_cast<const StringObject*>(string);
  return object->kind() == ObjectKind::String ? static_cast<std::int64_t>(object->length) : 0;
}
template <class Key>
std::int64_t weightIn(void* element) {
  if constexpr (std::is_same_v<Key, Int>) return intIn(element);
  if constexpr (std::is_same_v<Key, Text>) return lengthIn(element);
}
template <class Key>
std::int64_t weightInlineIn(void* element) {
  if constexpr (std::is_same_v<Key, Int>) return intInlineIn(element);
  if constexpr (std::is_same_v<Key, Text>) return lengthIn(element);
}

// ---- Maps and sets as one -------------------------------------------------------------------------------------------

// Adds up what a native listed, Ints or Strings.
template <class Element>
std::int64_t sumOfList(void* list) {
  std::int64_t sum = 0;
  vorn_span span;
  if (std::is_same_v<Element, Int> && vorn_inline_ArrayList_span(list, VORN_INT, &span)) {
    const auto* const elements = static_cast<const Int*>(span.data);
    for (std::int64_t i = 0; i < span.size; ++i) sum += elements[i];
    return sum;
  }
  const std::int64_t size = vorn_collections_ArrayList_size(list);
  for (std::int64_t i = 0; i < size; ++i) sum += weightIn<Element>(vorn_proven_ArrayList_operator_index(list, i));
  return sum;
}

template <class KeyType>
struct Maps {
  using Key = KeyType;
  static constexpr const char* kType = "Map";

  static void put(void* map, Key key, std::int32_t value, Handle& ownedUntilPut) {
    ownedUntilPut = ownedKey(key);
    vorn_collections_Map_put(map, ownedUntilPut, vorn_box_int(value));
  }
  static void remove(void* map, void* key) { vorn_collections_Map_remove(map, key); }
  static std::int64_t size(void* map) { return vorn_collections_Map_size(map); }
  // Of the values, which are listed first.
  static std::int64_t sum(void* map) {
    const Handle values = vorn_collections_Map_values(map);
    return sumOfList<Int>(values);
  }
};

template <class Key>
struct SortedMaps : Maps<Key> {
  static constexpr const char* kType = "SortedMap";
};

template <class KeyType>
struct Sets {
  using Key = KeyType;
  static constexpr const char* kType = "HashSet";

  static void put(void* set, Key key, std::int32_t /*value*/, Handle& /*ownedUntilPut*/) {
    vorn_collections_HashSet_add(set, ownedKey(key));
  }
  static void remove(void* set, void* element) { vorn_collections_HashSet_remove(set, element); }
  static std::int64_t size(void* set) { return vorn_collections_HashSet_size(set); }
  // Of the elements, which are listed first.
  static std::int64_t sum(void* set) {
    const Handle items = vorn_collections_HashSet_items(set);
    return sumOfList<Key>(items);
  }
};

template <class Kind>
std::uint32_t digestOfCollection(void* collection) {
  return digestOfEntries(Kind::size(collection), Kind::sum(collection));
}

// Puts the first n keys.
template <class Kind, class Key>
void putAll(void* collection, const std::vector<Key>& keys, const std::vector<std::int32_t>& values, std::int64_t n) {
  Handle owned;
  for (std::size_t i = 0; i < static_cast<std::size_t>(n); ++i) Kind::put(collection, keys[i], values[i], owned);
}

template <class Kind>
Shared filled(std::int64_t n) {
  const Shared collection = share(vorn_object_new(Kind::kType));
  putAll<Kind>(*collection, *keysInto<typename Kind::Key>(n, kPutOrder).values, shuffledOrder(n, kPutOrder), n);
  return collection;
}

template <class Kind>
Ready adding(std::int64_t n) {
  const auto keys = keysInto<typename Kind::Key>(n, kPutOrder);
  const auto values = keepVector(shuffledOrder(n, kPutOrder));
  const Shared collection = share();
  return {n,
          [=] {
            *collection = vorn_object_new(Kind::kType);
            putAll<Kind>(*collection, *keys.values, *values, n);
          },
          [=] { return digestOfCollection<Kind>(*collection); }};
}

template <class Kind>
Ready removing(std::int64_t n) {
  const auto keys = keysInto<typename Kind::Key>(n, kPutOrder);
  const auto values = keepVector(shuffledOrder(n, kPutOrder));
  const auto removed = keysInto<typename Kind::Key>(n, kGetOrder);
  const Shared collection = share();
  return {n,
          [=] {
            *collection = vorn_object_new(Kind::kType);
            void* const target = *collection;
            putAll<Kind>(target, *keys.values, *values, n);
            vorn_borrowed_box box;
            for (const auto key : *removed.values) Kind::remove(target, borrowedKey(box, key));
          },
          [=] { return digestOfCollection<Kind>(*collection); }};
}

// Of twice as many keys, half are in the collection at any time.
template <class Kind>
Ready churning(std::int64_t n) {
  const auto keys = keysInto<typename Kind::Key>(2 * n, kPutOrder);
  const auto values = keepVector(shuffledOrder(2 * n, kPutOrder));
  const Shared collection = share(vorn_object_new(Kind::kType));
  putAll<Kind>(*collection, *keys.values, *values, n);
  const auto oldest = std::make_shared<std::int64_t>(0);
  return {n,
          [=] {
            void* const target = *collection;
            Handle owned;
            vorn_borrowed_box box;
            for (std::int64_t i = 0; i < n; ++i) {
              const std::int64_t at = *oldest;
              const auto newest = static_cast<std::size_t>(at < n ? at + n : at - n);
              Kind::remove(target, borrowedKey(box, (*keys.values)[static_cast<std::size_t>(at)]));
              Kind::put(target, (*keys.values)[newest], (*values)[newest], owned);
              *oldest = at + 1 < 2 * n ? at + 1 : 0;
            }
          },
          [=] { return digestOfCollection<Kind>(*collection); }};
}

template <class Kind>
Ready iterating(std::int64_t n) {
  const Shared collection = filled<Kind>(n);
  const auto result = std::make_shared<std::int64_t>();
  return {n, [=] { *result = Kind::sum(*collection); }, [=] { return digestOfNumber(*result); }};
}

// Adds up `look(collection, key)` of keys that are there, or of others.
template <class Kind, auto look, bool present>
Ready lookingUp(std::int64_t n) {
  const Shared collection = filled<Kind>(n);
  const auto keys = keysInto<typename Kind::Key>(n, kGetOrder, present);
  const auto result = std::make_shared<std::int64_t>();
  return {n,
          [=] {
            void* const source = *collection;
            std::int64_t sum = 0;
            for (const auto key : *keys.values) sum += look(source, key);
            *result = sum;
          },
          [=] { return digestOfNumber(*result); }};
}

// ---- Looks and walks ------------------------------------------------------------------------------------------------

template <class Key>
std::int64_t getByNative(void* map, Key key) {
  vorn_borrowed_box box;
  void* const value = vorn_collections_Map__get(map, borrowedKey(box, key));
  return value != nullptr ? intIn(value) : 0;
}

// There is no inline form for a key that is a String already; its value is still read inline.
template <class Key>
std::int64_t getInline(void* map, Key key) {
  void* value = nullptr;
  if constexpr (std::is_same_v<Key, Int>) value = vorn_proven_Map__get_integer(map, key);
  if constexpr (std::is_same_v<Key, Text>) value = vorn_collections_Map__get(map, key);
  return value != nullptr ? intInlineIn(value) : 0;
}

template <class Key>
std::int64_t hasByNative(void* set, Key key) {
  vorn_borrowed_box box;
  return vorn_collections_HashSet_operator_in(set, borrowedKey(box, key)) ? 1 : 0;
}

std::int64_t hasInline(void* set, Int key) { return vorn_proven_HashSet_operator_in_integer(set, key) ? 1 : 0; }

template <class Kind>
Ready walkingMap(std::int64_t n) {
  return summingByWalk<vorn_inline_Map_walk, vorn_inline_Map_next, &vorn_walk::value>(filled<Kind>(n), n);
}

template <class Key>
Ready walkingSet(std::int64_t n) {
  return summingByWalk<vorn_inline_HashSet_walk, vorn_inline_HashSet_next, &vorn_walk::key, weightInlineIn<Key>>(
      filled<Sets<Key>>(n), n);
}

Ready makingSmallMaps(std::int64_t n) {
  const auto result = std::make_shared<std::int64_t>();
  return {n,
          [=] {
            Handle map;
            Handle key;
            std::int64_t sum = 0;
            for (std::int64_t i = 0; i < n; ++i) {
              map = vorn_object_new("Map");
              void* const target = map;
              for (std::int32_t j = 0; j < 8; ++j) {
                Maps<Int>::put(target, static_cast<Int>(i) + j, static_cast<Int>(i) + j, key);
              }
              sum += intIn(vorn_proven_Map__get_integer(target, i + 7));
            }
            *result = sum;
          },
          [=] { return digestOfNumber(*result); }};
}

// ---- The table ------------------------------------------------------------------------------------------------------

template <class Key>
void addHashed(Rows& rows) {
  const char* const kind = kKind<Key>;
  rows.add(kNatives, "map-put", kind, adding<Maps<Key>>);
  rows.add(kNatives, "map-get", kind, lookingUp<Maps<Key>, getByNative<Key>, true>);
  rows.add(kInline, "map-get", kind, lookingUp<Maps<Key>, getInline<Key>, true>);
  rows.add(kNatives, "map-miss", kind, lookingUp<Maps<Key>, getByNative<Key>, false>);
  rows.add(kNatives, "map-iterate", kind, iterating<Maps<Key>>);
  rows.add(kInline, "map-iterate", kind, walkingMap<Maps<Key>>);
  rows.add(kNatives, "map-remove", kind, removing<Maps<Key>>);
  rows.add(kNatives, "map-churn", kind, churning<Maps<Key>>);
  rows.add(kNatives, "set-add", kind, adding<Sets<Key>>);
  rows.add(kNatives, "set-contains", kind, lookingUp<Sets<Key>, hasByNative<Key>, true>);
  rows.add(kNatives, "set-miss", kind, lookingUp<Sets<Key>, hasByNative<Key>, false>);
  rows.add(kNatives, "set-iterate", kind, iterating<Sets<Key>>);
  rows.add(kInline, "set-iterate", kind, walkingSet<Key>);
  rows.add(kNatives, "set-remove", kind, removing<Sets<Key>>);
  rows.add(kNatives, "set-churn", kind, churning<Sets<Key>>);
}

}  // namespace

void addNativeKeyed(Rows& rows) {
  addHashed<Int>(rows);
  addHashed<Text>(rows);
  rows.add(kInline, "map-miss", "Int", lookingUp<Maps<Int>, getInline<Int>, false>);
  rows.add(kInline, "set-contains", "Int", lookingUp<Sets<Int>, hasInline, true>);
  rows.add(kInline, "set-miss", "Int", lookingUp<Sets<Int>, hasInline, false>);
  rows.add(kNatives, "sorted-put", "Int", adding<SortedMaps<Int>>);
  rows.add(kNatives, "sorted-get", "Int", lookingUp<SortedMaps<Int>, getByNative<Int>, true>);
  rows.add(kInline, "sorted-get", "Int", lookingUp<SortedMaps<Int>, getInline<Int>, true>);
  rows.add(kNatives, "sorted-iterate", "Int", iterating<SortedMaps<Int>>);
  rows.add(kInline, "sorted-iterate", "Int", walkingMap<SortedMaps<Int>>);
  rows.add(kNatives, "small-maps", "Int", makingSmallMaps);
}

}  // namespace vorn::bench::report
