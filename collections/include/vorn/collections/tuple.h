/* Natives of Tuple, a sequence of a fixed number of items of any types.
 *
 * A tuple has the integer field "size" and its items in the fields "_0", "_1" and so on; unboxed values are boxed. The
 * conventions of array_list.h hold: handles, pending errors, null receivers, native exceptions. Tuples have no lock.
 */
#ifndef VORN_COLLECTIONS_TUPLE_H
#define VORN_COLLECTIONS_TUPLE_H

#include <vorn/collections/export.h>

/* Gives a new tuple the elements of a list as its items; unboxed ones are boxed under the list's declared element type.
 * Null and anything but a list raise TypeError "argument 1 of Tuple must be a packed variadic list". Locks the list
 * while its elements are copied. Allocates; when memory ends, "size" is as it was. */
VORN_NATIVE void vorn_collections_Tuple_ctor(void* tuple, void* packed);

/* The number of items. */
VORN_NATIVE long long vorn_collections_Tuple_size(void* tuple);

/* The item at an index, where a negative one counts from the end; IndexException "Index out of bounds" when there is
 * none. Does not allocate. */
VORN_NATIVE void* vorn_collections_Tuple_operator_index(void* tuple, long long index);

/* Raises ReadOnlyException "Tuple is read-only", for null too. */
VORN_NATIVE void vorn_collections_Tuple_operator_index_eq(void* tuple, long long index, void* value);

/* The display as a new String: the items' display texts between "(" and ")", separated by ", ", a single one followed
 * by ","; "()" for null, and "(...)" where the tuple contains itself. Runs the toString of user classes. Allocates. */
VORN_NATIVE void* vorn_collections_Tuple_toString(void* tuple);

#endif
