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

#include "collections/core/kinds.h"
#include "collections/core/port/roots.h"
#include "collections/core/port/type_name.h"
#include "collections/core/record_lock.h"
#include "collections/core/storage/linked_handles.h"
#include "collections/core/storage/small_buffers.h"

struct ListData {
  using PrimitiveKind = vorn::collections::PrimitiveKind;

  void* runtimeHeader[2] = {};  // the runtime's words; never read or written here
  bool synchronized = false;
  bool linked = false;
  PrimitiveKind primitiveKind = PrimitiveKind::None;
  std::uint8_t zero = 0;          // compiled code looks at it and the three bytes before it at once
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

  // Whether the live storage is the primitive one.
  [[nodiscard]] bool isUnboxed() const { return primitiveKind != PrimitiveKind::None; }

  // Number of elements in the object or linked storage, whichever `linked` selects.
  [[nodiscard]] std::uint64_t objectCount() const { return linked ? linkedObjects.count : objects.size; }

  // Number of elements in the live storage.
  [[nodiscard]] std::uint64_t logicalSize() const { return isUnboxed() ? primitive.size : objectCount(); }

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
