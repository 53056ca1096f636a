// The built-in classes and the lookup of value types by name.
#pragma once

#include <cstddef>
#include <string_view>

#include "collections/core/kinds.h"
#include "runtime/objects/runtime_class.h"

namespace vorn::runtime {

inline constexpr auto kBuiltinClasses = static_cast<std::size_t>(BuiltinClass::None);

// Indexed by BuiltinClass.
extern const RuntimeClass builtinClasses[kBuiltinClasses];

inline const RuntimeClass& builtinClass(BuiltinClass type) { return builtinClasses[static_cast<std::size_t>(type)]; }

// The class of the boxes of a primitive type.
constexpr BuiltinClass boxClassOf(collections::PrimitiveType type) {
  return static_cast<BuiltinClass>(static_cast<std::size_t>(type) - 1);
}
static_assert(boxClassOf(collections::PrimitiveType::SByte) == BuiltinClass::SByte &&
              boxClassOf(collections::PrimitiveType::CodeUnit) == BuiltinClass::CodeUnit);

inline const RuntimeClass& boxClass(collections::PrimitiveType type) { return builtinClass(boxClassOf(type)); }

// The built-in class of a short or full name without type arguments; null for every other name.
const RuntimeClass* findBuiltinClass(std::string_view name);

}  // namespace vorn::runtime
