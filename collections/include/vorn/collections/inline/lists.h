/* Inline forms of the natives of lists: size, reads, writes, appends and removals of elements. Part of
 * <vorn/collections/inline.h>, which tells what may be relied on. Results, errors, allocation, locks and user code are
 * those of the native that each names (array_list.h). */
#ifndef VORN_COLLECTIONS_INLINE_LISTS_H
#define VORN_COLLECTIONS_INLINE_LISTS_H

/* NOLINTBEGIN(modernize-*): C needs it so */
#include <vorn/collections/array_list.h>
#include <vorn/collections/inline/objects.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- What all forms are made of ------------------------------------------------------------------------------------ */

/* The forms below replace an element by a raw value, for which no native is: these two make a box of the type and hand it
 * to vorn_collections_ArrayList_operator_index_eq. Nothing for a null list. Allocate. */
VORN_EXPORT void vorn_inline_set_boxed_integer(void* list, long long index, long long value, int type);
VORN_EXPORT void vorn_inline_set_boxed_floating(void* list, long long index, double value, int type);

/* The first three bytes of a list's record after the runtime's: whether it has a lock, whether it is linked, and how its
 * elements are unboxed. Of a list with a lock only the first byte may be looked at, which never changes: the word may be
 * changing, but whatever it is then, it is none that a form acts on. A checker of threads would object all the same. */
VORN_INLINE_PART uint32_t vorn_inline_list_state(const void* record) {
#if VORN_INLINE_CHECKS_THREADS
  if (vorn_inline_byte(record, VORN_INLINE_LIST_STATE) != 0) return 1;
#endif
  uint32_t state;
  memcpy(&state, (const char*)record + VORN_INLINE_LIST_STATE, sizeof(state));
  return state;
}

/* Whether a record, which may be null, is one without a lock whose elements are unboxed in the type's kind. */
VORN_INLINE_PART bool vorn_inline_list_has_kind(const void* record, vorn_element_type type) {
  return record != NULL && vorn_inline_list_state(record) == vorn_inline_kind(type) << 16;
}

/* Whether such a record takes raw values of the type as they are: it keeps elements under the type's own name, and
 * declares nothing else. */
VORN_INLINE_PART bool vorn_inline_list_takes(const void* record, vorn_element_type type) {
  const void* const kept = vorn_inline_pointer(record, VORN_INLINE_LIST_KEPT);
  const void* const declared = vorn_inline_pointer(record, VORN_INLINE_LIST_DECLARED);
  if (declared != kept && declared != NULL) return false;
  return !vorn_inline_shares_kind(type) || vorn_inline_names(kept, type);
}

/* Whether a record, which may be null, is one without a lock whose elements are handles side by side. */
VORN_INLINE_PART bool vorn_inline_list_has_handles(const void* record) {
  return record != NULL && vorn_inline_list_state(record) == 0;
}

/* Whether a list of handles takes the value, as far as that is known without asking for types: it declares no type, one
 * that every value is of, or one that the value's class was seen to be of. */
VORN_INLINE_PART bool vorn_inline_list_admits(const void* record, const void* value) {
  const char* const declared = (const char*)vorn_inline_pointer(record, VORN_INLINE_LIST_DECLARED);
  if (declared == NULL || vorn_inline_byte(declared, VORN_INLINE_TYPE_NAME_TAKES_ALL) != 0) return true;
  const void* const own = vorn_inline_class_of(value);
  return own != NULL &&
         own == __atomic_load_n((const void* const*)(declared + VORN_INLINE_TYPE_NAME_CLASS), __ATOMIC_RELAXED);
}

VORN_INLINE_PART long long vorn_inline_list_size(void* list, const void* record) {
  const uint32_t state = record != NULL ? vorn_inline_list_state(record) : 1;
  if ((state & 0xFF) != 0) return vorn_collections_ArrayList_size(list);
  if (state >> 16 != 0) return (long long)vorn_inline_word(record, VORN_INLINE_LIST_SIZE);
  return (long long)(state != 0 ? vorn_inline_word(record, VORN_INLINE_LIST_LINKED_COUNT)
                                : vorn_inline_word(record, VORN_INLINE_LIST_HANDLE_COUNT));
}

