// A whole-record check for tests, fuzzers and debugging.
#pragma once

#include <string>

#include "collections/array/array_data.h"

namespace vorn::collections {

// What is wrong with the record, or the empty string. The caller holds the lock.
std::string validateArrayData(const ArrayData& array);

}  // namespace vorn::collections
