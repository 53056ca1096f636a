#include "collections/core/storage/list_validation.h"

#include <unordered_set>

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

// Where the nodes of a list that is linked up well come from.
std::string validateBlocks(const LinkedHandles& list) {
  // Addresses in memory that is not collected: for comparing, not for following.
  std::unordered_set<const LinkedHandles::Links*> given;
  for (const auto* block = list.newest; block != nullptr; block = block->older) {
    if (block->used > block->capacity) return "a block has given out more nodes than it has";
    if (block != list.newest && block->used != block->capacity) return "an older block has nodes left";
    if (block != list.newest && block->free != nullptr) return "an older block starts a chain of free nodes";
    for (std::uint32_t i = 0; i < block->used; ++i) given.insert(block->nodes() + i);
  }
  for (const auto* node = list.sentinel.next; node != &list.sentinel; node = node->next) {
    if (given.erase(node) == 0) return "a linked node is of no block";
  }
  const LinkedHandles::Links* next = list.newest != nullptr ? list.newest->free : nullptr;
  for (; next != nullptr; next = next->next) {
    if (given.erase(next) == 0) return "a free node is in the list, free twice, or of no block";
    if (next->previous != nullptr || static_cast<const LinkedHandles::Node*>(next)->handle != nullptr) {
      return "a free node holds something";
    }
  }
  return given.empty() ? "" : "a node is lost";
}

std::string validateLinked(const ListData& list) {
  const LinkedHandles& nodes = list.linkedObjects;
  if (!list.linked && (nodes.count != 0 || nodes.newest != nullptr)) return "an array-backed list has linked nodes";
  std::uint64_t walked = 0;
  const LinkedHandles::Links* at = &nodes.sentinel;
  do {
    if (at->next == nullptr || at->next->previous != at) return "a linked node's neighbours do not point back at it";
    at = at->next;
    ++walked;
  } while (at != &nodes.sentinel && walked <= nodes.count);
  if (at != &nodes.sentinel || walked != nodes.count + 1) return "the linked count is not the number of nodes";
  return validateBlocks(nodes);
}

template <class Mirror>
bool mirrorIsSound(const Mirror& mirror) {
  return mirror.data != nullptr && mirror.size <= mirror.capacity;
}

}  // namespace

std::string validateListData(const ListData& list) {
  if (list.zero != 0) return "the byte that is always zero is not";
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
