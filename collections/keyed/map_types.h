// Type names of a map's keys and values.
#pragma once

#include <string_view>

#include "collections/core/port/object_layout.h"
#include "collections/core/port/objects.h"
#include "collections/core/port/type_name.h"
#include "collections/core/port/type_names.h"

namespace vorn::collections {

inline constexpr std::string_view kObjectTypeName = "Object";

// The short name of a value's type; "Object" for null and for a value without a type name. Lives as long as the
// process.
inline std::string_view mapValueTypeName(void* value) {
  const char* const name = value != nullptr ? Vorn_objectTypeName(value) : nullptr;
  return name != nullptr ? shortTypeNameLocal(name) : kObjectTypeName;
}

// What to record after one more key or value of the named type: the first name, and "Object" for good once another one
// has come. The names are interned only when the record changes.
inline RuntimeTypeName commonTypeName(RuntimeTypeName recorded, std::string_view name) {
  if (recorded == name || recorded == kObjectTypeName) return recorded;
  return internRuntimeTypeName(recorded.empty() ? name : kObjectTypeName);
}

// The same for a name that is interned already.
inline RuntimeTypeName commonTypeName(RuntimeTypeName recorded, RuntimeTypeName name) {
  if (recorded.empty() || recorded == name) return name;
  return typeNameOf(PrimitiveType::None);
}

// The short type name of a box, which is told without a text; null for all other handles.
inline RuntimeTypeName boxTypeName(const void* handle) {
  const RegisteredObject* const box = getRegisteredObjectUnsafe(handle);
  if (box == nullptr || box->kind() > ObjectKind::CharacterBox) return {};
  return typeNameOf(boxedTypeOf(*box));
}

}  // namespace vorn::collections
