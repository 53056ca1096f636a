/* The hot paths of the natives in a form that a compiler can inline, with the native as what they fall back to. For C11
 * and C++20; the same functions are there as LLVM bitcode, libvorn_inline.bc. The guide is docs/inline.md.
 *
 * A program calls vorn_inline_check() once when it starts. From then on
 *
 *   vorn_inline_CLASS_METHOD  does what vorn_collections_CLASS_METHOD does, whatever the receiver and the index: it tests
 *                             that the receiver is a plain object with a storage that it knows and that the index is in
 *                             range from the start, acts, and calls the native otherwise;
 *   vorn_proven_CLASS_METHOD  does the same for a receiver that is null or whose family the compiler has proven, and
 *                             leaves out the test of the handle, which costs most;
 *   vorn_borrow_...           make a key of a number on the stack;
 *   vorn_inline_unbox_..., vorn_proven_unbox_...  read the number in a box;
 *   vorn_inline_..._span      lend the elements to a loop;
 *   vorn_inline_..._walk      and ..._next walk over maps, sets and lists without listing them first.
 *
 * Forms do not lock: synchronised receivers are left to natives and to functions of the library that lock as natives do.
 * As natives they let C++ exceptions pass, so that they must not be called from code that is compiled to know of none.
 *
 * What is read and written inline belongs to the library and changes with it: a program has to be compiled again for a
 * library with another VORN_INLINE_ABI, and vorn_inline_check() ends one that was not. */
#ifndef VORN_COLLECTIONS_INLINE_H
#define VORN_COLLECTIONS_INLINE_H

#include <vorn/collections/inline/arrays.h>
#include <vorn/collections/inline/borrowed.h>
#include <vorn/collections/inline/boxes.h>
#include <vorn/collections/inline/keyed.h>
#include <vorn/collections/inline/lists.h>
#include <vorn/collections/inline/objects.h>
#include <vorn/collections/inline/walks.h>

#endif
