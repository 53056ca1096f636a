// Keys of arguments. Making a key may run user code and raise; the natives do so before they lock.
#pragma once

#include "collections/core/kinds.h"
#include "collections/core/port/keys.h"
#include "collections/core/port/object_layout.h"
#include "collections/keyed/map_data.h"

namespace vorn::collections {

// The key of an integer box is made without a call. A ULong's bits are an unsigned number, so its upper half is not
// meant here.
inline bool isIntegerKey(const RegisteredObject* object) {
  return object != nullptr && object->kind() == ObjectKind::IntegerBox &&
         (object->integer >= 0 || boxedTypeOf(*object) != vorn::collections::PrimitiveType::ULong);
}

// The key of a hash map for a non-null handle. May run user code, raise and allocate: callers look at hasPendingError()
// next, which also tells of an error that was pending before. Returned in place, since a copy of a key that was just
// written field by field waits for the stores.
inline NativeCollectionKey hashedKeyOf(void* handle) {
  const RegisteredObject* const object = getRegisteredObjectUnsafe(handle);
  if (isIntegerKey(object)) [[likely]]
    return integerCollectionKey(object->integer);
  return makeNativeCollectionKey(handle);
}

// The same for any map. A sorted one never looks at hashes, so that its keys come without and run no user code. Whether
// a map is hashed never changes and may be read without its lock.
inline NativeCollectionKey mapKeyOf(const MapData& map, void* handle) {
  return map.hashed ? hashedKeyOf(handle) : makeNativeOrderedCollectionKey(handle);
}

// The key of an element of a set, which may be null.
inline NativeCollectionKey setKeyOf(void* handle) {
  const RegisteredObject* const object = getRegisteredObjectUnsafe(handle);
  if (isIntegerKey(object)) [[likely]]
    return integerCollectionKey(object->integer);
  return makeNativeSetCollectionKey(handle);
}

}  // namespace vorn::collections
