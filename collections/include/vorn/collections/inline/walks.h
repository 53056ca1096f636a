/* Walks over maps, sets and lists that list nothing first. Part of <vorn/collections/inline.h>, which tells what may be
 * relied on.
 *
 *   vorn_walk walk;
 *   vorn_inline_Map_walk(map, &walk);
 *   while (vorn_inline_Map_next(&walk)) use(walk.key, walk.value);
 *
 * A walk gives entries and elements in the order in which `keys`, `items` and indexes have them. It is begun on a plain
 * collection: of a synchronised one, null and any other handle it gives nothing, and beginning it tells so; those are
 * listed, or read by index.
 *
 * What may happen to the collection between two steps:
 *   - values of a map may be replaced, and elements of a list; what has not been passed is given as it then is;
 *   - a list may also change in any other way: a walk goes on at its next index, as a loop over indexes does, and ends
 *     where there is none. A linked list finds that index from its nearer end, once after each change;
 *   - where keys are added to a map or a set or removed from it, or it is cleared or reserved, the next step raises
 *     Exception "Keys changed during a walk" and ends the walk.
 * A walk that has ended stays so.
 *
 * The caller keeps the collection alive, as during any call; a walk need not be ended or given back. It keeps no handle
 * alive: what it gave is alive while the collection has it. What an unboxed list gave is a new box: root it before
 * anything may allocate. Such lists are better read by vorn_inline_ArrayList_span, or by index. */
#ifndef VORN_COLLECTIONS_INLINE_WALKS_H
#define VORN_COLLECTIONS_INLINE_WALKS_H

/* NOLINTBEGIN(modernize-*): C needs it so */
#include <vorn/collections/inline/lists.h>
#include <vorn/collections/inline/objects.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A walk over one collection, usually a local variable, which need not be initialised. */
typedef struct vorn_walk {
  void* key;   /* of the entry that the last step came to; or the element of a set or list */
  void* value; /* of the entry; or the element once more */

  /* The rest is the walk's own. Slots hold the next handles of the collection. They are where the collection keeps them,
   * and good while its counter of changes stands. */
  void* record;            /* null when the walk has ended */
  const uint64_t* counter; /* of changes, in the record */
  uint64_t changes;        /* what it was when the slots were taken */
  const void* after;       /* of a linked list, the node behind the slots */
  uint64_t position;       /* behind the slots: a place of a table, an index of a list */
  uint32_t kind;
  uint32_t next; /* the slot that comes next */
  uint32_t end;  /* the slots that are taken */
  void* const* slots[VORN_INLINE_WALK_SLOTS];
} vorn_walk;

/* ---- Functions of the library -------------------------------------------------------------------------------------- */

/* Begins a walk over a record of a family, VORN_INLINE_MAP, VORN_INLINE_SET or VORN_INLINE_LIST; false, with a walk that
 * gives nothing, for null and for records with a lock. Neither allocates nor raises. */
VORN_EXPORT bool vorn_inline_begin_walk(vorn_walk* walk, void* record, int kind);

/* A step of any walk, which the forms below take where there is no slot left or something has changed: false at the end
 * and when it raises. Allocates a box for an element of an unboxed list, and nothing else; runs no user code. */
VORN_EXPORT bool vorn_inline_walk_on(vorn_walk* walk);

/* ---- Beginning ----------------------------------------------------------------------------------------------------- */

/* Begins a walk over a map of any class, a set, or a list of any class, immutable ones included. False when there is
 * nothing to be walked over: for null, other handles and synchronised collections. */
VORN_INLINE bool vorn_inline_Map_walk(void* map, vorn_walk* walk) {
  return vorn_inline_begin_walk(walk, vorn_inline_record(map, VORN_INLINE_MAP), VORN_INLINE_MAP);
}
/* The same for a set. */
VORN_INLINE bool vorn_inline_HashSet_walk(void* set, vorn_walk* walk) {
  return vorn_inline_begin_walk(walk, vorn_inline_record(set, VORN_INLINE_SET), VORN_INLINE_SET);
}
/* The same for a list. */
VORN_INLINE bool vorn_inline_ArrayList_walk(void* list, vorn_walk* walk) {
  return vorn_inline_begin_walk(walk, vorn_inline_record(list, VORN_INLINE_LIST), VORN_INLINE_LIST);
}

/* ---- Steps --------------------------------------------------------------------------------------------------------- */

VORN_INLINE_PART bool vorn_inline_walk_has_slot(const vorn_walk* walk) {
  return walk->next != walk->end && *walk->counter == walk->changes;
}

/* Goes to the next entry of a walk that vorn_inline_Map_walk began, which then is in `key` and `value`; false when there
 * is none or an error was raised. */
VORN_INLINE bool vorn_inline_Map_next(vorn_walk* walk) {
  if (!vorn_inline_walk_has_slot(walk)) return vorn_inline_walk_on(walk);
  void* const* const entry = walk->slots[walk->next++];
  walk->key = entry[0];
  walk->value = entry[1];
  return true;
}

/* The same for an element, of a walk that vorn_inline_HashSet_walk began. */
VORN_INLINE bool vorn_inline_HashSet_next(vorn_walk* walk) {
  if (!vorn_inline_walk_has_slot(walk)) return vorn_inline_walk_on(walk);
  walk->key = walk->value = *walk->slots[walk->next++];
  return true;
}

/* The same of a walk that vorn_inline_ArrayList_walk began. Never raises. */
VORN_INLINE bool vorn_inline_ArrayList_next(vorn_walk* walk) {
  if (walk->next != walk->end) {
    if (*walk->counter != walk->changes) return vorn_inline_walk_on(walk);
    walk->key = walk->value = *walk->slots[walk->next++];
    return true;
  }
  if (!vorn_inline_list_has_handles(walk->record) ||
      walk->position >= vorn_inline_word(walk->record, VORN_INLINE_LIST_HANDLE_COUNT)) {
    return vorn_inline_walk_on(walk);
  }
  walk->key = walk->value = ((void**)vorn_inline_pointer(walk->record, VORN_INLINE_LIST_HANDLES))[walk->position++];
  return true;
}

#ifdef __cplusplus
}
#endif

/* NOLINTEND(modernize-*) */

#endif
