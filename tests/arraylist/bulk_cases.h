// What the tests of whole-list operations share: messages, slices, and the class of what a native made.
#pragma once

#include <string>

#include "tests/arraylist/list_cases.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/error_texts.h"
#include "tests/support/slices.h"

namespace vorn::tests {

inline constexpr const char* kAddAllError = error_texts::kAddAllSource;
inline constexpr const char* kStepError = error_texts::kSliceStepZero;
inline constexpr const char* kRangeError = error_texts::kSliceAssignmentRange;
inline constexpr const char* kSourceError = error_texts::kSliceAssignmentSource;
inline constexpr const char* kExtendedError = error_texts::kExtendedSliceCount;
inline constexpr const char* kSumError = error_texts::kSumOfNull;

// The class of an object without its module and its type arguments.
inline std::string familyOf(void* handle) {
  std::string name = vorn_type_name(handle);
  name = name.substr(0, name.find('<'));
  return name.substr(name.rfind('.') + 1);
}

}  // namespace vorn::tests
