/* Natives of the list classes: ArrayList, ArrayListSync, LinkedList, LinkedListSync.
 *
 * Handles are `void*`: an object, a bare NUL-terminated UTF-8 text, or null. The caller keeps the receiver and the
 * arguments alive during a call. A language error is recorded as pending on the calling thread (class and message as
 * given below); the native then returns its neutral result (0, 0.0, false, null; -1 for index searches) and has
 * changed nothing. Memory exhaustion and a failing mutex leave a native as C++ exceptions, also with nothing changed.
 *
 * Unless stated otherwise a native locks a synchronised list for its whole body and does nothing for a null list.
 * Comparisons and texts of elements may lock synchronised elements meanwhile: docs/gc-and-locks.md says when two
 * threads can wait for each other.
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

/* Appends an accepted value; unboxed where the list's storage allows, otherwise the list turns into boxed storage,
 * which it keeps until it is emptied. A null list raises NullException "Cannot call ArrayList.add() on null". May
 * allocate. */
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

/* ---- Literals --------------------------------------------------------------------------------------------------- */

/* A new list (plain, or synchronised in the ArrayListSync forms) of the given handles: unboxed when all of them are
 * primitive values of one kind and one type name, which then is the declared type; otherwise boxed and untyped.
 * Negative counts are 0. Null when the list cannot be had. Allocates. */
VORN_NATIVE void* vorn_collections_ArrayList_literal0(void);
VORN_NATIVE void* vorn_collections_ArrayListSync_literal0(void);
VORN_NATIVE void* vorn_collections_ArrayList_literal1(void* a);
VORN_NATIVE void* vorn_collections_ArrayList_literal5(void* a, void* b, void* c, void* d, void* e);
VORN_NATIVE void* vorn_collections_ArrayList_literal10(void* a, void* b, void* c, void* d, void* e, void* f, void* g,
                                                       void* h, void* i, void* j);
VORN_NATIVE void* vorn_collections_ArrayList_literal(long long count, ... /* void* */);
VORN_NATIVE void* vorn_collections_ArrayListSync_literal(long long count, ... /* void* */);

/* A new ArrayList<Int> of the values' low 32 bits, unboxed. Allocates. */
VORN_NATIVE void* vorn_collections_ArrayList_intLiteral0(void);
VORN_NATIVE void* vorn_collections_ArrayListSync_intLiteral0(void);
VORN_NATIVE void* vorn_collections_ArrayList_intLiteral1(long long a);
VORN_NATIVE void* vorn_collections_ArrayList_intLiteral5(long long a, long long b, long long c, long long d,
                                                         long long e);
VORN_NATIVE void* vorn_collections_ArrayList_intLiteral10(long long a, long long b, long long c, long long d,
                                                          long long e, long long f, long long g, long long h,
                                                          long long i, long long j);
VORN_NATIVE void* vorn_collections_ArrayList_intLiteral20(long long a, long long b, long long c, long long d,
                                                          long long e, long long f, long long g, long long h,
                                                          long long i, long long j, long long k, long long l,
                                                          long long m, long long n, long long o, long long p,
                                                          long long q, long long r, long long s, long long t);
VORN_NATIVE void* vorn_collections_ArrayList_intLiteral(long long count, ... /* long long */);

/* A new empty list declared with the element type (none when null), in unboxed storage when that is a primitive type.
 * Allocates. */
VORN_NATIVE void* vorn_collections_ArrayList_primitiveLiteral0(const char* typeName);
VORN_NATIVE void* vorn_collections_ArrayListSync_primitiveLiteral0(const char* typeName);

/* ---- Data buffers ------------------------------------------------------------------------------------------------ */

/* Compiled code fills a list without a call per element: create or prepare, write through the returned pointer, commit
 * the count. A returned pointer is valid until the next operation on the list. Between prepare and commit the list is
 * empty and typed; a list that is being filled must not be shared. Negative counts are 0. Type names may be null, which
 * means "Int", or "Double" in the floating forms. */

/* A new list in unboxed storage of the type, sized n; the caller writes every element, at its own width, through the
 * returned pointer. *outList receives the list, or null: a type that is not primitive raises TypeError "ArrayList
 * primitive storage expected" and gives null. Allocates. */
