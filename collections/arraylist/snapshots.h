// Copies of a list's storage, taken under its lock and worked on without it.
#pragma once

#include <vorn/collections/runtime_helpers.hpp>

#include <cstdint>
#include <vector>

#include "collections/core/storage/list_data.h"

// One list's storage at one moment. Unboxed elements are kept as they are stored, at their own width.
struct ListStorageSnapshot {
  ListData::PrimitiveKind primitiveKind = ListData::PrimitiveKind::None;
  RuntimeTypeName primitiveType;
  std::vector<unsigned char> elements;      // of a primitive list
  vorn::collections::HandleVector objects;  // of any other
  [[nodiscard]] bool isUnboxed() const { return primitiveKind != ListData::PrimitiveKind::None; }
  [[nodiscard]] std::uint64_t size() const;
};

// Fills an empty snapshot; a null list leaves it empty with no kind. Allocates for boxed storage.
void snapshotListStorage(void* list, ListStorageSnapshot& snapshot);

namespace vorn::collections {

// Appends `n` elements of a kind as boxes under a name. Nothing collected but the boxes is touched, so `elements` may
// be collected memory that the caller keeps alive. Allocates.
void appendBoxes(ListData::PrimitiveKind kind, RuntimeTypeName typeName, const unsigned char* elements, std::uint64_t n,
                 HandleVector::Storage& values);

// Appends the elements of a list's live storage as handles; the caller holds the lock. Allocates.
void appendListObjectsLocked(const ListData& list, HandleVector::Storage& values);

}  // namespace vorn::collections
