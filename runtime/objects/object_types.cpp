// What an object is: its type name, instance tests, and the end of the process for a record of the wrong family.
#include "runtime/objects/object_types.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "collections/core/port/objects.h"
#include "runtime/objects/builtin_classes.h"
#include "runtime/objects/generic_names.h"

namespace {

bool answersTo(const RuntimeClass& candidate, std::string_view name) {
  return name == candidate.fullName || (candidate.answersToShortName && name == candidate.shortName);
}

const char* familyName(ObjectKind kind) {
  switch (kind) {
    case ObjectKind::IntegerBox:
      return "integer";
    case ObjectKind::FloatingBox:
      return "floating number";
    case ObjectKind::BooleanBox:
      return "Boolean";
    case ObjectKind::CharacterBox:
      return "character";
    case ObjectKind::String:
      return "String";
    case ObjectKind::Instance:
      return "instance of a user class";
    case ObjectKind::Type:
      return "Type";
    case ObjectKind::Tuple:
      return "tuple";
    case ObjectKind::List:
      return "list";
    case ObjectKind::Array:
      return "array";
    case ObjectKind::Map:
      return "map";
    case ObjectKind::Set:
      return "set";
  }
  return "object of an unknown kind";
}

}  // namespace

namespace vorn::runtime {

const RuntimeClass* classOf(const void* handle) {
  if (handle == nullptr) return nullptr;
  if (!hasObjectMagic(handle)) return &builtinClass(BuiltinClass::String);
  return static_cast<const ObjectRecord*>(handle)->runtimeClass;
}

bool isInstanceOfNamed(const void* handle, std::string_view typeName) {
  const RuntimeClass* type = classOf(handle);
  for (const RuntimeClass* c = type; c != nullptr; c = c->base) {
    if (answersTo(*c, typeName) || (c->raw != nullptr && answersTo(*c->raw, typeName))) return true;
  }
  // Only generic names have further spellings.
  if (typeName.find('<') == std::string_view::npos) return false;
  for (const RuntimeClass* c = type; c != nullptr; c = c->base) {
    if (c->raw != nullptr && namesSameType(c->fullName, typeName)) return true;
  }
  return false;
}

}  // namespace vorn::runtime

extern "C" const char* Vorn_objectTypeName(void* handle) {
  const RuntimeClass* type = vorn::runtime::classOf(handle);
  return type != nullptr ? type->fullName.data() : nullptr;
}

extern "C" bool Vorn_isInstanceOf(void* handle, const char* typeName) {
  return handle != nullptr && typeName != nullptr && vorn::runtime::isInstanceOfNamed(handle, typeName);
}

void runtimeWrongRecordFamily(const void* handle, ObjectKind expected) {
  const RuntimeClass* type = vorn::runtime::classOf(handle);
  std::fprintf(stderr, "vorn runtime: a %s was expected, but the handle is %s\n", familyName(expected),
               type != nullptr ? type->fullName.data() : "null");
  std::abort();
}
