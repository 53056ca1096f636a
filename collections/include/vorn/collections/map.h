/* Natives of the map classes: Map and HashMapSync, which hash their keys, SortedMap and SortedMapSync, which keep them
 * in order.
 *
 * Handles, kept-alive arguments, errors and exceptions are as in array_list.h. Unless stated otherwise a native does
 * nothing for a null map and locks a synchronised one for its whole body but the making of the key.
 *
 * Keys are compared by value: numbers across kinds, texts by bytes, tuples and immutable lists by content, instances by
 * the hooks of their class. "Not found" therefore includes three cases that are not told apart: the key is absent; an
 * error is pending once the key has been made, be it new or old; user equality or ordering raises during the search. In
 * the latter two the error stays pending and the map is unchanged. User code that runs during a search may change the
 * map; the search then starts again, at most 64 times, and after that goes by identity.
 *
 * Keys that are numbers, texts or objects of classes without hooks run no user code, and a search for them does not
 * allocate.
 *
 * Sorted maps never hash a key: of the hooks of a class they use the ordering alone.
 *
 * "Storage order": ascending by key for sorted maps. For hashed ones programs may rely on its being the same for every
 * native while the map is unchanged.
 */
#ifndef VORN_COLLECTIONS_MAP_H
#define VORN_COLLECTIONS_MAP_H

#include <vorn/collections/export.h>

/* ---- Writing ---------------------------------------------------------------------------------------------------- */

/* Inserts an entry, or replaces the key handle and the value of the entry with the same key. A null key raises
 * NullException "Map key cannot be null"; the value may be null. Nothing when the key cannot be made or its search
 * raises. The object's "size" field follows the number of entries here and in the natives below. May allocate and run
 * user code. */
VORN_NATIVE void vorn_collections_Map_put(void* map, void* key, void* value);

/* The same as put. */
VORN_NATIVE void vorn_collections_Map__set(void* map, void* key, void* value);
VORN_NATIVE void vorn_collections_Map_operator_index_eq(void* map, void* key, void* value);

/* Removes the entry of a key; whether there was one. False for a null key and for one not found. May run user code. A
 * hashed map that has lost most of its entries gives memory back, for which it may allocate; it does without when there
 * is none. */
VORN_NATIVE bool vorn_collections_Map_remove(void* map, void* key);

/* Removes all entries and forgets the recorded types of keys and values. Does not allocate. */
VORN_NATIVE void vorn_collections_Map_clear(void* map);

/* Makes room in a hashed map for `count` entries, or for those it has if these are more. Nothing for a sorted map and
 * for a count of zero or less. Throws std::length_error for a count that no map can have. Allocates. */
VORN_NATIVE void vorn_collections_Map_reserve(void* map, long long count);

/* ---- Reading ---------------------------------------------------------------------------------------------------- */

/* The value of a key; null for a null key and for one not found, and where the value is null. May run user code. */
VORN_NATIVE void* vorn_collections_Map__get(void* map, void* key);

/* The value of a key; null for a null key. A key not found raises KeyException "Key not found", on top of an error that
 * is pending already. May run user code. */
VORN_NATIVE void* vorn_collections_Map_operator_index(void* map, void* key);

/* Whether the key is found; its value, else null, goes to `result`. False for a null map or key. May run user code. */
VORN_NATIVE bool vorn_collections_Map_tryGet(void* map, void* key, void** result);

/* Whether the key is found; false for a null key. May run user code. */
VORN_NATIVE bool vorn_collections_Map_operator_in(void* map, void* key);

/* Whether some value equals `value` by element equality, in storage order; false when that raises. User equality runs
 * under the map's lock. */
VORN_NATIVE bool vorn_collections_Map_containsValue(void* map, void* value);

/* The number of entries. */
VORN_NATIVE long long vorn_collections_Map_size(void* map);

/* Vorn_deepEquals of the two, and its negation, for null as well. May run user code. */
VORN_NATIVE bool vorn_collections_Map_operator_eq(void* map, void* other);
VORN_NATIVE bool vorn_collections_Map_operator_ne(void* map, void* other);

/* ---- Lists of the whole map ------------------------------------------------------------------------------------- */

/* A new ImmutableList of the key handles or the values in storage order; null for a null map. The map is locked only
 * while its entries are copied. Allocates. */
VORN_NATIVE void* vorn_collections_Map_keys(void* map);
VORN_NATIVE void* vorn_collections_Map_values(void* map);

/* The same with a new tuple of key and value for each entry, of the type Tuple<K,V>: K is the type recorded for the
 * keys, V the one type of all values, or else the type recorded for them; "Object" where there is none. */
VORN_NATIVE void* vorn_collections_Map_items(void* map);

/* ---- Text ------------------------------------------------------------------------------------------------------- */

/* The display as a new String: entries in storage order as "key: value", by their display texts, separated by ", ",
 * between "{" and "}"; HashMapSync opens with "s:{", SortedMap with "t:{", SortedMapSync with "ts:{". "{}" for null;
 * where the map contains itself, its opening and "...}". The map is locked only while its entries are copied. Runs the
 * toString of user classes. Allocates. */
VORN_NATIVE void* vorn_collections_Map_toString(void* map);

#endif
