// Keys of arguments. Making a key may run user code and raise; the natives do so before they lock.
#pragma once

#include <optional>

#include "collections/core/runtime_interface.h"

namespace vorn::collections {

// The key of an integer box is made without a call. A ULong's bits are an unsigned number, so its upper half is not
// meant here.
inline bool isIntegerKey(const RegisteredObject* object) {
  return object != nullptr && object->kind() == ObjectKind::IntegerBox &&
         (object->integer >= 0 || boxedTypeOf(*object) != BoxedType::ULong);
}

// The key of a map for a non-null handle, or nothing when an error is pending now, whether making the key raised it or
// it was pending before. May run user code and allocate.
inline std::optional<NativeCollectionKey> mapKeyOf(void* handle) {
  const RegisteredObject* const object = getRegisteredObjectUnsafe(handle);
  const NativeCollectionKey key =
      isIntegerKey(object) ? integerCollectionKey(object->integer) : makeNativeCollectionKey(handle);
  if (hasPendingError()) [[unlikely]]
    return std::nullopt;
  return key;
}

// The same for an element of a set, which may be null.
inline std::optional<NativeCollectionKey> setKeyOf(void* handle) {
  const RegisteredObject* const object = getRegisteredObjectUnsafe(handle);
  const NativeCollectionKey key =
      isIntegerKey(object) ? integerCollectionKey(object->integer) : makeNativeSetCollectionKey(handle);
  if (hasPendingError()) [[unlikely]]
    return std::nullopt;
  return key;
}

}  // namespace vorn::collections