VORN_INLINE_PART long long vorn_inline_list_integer(void* list, const void* record, long long index,
                                                    vorn_element_type type) {
  if (vorn_inline_is_integral(type) && vorn_inline_list_has_kind(record, type) &&
      (uint64_t)index < vorn_inline_word(record, VORN_INLINE_LIST_SIZE)) {
    return vorn_inline_load_integer(vorn_inline_pointer(record, VORN_INLINE_LIST_DATA), (uint64_t)index, type);
  }
  return vorn_collections_ArrayList_getInt(list, index);
}

VORN_INLINE_PART double vorn_inline_list_floating(void* list, const void* record, long long index,
                                                  vorn_element_type type) {
  if (vorn_inline_is_floating(type) && vorn_inline_list_has_kind(record, type) &&
      (uint64_t)index < vorn_inline_word(record, VORN_INLINE_LIST_SIZE)) {
    return vorn_inline_load_floating(vorn_inline_pointer(record, VORN_INLINE_LIST_DATA), (uint64_t)index, type);
  }
  return vorn_collections_ArrayList_getDouble(list, index);
}

VORN_INLINE_PART void* vorn_inline_list_handle(void* list, const void* record, long long index) {
  if (vorn_inline_list_has_handles(record) &&
      (uint64_t)index < vorn_inline_word(record, VORN_INLINE_LIST_HANDLE_COUNT)) {
    return ((void**)vorn_inline_pointer(record, VORN_INLINE_LIST_HANDLES))[index];
  }
  return vorn_collections_ArrayList_operator_index(list, index);
}

VORN_INLINE_PART void vorn_inline_list_set_handle(void* list, const void* record, long long index, void* value) {
  if (vorn_inline_list_has_handles(record) &&
      (uint64_t)index < vorn_inline_word(record, VORN_INLINE_LIST_HANDLE_COUNT) &&
      vorn_inline_list_admits(record, value)) {
    ((void**)vorn_inline_pointer(record, VORN_INLINE_LIST_HANDLES))[index] = value;
    return;
  }
  vorn_collections_ArrayList_operator_index_eq(list, index, value);
}

VORN_INLINE_PART void vorn_inline_list_set_integer(void* list, const void* record, long long index, long long value,
                                                   vorn_element_type type) {
  if (vorn_inline_list_has_kind(record, type) && vorn_inline_has_value(type, value) &&
      (uint64_t)index < vorn_inline_word(record, VORN_INLINE_LIST_SIZE) && vorn_inline_list_takes(record, type)) {
    vorn_inline_store_integer(vorn_inline_pointer(record, VORN_INLINE_LIST_DATA), (uint64_t)index, type, value);
    return;
  }
  vorn_inline_set_boxed_integer(list, index, value, type);
}

VORN_INLINE_PART void vorn_inline_list_set_floating(void* list, const void* record, long long index, double value,
                                                    vorn_element_type type) {
  if (vorn_inline_is_floating(type) && vorn_inline_list_has_kind(record, type) &&
      (uint64_t)index < vorn_inline_word(record, VORN_INLINE_LIST_SIZE) && vorn_inline_list_takes(record, type)) {
    vorn_inline_store_floating(vorn_inline_pointer(record, VORN_INLINE_LIST_DATA), (uint64_t)index, type, value);
    return;
  }
  vorn_inline_set_boxed_floating(list, index, value, type);
}

VORN_INLINE_PART void vorn_inline_list_set_boolean(void* list, const void* record, long long index, bool value) {
  if (vorn_inline_list_has_kind(record, VORN_BOOLEAN) &&
      (uint64_t)index < vorn_inline_word(record, VORN_INLINE_LIST_SIZE) &&
      vorn_inline_list_takes(record, VORN_BOOLEAN)) {
    vorn_inline_store_integer(vorn_inline_pointer(record, VORN_INLINE_LIST_DATA), (uint64_t)index, VORN_BOOLEAN, value);
    return;
  }
  vorn_inline_set_boxed_integer(list, index, value, VORN_BOOLEAN);
}

