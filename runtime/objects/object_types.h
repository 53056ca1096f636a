// What an object is.
#pragma once

#include <string_view>

#include "runtime/objects/runtime_class.h"

namespace vorn::runtime {

// The class of an object; String for a bare text; null for null.
const RuntimeClass* classOf(const void* handle);

// Whether the handle is an instance of the class or of one derived from it. A short name stands for every user class so
// called, and for the built-in class alone where there is one. A generic instance is an instance of its raw class.
bool isInstanceOfNamed(const void* handle, std::string_view typeName);

}  // namespace vorn::runtime
