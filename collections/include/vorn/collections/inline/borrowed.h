/* Borrowed keys: boxes of numbers on the caller's stack, valid for the length of one call, so that looking a number up
 * allocates nothing. Part of <vorn/collections/inline.h>.
 *
 * These natives may be given one as their key, value or element, because they neither keep it nor show it to anybody:
 *
 *   Map      _get, operator_index, tryGet, operator_in, remove
 *   HashSet  operator_in, count, remove
 *
 * and these where the receiver declares a primitive element type, because other elements may be of user classes, whose
 * hooks of equality are shown what they are compared with:
 *
 *   ArrayList  indexOf, lastIndexOf, count, operator_in, remove
 *   Array      indexOf, lastIndexOf, count, operator_in
 *
 * Natives that store take it where they keep the number instead of the box, as lists and arrays of a primitive type do.
 * Anywhere else it must not be given, nor returned, rooted or kept past the call: a collection or field of a debug build
 * of the libraries ends the process with a message when it is about to keep one. */
#ifndef VORN_COLLECTIONS_INLINE_BORROWED_H
#define VORN_COLLECTIONS_INLINE_BORROWED_H

/* NOLINTBEGIN(modernize-*): C needs it so */
#include <vorn/collections/inline/objects.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Room for a borrowed box, usually a local variable. It need not be initialised, and may be used again and again. */
typedef struct vorn_borrowed_box {
  uint64_t words[4]; /* header, class, mark, value */
} __attribute__((aligned(16))) vorn_borrowed_box;

/* The classes of boxes, by vorn_element_type; null until vorn_borrow_class was asked for one. */
VORN_EXPORT extern const void* vorn_borrow_classes[14];

/* The class of the boxes of a primitive type other than Boolean, which it also puts into the table. Allocates the first
 * time it is asked for a type, and then throws std::bad_alloc when there is no memory. */
VORN_EXPORT const void* vorn_borrow_class(int type);

VORN_INLINE_PART void* vorn_inline_borrow(vorn_borrowed_box* storage, vorn_element_type type, int kind, uint64_t bits) {
  const void* boxes = __atomic_load_n(&vorn_borrow_classes[type], __ATOMIC_RELAXED);
  if (boxes == NULL) boxes = vorn_borrow_class(type);
  storage->words[0] = vorn_inline_header(storage, kind);
  storage->words[1] = (uint64_t)(uintptr_t)boxes;
  /* No other box has its own address here: by that the libraries know a borrowed one. */
  storage->words[2] = (uint64_t)(uintptr_t)storage;
  storage->words[3] = bits;
  return storage;
}

/* A borrowed box of an integer type or a character that holds the value, in the given room; all 64 bits are kept.
 * Allocates at most the first time in a process. */
VORN_INLINE void* vorn_borrow_integer(vorn_borrowed_box* storage, vorn_element_type type, long long value) {
  const bool is_character = type == VORN_CHAR || type == VORN_CODE_UNIT;
  return vorn_inline_borrow(storage, type, is_character ? VORN_INLINE_CHARACTER_BOX : VORN_INLINE_INTEGER_BOX,
                            (uint64_t)value);
}

/* A borrowed box of VORN_FLOAT, which rounds the value to single precision, or VORN_DOUBLE. */
VORN_INLINE void* vorn_borrow_floating(vorn_borrowed_box* storage, vorn_element_type type, double value) {
  const double held = type == VORN_FLOAT ? (double)(float)value : value;
  uint64_t bits;
  memcpy(&bits, &held, sizeof(bits));
  return vorn_inline_borrow(storage, type, VORN_INLINE_FLOATING_BOX, bits);
}

/* The commonest of them: a borrowed box of an Int. */
VORN_INLINE void* vorn_borrow_int(vorn_borrowed_box* storage, int32_t value) {
  return vorn_borrow_integer(storage, VORN_INT, value);
}
/* A borrowed box of a Long. */
VORN_INLINE void* vorn_borrow_long(vorn_borrowed_box* storage, int64_t value) {
  return vorn_borrow_integer(storage, VORN_LONG, value);
}
/* A borrowed box of a Double. */
VORN_INLINE void* vorn_borrow_double(vorn_borrowed_box* storage, double value) {
  return vorn_borrow_floating(storage, VORN_DOUBLE, value);
}

#ifdef __cplusplus
}
#endif

/* NOLINTEND(modernize-*) */

#endif
