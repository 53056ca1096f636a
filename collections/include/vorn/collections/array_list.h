/* Natives of the list classes: ArrayList, ArrayListSync, LinkedList, LinkedListSync.
 *
 * Handles are `void*`: an object, a bare NUL-terminated UTF-8 text, or null. The caller keeps the receiver and the
 * arguments alive during a call. A language error is recorded as pending on the calling thread (class and message as
 * given below); the native then returns its neutral result (0, 0.0, false, null; -1 for index searches) and has
 * changed nothing. Memory exhaustion and a failing mutex leave a native as C++ exceptions, also with nothing changed.
 *
 * Unless stated otherwise a native locks a synchronised list for its whole body and does nothing for a null list.
 *
 * "Checked index": a negative index counts from the end; the result must be at least 0 and below the size, else
 * IndexException "Index out of bounds".
 *
 * "Accepted value": a value that the list's declared element type accepts, else TypeError "ArrayList<T> cannot accept
 * U", where T is the declared type and U the value's runtime type name or "null". Numbers are accepted within the range
 * of an integer or floating T, instances of a class T, null for any T that is not primitive, and everything when the
 * list is untyped.
 */
#ifndef VORN_COLLECTIONS_ARRAY_LIST_H
#define VORN_COLLECTIONS_ARRAY_LIST_H

#include <vorn/collections/export.h>

#ifdef __cplusplus
struct ListData;
#else
typedef struct ListData ListData;
#endif

/* ---- Appending ------------------------------------------------------------------------------------------------- */

/* Appends an accepted value; unboxed where the list's storage allows, otherwise the list turns into boxed storage for
 * good. A null list raises NullException "Cannot call ArrayList.add() on null". May allocate. */
VORN_NATIVE void vorn_collections_ArrayList_add(void* list, void* value);

/* The raw appends take unboxed values whose type the compiler already knows. They check no declared type: a value that
 * does not fit it is appended under its own kind. Integers keep their low bits; a value outside the range of a list of
 * Char (ValueException "Char value must be a Unicode scalar (0..0x10FFFF, excluding surrogates)") or CodeUnit
 * (TypeError "CodeUnit code unit out of range (0..0xFFFF)") is refused. May allocate. */

/* Appends an Int. */
VORN_NATIVE void vorn_collections_ArrayList_addInt(void* list, long long value);

/* Appends an integer of the named type, "Int" when null; a name without a primitive kind counts as 64-bit. */
VORN_NATIVE void vorn_collections_ArrayList_addPrimitiveI64(void* list, long long value, const char* typeName);

/* Appends a floating value of the named type, "Double" when null or without a primitive kind. */
VORN_NATIVE void vorn_collections_ArrayList_addPrimitiveDouble(void* list, double value, const char* typeName);

/* Appends a Boolean. */
VORN_NATIVE void vorn_collections_ArrayList_addPrimitiveBool(void* list, bool value);

/* Appends an Int to a record obtained from the list's data handle; null does nothing. */
VORN_NATIVE void vorn_collections_ArrayList_addIntToData(struct ListData* data, long long value);

/* ---- Inserting and replacing ------------------------------------------------------------------------------------ */

/* Inserts an accepted value before `index`, which counts from 0 to the size inclusive; every negative index raises
 * IndexException "Index out of bounds". May allocate. */
VORN_NATIVE void vorn_collections_ArrayList_addAt(void* list, long long index, void* value);

/* Replaces the element at a checked index by an accepted value; an index equal to the size appends it. A value that
 * does not fit unboxed storage turns the list into boxed storage. May allocate. */
VORN_NATIVE void vorn_collections_ArrayList_operator_index_eq(void* list, long long index, void* value);

/* ---- Reading ---------------------------------------------------------------------------------------------------- */

/* The element at a checked index: a new box on every read of unboxed storage (allocates), else the stored handle, which
 * may be null. */
VORN_NATIVE void* vorn_collections_ArrayList_operator_index(void* list, long long index);

/* The element at a checked index as an integer, truncated when floating. A null element raises TypeError "Expected Int
 * item". Does not allocate. */
VORN_NATIVE long long vorn_collections_ArrayList_getInt(void* list, long long index);

/* getInt without a registry lookup and, for an unsynchronised list, without a lock. */
VORN_NATIVE long long vorn_collections_ArrayList_getIntFast(void* list, long long index);

/* getInt on a record obtained from the list's data handle; null gives 0. */
VORN_NATIVE long long vorn_collections_ArrayList_getIntFromData(struct ListData* data, long long index);

/* The element at a checked index as a double. A null element raises TypeError "Expected floating list item". Does not
 * allocate. */
VORN_NATIVE double vorn_collections_ArrayList_getDouble(void* list, long long index);

/* The number of elements. */
VORN_NATIVE long long vorn_collections_ArrayList_size(void* list);

/* The number of elements, never locking: on a synchronised list it may already be stale. */
VORN_NATIVE long long vorn_collections_ArrayList_sizeFast(void* list);

/* ---- Removing --------------------------------------------------------------------------------------------------- */

/* Removes the element at a checked index. */
VORN_NATIVE void vorn_collections_ArrayList_removeAt(void* list, long long index);

/* Removes the first element equal to the value; true when there was one. A value of another type than an unboxed
 * list's elements first turns the list into boxed storage. May allocate and run user equality; an error that it raises
 * ends the search with false. */
VORN_NATIVE bool vorn_collections_ArrayList_remove(void* list, void* value);

/* Removes all elements. The declared element type and the capacity stay. */
VORN_NATIVE void vorn_collections_ArrayList_clear(void* list);

/* ---- Searching -------------------------------------------------------------------------------------------------- */

/* How many elements equal the value. Storage, allocation and user code as for `remove`. */
VORN_NATIVE long long vorn_collections_ArrayList_count(void* list, void* value);

/* Whether an element equals the value. Storage, allocation and user code as for `remove`. */
VORN_NATIVE bool vorn_collections_ArrayList_operator_in(void* list, void* value);

/* Index of the first equal element at or after `start` (0 when negative), or -1. Leaves unboxed storage as it is: a
 * value of another type is not found. May run user equality. */
VORN_NATIVE long long vorn_collections_ArrayList_indexOf(void* list, void* value, long long start);

/* Index of the last equal element at or before `start` (the last element when negative or past the end), or -1.
 * Otherwise as indexOf. */
VORN_NATIVE long long vorn_collections_ArrayList_lastIndexOf(void* list, void* value, long long start);

#endif
