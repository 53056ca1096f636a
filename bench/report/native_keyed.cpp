// Maps and sets. Compiled code boxes the numbers that it puts; it looks numbers and texts up without a box by the
// inline forms, and walks by them.
#include <vorn/collections/hash_set.h>
#include <vorn/collections/map.h>

#include <vector>

#include "bench/report/native_rows.h"

namespace vorn::bench::report {

namespace {

template <class Value>
using SharedVector = std::shared_ptr<std::vector<Value>>;

template <class Value>
SharedVector<Value> keepVector(std::vector<Value> values) {
  return std::make_shared<std::vector<Value>>(std::move(values));
}

// Texts that are there before the clock starts, as a program's texts are. A list keeps them alive.
struct Texts {
  Shared owner;
  SharedVector<void*> handles;
};

Texts textsOf(const std::vector<std::string>& texts) {
  Texts made{share(vorn_object_new("ArrayList<String>")), keepVector(std::vector<void*>())};
  Handle text;
  for (const std::string& bytes : texts) {
    text = newText(bytes);
    vorn_collections_ArrayList_add(*made.owner, text);
    made.handles->push_back(text);
  }
  return made;
}

// Adds up the elements of a list of boxes or numbers.
std::int64_t sumOfList(void* list) {
  vorn_span span;
  std::int64_t sum = 0;
  if (vorn_inline_ArrayList_span(list, VORN_INT, &span)) {
    const auto* const elements = static_cast<const Int*>(span.data);
    for (std::int64_t i = 0; i < span.size; ++i) sum += elements[i];
    return sum;
  }
  const std::int64_t size = vorn_collections_ArrayList_size(list);
  for (std::int64_t i = 0; i < size; ++i) sum += intIn(vorn_proven_ArrayList_operator_index(list, i));
  return sum;
}

std::uint32_t digestOfMap(void* map) {
  const Handle values = vorn_collections_Map_values(map);
  return digestOfEntries(vorn_collections_Map_size(map), sumOfList(values));
}

std::uint32_t digestOfSet(void* set) { return digestOfNumber(std::int64_t{vorn_collections_HashSet_size(set)}); }

// ---- Numbers as keys ------------------------------------------------------------------------------------------------

void putInt(void* map, Int key, std::int32_t value, Handle& keyBox) {
  keyBox = vorn_box_int(key);
  vorn_collections_Map_put(map, keyBox, vorn_box_int(value));
}

void putAllInts(void* map, const std::vector<std::int32_t>& order) {
  Handle key;
  for (const std::int32_t number : order) putInt(map, keyOf(number), number, key);
}

void* intMapOf(std::int64_t n, const char* type) {
  const Handle map = vorn_object_new(type);
  putAllInts(map, shuffledOrder(n, kPutOrder));
  return map;
}

MakeReady puttingInts(const char* type) {
  return [=](std::int64_t n) -> Ready {
    const auto order = keepVector(shuffledOrder(n, kPutOrder));
    const Shared map = share();
    return {n,
            [=] {
              *map = vorn_object_new(type);
              putAllInts(*map, *order);
            },
            [=] { return digestOfMap(*map); }};
  };
}

// `find(map, key)` gives the value's box, or null.
template <auto find, auto readInt>
MakeReady gettingInts(const char* type, bool present) {
  return [=](std::int64_t n) -> Ready {
    const Shared map = share(intMapOf(n, type));
    const auto keys = keepVector(keysInOrder(n, kGetOrder, present ? keyOf : absentKeyOf));
    const auto result = std::make_shared<std::int64_t>();
    return {n,
            [=] {
              void* const source = *map;
              std::int64_t sum = 0;
              for (const Int key : *keys) {
                void* const value = find(source, key);
                if (value != nullptr) sum += readInt(value);
              }
              *result = sum;
            },
            [=] { return digestOfNumber(*result); }};
  };
}

void* findByNative(void* map, Int key) {
  vorn_borrowed_box box;
  return vorn_collections_Map__get(map, vorn_borrow_int(&box, key));
}
void* findInline(void* map, Int key) { return vorn_proven_Map__get_integer(map, key); }

MakeReady iterating(const char* type) {
  return [=](std::int64_t n) -> Ready {
    const Shared map = share(intMapOf(n, type));
    const auto result = std::make_shared<std::int64_t>();
    return {n,
            [=] {
              const Handle values = vorn_collections_Map_values(*map);
              *result = sumOfList(values);
            },
            [=] { return digestOfNumber(*result); }};
  };
}

MakeReady walkingMap(const char* type) {
  return [=](std::int64_t n) {
    return summingByWalk<vorn_inline_Map_walk, vorn_inline_Map_next, &vorn_walk::value>(share(intMapOf(n, type)), n);
  };
}

Ready removingInts(std::int64_t n) {
  const auto order = keepVector(shuffledOrder(n, kPutOrder));
  const auto keys = keepVector(keysInOrder(n, kGetOrder));
  const Shared map = share();
  return {n,
          [=] {
            *map = vorn_object_new("Map");
            void* const target = *map;
            putAllInts(target, *order);
            vorn_borrowed_box box;
            for (const Int key : *keys) vorn_collections_Map_remove(target, vorn_borrow_int(&box, key));
          },
          [=] { return digestOfMap(*map); }};
}

// Of twice as many keys, half are in the map at any time.
Ready churning(std::int64_t n) {
  const auto order = keepVector(shuffledOrder(2 * n, kPutOrder));
  const Shared map = share(vorn_object_new("Map"));
  const auto oldest = std::make_shared<std::int64_t>(0);
  Handle key;
  for (std::int64_t i = 0; i < n; ++i) {
    const std::int32_t number = (*order)[static_cast<std::size_t>(i)];
    putInt(*map, keyOf(number), number, key);
  }
  return {n,
          [=] {
            void* const target = *map;
            Handle newKey;
            vorn_borrowed_box box;
            for (std::int64_t i = 0; i < n; ++i) {
              const std::int64_t at = *oldest;
              const std::int32_t newest = (*order)[static_cast<std::size_t>(at < n ? at + n : at - n)];
              const std::int32_t old = (*order)[static_cast<std::size_t>(at)];
              vorn_collections_Map_remove(target, vorn_borrow_int(&box, keyOf(old)));
              putInt(target, keyOf(newest), newest, newKey);
              *oldest = at + 1 < 2 * n ? at + 1 : 0;
            }
          },
          [=] { return digestOfMap(*map); }};
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
                putInt(target, static_cast<Int>(i) + j, static_cast<Int>(i) + j, key);
              }
              sum += intIn(vorn_proven_Map__get_integer(target, i + 7));
            }
            *result = sum;
          },
          [=] { return digestOfNumber(*result); }};
}