/* Whether there is room for one more element. */
VORN_INLINE_PART bool vorn_inline_list_has_room(const void* record) {
  return vorn_inline_word(record, VORN_INLINE_LIST_SIZE) < vorn_inline_word(record, VORN_INLINE_LIST_CAPACITY);
}

/* Appends the low bits of an integer when the list takes it as it is and there is room; else false, with nothing
 * changed. */
VORN_INLINE_PART bool vorn_inline_list_push_integer(void* record, long long value, vorn_element_type type) {
  if (!vorn_inline_list_has_kind(record, type) || !vorn_inline_list_takes(record, type)) return false;
  if ((type == VORN_CHAR || type == VORN_CODE_UNIT) && !vorn_inline_has_value(type, value)) return false;
  const uint64_t size = vorn_inline_word(record, VORN_INLINE_LIST_SIZE);
  if (size >= vorn_inline_word(record, VORN_INLINE_LIST_CAPACITY)) return false;
  vorn_inline_store_integer(vorn_inline_pointer(record, VORN_INLINE_LIST_DATA), size, type, value);
  vorn_inline_set_word(record, VORN_INLINE_LIST_SIZE, size + 1);
  return true;
}

VORN_INLINE_PART bool vorn_inline_list_push_floating(void* record, double value, vorn_element_type type) {
  if (!vorn_inline_list_has_kind(record, type) || !vorn_inline_list_takes(record, type)) return false;
  const uint64_t size = vorn_inline_word(record, VORN_INLINE_LIST_SIZE);
  if (size >= vorn_inline_word(record, VORN_INLINE_LIST_CAPACITY)) return false;
  vorn_inline_store_floating(vorn_inline_pointer(record, VORN_INLINE_LIST_DATA), size, type, value);
  vorn_inline_set_word(record, VORN_INLINE_LIST_SIZE, size + 1);
  return true;
}

/* An empty list of handles that declares no type may become unboxed by what it is given: that is for the native, to which
 * all empty ones are left. */
VORN_INLINE_PART bool vorn_inline_list_push_handle(void* record, void* value) {
  if (!vorn_inline_list_has_handles(record)) return false;
  const uint64_t size = vorn_inline_word(record, VORN_INLINE_LIST_HANDLE_COUNT);
  if (size == 0 || size >= vorn_inline_word(record, VORN_INLINE_LIST_HANDLE_CAPACITY)) return false;
  if (!vorn_inline_list_admits(record, value)) return false;
  ((void**)vorn_inline_pointer(record, VORN_INLINE_LIST_HANDLES))[size] = value;
  vorn_inline_set_word(record, VORN_INLINE_LIST_HANDLE_COUNT, size + 1);
  return true;
}

/* Appends, by the native what the list does not take as it is. */
VORN_INLINE_PART void vorn_inline_list_add_handle(void* list, void* record, void* value) {
  if (!vorn_inline_list_push_handle(record, value)) vorn_collections_ArrayList_add(list, value);
}

VORN_INLINE_PART void vorn_inline_list_add_int(void* list, void* record, long long value) {
  if (!vorn_inline_list_push_integer(record, value, VORN_INT)) vorn_collections_ArrayList_addInt(list, value);
}

VORN_INLINE_PART void vorn_inline_list_add_integer(void* list, void* record, long long value, vorn_element_type type) {
  if (vorn_inline_is_integral(type) && vorn_inline_list_push_integer(record, value, type)) return;
  vorn_collections_ArrayList_addPrimitiveI64(list, value, vorn_inline_type_name(type));
}

VORN_INLINE_PART void vorn_inline_list_add_floating(void* list, void* record, double value, vorn_element_type type) {
  if (vorn_inline_is_floating(type) && vorn_inline_list_push_floating(record, value, type)) return;
  vorn_collections_ArrayList_addPrimitiveDouble(list, value, vorn_inline_type_name(type));
}

