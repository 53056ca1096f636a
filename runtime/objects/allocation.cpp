#include "runtime/objects/allocation.h"

#include <new>

#include "collections/core/port/objects.h"
#include "collections/core/port/values.h"
#include "runtime/heap/heap.h"
#include "runtime/objects/builtin_classes.h"
#include "runtime/objects/class_registry.h"
#include "runtime/objects/collection_objects.h"
#include "runtime/objects/tuple_object.h"
#include "runtime/values/boxes.h"

namespace vorn::runtime {
namespace {

void* newInstance(const RuntimeClass& type) {
  auto* object = static_cast<ObjectRecord*>(allocateScanned(type.instanceSize));
  object->runtimeClass = &type;
  object->header = objectHeaderFor(object, type.kind);
  return object;
}

}  // namespace

void* newObject(const RuntimeClass& type) {
  if (type.traits.isAbstract) return nullptr;
  switch (type.kind) {
    case ObjectKind::IntegerBox:
    case ObjectKind::CharacterBox:
    case ObjectKind::FloatingBox:
      return newBox(type, 0);
    case ObjectKind::BooleanBox:
      return Vorn_boxBool(false);
    case ObjectKind::String:
      return Vorn_allocString({});
    case ObjectKind::Instance:
    case ObjectKind::Type:
      return newInstance(type);
    case ObjectKind::List:
      return newList(type);
    case ObjectKind::Tuple:
      return newTuple(type);
    case ObjectKind::Map:
      return newMap(type);
    case ObjectKind::Set:
      return newSet(type);
    case ObjectKind::Array:
      return newArray(type);
  }
  return nullptr;
}

}  // namespace vorn::runtime

// The third argument changes nothing here: a new list has room for its first elements of either form.
extern "C" void* Vorn_allocArrayListObjectFast(bool synchronised, ListData** listData, bool /*elementsAreHandles*/) {
  using namespace vorn::runtime;
  try {
    return newList(builtinClass(synchronised ? BuiltinClass::ArrayListSync : BuiltinClass::ArrayList), listData);
  } catch (const std::bad_alloc&) {
    *listData = nullptr;
    return nullptr;
  }
}

extern "C" void* Vorn_allocObject(const char* className) {
  if (className == nullptr) return nullptr;
  const RuntimeClass* type = vorn::runtime::findClass(className);
  return type != nullptr ? vorn::runtime::newObject(*type) : nullptr;
}