// ---- Texts as keys --------------------------------------------------------------------------------------------------

void putAllTexts(void* map, const std::vector<void*>& keys, const std::vector<std::int32_t>& order) {
  for (std::size_t i = 0; i < keys.size(); ++i) vorn_collections_Map_put(map, keys[i], vorn_box_int(order[i]));
}

Ready puttingTexts(std::int64_t n) {
  const auto order = keepVector(shuffledOrder(n, kPutOrder));
  const Texts keys = textsOf(textKeysInOrder(n, kPutOrder));
  const Shared map = share();
  return {n,
          [=] {
            *map = vorn_object_new("Map");
            putAllTexts(*map, *keys.handles, *order);
          },
          [=] { return digestOfMap(*map); }};
}

void* textMapOf(std::int64_t n) {
  const Handle map = vorn_object_new("Map");
  putAllTexts(map, *textsOf(textKeysInOrder(n, kPutOrder)).handles, shuffledOrder(n, kPutOrder));
  return map;
}

template <auto readInt>
MakeReady gettingTexts(bool present) {
  return [=](std::int64_t n) -> Ready {
    const Shared map = share(textMapOf(n));
    const Texts keys = textsOf(textKeysInOrder(n, kGetOrder, present ? textKeyOf : absentTextKeyOf));
    const auto result = std::make_shared<std::int64_t>();
    return {n,
            [=] {
              void* const source = *map;
              std::int64_t sum = 0;
              for (void* const key : *keys.handles) {
                void* const value = vorn_collections_Map__get(source, key);
                if (value != nullptr) sum += readInt(value);
              }
              *result = sum;
            },
            [=] { return digestOfNumber(*result); }};
  };
}

Ready removingTexts(std::int64_t n) {
  const auto order = keepVector(shuffledOrder(n, kPutOrder));
  const Texts inserted = textsOf(textKeysInOrder(n, kPutOrder));
  const Texts removed = textsOf(textKeysInOrder(n, kGetOrder));
  const Shared map = share();
  return {n,
          [=] {
            *map = vorn_object_new("Map");
            putAllTexts(*map, *inserted.handles, *order);
            for (void* const key : *removed.handles) vorn_collections_Map_remove(*map, key);
          },
          [=] { return digestOfMap(*map); }};
}

// ---- Sets -----------------------------------------------------------------------------------------------------------

Ready addingInts(std::int64_t n) {
  const auto keys = keepVector(keysInOrder(n, kPutOrder));
  const Shared set = share();
  return {n,
          [=] {
            *set = vorn_object_new("HashSet");
            void* const target = *set;
            for (const Int key : *keys) vorn_collections_HashSet_add(target, vorn_box_int(key));
          },
          [=] { return digestOfSet(*set); }};
}

Ready addingTexts(std::int64_t n) {
  const Texts keys = textsOf(textKeysInOrder(n, kPutOrder));
  const Shared set = share();
  return {n,
          [=] {
            *set = vorn_object_new("HashSet");
            void* const target = *set;
            for (void* const key : *keys.handles) vorn_collections_HashSet_add(target, key);
          },
          [=] { return digestOfSet(*set); }};
}

