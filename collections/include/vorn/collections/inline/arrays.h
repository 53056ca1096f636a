/* Inline forms of the natives of arrays and tuples: size, reads and writes of elements. Part of
 * <vorn/collections/inline.h>, which tells what may be relied on. Results, errors, allocation, locks and user code are
 * those of the native that each names (array.h, tuple.h). */
#ifndef VORN_COLLECTIONS_INLINE_ARRAYS_H
#define VORN_COLLECTIONS_INLINE_ARRAYS_H

/* NOLINTBEGIN(modernize-*): C needs it so */
#include <vorn/collections/array.h>
#include <vorn/collections/inline/lists.h>
#include <vorn/collections/tuple.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- What all forms are made of ------------------------------------------------------------------------------------ */

/* Whether a record, which may be null, is one without a lock that has slots of the type's kind, or handles for
 * VORN_HANDLES. */
VORN_INLINE_PART bool vorn_inline_array_has_slots(const void* record, vorn_element_type type) {
  const unsigned slots = type == VORN_HANDLES ? (unsigned)VORN_INLINE_ARRAY_HANDLE_SLOTS : vorn_inline_kind(type) - 1;
  return record != NULL && vorn_inline_byte(record, VORN_INLINE_ARRAY_SLOT_KIND) == slots;
}

/* Whether an array with slots of the type's kind is one of the type itself. */
VORN_INLINE_PART bool vorn_inline_array_is_of(const void* record, vorn_element_type type) {
  const bool may_have_characters =
      type == VORN_USHORT || type == VORN_UINT || type == VORN_CHAR || type == VORN_CODE_UNIT;
  return !may_have_characters || vorn_inline_names(vorn_inline_pointer(record, VORN_INLINE_ARRAY_TYPE), type);
}

VORN_INLINE_PART bool vorn_inline_array_has_index(const void* record, long long index) {
  return (uint64_t)index < vorn_inline_word(record, VORN_INLINE_ARRAY_SIZE);
}

VORN_INLINE_PART long long vorn_inline_array_size(void* array, const void* record) {
  const unsigned slots = record != NULL ? vorn_inline_byte(record, VORN_INLINE_ARRAY_SLOT_KIND) : 0xFF;
  if (slots > (unsigned)VORN_INLINE_ARRAY_HANDLE_SLOTS) return vorn_collections_Array_size(array);
  return (long long)(slots == (unsigned)VORN_INLINE_ARRAY_HANDLE_SLOTS
                         ? vorn_inline_word(record, VORN_INLINE_ARRAY_HANDLE_COUNT)
                         : vorn_inline_word(record, VORN_INLINE_ARRAY_SIZE));
}

VORN_INLINE_PART long long vorn_inline_array_integer(void* array, const void* record, long long index,
                                                     vorn_element_type type) {
  if (vorn_inline_is_integral(type) && vorn_inline_array_has_slots(record, type) &&
      vorn_inline_array_has_index(record, index)) {
    return vorn_inline_load_integer(vorn_inline_pointer(record, VORN_INLINE_ARRAY_DATA), (uint64_t)index, type);
  }
  return vorn_collections_Array_getInt(array, index);
}

VORN_INLINE_PART double vorn_inline_array_floating(void* array, const void* record, long long index,
                                                   vorn_element_type type) {
  if (vorn_inline_is_floating(type) && vorn_inline_array_has_slots(record, type) &&
      vorn_inline_array_has_index(record, index)) {
    return vorn_inline_load_floating(vorn_inline_pointer(record, VORN_INLINE_ARRAY_DATA), (uint64_t)index, type);
  }
  return vorn_collections_Array_getDouble(array, index);
}

VORN_INLINE_PART void* vorn_inline_array_handle(void* array, const void* record, long long index) {
  if (vorn_inline_array_has_slots(record, VORN_HANDLES) &&
      (uint64_t)index < vorn_inline_word(record, VORN_INLINE_ARRAY_HANDLE_COUNT)) {
    return ((void**)vorn_inline_pointer(record, VORN_INLINE_ARRAY_HANDLES))[index];
  }
  return vorn_collections_Array_operator_index(array, index);
}

