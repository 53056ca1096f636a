#include <vorn/collections/hash_set.h>
#include <vorn/collections/map.h>

#include "console/native_shapes.h"

namespace vorn::console {

namespace {

using enum Effect;

constexpr NativeRow kMapRows[] = {
    native<&vorn_collections_Map_put>("map, key, value", Changes, "inserts an entry, or replaces that of the key"),
    native<&vorn_collections_Map__set>("map, key, value", Changes, "the same as put"),
    native<&vorn_collections_Map_operator_index_eq>("map, key, value", Changes, "m[k] = v: the same as put"),
    native<&vorn_collections_Map__get>("map, key", Reads, "the value of a key, or null"),
    native<&vorn_collections_Map_operator_index>("map, key", Reads, "m[k]: the value of a key, which must be there"),
    native<&vorn_collections_Map_tryGet>("map, key, result", Reads, "whether the key is there, and its value: a tuple"),
    native<&vorn_collections_Map_operator_in>("map, key", Reads, "k in m: whether the key is there"),
    native<&vorn_collections_Map_remove>("map, key", Changes, "removes the entry of a key; whether there was one"),
    native<&vorn_collections_Map_containsValue>("map, value", Reads, "whether some value equals this one"),
    native<&vorn_collections_Map_keys>("map", Reads, "an immutable list of the keys"),
    native<&vorn_collections_Map_values>("map", Reads, "an immutable list of the values"),
    native<&vorn_collections_Map_items>("map", Reads, "an immutable list of a tuple for each entry"),
    native<&vorn_collections_Map_clear>("map", Changes, "removes all entries"),
    native<&vorn_collections_Map_reserve>("map, count", Changes, "makes room for so many entries"),
    native<&vorn_collections_Map_size>("map", Reads, "the number of entries"),
    native<&vorn_collections_Map_operator_eq>("map, other", Reads, "m == n: whether both hold the same"),
    native<&vorn_collections_Map_operator_ne>("map, other", Reads, "m != n: whether they differ"),
    native<&vorn_collections_Map_toString>("map", Reads, "the display text"),
};

constexpr NativeRow kSetRows[] = {
    native<&vorn_collections_HashSet_add>("set, value", Changes, "adds an element, or replaces the equal one"),
    native<&vorn_collections_HashSet_remove>("set, value", Changes,
                                             "removes the element equal to the value; whether there was one"),
    native<&vorn_collections_HashSet_operator_in>("set, value", Reads, "v in s: whether an element equals it"),
    native<&vorn_collections_HashSet_count>("set, value", Reads, "1 when an element equals the value, else 0"),
    native<&vorn_collections_HashSet_operator_index>("set, index", Reads,
                                                     "s[i]: the element at a position in iteration order"),
    native<&vorn_collections_HashSet_items>("set", Reads, "a list of the elements"),
    native<&vorn_collections_HashSet_clear>("set", Changes, "removes all elements"),
    native<&vorn_collections_HashSet_reserve>("set, count", Changes, "makes room for so many elements"),
    native<&vorn_collections_HashSet_size>("set", Reads, "the number of elements"),
    native<&vorn_collections_HashSet_toString>("set", Reads, "the display text"),
};

}  // namespace

std::span<const NativeRow> mapNatives() { return kMapRows; }
std::span<const NativeRow> setNatives() { return kSetRows; }

}  // namespace vorn::console
