// Making objects.
#pragma once

#include "runtime/objects/runtime_class.h"

namespace vorn::runtime {

// A new object of a class, with zero fields; null for a class that has no instances. Allocates; std::bad_alloc.
void* newObject(const RuntimeClass& type);

}  // namespace vorn::runtime
