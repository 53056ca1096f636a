#include "collections/array/array_data.h"

#include <cstring>

#include "collections/core/kernels/element_access.h"
#include "collections/core/kinds.h"

namespace vc = vorn::collections;

namespace {

void setSlotKind(ArrayData& array, ArraySlotKind kind) {
  array.slotKind = kind;
  array.plainSlotKind = array.synchronized ? ArrayData::kNotPlain : static_cast<std::uint8_t>(kind);
}

bool holdsHandles(ArraySlotKind kind) { return kind == ArraySlotKind::Object; }

// Room for n slots of a kind before anything else changes; the buffer of unboxed slots is empty afterwards.
void makeRoom(ArrayData& array, ArraySlotKind kind, std::uint64_t width, std::uint64_t n) {
  if (holdsHandles(kind)) return array.objects.reserve(n);
  array.primitive.resetFor(width, n);
}

}  // namespace

namespace vorn::collections {

void recreateArrayStorage(ArrayData& array, RuntimeTypeName elementType, ArraySlotKind kind, std::uint64_t n) {
  makeRoom(array, kind, slotWidth(kind), n);
  clearArrayStorage(array);
  array.elementType = elementType;
  setSlotKind(array, kind);
  if (holdsHandles(kind)) {
    array.objects.size = n;  // slots past the size are null at all times
  } else {
    std::memset(array.primitive.data, 0, n * array.primitive.elementSize);
    array.primitive.size = n;
  }
}

}  // namespace vorn::collections

std::uint64_t arrayLogicalSize(const ArrayData& array) {
  return holdsHandles(array.slotKind) ? array.objects.size : array.primitive.size;
}

void clearArrayStorage(ArrayData& array) {
  array.primitive.size = 0;
  array.elementCounters[0] = 0;
  array.elementCounters[1] = 0;
  array.objects.clear();
}

void resizeArrayStorage(ArrayData& array, std::uint64_t n) {
  vc::recreateArrayStorage(array, array.elementType, array.slotKind, n);
}

void copyArrayStorage(const ArrayData& source, ArrayData& target) {
  if (&source == &target) return;
  const std::uint64_t n = arrayLogicalSize(source);
  // A record that compiled code prepared may keep its slots at another width than the kind's own.
  const bool ownWidth = holdsHandles(source.slotKind) || n == 0;
  const std::uint64_t width = ownWidth ? vc::slotWidth(source.slotKind) : source.primitive.elementSize;
  makeRoom(target, source.slotKind, width, n);
  clearArrayStorage(target);
  target.elementType = source.elementType;
  setSlotKind(target, source.slotKind);
  if (holdsHandles(source.slotKind)) {
    std::memcpy(target.objects.data, source.objects.data, n * sizeof(void*));
    target.objects.size = n;
  } else {
    std::memcpy(target.primitive.data, source.primitive.data, n * width);
    target.primitive.size = n;
  }
}

long long arrayReadI64(const ArrayData& array, std::uint64_t index) {
  return vc::visitKind(
      vc::primitiveKindOf(array.slotKind),
      [&](auto tag) { return vc::readElementI64(tag, array.primitive.data, index); }, 0LL);
}

double arrayReadF64(const ArrayData& array, std::uint64_t index) {
  return vc::visitKind(
      vc::primitiveKindOf(array.slotKind),
      [&](auto tag) { return vc::readElementF64(tag, array.primitive.data, index); }, 0.0);
}

void arrayWrite(ArrayData& array, std::uint64_t index, long long integer, double floating) {
  vc::visitKind(vc::primitiveKindOf(array.slotKind),
                [&](auto tag) { vc::storeElement(tag, array.primitive.data, index, integer, floating); });
}