VORN_INLINE_PART void vorn_inline_array_set_integer(void* array, const void* record, long long index, long long value,
                                                    vorn_element_type type) {
  const bool is_character = type == VORN_CHAR || type == VORN_CODE_UNIT;
  if (vorn_inline_is_integral(type) && vorn_inline_array_has_slots(record, type) &&
      vorn_inline_array_has_index(record, index) && vorn_inline_array_is_of(record, type) &&
      (!is_character || vorn_inline_has_value(type, value))) {
    vorn_inline_store_integer(vorn_inline_pointer(record, VORN_INLINE_ARRAY_DATA), (uint64_t)index, type, value);
    return;
  }
  vorn_collections_Array_setInt(array, index, value);
}

VORN_INLINE_PART void vorn_inline_array_set_floating(void* array, const void* record, long long index, double value,
                                                     vorn_element_type type) {
  if (vorn_inline_is_floating(type) && vorn_inline_array_has_slots(record, type) &&
      vorn_inline_array_has_index(record, index)) {
    vorn_inline_store_floating(vorn_inline_pointer(record, VORN_INLINE_ARRAY_DATA), (uint64_t)index, type, value);
    return;
  }
  vorn_collections_Array_setDouble(array, index, value);
}

VORN_INLINE_PART void vorn_inline_array_set_boolean(void* array, const void* record, long long index, bool value) {
  if (vorn_inline_array_has_slots(record, VORN_BOOLEAN) && vorn_inline_array_has_index(record, index)) {
    vorn_inline_store_integer(vorn_inline_pointer(record, VORN_INLINE_ARRAY_DATA), (uint64_t)index, VORN_BOOLEAN,
                              value);
    return;
  }
  vorn_collections_Array_setBool(array, index, value);
}

/* What the field "size" says is not trusted with memory. */
VORN_INLINE_PART void* vorn_inline_tuple_item(void* tuple, bool is_tuple, long long index) {
  if (is_tuple && index >= 0 && index < (long long)vorn_inline_word(tuple, VORN_INLINE_TUPLE_SIZE) &&
      (uint64_t)index < vorn_inline_word(tuple, VORN_INLINE_TUPLE_CAPACITY)) {
    return ((void**)vorn_inline_pointer(tuple, VORN_INLINE_TUPLE_ITEMS))[index];
  }
  return vorn_collections_Tuple_operator_index(tuple, index);
}

/* ---- Any receiver -------------------------------------------------------------------------------------------------- */

/* vorn_collections_Array_size. */
VORN_INLINE long long vorn_inline_Array_size(void* array) {
  return vorn_inline_array_size(array, vorn_inline_record(array, VORN_INLINE_ARRAY));
}

/* vorn_collections_Array_getInt, quick for slots of the type, which is an integer type, a character or Boolean. */
VORN_INLINE long long vorn_inline_Array_getInt(void* array, long long index, vorn_element_type type) {
  return vorn_inline_array_integer(array, vorn_inline_record(array, VORN_INLINE_ARRAY), index, type);
}

/* vorn_collections_Array_getDouble, quick for slots of the type, which is VORN_FLOAT or VORN_DOUBLE. */
VORN_INLINE double vorn_inline_Array_getDouble(void* array, long long index, vorn_element_type type) {
  return vorn_inline_array_floating(array, vorn_inline_record(array, VORN_INLINE_ARRAY), index, type);
}

/* vorn_collections_Array_operator_index, quick for slots that hold handles. */
VORN_INLINE void* vorn_inline_Array_operator_index(void* array, long long index) {
  return vorn_inline_array_handle(array, vorn_inline_record(array, VORN_INLINE_ARRAY), index);
}

/* vorn_collections_Array_setInt, quick for slots of the type, which is an integer type, a character or Boolean. */
VORN_INLINE void vorn_inline_Array_setInt(void* array, long long index, long long value, vorn_element_type type) {
  vorn_inline_array_set_integer(array, vorn_inline_record(array, VORN_INLINE_ARRAY), index, value, type);
}

/* vorn_collections_Array_setDouble, quick for slots of the type, which is VORN_FLOAT or VORN_DOUBLE. */
VORN_INLINE void vorn_inline_Array_setDouble(void* array, long long index, double value, vorn_element_type type) {
  vorn_inline_array_set_floating(array, vorn_inline_record(array, VORN_INLINE_ARRAY), index, value, type);
}