VORN_INLINE_PART void vorn_inline_list_add_boolean(void* list, void* record, bool value) {
  if (!vorn_inline_list_push_integer(record, value, VORN_BOOLEAN))
    vorn_collections_ArrayList_addPrimitiveBool(list, value);
}

/* Takes the last element off when it stands there; else false, with nothing changed. The slot of a handle that has gone is
 * null. */
VORN_INLINE_PART bool vorn_inline_list_pop(void* record, long long index) {
  const uint32_t state = record != NULL ? vorn_inline_list_state(record) : 1;
  if ((state & 0xFFFF) != 0 || index < 0) return false;
  const int size_at = state != 0 ? (int)VORN_INLINE_LIST_SIZE : (int)VORN_INLINE_LIST_HANDLE_COUNT;
  if ((uint64_t)index + 1 != vorn_inline_word(record, size_at)) return false;
  if (state == 0) ((void**)vorn_inline_pointer(record, VORN_INLINE_LIST_HANDLES))[index] = NULL;
  vorn_inline_set_word(record, size_at, (uint64_t)index);
  return true;
}

VORN_INLINE_PART void vorn_inline_list_remove_at(void* list, void* record, long long index) {
  if (!vorn_inline_list_pop(record, index)) vorn_collections_ArrayList_removeAt(list, index);
}

/* ---- Any receiver -------------------------------------------------------------------------------------------------- */

/* vorn_collections_ArrayList_size. */
VORN_INLINE long long vorn_inline_ArrayList_size(void* list) {
  return vorn_inline_list_size(list, vorn_inline_record(list, VORN_INLINE_LIST));
}

/* vorn_collections_ArrayList_getInt, quick for elements of the type, which is an integer type, a character or Boolean. */
VORN_INLINE long long vorn_inline_ArrayList_getInt(void* list, long long index, vorn_element_type type) {
  return vorn_inline_list_integer(list, vorn_inline_record(list, VORN_INLINE_LIST), index, type);
}

/* vorn_collections_ArrayList_getDouble, quick for elements of the type, which is VORN_FLOAT or VORN_DOUBLE. */
VORN_INLINE double vorn_inline_ArrayList_getDouble(void* list, long long index, vorn_element_type type) {
  return vorn_inline_list_floating(list, vorn_inline_record(list, VORN_INLINE_LIST), index, type);
}

/* vorn_collections_ArrayList_operator_index, quick for lists of handles. */
VORN_INLINE void* vorn_inline_ArrayList_operator_index(void* list, long long index) {
  return vorn_inline_list_handle(list, vorn_inline_record(list, VORN_INLINE_LIST), index);
}

/* vorn_collections_ArrayList_operator_index_eq, quick for lists of handles that declare no type, Object, or a type that the
 * value's class was the last one seen to be of. */
VORN_INLINE void vorn_inline_ArrayList_operator_index_eq(void* list, long long index, void* value) {
  vorn_inline_list_set_handle(list, vorn_inline_record(list, VORN_INLINE_LIST), index, value);
}

/* vorn_collections_ArrayList_operator_index_eq with a new box of the type, an integer type or a character, that holds the
 * value: without the box where the list keeps elements of the type unboxed. Nothing for VORN_HANDLES and the floating
 * types. */
VORN_INLINE void vorn_inline_ArrayList_setInt(void* list, long long index, long long value, vorn_element_type type) {
  vorn_inline_list_set_integer(list, vorn_inline_record(list, VORN_INLINE_LIST), index, value, type);
}

/* The same for VORN_FLOAT and VORN_DOUBLE. */
VORN_INLINE void vorn_inline_ArrayList_setDouble(void* list, long long index, double value, vorn_element_type type) {
  vorn_inline_list_set_floating(list, vorn_inline_record(list, VORN_INLINE_LIST), index, value, type);
}
/* The same with a box of a Boolean. */
VORN_INLINE void vorn_inline_ArrayList_setBool(void* list, long long index, bool value) {
  vorn_inline_list_set_boolean(list, vorn_inline_record(list, VORN_INLINE_LIST), index, value);
}

