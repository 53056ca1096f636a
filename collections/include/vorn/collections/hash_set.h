/* Natives of the set classes: HashSet and HashSetSync.
 *
 * Handles, kept-alive arguments, errors and exceptions are as in array_list.h. Unless stated otherwise a native does
 * nothing for a null set and locks a synchronised one for its whole body but the making of the key.
 *
 * Elements are compared by value as the keys of maps are (map.h), with the same rules for user code and errors; null is
 * an element like any other. "Iteration order" is the same for every native while the set is unchanged; programs may
 * rely on nothing else about it.
 */
#ifndef VORN_COLLECTIONS_HASH_SET_H
#define VORN_COLLECTIONS_HASH_SET_H

#include <vorn/collections/export.h>

/* Adds an element, or replaces the handle of the equal one. The object's "size" field follows the number of elements
 * here and in the natives below. May allocate and run user code. */
VORN_NATIVE void vorn_collections_HashSet_add(void* set, void* value);

/* Removes the element equal to the value; whether there was one. May run user code. A set that has lost most of its
 * elements gives memory back, for which it may allocate; it does without when there is none. */
VORN_NATIVE bool vorn_collections_HashSet_remove(void* set, void* value);

/* Whether an element equals the value. May run user code. */
VORN_NATIVE bool vorn_collections_HashSet_operator_in(void* set, void* value);

/* 1 when an element equals the value, else 0. May run user code. */
VORN_NATIVE long long vorn_collections_HashSet_count(void* set, void* value);

/* The element at a position in iteration order; a negative index counts from the end. Otherwise IndexException "Index
 * out of bounds", raised after the lock is released. Takes time in proportion to the way from the nearer end, unless
 * nothing has been removed between the first and the last element. */
VORN_NATIVE void* vorn_collections_HashSet_operator_index(void* set, long long index);

/* A new ArrayList of the elements in iteration order; an empty one for a null set; null when the list cannot be had.
 * The set stays locked until the list is filled. Allocates. */
VORN_NATIVE void* vorn_collections_HashSet_items(void* set);

/* Removes all elements. Does not allocate. */
VORN_NATIVE void vorn_collections_HashSet_clear(void* set);

/* Makes room for `count` elements, or for those it has if these are more; nothing for a count of zero or less. Throws
 * std::length_error for a count that no set can have. Allocates. */
VORN_NATIVE void vorn_collections_HashSet_reserve(void* set, long long count);

/* The number of elements. */
VORN_NATIVE long long vorn_collections_HashSet_size(void* set);

/* The display as a new String: the elements in iteration order by their language texts (Strings are not quoted, bare
 * texts are), separated by ", ", between "{", or "s:{" for a synchronised set, and "}"; "{}" for null, and "{...}"
 * where the set contains itself. The lock is held throughout. Runs user code, allocates. */
VORN_NATIVE void* vorn_collections_HashSet_toString(void* set);

#endif
