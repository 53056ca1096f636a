// The transitions between the storages of a list: configure, adopt, materialise, replace, copy, reset, clear. In each,
// what can fail comes first, and whoever reads the list's size meanwhile, without its lock, reads the one before or the
// one after. Nothing here locks.
#pragma once

#include <cstdint>

#include "collections/core/storage/list_data.h"

// Prepares the primitive buffer for a kind: when the width differs it becomes empty inline storage of the new width,
// otherwise the stored bytes stay. Does not set primitiveKind.
void configurePrimitiveStorage(ListData& list, ListData::PrimitiveKind kind);

// Makes the primitive storage, which is empty, the live one.
void beginPrimitiveStorage(ListData& list, ListData::PrimitiveKind kind, RuntimeTypeName typeName);

// Turns primitive storage into object storage, boxing every element in order; the only way out of primitive storage
// besides clearing. elementType stays. `room` reserves that many object slots more, so that a store that follows cannot
// fail. Allocates; on an exception the list is as it was.
void materializePrimitiveList(ListData& list, std::uint64_t room = 0);

// Replaces all contents, in whatever storage, by the given handles in object storage. The caller keeps them rooted.
// Allocates; on an exception the list is as it was.
void replaceWithObjects(ListData& list, const vorn::collections::HandleVector::Storage& values);

// Gives the target the same primitive storage as the source. Throws with nothing changed. Allocates.
void copyPrimitiveListStorage(const ListData& source, ListData& target);

// Empties the list: kind and primitiveType reset, all sizes 0, used slots nulled. elementType, `linked` and capacities
// stay.
void clearListStorage(ListData& list);

namespace vorn::collections {

// Empties an array-backed list and makes it primitive storage of this kind and name with room for n elements. The
// declared type stays. Throws with nothing changed. Allocates.
void resetToPrimitiveStorage(ListData& list, ListData::PrimitiveKind kind, RuntimeTypeName typeName, std::uint64_t n);

// Makes an empty array-backed list primitive storage like the source, with room for n elements. Its declared type stays
// when it has one, else it becomes the source's declared type or, failing that, the type name. Allocates.
void adoptPrimitiveStorageOf(const ListData& source, ListData& target, std::uint64_t n);

}  // namespace vorn::collections
