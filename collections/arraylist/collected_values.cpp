#include "collections/arraylist/collected_values.h"

#include <vorn/collections/tuple.h>

#include <algorithm>
#include <cstring>

#include "collections/array/array_data.h"
#include "collections/array/slot_values.h"
#include "collections/core/elements/accepted_values.h"
#include "collections/core/elements/primitive_values.h"
#include "collections/core/kernels/element_access.h"
#include "collections/core/kinds.h"
#include "collections/core/pending_error_watch.h"
#include "collections/keyed/set_data.h"

namespace vorn::collections {

std::uint64_t CollectedValues::readRun(std::uint64_t first, RawRun& run) const {
  const std::uint64_t count = std::min(RawRun::kMost, size_ - first);
  const unsigned char* const elements = bytes_ + first * primitiveWidth(type_.kind);
  visitKind(type_.kind, [&](auto tag) {
    for (std::uint64_t i = 0; i < count; ++i) run.integers[i] = readElementI64(tag, elements, i);
    for (std::uint64_t i = 0; i < count; ++i) run.floatings[i] = readElementF64(tag, elements, i);
  });
  return count;
}

std::uint64_t CollectedValues::firstOutside(const AcceptedValues& accepted) const {
  if (accepted.containsAllOf(type_.kind)) return size_;
  std::uint64_t outside = size_;
  forEachRun([&](std::uint64_t first, std::uint64_t count, const RawRun& run) {
    const auto* const end = run.integers + count;
    const auto* const at =
        std::find_if(run.integers, end, [&](long long integer) { return !accepted.contains(integer); });
    if (at == end) return true;
    outside = first + static_cast<std::uint64_t>(at - run.integers);
    return false;
  });
  return outside;
}

void CollectedValues::storeAs(PrimitiveKind kind, unsigned char* elements) const {
  // Any byte but 0 may stand for true, but a stored value is 0 or 1.
  if (kind == type_.kind && kind != PrimitiveKind::Boolean) {
    std::memcpy(elements, bytes_, size_ * primitiveWidth(kind));
    return;
  }
  forEachRun([&](std::uint64_t first, std::uint64_t count, const RawRun& run) {
    visitKind(kind, [&](auto tag) {
      for (std::uint64_t i = 0; i < count; ++i) {
        storeElement(tag, elements, first + i, run.integers[i], run.floatings[i]);
      }
    });
    return true;
  });
}

void* CollectedValues::handleAt(std::uint64_t index) const {
  if (!raw()) return handles_[index];
  return visitKind(
      type_.kind,
      [&](auto tag) {
        return boxPrimitiveListValue(type_.kind, type_.name, readElementI64(tag, bytes_, index),
                                     readElementF64(tag, bytes_, index));
      },
      static_cast<void*>(nullptr));
}

void* const* CollectedValues::handles(std::uint64_t count, HandleVector& boxes) const {
  if (!raw()) return handles_;
  appendBoxes(type_.kind, type_.name, bytes_, count, *boxes);
  return boxes->data();
}

void CollectedValues::collectList(void* list, bool lent) {
  const ListData& data = *getListData(list);
  // A linked list has nothing to lend but its nodes.
  if (lent && !data.synchronized && !data.linked) {
    if (!data.isUnboxed()) return useHandles(data.objects.data, data.objects.size);
    return useElements(data.primitiveKind, data.primitiveType, data.primitive.data, data.primitive.size);
  }
  snapshotListStorage(list, copy_);
  if (!copy_.isUnboxed()) return useHandles(copy_.objects->data(), copy_.objects->size());
  useElements(copy_.primitiveKind, copy_.primitiveType, copy_.elements.data(), copy_.size());
}

void CollectedValues::collectArray(void* array, bool lent) {
  const ArrayData& data = *getArrayData(array);
  const ArrayDataLock lock(data);
  const PrimitiveKind kind = primitiveKindOf(data.slotKind);
  const bool copies = data.synchronized || !lent;
  if (kind == PrimitiveKind::None) {
    if (!copies) return useHandles(data.objects.data, data.objects.size);
    copy_.objects->assign(data.objects.data, data.objects.data + data.objects.size);
    return useHandles(copy_.objects->data(), copy_.objects->size());
  }
  const unsigned char* slots = data.primitive.data;
  const std::uint64_t size = data.primitive.size;
  if (copies) {
    copy_.elements.assign(slots, slots + size * primitiveWidth(kind));
    slots = copy_.elements.data();
  }
  useElements(kind, data.elementType.shortForm(), slots, size);
}

void CollectedValues::collectSet(void* set) {
  const SetData& data = *getSetData(set);
  const SetDataLock lock(data);
  copy_.objects->reserve(data.count());
  data.forEach([&](const NativeCollectionKey&, void* element) { copy_.objects->push_back(element); });
  useHandles(copy_.objects->data(), copy_.objects->size());
}

void CollectedValues::collectTuple(void* tuple, std::uint64_t size) {
  const PendingErrorWatch watch;
  copy_.objects->reserve(size);
  for (std::uint64_t i = 0; i < size && complete_; ++i) {
    void* item = vorn_collections_Tuple_operator_index(tuple, static_cast<long long>(i));
    complete_ = !watch.raised();
    if (complete_) copy_.objects->push_back(item);
  }
  useHandles(copy_.objects->data(), copy_.objects->size());
}

void CollectedValues::useElements(PrimitiveKind kind, RuntimeTypeName name, const unsigned char* elements,
                                  std::uint64_t count) {
  if (kindOf(name.primitiveType()) != kind) {
    appendBoxes(kind, name, elements, count, *copy_.objects);
    return useHandles(copy_.objects->data(), count);
  }
  type_ = {kind, name};
  bytes_ = elements;
  size_ = count;
}

void CollectedValues::useHandles(void* const* handles, std::uint64_t count) {
  handles_ = handles;
  size_ = count;
}

}  // namespace vorn::collections
