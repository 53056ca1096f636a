// Laws of maps and sets.
#include <vorn/collections/array_list.h>
#include <vorn/collections/hash_set.h>
#include <vorn/collections/immutable_list.h>
#include <vorn/collections/map.h>

#include <map>

#include "collections/core/port/objects.h"
#include "collections/core/port/values.h"
#include "conformance/check.h"
#include "conformance/values.h"

namespace vorn::conformance {
namespace {

long long integerOf(void* handle) { return handle != nullptr ? Vorn_getField_i64(handle, "_value") : -1; }

// Texts and numbers by turns, some of them long.
void* keyNumber(int i) {
  if (i % 2 == 0) return integer(i * 31LL);
  return string((i % 4 == 1 ? "key " : "a key that is longer than sixteen bytes ") + std::to_string(i));
}

bool isSorted(std::string_view name) { return name.starts_with("Sorted"); }

}  // namespace

Checks keyedLaws() {
  return {
      {"maps", "keep what is put, find it by equal keys, and forget what is removed",
       [] {
         for (const char* name : kMapClasses) {
           void* const map = object(name);
           constexpr int kKeys = 300;
           for (int i = 0; i < kKeys; ++i) vorn_collections_Map_put(map, keyNumber(i), integer(i));
           for (int i = 0; i < kKeys; i += 3) vorn_collections_Map_put(map, keyNumber(i), integer(i + 1000));
           for (int i = 0; i < kKeys; i += 5) expectTrue("removing", vorn_collections_Map_remove(map, keyNumber(i)));
           for (int i = 0; i < kKeys; ++i) {
             const long long expected = i % 5 == 0 ? -1 : (i % 3 == 0 ? i + 1000 : i);
             expect(std::string("value ") + std::to_string(i) + " of " + name,
                    integerOf(vorn_collections_Map__get(map, keyNumber(i))), expected);
             expect("whether it has the key", vorn_collections_Map_operator_in(map, keyNumber(i)), expected != -1);
           }
           expect("the size", vorn_collections_Map_size(map), 240LL);
           expect("the field 'size'", Vorn_getField_i64(map, "size"), 240LL);
           vorn_collections_Map_clear(map);
           expect("the size after clear", Vorn_getField_i64(map, "size"), 0LL);
         }
       }},
      {"maps", "list keys, values and entries in one order, sorted maps in that of the keys",
       [] {
         for (const char* name : kMapClasses) {
           void* const map = object(name);
           for (const int i : {5, 1, 4, 2, 3}) vorn_collections_Map_put(map, integer(i), integer(i * 10LL));
           void* const keys = held(vorn_collections_Map_keys(map));
           void* const values = held(vorn_collections_Map_values(map));
           void* const items = held(vorn_collections_Map_items(map));
           for (long long i = 0; i < 5; ++i) {
             const long long key = integerOf(vorn_collections_ImmutableList_operator_index(keys, i));
             if (isSorted(name)) expect(std::string("a key of ") + name, key, i + 1);
             expect("the value at the same place", integerOf(vorn_collections_ImmutableList_operator_index(values, i)),
                    key * 10);
             void* const item = vorn_collections_ImmutableList_operator_index(items, i);
             expect("the type of an entry", Vorn_objectTypeName(item), "vorn.collections.Tuple<Int,Int>");
             expect("the key of an entry", integerOf(Vorn_getField_ptr(item, "_0")), key);
             expect("the value of an entry", integerOf(Vorn_getField_ptr(item, "_1")), key * 10);
           }
         }
       }},
      {"maps", "raise for a key that is null or missing",
       [] {
         for (const char* name : kMapClasses) {
           void* const map = object(name);
           vorn_collections_Map_operator_index(map, integer(1));
           expectRaised(name, "KeyException: Key not found");
           vorn_collections_Map_put(map, nullptr, integer(1));
           // A null key is told of twice: by the check and by the making of the key.
           expectTrue("a null key raises", !adapter().takeErrors().empty());
           expect("the size", vorn_collections_Map_size(map), 0LL);
         }
       }},
      {"maps", "find keys by numbers of other types, texts, characters, tuples and identity",
       [] {
         for (const char* name : kMapClasses) {
           void* const map = object(name);
           void* const list = listOf("ArrayList", {integer(1)});
           vorn_collections_Map_put(map, integer(1), string("number"));
           vorn_collections_Map_put(map, box("Char", 1), string("character"));
           vorn_collections_Map_put(map, tupleOf({integer(1), string("a")}), string("tuple"));
           vorn_collections_Map_put(map, list, string("list"));
           const auto found = [&](void* key) { return textOf(vorn_collections_Map__get(map, key)); };
           expect("1.0", found(box("Double", 1.0)), "number");
           expect("a Char", found(box("Char", 1)), "character");
           expect("an equal tuple", found(tupleOf({box("Long", 1), bare("a")})), "tuple");
           expect("the same list", found(list), "list");
           expectTrue("an equal list is another key",
                      vorn_collections_Map__get(map, listOf("ArrayList", {integer(1)})) == nullptr);
         }
       }},
      {"sets", "hold each value once, null included, and forget what is removed",
       [] {
         for (const char* name : kSetClasses) {
           void* const set = object(name);
           for (int round = 0; round < 2; ++round) {
             for (int i = 0; i < 200; ++i) vorn_collections_HashSet_add(set, keyNumber(i));
             vorn_collections_HashSet_add(set, nullptr);
           }
           expect("the size", vorn_collections_HashSet_size(set), 201LL);
           expect("the field 'size'", Vorn_getField_i64(set, "size"), 201LL);
           for (int i = 0; i < 200; i += 2) expectTrue("removing", vorn_collections_HashSet_remove(set, keyNumber(i)));
           for (int i = 0; i < 200; ++i)
             expect("whether it has a value", vorn_collections_HashSet_operator_in(set, keyNumber(i)), i % 2 == 1);
           expectTrue("it has null", vorn_collections_HashSet_operator_in(set, nullptr));
           expect("the size of its list", vorn_collections_ArrayList_size(held(vorn_collections_HashSet_items(set))),
                  101LL);
         }
       }},
  };
}

}  // namespace vorn::conformance
