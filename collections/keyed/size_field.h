// The "size" field of map and set objects.
#pragma once

#include <cstdint>

#include "collections/core/port/object_layout.h"

namespace vorn::collections {

// Tells compiled code how many entries a map or set has. The caller holds the lock.
inline void writeSizeField(void* handle, std::uint64_t count) {
  static_cast<SizedObject*>(handle)->size = static_cast<std::int64_t>(count);
}

}  // namespace vorn::collections
