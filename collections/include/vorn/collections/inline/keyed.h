/* Lookups in maps and sets by numbers and texts that are no objects. Part of <vorn/collections/inline.h>, which tells what
 * may be relied on.
 *
 * Each does what the native that it names does for a key that is a box of an integer of 64 bits, or a String of that
 * text: same results, same errors, same locks. A key is never made, so nothing is allocated, and no user code runs. The
 * test of the receiver is inline, the search is one call of the library: hash, buckets and trees are its own affair. */
#ifndef VORN_COLLECTIONS_INLINE_KEYED_H
#define VORN_COLLECTIONS_INLINE_KEYED_H

/* NOLINTBEGIN(modernize-*): C needs it so */
#include <vorn/collections/hash_set.h>
#include <vorn/collections/inline/objects.h>
#include <vorn/collections/map.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Searches of the library --------------------------------------------------------------------------------------- */

/* What a search came to. */
typedef struct vorn_found {
  void* value; /* null when the key is absent */
  bool found;  /* whether it is there */
} vorn_found;

/* The entry of a map's record, or whether a set's record has an element. A text is `length` bytes of UTF-8, of which
 * those of up to sixteen bytes are found soonest; it need not end in a NUL. Not found while an error is pending on this
 * thread, as natives have it. Lock a synchronised record. */
VORN_EXPORT vorn_found vorn_inline_find_integer(const void* map, long long key);
VORN_EXPORT vorn_found vorn_inline_find_text(const void* map, const char* key, size_t length);
VORN_EXPORT bool vorn_inline_has_integer(const void* set, long long key);
VORN_EXPORT bool vorn_inline_has_text(const void* set, const char* key, size_t length);

/* Raises KeyException "Key not found". */
VORN_EXPORT void vorn_inline_raise_key_not_found(void);

/* ---- What all forms are made of ------------------------------------------------------------------------------------ */

/* A receiver that is no map or set is for the native, which does nothing for null and ends the process for all else; it
 * looks at no key. */
VORN_INLINE_PART vorn_found vorn_inline_look_up_integer(void* map, const void* record, long long key) {
  if (record != NULL) return vorn_inline_find_integer(record, key);
  vorn_found none = {NULL, false};
  none.found = vorn_collections_Map_tryGet(map, map, &none.value);
  return none;
}
VORN_INLINE_PART vorn_found vorn_inline_look_up_text(void* map, const void* record, const char* key, size_t length) {
  if (record != NULL) return vorn_inline_find_text(record, key, length);
  vorn_found none = {NULL, false};
  none.found = vorn_collections_Map_tryGet(map, map, &none.value);
  return none;
}

/* A null map raises nothing. */
VORN_INLINE_PART void* vorn_inline_found_or_raise(const void* map, vorn_found found) {
  if (!found.found && map != NULL) vorn_inline_raise_key_not_found();
  return found.value;
}
VORN_INLINE_PART bool vorn_inline_found_into(vorn_found found, void** result) {
  *result = found.value;
  return found.found;
}

/* ---- Any receiver -------------------------------------------------------------------------------------------------- */

/* vorn_collections_Map__get by a number, and by a text. */
VORN_INLINE void* vorn_inline_Map__get_integer(void* map, long long key) {
  return vorn_inline_look_up_integer(map, vorn_inline_record(map, VORN_INLINE_MAP), key).value;
}
/* The same by a text. */
VORN_INLINE void* vorn_inline_Map__get_text(void* map, const char* key, size_t length) {
  return vorn_inline_look_up_text(map, vorn_inline_record(map, VORN_INLINE_MAP), key, length).value;
}

/* vorn_collections_Map_operator_index. */
VORN_INLINE void* vorn_inline_Map_operator_index_integer(void* map, long long key) {
  return vorn_inline_found_or_raise(map,
                                    vorn_inline_look_up_integer(map, vorn_inline_record(map, VORN_INLINE_MAP), key));
}
/* The same by a text. */
VORN_INLINE void* vorn_inline_Map_operator_index_text(void* map, const char* key, size_t length) {
  return vorn_inline_found_or_raise(
      map, vorn_inline_look_up_text(map, vorn_inline_record(map, VORN_INLINE_MAP), key, length));
}

/* vorn_collections_Map_tryGet. */
VORN_INLINE bool vorn_inline_Map_tryGet_integer(void* map, long long key, void** result) {
  return vorn_inline_found_into(vorn_inline_look_up_integer(map, vorn_inline_record(map, VORN_INLINE_MAP), key),
                                result);
}
/* The same by a text. */
VORN_INLINE bool vorn_inline_Map_tryGet_text(void* map, const char* key, size_t length, void** result) {
  return vorn_inline_found_into(vorn_inline_look_up_text(map, vorn_inline_record(map, VORN_INLINE_MAP), key, length),
                                result);
}

