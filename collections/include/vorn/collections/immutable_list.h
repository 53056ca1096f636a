/* Natives of ImmutableList, a list whose contents are fixed when it is constructed.
 *
 * It has the storage of the other lists, so that every native of array_list.h that only reads works on it too. The
 * conventions of array_list.h hold: handles, pending errors, locks, null receivers, native exceptions.
 */
#ifndef VORN_COLLECTIONS_IMMUTABLE_LIST_H
#define VORN_COLLECTIONS_IMMUTABLE_LIST_H

#include <vorn/collections/export.h>

/* Gives a new list the elements of another one: unboxed ones with their type and declared type, boxed ones as they are.
 * The list is emptied first and loses its declared type, also when the source then proves to be null (the list stays
 * empty), no list (TypeError "argument 1 of ImmutableList must be a IList"), or the list itself. Unboxed elements are
 * copied under the source's lock and then the new list's, boxed ones under one after the other. Allocates. */
VORN_NATIVE void vorn_collections_ImmutableList_ctor(void* list, void* source);

/* The number of elements. */
VORN_NATIVE long long vorn_collections_ImmutableList_size(void* list);

/* The element at an index, as vorn_collections_ArrayList_operator_index. */
VORN_NATIVE void* vorn_collections_ImmutableList_operator_index(void* list, long long index);

/* Raises ReadOnlyException "ImmutableList is read-only", for null too. */
VORN_NATIVE void vorn_collections_ImmutableList_operator_index_eq(void* list, long long index, void* value);

/* The index of the first (last) element that equals the value at or after (at or before) `start`, as the natives of
 * these names in array_list.h; -1 when there is none. May run user equality under the lock. */
VORN_NATIVE long long vorn_collections_ImmutableList_indexOf(void* list, void* value, long long start);
VORN_NATIVE long long vorn_collections_ImmutableList_lastIndexOf(void* list, void* value, long long start);

/* A new list of the receiver's class with its elements in ascending order, not stably; null for null. Boxed elements
 * are sorted without a lock, as user ordering may run: an error that it raises stays pending, and the new list then has
 * the elements in some order. Allocates. */
VORN_NATIVE void* vorn_collections_ImmutableList_sortNew(void* list);

/* The display as a new String: "i:[", the elements as in array_list.h, "]"; "i:[]" for null, and "i:[...]" where the
 * list contains itself. */
VORN_NATIVE void* vorn_collections_ImmutableList_toString(void* list);

#endif
