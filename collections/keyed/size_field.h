// The "size" field of map and set objects.
#pragma once

#include <cstdint>

#include "collections/core/port/objects.h"

namespace vorn::collections {

// Tells compiled code how many entries there are. The caller holds the lock.
inline void writeSizeField(void* handle, std::uint64_t count) {
  Vorn_setField_i64(handle, "size", static_cast<long long>(count));
}

}  // namespace vorn::collections