/* vorn_collections_Map_operator_in. */
VORN_INLINE bool vorn_inline_Map_operator_in_integer(void* map, long long key) {
  return vorn_inline_look_up_integer(map, vorn_inline_record(map, VORN_INLINE_MAP), key).found;
}
/* The same by a text. */
VORN_INLINE bool vorn_inline_Map_operator_in_text(void* map, const char* key, size_t length) {
  return vorn_inline_look_up_text(map, vorn_inline_record(map, VORN_INLINE_MAP), key, length).found;
}

/* vorn_collections_HashSet_operator_in. */
VORN_INLINE bool vorn_inline_HashSet_operator_in_integer(void* set, long long key) {
  const void* const record = vorn_inline_record(set, VORN_INLINE_SET);
  return record != NULL ? vorn_inline_has_integer(record, key) : vorn_collections_HashSet_operator_in(set, set);
}
/* The same by a text. */
VORN_INLINE bool vorn_inline_HashSet_operator_in_text(void* set, const char* key, size_t length) {
  const void* const record = vorn_inline_record(set, VORN_INLINE_SET);
  return record != NULL ? vorn_inline_has_text(record, key, length) : vorn_collections_HashSet_operator_in(set, set);
}

/* ---- Receivers of a proven class ----------------------------------------------------------------------------------- */

/* The same for a map, or a set, that the compiler knows to be null or an object of such a class. Anything else ends a
 * debug build with a message, and is undefined in others. */
VORN_INLINE void* vorn_proven_Map__get_integer(void* map, long long key) {
  return vorn_inline_look_up_integer(map, vorn_inline_proven_record(map, VORN_INLINE_MAP), key).value;
}
/* vorn_inline_Map__get_text, for a proven receiver. */
VORN_INLINE void* vorn_proven_Map__get_text(void* map, const char* key, size_t length) {
  return vorn_inline_look_up_text(map, vorn_inline_proven_record(map, VORN_INLINE_MAP), key, length).value;
}
/* vorn_inline_Map_operator_index_integer, for a proven receiver. */
VORN_INLINE void* vorn_proven_Map_operator_index_integer(void* map, long long key) {
  return vorn_inline_found_or_raise(
      map, vorn_inline_look_up_integer(map, vorn_inline_proven_record(map, VORN_INLINE_MAP), key));
}
/* vorn_inline_Map_operator_index_text, for a proven receiver. */
VORN_INLINE void* vorn_proven_Map_operator_index_text(void* map, const char* key, size_t length) {
  return vorn_inline_found_or_raise(
      map, vorn_inline_look_up_text(map, vorn_inline_proven_record(map, VORN_INLINE_MAP), key, length));
}
/* vorn_inline_Map_tryGet_integer, for a proven receiver. */
VORN_INLINE bool vorn_proven_Map_tryGet_integer(void* map, long long key, void** result) {
  return vorn_inline_found_into(vorn_inline_look_up_integer(map, vorn_inline_proven_record(map, VORN_INLINE_MAP), key),
                                result);
}
/* vorn_inline_Map_tryGet_text, for a proven receiver. */
VORN_INLINE bool vorn_proven_Map_tryGet_text(void* map, const char* key, size_t length, void** result) {
  return vorn_inline_found_into(
      vorn_inline_look_up_text(map, vorn_inline_proven_record(map, VORN_INLINE_MAP), key, length), result);
}
/* vorn_inline_Map_operator_in_integer, for a proven receiver. */
VORN_INLINE bool vorn_proven_Map_operator_in_integer(void* map, long long key) {
  return vorn_inline_look_up_integer(map, vorn_inline_proven_record(map, VORN_INLINE_MAP), key).found;
}
/* vorn_inline_Map_operator_in_text, for a proven receiver. */
VORN_INLINE bool vorn_proven_Map_operator_in_text(void* map, const char* key, size_t length) {
  return vorn_inline_look_up_text(map, vorn_inline_proven_record(map, VORN_INLINE_MAP), key, length).found;
}
/* vorn_inline_HashSet_operator_in_integer, for a proven receiver. */
VORN_INLINE bool vorn_proven_HashSet_operator_in_integer(void* set, long long key) {
  const void* const record = vorn_inline_proven_record(set, VORN_INLINE_SET);
  return record != NULL && vorn_inline_has_integer(record, key);
}
/* vorn_inline_HashSet_operator_in_text, for a proven receiver. */
VORN_INLINE bool vorn_proven_HashSet_operator_in_text(void* set, const char* key, size_t length) {
  const void* const record = vorn_inline_proven_record(set, VORN_INLINE_SET);
  return record != NULL && vorn_inline_has_text(record, key, length);
}

#ifdef __cplusplus
}
#endif

/* NOLINTEND(modernize-*) */

#endif
