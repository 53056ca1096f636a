#include "collections/array/array_validation.h"

#include "collections/core/array_slot_kind.h"

namespace vorn::collections {

std::string validateArrayData(const ArrayData& array) {
  const SmallPrimitiveBuffer& slots = array.primitive;
  const SmallObjectVector& objects = array.objects;
  if (array.slotKind > ArraySlotKind::Object) return "the slot kind is unknown";
  const bool plain = array.plainSlotKind != ArrayData::kNotPlain;
  if (plain && (array.synchronized || array.plainSlotKind != static_cast<std::uint8_t>(array.slotKind))) {
    return "the plain slot kind is not the slot kind, or there is a lock";
  }
  if (array.synchronized && array.mutex == nullptr) return "a synchronised array has no mutex";
  if (slots.size > slots.capacity) return "more unboxed slots than capacity";
  if (objects.size > objects.capacity) return "more handles than capacity";
  if (slots.data == slots.inlineBytes && slots.capacity * slots.elementSize > SmallPrimitiveBuffer::kInlineBytes) {
    return "the inline capacity exceeds the inline storage";
  }
  if (!array.isUnboxed()) {
    if (slots.size != 0) return "an array of handles has unboxed slots";
  } else {
    if (objects.size != 0) return "an unboxed array has handles";
    if (slots.elementSize != slotWidth(array.slotKind)) return "the slot width is not the kind's";
  }
  for (std::uint64_t i = objects.size; i < objects.capacity; ++i) {
    if (objects.data[i] != nullptr) return "a handle slot past the size is not null";
  }
  return {};
}

}  // namespace vorn::collections
