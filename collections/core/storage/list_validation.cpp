#include "collections/core/storage/list_validation.h"

#include "collections/core/kinds.h"
#include "collections/core/storage/list_data.h"

namespace vorn::collections {

namespace {

std::string validatePrimitive(const ListData& list) {
  const SmallPrimitiveBuffer& buffer = list.primitive;
  if (static_cast<std::size_t>(list.primitiveKind) >= kPrimitiveKinds) return "the primitive kind is unknown";
  if (buffer.size > buffer.capacity) return "the primitive size exceeds its capacity";
  if (buffer.data == nullptr) return "the primitive buffer has no data";
  if (!list.isUnboxed()) {
    if (!list.primitiveType.empty()) return "a list without a primitive kind has a primitive type name";
    if (buffer.size != 0) return "a list without a primitive kind has primitive elements";
    return {};
  }
  if (list.linked) return "a linked list has primitive storage";
  if (buffer.elementSize != primitiveWidth(list.primitiveKind)) return "the element width is not that of the kind";
  if (buffer.data == buffer.inlineBytes && buffer.capacity != SmallPrimitiveBuffer::kInlineBytes / buffer.elementSize) {
    return "the inline primitive capacity is wrong";
  }
  if (list.objectCount() != 0) return "a list in primitive storage holds objects as well";
  return {};
}

std::string validateObjects(const ListData& list) {
  const SmallObjectVector& objects = list.objects;
  if (objects.data == nullptr) return "the object vector has no data";
  if (objects.size > objects.capacity) return "the object size exceeds its capacity";
  if (objects.data == objects.inlineSlots && objects.capacity != SmallObjectVector::kInlineSlots) {
    return "the inline object capacity is wrong";
  }
  for (std::uint64_t i = objects.size; i < objects.capacity; ++i) {
    if (objects.data[i] != nullptr) return "an object slot past the size is not null";
  }
  if (objects.data != objects.inlineSlots) {
    for (const void* slot : objects.inlineSlots) {
      if (slot != nullptr) return "an inline object slot is not null although a block has taken its place";
    }
  }
  if (list.linked && objects.size != 0) return "a linked list holds objects in its vector";
  return {};
}

std::string validateLinked(const ListData& list) {
  const LinkedHandles& nodes = list.linkedObjects;
  if (!list.linked && nodes.count != 0) return "an array-backed list has linked nodes";
  std::uint64_t walked = 0;
  const LinkedHandles::Links* at = &nodes.sentinel;
  do {
    if (at->next == nullptr || at->next->previous != at) return "a linked node's neighbours do not point back at it";
    at = at->next;
    ++walked;
  } while (at != &nodes.sentinel && walked <= nodes.count);
  if (at != &nodes.sentinel || walked != nodes.count + 1) return "the linked count is not the number of nodes";
  return {};
}

template <class Mirror>
bool mirrorIsSound(const Mirror& mirror) {
  return mirror.data != nullptr && mirror.size <= mirror.capacity;
}

}  // namespace

std::string validateListData(const ListData& list) {
  if (list.synchronized && list.mutex == nullptr) return "a synchronised list has no mutex";
  if (std::string fault = validatePrimitive(list); !fault.empty()) return fault;
  if (std::string fault = validateObjects(list); !fault.empty()) return fault;
  if (std::string fault = validateLinked(list); !fault.empty()) return fault;
  if (!mirrorIsSound(list.i64Mirror) || !mirrorIsSound(list.f64Mirror)) return "a mirror's size exceeds its capacity";
  if (!list.isUnboxed() && (list.i64Mirror.size != 0 || list.f64Mirror.size != 0)) {
    return "a mirror outlives the primitive storage that it copied";
  }
  return {};
}

}  // namespace vorn::collections
