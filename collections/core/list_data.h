// The storage record of every list class.
//
// Exactly one of three storages is live:
//   primitiveKind != 0         `primitive` holds unboxed elements of that kind, under the name `primitiveType`;
//   primitiveKind == 0, linked `linkedObjects` holds handles;
//   primitiveKind == 0         `objects` holds handles.
// Further invariants, checked by validateListData (list_validation.h):
//   - `linked` never changes after creation, and a linked list never has primitive storage;
//   - primitive.elementSize is the width of primitiveKind while the kind is not 0;
//   - primitiveType is null while the kind is 0;
//   - the storages that are not live are empty, and object slots past the size are null;
//   - the mirrors are derived copies, empty unless the data-buffer protocol filled them.
// One native reads sizes without the lock (sizeFast), so whoever moves elements from one storage to another fills the
// new one first, then changes primitiveKind, then empties the old one, and sets a size once, to its final value.
// The record belongs to its object and lives inside the object's block. Heap blocks and nodes come from the collector
// (primitive elements from pointer-free memory) and are never freed. Only natives lock; nothing in this file does.
#pragma once

#include <pthread.h>

#include <cstdint>
#include <string_view>

#include "collections/core/linked_handles.h"
#include "collections/core/record_lock.h"
#include "collections/core/roots.h"
#include "collections/core/runtime_type_name.h"
#include "collections/core/small_buffers.h"

struct ListData {
  enum class PrimitiveKind : std::uint8_t {
    None = 0,
#define VORN_PRIMITIVE_KIND(value, enumerator, type, width, name, secondName) enumerator = value,
#include "collections/core/primitive_kinds.def"
#undef VORN_PRIMITIVE_KIND
  };

  void* runtimeHeader[2] = {};  // the runtime's words; never read or written here
  bool synchronized = false;
  bool linked = false;
  PrimitiveKind primitiveKind = PrimitiveKind::None;
  RuntimeTypeName elementType;    // declared, normalised; null when the list is untyped
  RuntimeTypeName primitiveType;  // the exact name the unboxed elements are kept under
  SmallPrimitiveBuffer primitive;
  SmallMirror<long long, 16> i64Mirror;
  SmallMirror<double, 8> f64Mirror;
  SmallObjectVector objects;
  LinkedHandles linkedObjects;
  pthread_mutex_t* mutex = nullptr;

  ListData() = default;
  ListData(const ListData&) = delete;
  ListData& operator=(const ListData&) = delete;

  // Number of elements in the object or linked storage, whichever `linked` selects.
  [[nodiscard]] std::uint64_t objectCount() const { return linked ? linkedObjects.count : objects.size; }

  // Number of elements in the live storage.
  [[nodiscard]] std::uint64_t logicalSize() const {
    return primitiveKind != PrimitiveKind::None ? primitive.size : objectCount();
  }

  // The four below work on the object or linked storage, whichever `linked` selects, and never look at primitiveKind.

  // Appends a handle. Allocates; throws std::bad_alloc with the list unchanged.
  void objectPushBack(void* handle);

  // Removes the handle at `index`. Array-backed lists ignore an index past the end; linked lists require a valid one.
  void objectErase(std::uint64_t index);

  // Replaces all contents with the given handles, in order. The caller keeps them rooted. Allocates.
  void objectAssign(const vorn::collections::HandleVector::Storage& values);

  // Appends all handles, in order, to a rooted vector. Allocates.
  void copyObjectsTo(vorn::collections::HandleVector::Storage& values) const;
};

using ListDataLock = vorn::collections::RecordLock<ListData>;

// Kind of a normalised type name: exact, case-sensitive, no prefix stripped; None for every other name.
ListData::PrimitiveKind primitiveKindForType(std::string_view name);

// Canonical short form of a type name: the short name; "Object" for the empty name. A view into `name` or a constant.
std::string_view normalizePrimitiveTypeName(std::string_view name);

// Predicates on a C string type name, with or without "vorn."; null gives false. "Char" and "CodeUnit" are not
// int-like, which element comparison relies on.
bool isIntLikeListType(const char* name);
bool isFloatLikeListType(const char* name);

// Prepares the primitive buffer for a kind: when the width differs it becomes empty inline storage of the new width,
// otherwise the stored bytes stay. Does not set primitiveKind.
void configurePrimitiveStorage(ListData& list, ListData::PrimitiveKind kind);

// Turns primitive storage into object storage, boxing every element in order; the only way out of primitive storage
// besides clearing. elementType stays. `room` reserves that many object slots more, so that a store that follows cannot
// fail. Allocates; on an exception the list is as it was.
void materializePrimitiveList(ListData& list, std::uint64_t room = 0);

// Replaces all contents, in whatever storage, by the given handles in object storage. The caller keeps them rooted.
// Allocates; on an exception the list is as it was.
void replaceWithObjects(ListData& list, const vorn::collections::HandleVector::Storage& values);

// Gives the target the same primitive storage as the source. Allocates.
void copyPrimitiveListStorage(const ListData& source, ListData& target);

// Empties the list: kind and primitiveType reset, all sizes 0, used slots nulled. elementType, `linked` and capacities
// stay.
void clearListStorage(ListData& list);
