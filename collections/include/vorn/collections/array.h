/* Natives of the fixed arrays, plain and synchronised, and the conversions of arrays to text.
 *
 * Handles, errors and exceptions as in array_list.h. An array has one element type and one size from its construction
 * on. Elements of a primitive type are kept unboxed, Char and CodeUnit included; everything else is a handle.
 *
 * Unless stated otherwise a native locks a synchronised array for its whole body and gives its neutral result for a
 * null array.
 *
 * "Checked index": a negative index counts from the end; the result must be at least 0 and below the size, else
 * IndexException "Index out of bounds".
 *
 * "Fitting value": an integer for integer elements (any of the eight integer types, of which the low bits are kept), a
 * number for floating elements, exactly a Boolean, Char or CodeUnit for those; for handles null, anything when the
 * element type is Object or String, else an instance of the element type. Anything else raises TypeError "Invalid array
 * element type".
 */
#ifndef VORN_COLLECTIONS_ARRAY_H
#define VORN_COLLECTIONS_ARRAY_H

#include <vorn/collections/export.h>

/* ---- Construction ----------------------------------------------------------------------------------------------- */

/* Gives a new array its element type, the type argument of its class ("Object" without one), and `size` elements, all
 * zero, false or null. A negative size raises ValueException "Array size cannot be negative". Allocates. */
VORN_NATIVE void vorn_collections_Array_ctor(void* array, long long size);

/* Makes the array a copy of an ordered collection. From an array it takes over the element type as well, and the
 * object's field "size" is set; from a list, immutable list or tuple each element is stored as by operator_index_eq:
 * one that does not fit raises, and the others follow. TypeError "Array copy constructor expects a non-null ordered
 * collection" for null, "Array copy constructor expects an ordered collection" for any other value. Holds the lock
 * of a source array while it takes that of the new one, so that two threads which make two synchronised arrays copies of
 * each other may wait for ever. An array copied to itself stays as it is. Allocates. */
VORN_NATIVE void vorn_collections_Array_copyCtor(void* array, void* source);

/* ---- Size and raw access ---------------------------------------------------------------------------------------- */

/* The number of elements. */
VORN_NATIVE long long vorn_collections_Array_size(void* array);

/* The number of elements and the address of the unboxed ones, for compiled loops. Neither locks: 0 and null for a
 * synchronised array and for anything that is no array; null for handles. The address is good until the array is
 * constructed anew. */
VORN_NATIVE long long vorn_collections_Array_rawSize(void* array);
VORN_NATIVE void* vorn_collections_Array_rawDataPtr(void* array);

/* The elements of an array of Long or of Double, else null. Neither locks nor refuses a synchronised array. */
VORN_NATIVE long long* vorn_collections_Array_i64DataPtr(void* array);
VORN_NATIVE double* vorn_collections_Array_f64DataPtr(void* array);

/* ---- Elements --------------------------------------------------------------------------------------------------- */

/* The element at a checked index as an integer: floating ones truncated, Booleans 0 or 1, for a handle the value of its
 * box. A null handle raises TypeError "Expected integer array item". Does not allocate. */
VORN_NATIVE long long vorn_collections_Array_getInt(void* array, long long index);

/* The element at a checked index as a double. A null handle raises TypeError "Expected floating array item". Does not
 * allocate. */
VORN_NATIVE double vorn_collections_Array_getDouble(void* array, long long index);

/* Stores a raw value at a checked index: converted without a test into unboxed elements (the low bits, the truncated
 * double, whether it is not zero), boxed under the element type into handles, where it must be a fitting value. setInt
 * into Char or CodeUnit first validates: ValueException "Char value must be a Unicode scalar (0..0x10FFFF, excluding
 * surrogates)", TypeError "CodeUnit code unit out of range (0..0xFFFF)". Allocate for handles. */
VORN_NATIVE void vorn_collections_Array_setInt(void* array, long long index, long long value);
VORN_NATIVE void vorn_collections_Array_setDouble(void* array, long long index, double value);
VORN_NATIVE void vorn_collections_Array_setBool(void* array, long long index, bool value);

/* The element at a checked index: a new box of the element type for unboxed elements (allocates), else the handle. */
VORN_NATIVE void* vorn_collections_Array_operator_index(void* array, long long index);

/* Stores a fitting value at a checked index. */
VORN_NATIVE void vorn_collections_Array_operator_index_eq(void* array, long long index, void* value);

/* ---- Searching -------------------------------------------------------------------------------------------------- */

/* How many elements equal the value, and whether one does. Unboxed elements equal fitting values only; a NaN equals
 * nothing. May run user equality and allocate; an error that it raises ends the search with 0 or false. */