Shared intSetOf(std::int64_t n) {
  Shared set = share(vorn_object_new("HashSet"));
  for (const Int key : keysInOrder(n, kPutOrder)) vorn_collections_HashSet_add(*set, vorn_box_int(key));
  return set;
}

template <auto has>
Ready containingInts(std::int64_t n) {
  const Shared set = intSetOf(n);
  const auto keys = keepVector(keysInOrder(n, kGetOrder));
  const auto result = std::make_shared<std::int64_t>();
  return {n,
          [=] {
            void* const source = *set;
            std::int64_t found = 0;
            for (const Int key : *keys) found += has(source, key) ? 1 : 0;
            *result = found;
          },
          [=] { return digestOfNumber(*result); }};
}

bool hasByNative(void* set, Int key) {
  vorn_borrowed_box box;
  return vorn_collections_HashSet_operator_in(set, vorn_borrow_int(&box, key));
}
bool hasInline(void* set, Int key) { return vorn_proven_HashSet_operator_in_integer(set, key); }

Ready containingTexts(std::int64_t n) {
  const Shared set = share(vorn_object_new("HashSet"));
  const Texts members = textsOf(textKeysInOrder(n, kPutOrder));
  for (void* const key : *members.handles) vorn_collections_HashSet_add(*set, key);
  const Texts keys = textsOf(textKeysInOrder(n, kGetOrder));
  const auto result = std::make_shared<std::int64_t>();
  return {n,
          [=] {
            void* const source = *set;
            std::int64_t found = 0;
            for (void* const key : *keys.handles) found += vorn_collections_HashSet_operator_in(source, key) ? 1 : 0;
            *result = found;
          },
          [=] { return digestOfNumber(*result); }};
}

Ready iteratingSet(std::int64_t n) {
  const Shared set = intSetOf(n);
  const auto result = std::make_shared<std::int64_t>();
  return {n,
          [=] {
            const Handle items = vorn_collections_HashSet_items(*set);
            *result = sumOfList(items);
          },
          [=] { return digestOfNumber(*result); }};
}

Ready walkingSet(std::int64_t n) {
  return summingByWalk<vorn_inline_HashSet_walk, vorn_inline_HashSet_next, &vorn_walk::key>(intSetOf(n), n);
}

}  // namespace

void addNativeKeyed(Rows& rows) {
  rows.add(kNatives, "map-put", "Int", puttingInts("Map"));
  rows.add(kNatives, "map-get", "Int", gettingInts<findByNative, intIn>("Map", true));
  rows.add(kInline, "map-get", "Int", gettingInts<findInline, intInlineIn>("Map", true));
  rows.add(kNatives, "map-miss", "Int", gettingInts<findByNative, intIn>("Map", false));
  rows.add(kInline, "map-miss", "Int", gettingInts<findInline, intInlineIn>("Map", false));
  rows.add(kNatives, "map-iterate", "Int", iterating("Map"));
  rows.add(kInline, "map-iterate", "Int", walkingMap("Map"));
  rows.add(kNatives, "map-remove", "Int", removingInts);
  rows.add(kNatives, "map-churn", "Int", churning);
  rows.add(kNatives, "map-put", "String", puttingTexts);
  rows.add(kNatives, "map-get", "String", gettingTexts<intIn>(true));
  rows.add(kInline, "map-get", "String", gettingTexts<intInlineIn>(true));
  rows.add(kNatives, "map-miss", "String", gettingTexts<intIn>(false));
  rows.add(kNatives, "map-remove", "String", removingTexts);
  rows.add(kNatives, "set-add", "Int", addingInts);
  rows.add(kNatives, "set-add", "String", addingTexts);
  rows.add(kNatives, "set-contains", "Int", containingInts<hasByNative>);
  rows.add(kInline, "set-contains", "Int", containingInts<hasInline>);
  rows.add(kNatives, "set-contains", "String", containingTexts);
  rows.add(kNatives, "set-iterate", "Int", iteratingSet);
  rows.add(kInline, "set-iterate", "Int", walkingSet);
  rows.add(kNatives, "sorted-put", "Int", puttingInts("SortedMap"));
  rows.add(kNatives, "sorted-get", "Int", gettingInts<findByNative, intIn>("SortedMap", true));
  rows.add(kInline, "sorted-get", "Int", gettingInts<findInline, intInlineIn>("SortedMap", true));
  rows.add(kNatives, "sorted-iterate", "Int", iterating("SortedMap"));
  rows.add(kInline, "sorted-iterate", "Int", walkingMap("SortedMap"));
  rows.add(kNatives, "small-maps", "Int", makingSmallMaps);
}

}  // namespace vorn::bench::report