VORN_NATIVE void* vorn_collections_ArrayList_newPrimitiveData(long long n, const char* typeName, void** outList);
VORN_NATIVE void* vorn_collections_ArrayListSync_newPrimitiveData(long long n, const char* typeName, void** outList);

/* A new list of the type with a buffer of n 64-bit integers (doubles), which a commit narrows into the list. A type
 * that is neither an integer type nor Boolean is kept as 64-bit integers; one that is not Float, as doubles. Allocates.
 */
VORN_NATIVE long long* vorn_collections_ArrayList_newPrimitiveI64Data(long long n, const char* typeName,
                                                                      void** outList);
VORN_NATIVE double* vorn_collections_ArrayList_newDoubleData(long long n, const char* typeName, void** outList);

/* The same buffers for an existing list, which is emptied and takes the type (Int; the integer type; the floating
 * type). A linked list is emptied and takes the declared type only. Allocates. */
VORN_NATIVE long long* vorn_collections_ArrayList_prepareIntData(void* list, long long n);
VORN_NATIVE long long* vorn_collections_ArrayList_preparePrimitiveI64Data(void* list, long long n,
                                                                          const char* typeName);
VORN_NATIVE double* vorn_collections_ArrayList_prepareDoubleData(void* list, long long n, const char* typeName);

/* Makes the first n buffered values the list's elements: as Int (the list must be in integer storage, else TypeError
 * "ArrayList<Int> storage expected"), as the list's integer type or Boolean (else TypeError "ArrayList integer storage
 * expected"), or as its floating type (else TypeError "ArrayList floating storage expected"). Char and CodeUnit values
 * out of range raise as in the raw appends, with the elements unchanged. The Fast forms never lock. Allocates. */
VORN_NATIVE void vorn_collections_ArrayList_commitIntDataSize(void* list, long long n);
VORN_NATIVE void vorn_collections_ArrayList_commitPrimitiveI64DataSize(void* list, long long n);
VORN_NATIVE void vorn_collections_ArrayList_commitPrimitiveI64DataSizeFast(void* list, long long n);
VORN_NATIVE void vorn_collections_ArrayList_commitDoubleDataSize(void* list, long long n);
VORN_NATIVE void vorn_collections_ArrayList_commitDoubleDataSizeFast(void* list, long long n);

/* Sets the number of elements written directly into unboxed storage; any other storage raises TypeError "ArrayList
 * primitive storage expected". The Fast form never locks. Allocates. */
VORN_NATIVE void vorn_collections_ArrayList_commitPrimitiveDataSize(void* list, long long n);
VORN_NATIVE void vorn_collections_ArrayList_commitPrimitiveDataSizeFast(void* list, long long n);

/* A copy of the elements as 64-bit integers (integer types and Boolean) or doubles (Float and Double); null for other
 * storage. Allocates. */
VORN_NATIVE long long* vorn_collections_ArrayList_i64DataPtr(void* list);
VORN_NATIVE double* vorn_collections_ArrayList_f64DataPtr(void* list);

/* The unboxed elements themselves, at their own width; null for boxed storage. Does not allocate. */
VORN_NATIVE void* vorn_collections_ArrayList_primitiveDataPtr(void* list);

/* The list's record, for addIntToData and getIntFromData; null for null. Does not lock. */
VORN_NATIVE struct ListData* vorn_collections_ArrayList_dataHandle(void* list);

/* Makes room for n elements; an empty list declared with a primitive type turns to unboxed storage. Nothing for a
 * linked list. Allocates. */
VORN_NATIVE void vorn_collections_ArrayList_reserve(void* list, long long n);

/* ---- Whole lists and ranges -------------------------------------------------------------------------------------- */

/* Two existing collections are never locked together: a source is read whole, at one moment, under its own lock before
 * the list is locked, so `addAll(a, a)` sees the list as it was. */

/* Appends (inserts before `index`, 0 to the size) all values of a list, array, immutable list, tuple or set; anything
 * else raises TypeError "addAll expects a list, array, tuple or set". All values are accepted values before the first
 * is inserted. An index out of range raises IndexException "Index out of bounds", but an empty source never looks at
 * it. Allocates. */
VORN_NATIVE void vorn_collections_ArrayList_addAll(void* list, void* source);
VORN_NATIVE void vorn_collections_ArrayList_addAllAt(void* list, long long index, void* source);

