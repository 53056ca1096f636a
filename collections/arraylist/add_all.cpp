#include "collections/arraylist/add_all.h"

#include <vorn/collections/array_list.h>

#include <cstring>
#include <optional>
#include <vector>

#include "collections/arraylist/collect_values.h"
#include "collections/arraylist/snapshots.h"
#include "collections/core/element_access.h"
#include "collections/core/element_types.h"
#include "collections/core/errors.h"
#include "collections/core/index_rules.h"
#include "collections/core/primitive_conversions.h"
#include "collections/core/primitive_elements.h"
#include "collections/core/primitive_kinds.h"

namespace vc = vorn::collections;
using vc::PrimitiveKind;

namespace {

// Where a batch goes: an append ignores the index.
struct InsertionPoint {
  long long index = 0;
  bool append = true;

  [[nodiscard]] std::optional<std::uint64_t> resolveOrRaise(std::uint64_t size) const {
    return append ? std::optional(size) : vc::insertionIndexOrRaise(size, index);
  }
};

// Opens a gap of `count` elements at `index` and gives its address. Allocates before anything changes.
unsigned char* openPrimitiveGap(SmallPrimitiveBuffer& buffer, std::uint64_t index, std::uint64_t count) {
  buffer.reserve(buffer.size + count);
  unsigned char* gap = buffer.data + index * buffer.elementSize;
  std::memmove(gap + count * buffer.elementSize, gap, (buffer.size - index) * buffer.elementSize);
  buffer.size += count;
  return gap;
}

// The batch as raw values of one kind and name, if it has one: the declared kind, or the first value's own.
bool convertBatch(const ListData& list, const vc::HandleVector::Storage& values,
                  std::vector<BulkPrimitiveListValue>& batch) {
  const bool declared = vc::declaredElementType(list).kind != PrimitiveKind::None;
  batch.reserve(values.size());
  for (void* value : values) {
    BulkPrimitiveListValue raw;
    if (declared) {
      if (!listValueToDeclaredPrimitiveValue(list, value, raw)) return false;
    } else {
      if (!objectToPrimitiveListValue(value, raw)) return false;
      if (!batch.empty() && (raw.kind != batch[0].kind || raw.typeName != batch[0].typeName)) return false;
    }
    batch.push_back(raw);
  }
  return true;
}

void insertBatchUnboxedOrRaise(ListData& list, std::uint64_t index, const std::vector<BulkPrimitiveListValue>& batch) {
  for (const BulkPrimitiveListValue& value : batch) {
    if (!vc::checkCharacterRangeOrRaise(value.typeName, value.integer)) return;
  }
  if (list.primitiveKind == PrimitiveKind::None) {
    const RuntimeTypeName name = internRuntimeTypeName(batch[0].typeName);
    vc::resetToPrimitiveStorage(list, batch[0].kind, name, batch.size());
  } else {
    configurePrimitiveStorage(list, list.primitiveKind);
  }
  unsigned char* gap = openPrimitiveGap(list.primitive, index, batch.size());
  vc::visitKind(list.primitiveKind, [&](auto tag) {
    for (std::uint64_t i = 0; i < batch.size(); ++i) vc::storeElement(tag, gap, i, batch[i].integer, batch[i].floating);
  });
}

void insertHandles(ListData& list, std::uint64_t index, const vc::HandleVector::Storage& values) {
  materializePrimitiveList(list, values.size());
  if (list.linked) {
    list.linkedObjects.insertAllAt(index, values.data(), values.size());
  } else {
    list.objects.insertAllAt(index, values.data(), values.size());
  }
}

void insertValuesOrRaise(ListData& list, InsertionPoint point, const vc::HandleVector::Storage& values) {
  const auto index = point.resolveOrRaise(list.logicalSize());
  if (!index) return;
  for (void* value : values) {
    if (!ensureListValueMatchesDeclaredElementType(list, value)) return;
  }
  std::vector<BulkPrimitiveListValue> batch;
  if (convertBatch(list, values, batch) && primitiveStorageCompatible(list, batch[0].kind, batch[0].typeName)) {
    insertBatchUnboxedOrRaise(list, *index, batch);
  } else {
    insertHandles(list, *index, values);
  }
}

// Whether every value that unboxed storage of this kind and name may hold passes the list's checks as it is, so that
// bytes may be copied. Characters may be out of range where compiled code wrote them, and the upper half of ULong does
// not pass the signed declared check: these go value by value.
bool acceptsBytesOf(const ListData& list, PrimitiveKind kind, RuntimeTypeName typeName) {
  if (kind == PrimitiveKind::None || kind == PrimitiveKind::ULong || typeName == "Char") return false;
  const vc::ElementType declared = vc::declaredElementType(list);
  const bool declaredTakesIt = declared.name == "Object" || (declared.kind == kind && typeName == declared.name);
  return declaredTakesIt && primitiveStorageCompatible(list, kind, typeName.get());
}

void insertBytesOrRaise(ListData& list, InsertionPoint point, const unsigned char* elements, std::uint64_t count,
                        PrimitiveKind kind, RuntimeTypeName typeName) {
  const auto index = point.resolveOrRaise(list.logicalSize());
  if (!index) return;
  const bool self = elements == list.primitive.data;
  if (list.primitiveKind == PrimitiveKind::None) vc::resetToPrimitiveStorage(list, kind, typeName, count);
  unsigned char* gap = openPrimitiveGap(list.primitive, *index, count);
  if (!self) {
    std::memcpy(gap, elements, count * list.primitive.elementSize);
    return;
  }
  // The source has just been moved: its first part still stands before the gap, the rest behind it.
  const std::uint64_t width = list.primitive.elementSize;
  std::memcpy(gap, list.primitive.data, *index * width);
  std::memcpy(gap + *index * width, gap + count * width, (count - *index) * width);
}

// Copies a primitive list's elements into another of the same type without boxing them. False, with nothing done, when
// the lists do not match or are both synchronised: the locks of two existing collections are never held together.
bool addAllUnboxed(void* list, InsertionPoint point, void* source) {
  auto* from = nativeRecordOrNull<ListData>(source, ObjectKind::List);
  auto* to = nativeRecordOrNull<ListData>(list, ObjectKind::List);
  if (from == nullptr || to == nullptr || (from->synchronized && to->synchronized)) return false;
  const ListDataLock lockSource(*from);
  const ListDataLock lockTarget(*to);
  if (!acceptsBytesOf(*to, from->primitiveKind, from->primitiveType)) return false;
  if (from->primitive.size == 0) return true;
  insertBytesOrRaise(*to, point, from->primitive.data, from->primitive.size, from->primitiveKind, from->primitiveType);
  return true;
}

void addAll(void* list, InsertionPoint point, void* source) {
  if (addAllUnboxed(list, point, source)) return;
  vc::HandleVector values;
  if (!collectListInsertionValues(source, *values)) return vc::errors::raiseAddAllSource();
  arrayListAddAllCaptured(list, point.index, point.append, *values);
}

}  // namespace

void arrayListAddAllCaptured(void* list, long long index, bool append, const vc::HandleVector::Storage& values) {
  if (list == nullptr || values.empty()) return;
  ListData& data = *getListData(list);
  const ListDataLock lock(data);
  insertValuesOrRaise(data, {index, append}, values);
}

void vorn_collections_ArrayList_addAll(void* list, void* source) { addAll(list, {0, true}, source); }

void vorn_collections_ArrayList_addAllAt(void* list, long long index, void* source) {
  addAll(list, {index, false}, source);
}