VORN_NATIVE long long vorn_collections_Array_count(void* array, void* value);
VORN_NATIVE bool vorn_collections_Array_operator_in(void* array, void* value);

/* Index of the first equal element at or after `start`, or -1. A negative start counts as 0. User code as for count. */
VORN_NATIVE long long vorn_collections_Array_indexOf(void* array, void* value, long long start);

/* Index of the last equal element at or before `start`, or -1. A negative start, or one past the end, begins at the
 * last element. User code as for count. */
VORN_NATIVE long long vorn_collections_Array_lastIndexOf(void* array, void* value, long long start);

/* ---- Sums and comparison ---------------------------------------------------------------------------------------- */

/* The sum of the elements as integers, each truncated by itself, wrapping around; as doubles, added in order. A null
 * handle raises TypeError "sum does not support null values" and gives 0. Neither allocates. */
VORN_NATIVE long long vorn_collections_Array_sumI64Fast(void* array);
VORN_NATIVE double vorn_collections_Array_sumF64Fast(void* array);

/* Structural equality, null arrays included, and its negation. Neither locks by itself. May run user equality, raise
 * and allocate. */
VORN_NATIVE bool vorn_collections_Array_operator_eq(void* array, void* other);
VORN_NATIVE bool vorn_collections_Array_operator_ne(void* array, void* other);

/* ---- Order ------------------------------------------------------------------------------------------------------ */

/* Sorts ascending, in place and unstably: unboxed elements by value with NaN last (allocates nothing), handles by the
 * element ordering, which may run user code, raise and allocate; an error does not stop the sort. */
VORN_NATIVE void vorn_collections_Array_sort(void* array);
VORN_NATIVE void vorn_collections_Array_reverse(void* array);

/* New arrays of the receiver's type, sorted or reversed; null for null. Allocate. */
VORN_NATIVE void* vorn_collections_Array_sortNew(void* array);
VORN_NATIVE void* vorn_collections_Array_reverseNew(void* array);

/* ---- Ranges ----------------------------------------------------------------------------------------------------- */

/* A new array of the receiver's type with the elements start:stop:step; a bound is given when its handle is not null,
 * negative ones count from the end, and those out of range are clamped. Step 0 raises Exception "slice step cannot be
 * zero" and gives null. Allocates. */
VORN_NATIVE void* vorn_collections_Array_slice(void* array, long long start, long long stop, long long step,
                                               void* hasStart, void* hasStop);

/* Assigns the elements of a list, array, immutable list or tuple (else TypeError "slice assignment source must be an
 * ordered collection") to the positions start:stop:step, of which there must be as many: ValueException "fixed array
 * slice assignment requires the same number of values". The first value that does not fit raises and ends it; those
 * before it stay assigned. Allocates. */
VORN_NATIVE void vorn_collections_Array_sliceAssign(void* array, long long start, long long stop, long long step,
                                                    void* hasStart, void* hasStop, void* source);

/* A new array of the receiver's type with its elements and those of another ordered collection behind them. Null for a
 * null operand; null after raising for another value (TypeError "array concatenation expects an ordered collection")
 * and for an element that does not fit. Allocates. */
VORN_NATIVE void* vorn_collections_Array_concat(void* array, void* other);

/* ---- Text ------------------------------------------------------------------------------------------------------- */

/* The text of an array of Char, or of UTF-16 in an array of CodeUnit, as a String; arrays of other primitive types are
 * read as numbers, handles as zeros. Empty for null and after an error: ValueException "U+0000 cannot be stored in a
 * String", "Unpaired high surrogate in CodeUnit[]", "Unpaired low surrogate in CodeUnit[]", and for characters what
 * setInt raises; the first faulty element decides. Allocate, with the lock held. */
VORN_NATIVE void* Vorn_stringFromCharArray(void* array);
VORN_NATIVE void* Vorn_stringFromCodeUnitArray(void* array);

/* The display as a new String: "f:[", or "fs:[" for a synchronised array, the elements' display texts separated by ",
 * ",
 * "]"; "f:[]" for null, and "f:[...]" where the array contains itself. The lock is held throughout. Runs the toString
 * of user classes. Allocates. */
VORN_NATIVE void* vorn_collections_Array_toString(void* array);

/* The language texts of the elements with the separator between neighbours, as a new String; a null separator is empty,
 * a null element "null", null arrays give "". The lock is held throughout. Runs user code, allocates. */
VORN_NATIVE void* vorn_collections_Array_join(void* array, const char* separator);

#endif
