/* Where inline.h finds what it reads and writes in the records of collections. Made by tools/make_inline_layout from
 * the records themselves, and checked by every build of the library. Not for use by itself: names and numbers change
 * with any release, and with them VORN_INLINE_ABI, by which vorn_inline_check() tells. */
#ifndef VORN_COLLECTIONS_INLINE_LAYOUT_H
#define VORN_COLLECTIONS_INLINE_LAYOUT_H

/* Offsets are in bytes. */
enum vorn_inline_layout {
  /* the number of this layout, made from all that follow */
  VORN_INLINE_ABI = 226637496,
  /* counts changes that no offset shows */
  VORN_INLINE_REVISION = 1,
  /* of an object: the word that tells its kind and that it is one */
  VORN_INLINE_HEADER = 0,
  /* of an object: its class */
  VORN_INLINE_CLASS = 8,
  /* of an object: its record */
  VORN_INLINE_RECORD = 16,
  /* of a box: the integer, or the bits of the double */
  VORN_INLINE_BOX_VALUE = 24,
  /* of a class: the primitive type of its boxes, one byte; 0 for all other classes */
  VORN_INLINE_CLASS_BOXED_TYPE = 0,
  /* the size of a box */
  VORN_INLINE_BOX_BYTES = 32,
  /* the kind of integer boxes */
  VORN_INLINE_INTEGER_BOX = 1,
  /* the kind of floating boxes */
  VORN_INLINE_FLOATING_BOX = 2,
  /* the kind of Boolean boxes */
  VORN_INLINE_BOOLEAN_BOX = 3,
  /* the kind of character boxes */
  VORN_INLINE_CHARACTER_BOX = 4,
  /* the kind of tuples */
  VORN_INLINE_TUPLE = 8,
  /* the kind of every list class */
  VORN_INLINE_LIST = 9,
  /* the kind of arrays */
  VORN_INLINE_ARRAY = 10,
  /* the kind of every map class */
  VORN_INLINE_MAP = 11,
  /* the kind of hash sets */
  VORN_INLINE_SET = 12,
  /* of a type name: its primitive type, one byte */
  VORN_INLINE_TYPE_NAME_TYPE = 16,
  /* whether every value is of that type, one byte */
  VORN_INLINE_TYPE_NAME_TAKES_ALL = 17,
  /* a class that is of that type; null for none */
  VORN_INLINE_TYPE_NAME_CLASS = 32,
  /* of a list's record: whether it has a lock, whether it is linked, how elements are unboxed (0 for handles), a byte each, and 0 */
  VORN_INLINE_LIST_STATE = 16,
  /* the declared element type's name; null for none */
  VORN_INLINE_LIST_DECLARED = 24,
  /* the name that unboxed elements are kept under */
  VORN_INLINE_LIST_KEPT = 32,
  /* unboxed elements */
  VORN_INLINE_LIST_DATA = 176,
  /* their number */
  VORN_INLINE_LIST_SIZE = 184,
  /* how many there is room for */
  VORN_INLINE_LIST_CAPACITY = 192,
  /* handles of a list that is not linked */
  VORN_INLINE_LIST_HANDLES = 480,
  /* their number */
  VORN_INLINE_LIST_HANDLE_COUNT = 488,
  /* how many there is room for */
  VORN_INLINE_LIST_HANDLE_CAPACITY = 496,
  /* the number of nodes of a linked list */
  VORN_INLINE_LIST_LINKED_COUNT = 520,
  /* of an array's record: how slots are unboxed, one byte; another one where there is a lock */
  VORN_INLINE_ARRAY_SLOT_KIND = 17,
  /* the element type's name */
  VORN_INLINE_ARRAY_TYPE = 8,
  /* unboxed slots */
  VORN_INLINE_ARRAY_DATA = 160,
  /* their number */
  VORN_INLINE_ARRAY_SIZE = 168,
  /* slots that hold handles */
  VORN_INLINE_ARRAY_HANDLES = 240,
  /* their number */
  VORN_INLINE_ARRAY_HANDLE_COUNT = 248,
  /* the slot kind of handles */
  VORN_INLINE_ARRAY_HANDLE_SLOTS = 11,
  /* how many handles a walk has found ahead, at most */
  VORN_INLINE_WALK_SLOTS = 32,
  /* of a tuple: its field size */
  VORN_INLINE_TUPLE_SIZE = 24,
  /* how many items there is room for */
  VORN_INLINE_TUPLE_CAPACITY = 32,
  /* the items */
  VORN_INLINE_TUPLE_ITEMS = 40
};

#endif
