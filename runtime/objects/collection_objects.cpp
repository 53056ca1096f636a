#include "runtime/objects/collection_objects.h"

#include <pthread.h>

#include <new>
#include <system_error>

#include "collections/array/array_data.h"
#include "collections/core/storage/list_data.h"
#include "collections/keyed/map_data.h"
#include "collections/keyed/set_data.h"
#include "runtime/heap/heap.h"

namespace vorn::runtime {
namespace {

struct ListObject : ObjectRecord {
  ListData record;
};

// "size" is the first field, as in tuples. The natives of maps and sets keep it up to date; of those of arrays only the
// copy from another array writes it, the rest being up to the language's own class.
struct ArrayObject : SizedObject {
  ArrayData record;
};
struct MapObject : SizedObject {
  MapData record;
};
struct SetObject : SizedObject {
  SetData record;
};

template <class Object>
struct Synchronised : Object {
  pthread_mutex_t mutex;
};
static_assert(alignof(Synchronised<ListObject>) <= kObjectAlignment);
static_assert(alignof(Synchronised<ArrayObject>) <= kObjectAlignment);
static_assert(alignof(Synchronised<MapObject>) <= kObjectAlignment);
static_assert(alignof(Synchronised<SetObject>) <= kObjectAlignment);

template <class Object>
Object* newBlock(const RuntimeClass& type) {
  auto* object = static_cast<Object*>(allocateScanned(sizeof(Object)));
  auto* record = new (&object->record) decltype(object->record);
  object->runtimeClass = &type;
  object->nativeRecord = record;
  object->header = objectHeaderFor(object, type.kind);
  return object;
}

// Mutexes are recursive: user code that a native runs under its collection's lock, and a collection that holds itself,
// see the synchronised collection as they would see a plain one, instead of waiting for themselves.
void initRecursiveMutex(pthread_mutex_t& mutex) {
  pthread_mutexattr_t attributes;
  int error = pthread_mutexattr_init(&attributes);
  if (error == 0) {
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    error = pthread_mutex_init(&mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
  }
  if (error != 0) throw std::system_error(error, std::generic_category());
}

// An object of the class, with a mutex when the class is synchronised.
template <class Object>
Object* newCollection(const RuntimeClass& type) {
  if (!type.traits.isSynchronised) return newBlock<Object>(type);
  auto* object = newBlock<Synchronised<Object>>(type);
  initRecursiveMutex(object->mutex);
  object->record.mutex = &object->mutex;
  object->record.synchronized = true;
  return object;
}

}  // namespace

ObjectRecord* newList(const RuntimeClass& type, ListData** record) {
  auto* object = newCollection<ListObject>(type);
  object->record.linked = type.traits.isLinked;
  object->record.elementType = type.elementType;
  if (record != nullptr) *record = &object->record;
  return object;
}

ObjectRecord* newArray(const RuntimeClass& type) { return newCollection<ArrayObject>(type); }

ObjectRecord* newMap(const RuntimeClass& type) {
  auto* object = newCollection<MapObject>(type);
  object->record.hashed = type.builtin != BuiltinClass::SortedMap && type.builtin != BuiltinClass::SortedMapSync;
  return object;
}

ObjectRecord* newSet(const RuntimeClass& type) { return newCollection<SetObject>(type); }

}  // namespace vorn::runtime
