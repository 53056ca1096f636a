#include "collections/core/port/type_name.h"

#include <vorn/collections/runtime_helpers.hpp>

#include "collections/core/port/runtime_check.h"

namespace vorn::collections {

// An archive gives a program only those objects that another one asks for. Every program needs this one, and with it the
// check.
[[gnu::used]] static const bool* const theCheck = &runtimeFits;

// Constant-initialised, so that names can be interned before any static initialiser has run.
constinit const InternedTypeName standardTypeNames[kPrimitiveTypes] = {
    {.text = "Object", .takesEveryValue = true},
#define VORN_PRIMITIVE_KIND(value, enumerator, type, width, family, slot) \
  {.text = #enumerator, .primitiveType = PrimitiveType::enumerator},
#define VORN_CHARACTER_TYPE(typeName, kind) {.text = #typeName, .primitiveType = PrimitiveType::typeName},
#include "collections/core/kinds.def"
};

const InternedTypeName* standardTypeName(std::string_view name) {
  const PrimitiveType type = primitiveTypeNamed(name);
  const bool standard = type != PrimitiveType::None || name == standardTypeNames[0].text;
  return standard ? typeNameOf(type).name : nullptr;
}

}  // namespace vorn::collections
