// Every class by name: built-in, generic and user classes.
#pragma once

#include <string_view>

#include "runtime/objects/runtime_class.h"

namespace vorn::runtime {

// The class that a name stands for, or null: a built-in class by short or full name, a generic instance of one ("Map<
// String, Int>", made when first asked for), or a user class by full name, else by short name (the class defined first,
// when several share it). What a name stands for never changes. Thread-safe; a known name is found without a lock. Does
// not touch the collected heap; std::bad_alloc when native memory is short.
const RuntimeClass* findClass(std::string_view name);

// Adds a user class, which must never be freed or changed afterwards; false when its name already stands for a class.
bool addUserClass(RuntimeClass& definition);

}  // namespace vorn::runtime
