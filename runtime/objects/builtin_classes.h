// The built-in classes and the lookup of value types by short name.
#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>

#include "runtime/objects/runtime_class.h"

namespace vorn::runtime {

inline constexpr auto kBuiltinClasses = static_cast<std::size_t>(BuiltinClass::None);

// Indexed by BuiltinClass.
extern const RuntimeClass builtinClasses[kBuiltinClasses];

inline const RuntimeClass& builtinClass(BuiltinClass type) { return builtinClasses[static_cast<std::size_t>(type)]; }

static_assert(BuiltinClass::SByte < BuiltinClass::ULong && BuiltinClass::ULong < BuiltinClass::Char &&
                  BuiltinClass::Char < BuiltinClass::CodeUnit && BuiltinClass::CodeUnit < BuiltinClass::Boolean &&
                  BuiltinClass::Boolean < BuiltinClass::Float && BuiltinClass::Float < BuiltinClass::Double &&
                  BuiltinClass::Double < BuiltinClass::String,
              "ranges of the class table are tested by comparison");

// The types that boxIntegerLikeLocal makes a new box for.
inline bool isIntegerLikeBox(BuiltinClass type) { return type <= BuiltinClass::CodeUnit; }
inline bool isFloatingBox(BuiltinClass type) { return type == BuiltinClass::Float || type == BuiltinClass::Double; }
inline bool isValueBox(BuiltinClass type) { return type <= BuiltinClass::Double; }

// The boxed type of a short name; None for every other name. Boxing and interning start here, so it looks at the length
// and at most two words of the name.
inline BuiltinClass boxedTypeOf(std::string_view name) {
  const auto is = [&name](const auto& literal) { return std::memcmp(name.data(), literal, sizeof(literal) - 1) == 0; };
  switch (name.size()) {
    case 3:
      return is("Int") ? BuiltinClass::Int : BuiltinClass::None;
    case 4:
      if (is("Long")) return BuiltinClass::Long;
      if (is("Byte")) return BuiltinClass::Byte;
      if (is("UInt")) return BuiltinClass::UInt;
      return is("Char") ? BuiltinClass::Char : BuiltinClass::None;
    case 5:
      if (is("SByte")) return BuiltinClass::SByte;
      if (is("Short")) return BuiltinClass::Short;
      if (is("ULong")) return BuiltinClass::ULong;
      return is("Float") ? BuiltinClass::Float : BuiltinClass::None;
    case 6:
      if (is("Double")) return BuiltinClass::Double;
      return is("UShort") ? BuiltinClass::UShort : BuiltinClass::None;
    case 7:
      return is("Boolean") ? BuiltinClass::Boolean : BuiltinClass::None;
    case 8:
      return is("CodeUnit") ? BuiltinClass::CodeUnit : BuiltinClass::None;
    default:
      return BuiltinClass::None;
  }
}

// The built-in class of a short or full name without type arguments; null for every other name.
const RuntimeClass* findBuiltinClass(std::string_view name);

}  // namespace vorn::runtime
