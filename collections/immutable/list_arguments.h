// The lists that constructors take as arguments.
#pragma once

#include "collections/core/port/objects.h"
#include "collections/core/port/type_names.h"

namespace vorn::collections {

// Whether the handle is a list of any class, ImmutableList included. Not for null.
inline bool isList(void* handle) {
  const char* name = Vorn_objectTypeName(handle);
  return name != nullptr && isIListLike(name);
}

}  // namespace vorn::collections
