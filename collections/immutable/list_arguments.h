// The lists that constructors take as arguments.
#pragma once

#include "collections/core/runtime_interface.h"

namespace vorn::collections {

// Whether the handle is a list of any class, ImmutableList included. Not for null.
inline bool isList(void* handle) {
  const char* name = Vorn_objectTypeName(handle);
  return name != nullptr && isIListLike(name);
}

}  // namespace vorn::collections