/* A new list of the receiver's family with the elements of start:stop:step. Negative bounds count from the end and are
 * clamped; a bound whose handle is null is omitted. A zero step raises Exception "slice step cannot be zero" and gives
 * an empty list, as a null list does without raising. Allocates. */
VORN_NATIVE void* vorn_collections_ArrayList_slice(void* list, long long start, long long stop, long long step,
                                                   void* hasStart, void* hasStop);

/* Assigns the values of a list, array, immutable list or tuple (else TypeError "slice assignment source must be an
 * ordered collection") to start:stop:step. With step 1 the count may differ, which replaces the range and leaves boxed
 * storage; a range that ends before it starts then raises IndexException "Invalid slice assignment range". Any other
 * step needs equal counts, else ValueException "extended slice assignment requires the same number of values".
 * Element-wise assignment stops at the first refused value; earlier ones stay. A zero step raises as in slice.
 * Allocates. */
VORN_NATIVE void vorn_collections_ArrayList_sliceAssign(void* list, long long start, long long stop, long long step,
                                                        void* hasStart, void* hasStop, void* source);

/* A new list of the receiver's class ("ArrayList" for null) with the elements of both. Allocates. */
VORN_NATIVE void* vorn_collections_ArrayList_concat(void* list, void* other);

/* A new list of the receiver's family with the elements `count` times; empty for a count below 1. Allocates. */
VORN_NATIVE void* vorn_collections_ArrayList_repeat(void* list, long long count);

/* Reverses the list in place; reverseNew gives a reversed copy of the receiver's class (null for null) and allocates.
 */
VORN_NATIVE void vorn_collections_ArrayList_reverse(void* list);
VORN_NATIVE void* vorn_collections_ArrayList_reverseNew(void* list);

/* Shuffles the list in place, every permutation equally likely (Fisher-Yates with rejection). */
VORN_NATIVE void vorn_collections_ArrayList_shuffle(void* list);

/* ---- Sorting and sums -------------------------------------------------------------------------------------------- */

/* Sorts in place, ascending: unboxed elements by value with NaN last; boxed numbers by value across types; other
 * elements by the element ordering, which may run user code. Up to 32 boxed numbers keep the order of equals. An error
 * that user code raises stays pending, and the list is as it was. */
VORN_NATIVE void vorn_collections_ArrayList_sort(void* list);

/* A sorted copy of the receiver's class (null for null). Allocates; may run user code. */
VORN_NATIVE void* vorn_collections_ArrayList_sortNew(void* list);

/* Sorts unboxed integers or Booleans (Float or Double) directly; any other list as `sort` does. */
VORN_NATIVE void vorn_collections_ArrayList_sortI64Fast(void* list);
VORN_NATIVE void vorn_collections_ArrayList_sortF64Fast(void* list);

/* The sum of the elements, wrapping around on overflow; floating elements add up as doubles, and the total is truncated
 * once. A null element raises TypeError "sum does not support null values". */
VORN_NATIVE long long vorn_collections_ArrayList_sumInt(void* list);
VORN_NATIVE long long vorn_collections_ArrayList_sumI64Fast(void* list);

/* The sum of the elements as a double, floating elements added in index order. Null elements as in sumInt. */
VORN_NATIVE double vorn_collections_ArrayList_sumF64Fast(void* list);

/* ---- Text ------------------------------------------------------------------------------------------------------- */

/* The list's display as a new String: its elements by their display texts (texts quoted and escaped), separated by ",
 * ", between "[" and "]"; linked lists open with "l:[" and "ls:[", a synchronised array list that is not empty with
 * "s:[".
 * "[]" for null. A list that contains itself shows "[...]" there. A list in boxed storage is locked only while its
 * handles are copied, an unboxed one throughout. Runs the toString of user classes, whose errors stay pending. Nesting
 * beyond the thread's stack throws std::runtime_error. Allocates. */
VORN_NATIVE void* vorn_collections_ArrayList_toString(void* list);

/* The language texts of the elements (texts as they are), with the separator between neighbours, as a new String; a
 * null separator is empty, a null element "null", null lists give "". The lock is held throughout. Runs user code,
 * allocates. */
VORN_NATIVE void* vorn_collections_ArrayList_join(void* list, const char* separator);

#endif
