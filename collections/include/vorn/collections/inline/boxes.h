/* The numbers in boxes, read without a call: what compiled code does with an element of a list of handles whose type it
 * knows, or asks for. Part of <vorn/collections/inline.h>, which tells what may be relied on.
 *
 * Boxes belong to the runtime; where their value is, and how their type is told, is a part of what every runtime shares
 * with the library. No form here allocates, raises, locks or runs user code. */
#ifndef VORN_COLLECTIONS_INLINE_BOXES_H
#define VORN_COLLECTIONS_INLINE_BOXES_H

/* NOLINTBEGIN(modernize-*): C needs it so */
#include <vorn/collections/inline/objects.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- What all forms are made of ------------------------------------------------------------------------------------ */

/* The kind of a primitive type's boxes. */
VORN_INLINE_PART int vorn_inline_box_kind(vorn_element_type type) {
  if (vorn_inline_is_floating(type)) return VORN_INLINE_FLOATING_BOX;
  if (type == VORN_BOOLEAN) return VORN_INLINE_BOOLEAN_BOX;
  return type == VORN_CHAR || type == VORN_CODE_UNIT ? VORN_INLINE_CHARACTER_BOX : VORN_INLINE_INTEGER_BOX;
}

/* Whether a handle is a box of exactly that type. */
VORN_INLINE_PART bool vorn_inline_is_box(const void* handle, vorn_element_type type) {
  if (type == VORN_HANDLES || !vorn_inline_is(handle, vorn_inline_box_kind(type))) return false;
  return vorn_inline_byte(vorn_inline_pointer(handle, VORN_INLINE_CLASS), VORN_INLINE_CLASS_BOXED_TYPE) ==
         (unsigned)type;
}

/* The value of a box, cut to its type's width as unboxed elements are. */
VORN_INLINE_PART long long vorn_inline_box_integer(const void* box, vorn_element_type type) {
  /* Of a little-endian word the first bytes are the low ones. */
  return vorn_inline_load_integer((const char*)box + VORN_INLINE_BOX_VALUE, 0, type);
}
VORN_INLINE_PART double vorn_inline_box_floating(const void* box) {
  double value;
  memcpy(&value, (const char*)box + VORN_INLINE_BOX_VALUE, sizeof(value));
  return value;
}

VORN_INLINE_PART void vorn_inline_check_box(const void* handle, vorn_element_type type) {
#if VORN_INLINE_CHECKS
  if (!vorn_inline_is_box(handle, type)) vorn_inline_wrong_receiver((void*)handle, vorn_inline_box_kind(type));
#else
  (void)handle;
  (void)type;
#endif
}

/* ---- Any handle ---------------------------------------------------------------------------------------------------- */

/* The value of a box of exactly that type, an integer type, a character or Boolean: what vorn_unbox_int of the runtime
 * and its neighbours give, extended to 64 bits. False, with *value unchanged, for every other handle. */
VORN_INLINE bool vorn_inline_unbox_integer(const void* handle, vorn_element_type type, long long* value) {
  if (!vorn_inline_is_integral(type) || !vorn_inline_is_box(handle, type)) return false;
  *value = vorn_inline_box_integer(handle, type);
  return true;
}

/* The same for VORN_FLOAT and VORN_DOUBLE. */
VORN_INLINE bool vorn_inline_unbox_floating(const void* handle, vorn_element_type type, double* value) {
  if (!vorn_inline_is_floating(type) || !vorn_inline_is_box(handle, type)) return false;
  *value = vorn_inline_box_floating(handle);
  return true;
}

/* ---- Boxes of a proven type ---------------------------------------------------------------------------------------- */

/* The value of a handle that the compiler knows to be a box of exactly that type, an integer type, a character or
 * Boolean. Anything else, null among it, ends a debug build with a message, and is undefined in others. */
VORN_INLINE long long vorn_proven_unbox_integer(const void* box, vorn_element_type type) {
  vorn_inline_check_box(box, type);
  return vorn_inline_box_integer(box, type);
}

/* The same for VORN_FLOAT and VORN_DOUBLE. */
VORN_INLINE double vorn_proven_unbox_floating(const void* box, vorn_element_type type) {
  vorn_inline_check_box(box, type);
  (void)type;
  return vorn_inline_box_floating(box);
}

#ifdef __cplusplus
}
#endif

/* NOLINTEND(modernize-*) */

#endif
