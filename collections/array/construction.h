// Which element type a new array has.
#pragma once

#include <string>
#include <string_view>

namespace vorn::collections {

// The element type that an array's type name gives: its first type argument, else what stands between its first "<" and
// its last ">" without blanks at the ends, else "Object".
std::string arrayElementTypeName(std::string_view typeName);

}  // namespace vorn::collections
