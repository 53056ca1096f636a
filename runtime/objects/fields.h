// Reading and writing the fields of an object.
#pragma once

#include <cstdint>

#include "runtime/objects/runtime_class.h"

namespace vorn::runtime {

// The object's field of that name, or null; null for null and for bare texts.
const ObjectField* fieldOf(const void* handle, const char* name);

// The word that a field is.
std::uint64_t loadField(const void* object, const ObjectField& field);
void storeField(void* object, const ObjectField& field, std::uint64_t word);

// Boxes are shared freely, so their value never changes.
bool isWritable(const void* object);

}  // namespace vorn::runtime
