#include "tests/support/collections.h"

#include "collections/array/array_data.h"
#include "collections/array/array_validation.h"
#include "collections/core/port/object_layout.h"
#include "collections/display/display_guard.h"
#include "collections/keyed/keyed_validation.h"
#include "collections/keyed/map_data.h"
#include "collections/keyed/set_data.h"
#include "tests/support/held_mutex.h"

namespace vorn::tests {

pthread_mutex_t** mutexOf(Family family, void* collection) {
  switch (family) {
    case Family::List:
    case Family::Immutable:
      return &getListData(collection)->mutex;
    case Family::Set:
      return &getSetData(collection)->mutex;
    case Family::Map:
      return &getMapData(collection)->mutex;
    case Family::Array:
      return &getArrayData(collection)->mutex;
    case Family::Tuple:
      break;
  }
  return nullptr;
}

bool isLocked(const CollectionClass& type, void* collection) {
  return type.synchronised && isLocked(*mutexOf(type.family, collection));
}

long long sizeField(void* handle) {
  std::int64_t size = -1;
  EXPECT_NE(vorn_field_get_integer(handle, "size", &size), 0);
  return size;
}

std::string faultOfArray(void* array) {
  const ArrayData& data = *getArrayData(array);
  if (isRecordLocked(data)) return "the array is locked";
  return collections::validateArrayData(data);
}

std::string faultOfMap(void* map) {
  const MapData& data = *getMapData(map);
  if (isRecordLocked(data)) return "the map is locked";
  if (sizeField(map) != static_cast<long long>(data.count())) return "the size field is not the number of entries";
  return collections::validateMapData(data);
}

std::string faultOfSet(void* set) {
  const SetData& data = *getSetData(set);
  if (isRecordLocked(data)) return "the set is locked";
  if (sizeField(set) != static_cast<long long>(data.count())) return "the size field is not the number of elements";
  return collections::validateSetData(data);
}

std::string faultOf(const CollectionClass& type, void* collection) {
  if (!gCollectionDisplayStack.empty()) return "a display has left its mark behind";
  switch (type.family) {
    case Family::List:
    case Family::Immutable:
      if (isRecordLocked(*getListData(collection))) return "the list is locked";
      return collections::validateListData(*getListData(collection));
    case Family::Array:
      return faultOfArray(collection);
    case Family::Map:
      return faultOfMap(collection);
    case Family::Set:
      return faultOfSet(collection);
    case Family::Tuple:
      break;
  }
  return {};
}

}  // namespace vorn::tests