/* vorn_collections_Array_setBool, quick for slots of Boolean. */
VORN_INLINE void vorn_inline_Array_setBool(void* array, long long index, bool value) {
  vorn_inline_array_set_boolean(array, vorn_inline_record(array, VORN_INLINE_ARRAY), index, value);
}

/* vorn_collections_Tuple_operator_index. */
VORN_INLINE void* vorn_inline_Tuple_operator_index(void* tuple, long long index) {
  return vorn_inline_tuple_item(tuple, vorn_inline_is(tuple, VORN_INLINE_TUPLE), index);
}

/* ---- Receivers of a proven class ----------------------------------------------------------------------------------- */

/* The same for an array, or a tuple, that the compiler knows to be null or an object of such a class. Anything else ends
 * a debug build with a message, and is undefined in others. */
VORN_INLINE long long vorn_proven_Array_size(void* array) {
  return vorn_inline_array_size(array, vorn_inline_lasting_record(array, VORN_INLINE_ARRAY));
}
/* vorn_inline_Array_getInt, for a proven receiver. */
VORN_INLINE long long vorn_proven_Array_getInt(void* array, long long index, vorn_element_type type) {
  return vorn_inline_array_integer(array, vorn_inline_lasting_record(array, VORN_INLINE_ARRAY), index, type);
}
/* vorn_inline_Array_getDouble, for a proven receiver. */
VORN_INLINE double vorn_proven_Array_getDouble(void* array, long long index, vorn_element_type type) {
  return vorn_inline_array_floating(array, vorn_inline_lasting_record(array, VORN_INLINE_ARRAY), index, type);
}
/* vorn_inline_Array_operator_index, for a proven receiver. */
VORN_INLINE void* vorn_proven_Array_operator_index(void* array, long long index) {
  return vorn_inline_array_handle(array, vorn_inline_lasting_record(array, VORN_INLINE_ARRAY), index);
}
/* vorn_inline_Array_setInt, for a proven receiver. */
VORN_INLINE void vorn_proven_Array_setInt(void* array, long long index, long long value, vorn_element_type type) {
  vorn_inline_array_set_integer(array, vorn_inline_lasting_record(array, VORN_INLINE_ARRAY), index, value, type);
}
/* vorn_inline_Array_setDouble, for a proven receiver. */
VORN_INLINE void vorn_proven_Array_setDouble(void* array, long long index, double value, vorn_element_type type) {
  vorn_inline_array_set_floating(array, vorn_inline_lasting_record(array, VORN_INLINE_ARRAY), index, value, type);
}
/* vorn_inline_Array_setBool, for a proven receiver. */
VORN_INLINE void vorn_proven_Array_setBool(void* array, long long index, bool value) {
  vorn_inline_array_set_boolean(array, vorn_inline_lasting_record(array, VORN_INLINE_ARRAY), index, value);
}
/* vorn_inline_Tuple_operator_index, for a proven receiver. */
VORN_INLINE void* vorn_proven_Tuple_operator_index(void* tuple, long long index) {
  vorn_inline_check_receiver(tuple, VORN_INLINE_TUPLE);
  return vorn_inline_tuple_item(tuple, tuple != NULL, index);
}

/* ---- Loops --------------------------------------------------------------------------------------------------------- */

/* vorn_inline_ArrayList_span for arrays. Only a constructor changes which slots there are. */
VORN_INLINE bool vorn_inline_Array_span(void* array, vorn_element_type type, vorn_span* span) {
  const void* const record = vorn_inline_record(array, VORN_INLINE_ARRAY);
  span->data = NULL;
  span->size = 0;
  if (!vorn_inline_array_has_slots(record, type)) return false;
  if (type == VORN_HANDLES) {
    span->data = vorn_inline_pointer(record, VORN_INLINE_ARRAY_HANDLES);
    span->size = (long long)vorn_inline_word(record, VORN_INLINE_ARRAY_HANDLE_COUNT);
    return true;
  }
  if (!vorn_inline_array_is_of(record, type)) return false;
  span->data = vorn_inline_pointer(record, VORN_INLINE_ARRAY_DATA);
  span->size = (long long)vorn_inline_word(record, VORN_INLINE_ARRAY_SIZE);
  return true;
}

#ifdef __cplusplus
}
#endif

/* NOLINTEND(modernize-*) */

#endif