/* vorn_collections_ArrayList_add, quick for the same lists where they are not empty. */
VORN_INLINE void vorn_inline_ArrayList_add(void* list, void* value) {
  vorn_inline_list_add_handle(list, vorn_inline_record(list, VORN_INLINE_LIST), value);
}

/* vorn_collections_ArrayList_addInt, quick for lists of Int. */
VORN_INLINE void vorn_inline_ArrayList_addInt(void* list, long long value) {
  vorn_inline_list_add_int(list, vorn_inline_record(list, VORN_INLINE_LIST), value);
}

/* vorn_collections_ArrayList_addPrimitiveI64 with the type's name, quick for lists of the type. */
VORN_INLINE void vorn_inline_ArrayList_addPrimitiveI64(void* list, long long value, vorn_element_type type) {
  vorn_inline_list_add_integer(list, vorn_inline_record(list, VORN_INLINE_LIST), value, type);
}

/* vorn_collections_ArrayList_addPrimitiveDouble with the type's name, quick for lists of the type. */
VORN_INLINE void vorn_inline_ArrayList_addPrimitiveDouble(void* list, double value, vorn_element_type type) {
  vorn_inline_list_add_floating(list, vorn_inline_record(list, VORN_INLINE_LIST), value, type);
}

/* vorn_collections_ArrayList_addPrimitiveBool, quick for lists of Boolean. */
VORN_INLINE void vorn_inline_ArrayList_addPrimitiveBool(void* list, bool value) {
  vorn_inline_list_add_boolean(list, vorn_inline_record(list, VORN_INLINE_LIST), value);
}

/* vorn_collections_ArrayList_removeAt, quick for the last element. */
VORN_INLINE void vorn_inline_ArrayList_removeAt(void* list, long long index) {
  vorn_inline_list_remove_at(list, vorn_inline_record(list, VORN_INLINE_LIST), index);
}

/* ---- Receivers of a proven class ----------------------------------------------------------------------------------- */

/* The same for a list that the compiler knows to be null or an object of a list class. Anything else ends a debug build
 * with a message, and is undefined in others. */
