// Natives that read one element or the size.

#include <vorn/collections/array_list.h>

#include "collections/arraylist/object_cursor.h"
#include "collections/core/elements/primitive_elements.h"
#include "collections/core/elements/primitive_values.h"
#include "collections/core/errors.h"
#include "collections/core/index_rules.h"
#include "collections/core/kernels/element_access.h"
#include "collections/core/kinds.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/objects.h"
#include "collections/core/port/type_names.h"

namespace vc = vorn::collections;
using vc::PrimitiveKind;

namespace {

void* elementAtOrRaise(ListData& list, long long index) {
  const auto at = vc::elementIndexOrRaise(list.logicalSize(), index);
  if (!at) return nullptr;
  if (!list.isUnboxed()) return vc::ObjectCursor(list).at(*at);
  return boxPrimitiveElement(list, *at);
}

// The common case of every integer read: an index inside unboxed storage. Kept free of calls, so that the natives need
// no frame for it.
inline bool readUnboxedInt(const ListData& list, long long index, long long& value) {
  const std::uint64_t size = list.primitive.size;
  const std::uint64_t at = static_cast<std::uint64_t>(index) + (index < 0 ? size : 0);
  // Past the size also when the list is boxed: its primitive storage is empty then.
  if (at >= size) return false;
  if (list.primitiveKind == PrimitiveKind::Int) [[likely]] {
    value = vc::loadElement<std::int32_t>(list.primitive.data, at);
  } else {
    value = vc::visitKind(
        list.primitiveKind, [&](auto tag) { return vc::readElementI64(tag, list.primitive.data, at); }, 0LL);
  }
  return true;
}

[[gnu::noinline]] long long intAtOrRaise(ListData& list, long long index) {
  const auto at = vc::elementIndexOrRaise(list.logicalSize(), index);
  if (!at) return 0;
  if (list.isUnboxed()) return primitiveListReadI64(list, *at);
  void* element = vc::ObjectCursor(list).at(*at);
  if (element == nullptr) {
    vc::errors::raiseExpectedIntItem();
    return 0;
  }
  return readListItemI64(element);
}

[[gnu::noinline]] long long lockedIntAtOrRaise(ListData& list, long long index) {
  const ListDataLock lock(list);
  return intAtOrRaise(list, index);
}

// What getIntFast falls back to.
[[gnu::noinline]] long long readLocked(void* list, long long index) {
  return vorn_collections_ArrayList_getInt(list, index);
}

double doubleAtOrRaise(ListData& list, long long index) {
  const auto at = vc::elementIndexOrRaise(list.logicalSize(), index);
  if (!at) return 0.0;
  if (list.isUnboxed()) return primitiveListReadF64(list, *at);
  void* element = vc::ObjectCursor(list).at(*at);
  if (element == nullptr) {
    vc::errors::raiseExpectedFloatingItem();
    return 0.0;
  }
  const std::string_view shortName = shortTypeNameLocal(Vorn_objectTypeName(element));
  if (shortName == "Double" || shortName == "Float") return Vorn_getField_double(element, "_value");
  return static_cast<double>(readListItemI64(element));
}

}  // namespace

void* vorn_collections_ArrayList_operator_index(void* list, long long index) {
  if (list == nullptr) return nullptr;
  ListData& data = *getListData(list);
  const ListDataLock lock(data);
  return elementAtOrRaise(data, index);
}

long long vorn_collections_ArrayList_getInt(void* list, long long index) {
  if (list == nullptr) return 0;
  ListData& data = *getListData(list);
  long long value = 0;
  if (!data.synchronized && readUnboxedInt(data, index, value)) [[likely]]
    return value;
  return lockedIntAtOrRaise(data, index);
}

long long vorn_collections_ArrayList_getIntFast(void* list, long long index) {
  auto* data = nativeRecordOrNull<ListData>(list, ObjectKind::List);
  if (data == nullptr || data->synchronized) [[unlikely]]
    return readLocked(list, index);
  long long value = 0;
  return readUnboxedInt(*data, index, value) ? value : intAtOrRaise(*data, index);
}

long long vorn_collections_ArrayList_getIntFromData(ListData* data, long long index) {
  return data != nullptr ? lockedIntAtOrRaise(*data, index) : 0;
}

double vorn_collections_ArrayList_getDouble(void* list, long long index) {
  if (list == nullptr) return 0.0;
  ListData& data = *getListData(list);
  const ListDataLock lock(data);
  return doubleAtOrRaise(data, index);
}

long long vorn_collections_ArrayList_size(void* list) {
  if (list == nullptr) return 0;
  ListData& data = *getListData(list);
  const ListDataLock lock(data);
  return static_cast<long long>(data.logicalSize());
}

// Reads a synchronised list unlocked by design, so a thread checker would be right to object and is told not to look.
// The size may be stale, but it is one that the list had: see list_data.h for the order in which storages change.
__attribute__((no_sanitize("thread"))) long long vorn_collections_ArrayList_sizeFast(void* list) {
  const auto* data = nativeRecordOrNull<ListData>(list, ObjectKind::List);
  if (data == nullptr) [[unlikely]]
    return vorn_collections_ArrayList_size(list);
  const auto* kind = reinterpret_cast<const unsigned char*>(&data->primitiveKind);
  while (true) {
    const unsigned char before = __atomic_load_n(kind, __ATOMIC_ACQUIRE);
    const std::uint64_t& size = before != static_cast<unsigned char>(PrimitiveKind::None) ? data->primitive.size
                                : data->linked                                            ? data->linkedObjects.count
                                                                                          : data->objects.size;
    const std::uint64_t read = __atomic_load_n(&size, __ATOMIC_ACQUIRE);
    if (__atomic_load_n(kind, __ATOMIC_RELAXED) == before) [[likely]]
      return static_cast<long long>(read);
  }
}
