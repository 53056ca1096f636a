#include "runtime/objects/allocation.h"

#include <pthread.h>

#include <cstddef>
#include <new>
#include <system_error>

#include "collections/core/list_data.h"
#include "collections/core/runtime_interface.h"
#include "runtime/heap/heap.h"
#include "runtime/objects/builtin_classes.h"
#include "runtime/objects/class_registry.h"
#include "runtime/values/boxes.h"

namespace vorn::runtime {
namespace {

// A list object is one block: the record's buffers point into it, and as long as the object is reachable, so is its
// record. The mutex of a synchronised list ends the block. It is never destroyed: a finalizer would have to run inside
// some allocation, on a thread that may hold that very lock.
struct ListObject : ObjectRecord {
  ListData list;
};
struct SynchronisedListObject : ListObject {
  pthread_mutex_t mutex;
};
static_assert(alignof(SynchronisedListObject) <= kObjectAlignment);

void writeHeader(ObjectRecord* object, const RuntimeClass& type, void* nativeRecord) {
  object->runtimeClass = &type;
  object->nativeRecord = nativeRecord;
  object->header = objectHeaderFor(object, type.kind);
}

template <class Object>
Object* newListBlock(const RuntimeClass& type) {
  auto* object = static_cast<Object*>(allocateScanned(sizeof(Object)));
  auto* list = new (&object->list) ListData;
  list->linked = type.traits.isLinked;
  list->elementType = type.elementType;
  writeHeader(object, type, list);
  return object;
}

ListObject* newList(const RuntimeClass& type) {
  if (!type.traits.isSynchronised) return newListBlock<ListObject>(type);
  auto* object = newListBlock<SynchronisedListObject>(type);
  if (const int error = pthread_mutex_init(&object->mutex, nullptr); error != 0) {
    throw std::system_error(error, std::generic_category());
  }
  object->list.mutex = &object->mutex;
  object->list.synchronized = true;
  return object;
}

void* newInstance(const RuntimeClass& type) {
  auto* object = static_cast<ObjectRecord*>(allocateScanned(type.instanceSize));
  writeHeader(object, type, nullptr);
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
    case ObjectKind::Array:
    case ObjectKind::Map:
    case ObjectKind::Set:
      return nullptr;  // Not provided yet: the records of these families do not exist.
  }
  return nullptr;
}

}  // namespace vorn::runtime

// The third argument changes nothing here: a new list has room for its first elements of either form.
extern "C" void* Vorn_allocArrayListObjectFast(bool synchronised, ListData** listData, bool /*elementsAreHandles*/) {
  using namespace vorn::runtime;
  try {
    ListObject* object = newList(builtinClass(synchronised ? BuiltinClass::ArrayListSync : BuiltinClass::ArrayList));
    *listData = &object->list;
    return object;
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