VORN_INLINE long long vorn_proven_ArrayList_size(void* list) {
  return vorn_inline_list_size(list, vorn_inline_lasting_record(list, VORN_INLINE_LIST));
}
/* vorn_inline_ArrayList_getInt, for a proven receiver. */
VORN_INLINE long long vorn_proven_ArrayList_getInt(void* list, long long index, vorn_element_type type) {
  return vorn_inline_list_integer(list, vorn_inline_lasting_record(list, VORN_INLINE_LIST), index, type);
}
/* vorn_inline_ArrayList_getDouble, for a proven receiver. */
VORN_INLINE double vorn_proven_ArrayList_getDouble(void* list, long long index, vorn_element_type type) {
  return vorn_inline_list_floating(list, vorn_inline_lasting_record(list, VORN_INLINE_LIST), index, type);
}
/* vorn_inline_ArrayList_operator_index, for a proven receiver. */
VORN_INLINE void* vorn_proven_ArrayList_operator_index(void* list, long long index) {
  return vorn_inline_list_handle(list, vorn_inline_lasting_record(list, VORN_INLINE_LIST), index);
}
/* vorn_inline_ArrayList_operator_index_eq, for a proven receiver. */
VORN_INLINE void vorn_proven_ArrayList_operator_index_eq(void* list, long long index, void* value) {
  vorn_inline_list_set_handle(list, vorn_inline_lasting_record(list, VORN_INLINE_LIST), index, value);
}
/* vorn_inline_ArrayList_setInt, for a proven receiver. */
VORN_INLINE void vorn_proven_ArrayList_setInt(void* list, long long index, long long value, vorn_element_type type) {
  vorn_inline_list_set_integer(list, vorn_inline_lasting_record(list, VORN_INLINE_LIST), index, value, type);
}
/* vorn_inline_ArrayList_setDouble, for a proven receiver. */
VORN_INLINE void vorn_proven_ArrayList_setDouble(void* list, long long index, double value, vorn_element_type type) {
  vorn_inline_list_set_floating(list, vorn_inline_lasting_record(list, VORN_INLINE_LIST), index, value, type);
}
/* vorn_inline_ArrayList_setBool, for a proven receiver. */
VORN_INLINE void vorn_proven_ArrayList_setBool(void* list, long long index, bool value) {
  vorn_inline_list_set_boolean(list, vorn_inline_lasting_record(list, VORN_INLINE_LIST), index, value);
}
/* vorn_inline_ArrayList_add, for a proven receiver. */
VORN_INLINE void vorn_proven_ArrayList_add(void* list, void* value) {
  vorn_inline_list_add_handle(list, vorn_inline_lasting_record(list, VORN_INLINE_LIST), value);
}
/* vorn_inline_ArrayList_addInt, for a proven receiver. */
VORN_INLINE void vorn_proven_ArrayList_addInt(void* list, long long value) {
  vorn_inline_list_add_int(list, vorn_inline_lasting_record(list, VORN_INLINE_LIST), value);
}
/* vorn_inline_ArrayList_addPrimitiveI64, for a proven receiver. */
VORN_INLINE void vorn_proven_ArrayList_addPrimitiveI64(void* list, long long value, vorn_element_type type) {
  vorn_inline_list_add_integer(list, vorn_inline_lasting_record(list, VORN_INLINE_LIST), value, type);
}
/* vorn_inline_ArrayList_addPrimitiveDouble, for a proven receiver. */
VORN_INLINE void vorn_proven_ArrayList_addPrimitiveDouble(void* list, double value, vorn_element_type type) {
  vorn_inline_list_add_floating(list, vorn_inline_lasting_record(list, VORN_INLINE_LIST), value, type);
}
/* vorn_inline_ArrayList_addPrimitiveBool, for a proven receiver. */
VORN_INLINE void vorn_proven_ArrayList_addPrimitiveBool(void* list, bool value) {
  vorn_inline_list_add_boolean(list, vorn_inline_lasting_record(list, VORN_INLINE_LIST), value);
}

/* vorn_inline_ArrayList_removeAt, for a proven receiver. */
VORN_INLINE void vorn_proven_ArrayList_removeAt(void* list, long long index) {
  vorn_inline_list_remove_at(list, vorn_inline_lasting_record(list, VORN_INLINE_LIST), index);
}

/* ---- Loops --------------------------------------------------------------------------------------------------------- */

/* The elements of a list or array, side by side. */
typedef struct vorn_span {
  void* data;     /* of the element type's own width; `void*` for VORN_HANDLES */
  long long size; /* how many */
} vorn_span;

/* Takes the elements of a list, so that a loop need not ask for each: true when the list is plain and keeps elements of
 * just that type unboxed, or, for VORN_HANDLES, keeps handles side by side. Otherwise, and for null, the span is empty.
 *
 * The loop may read the elements, and write unboxed ones that the type has. The span is good until anything may have
 * changed the list: a call of a native or form on it other than one that reads, or of code that is not known. Take it
 * again then. Allocates nothing, raises nothing, runs no user code. */
VORN_INLINE bool vorn_inline_ArrayList_span(void* list, vorn_element_type type, vorn_span* span) {
  const void* const record = vorn_inline_record(list, VORN_INLINE_LIST);
  span->data = NULL;
  span->size = 0;
  if (type == VORN_HANDLES) {
    if (!vorn_inline_list_has_handles(record)) return false;
    span->data = vorn_inline_pointer(record, VORN_INLINE_LIST_HANDLES);
    span->size = (long long)vorn_inline_word(record, VORN_INLINE_LIST_HANDLE_COUNT);
    return true;
  }
  if (!vorn_inline_list_has_kind(record, type) || !vorn_inline_list_takes(record, type)) return false;
  span->data = vorn_inline_pointer(record, VORN_INLINE_LIST_DATA);
  span->size = (long long)vorn_inline_word(record, VORN_INLINE_LIST_SIZE);
  return true;
}

#ifdef __cplusplus
}
#endif

/* NOLINTEND(modernize-*) */

#endif
