// Boxes by the functions that the embedding API has for each type.
#pragma once

#include "fuzz/values.h"

namespace vorn::fuzz {

// A new box by the maker of its type alone. The value becomes one of the type.
void* exactBox(Value& value);

// Ends the process unless the handle unboxes as what it is, and as nothing else.
void requireBox(void* handle, const Value& value);

}  // namespace vorn::fuzz
