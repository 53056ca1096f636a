// Keys of arguments. Making a key may run user code and raise; the natives do so before they lock.
#pragma once

#include "collections/core/kinds.h"
#include "collections/core/port/keys.h"
#include "collections/core/port/object_layout.h"
#include "collections/keyed/map_data.h"

namespace vorn::collections {

// The box of an integer, whose key is made without a call; null for any other handle. A ULong's bits are an unsigned
// number, so its upper half is not meant here.
inline const RegisteredObject* integerKeyBoxOrNull(const void* handle) {
  if (objectHeaderAt(handle) != objectHeaderFor(handle, ObjectKind::IntegerBox)) return nullptr;
  const auto* const box = static_cast<const RegisteredObject*>(handle);
  return box->integer >= 0 || boxedTypeOf(*box) != PrimitiveType::ULong ? box : nullptr;
}

// The key of an integer's box without a call, what make(handle) returns for any other handle. Returned in place, since a
// copy of a key that was just written field by field waits for the stores.
template <class Make>
inline NativeCollectionKey keyOf(void* handle, Make make) {
  if (const RegisteredObject* const box = integerKeyBoxOrNull(handle)) [[likely]]
    return integerCollectionKey(box->integer);
  return make(handle);
}

// The key of a map for a non-null handle. For hash maps it may run user code, raise and allocate: callers look at
// hasPendingError() next, which also tells of an error that was pending before. A sorted map never looks at hashes, so
// that its keys need none and run no user code. Whether a map is hashed never changes and may be read without its lock.
inline NativeCollectionKey mapKeyOf(const MapData& map, void* handle) {
  return keyOf(handle, [&](void* other) {
    return map.hashed ? makeNativeCollectionKey(other) : makeNativeOrderedCollectionKey(other);
  });
}

// The key of an element of a set, which may be null.
inline NativeCollectionKey setKeyOf(void* handle) { return keyOf(handle, makeNativeSetCollectionKey); }

}  // namespace vorn::collections
