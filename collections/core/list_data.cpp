#include "collections/core/list_data.h"

#include <atomic>
#include <cstring>
#include <new>
#include <type_traits>

#include "collections/core/primitive_conversions.h"
#include "collections/core/primitive_kinds.h"

using vorn::collections::HandleVector;
using vorn::collections::primitiveWidth;

static_assert(std::is_same_v<std::underlying_type_t<ListData::PrimitiveKind>, std::uint8_t>);
static_assert(sizeof(SmallPrimitiveBuffer) == 160, "128 inline bytes and four words");

namespace {

void emptyObjectStorage(ListData& list) {
  if (list.linked) {
    list.linkedObjects.reset();
  } else {
    list.objects.clear();
  }
}

// Ends primitive storage once the object storage has taken its place. A size read without the lock asks for the kind,
// then the size that it selects, then the kind again: as long as the kind leaves before the old size does, it never
// takes the one for the other.
void endPrimitiveStorage(ListData& list) {
  std::atomic_ref(list.primitiveKind).store(ListData::PrimitiveKind::None, std::memory_order_release);
  std::atomic_ref(list.primitive.size).store(0, std::memory_order_release);
  list.i64Mirror.size = 0;
  list.f64Mirror.size = 0;
  list.primitiveType = {};
}

}  // namespace

void ListData::objectPushBack(void* handle) {
  if (linked) {
    linkedObjects.pushBack(handle);
  } else {
    objects.pushBack(handle);
  }
}

void ListData::objectErase(std::uint64_t index) {
  if (linked) {
    linkedObjects.unhook(linkedObjects.nodeAt(index));
  } else {
    objects.eraseAt(index);
  }
}

void ListData::objectAssign(const HandleVector::Storage& values) {
  if (!linked) return objects.assign(values.data(), values.size());
  // Missing nodes are linked before any handle is overwritten, so that running out of memory changes no element; the
  // nodes added so far are taken back.
  const std::uint64_t before = linkedObjects.count;
  try {
    while (linkedObjects.count < values.size()) linkedObjects.pushBack(nullptr);
  } catch (const std::bad_alloc&) {
    while (linkedObjects.count > before) linkedObjects.unhook(linkedObjects.sentinel.previous);
    throw;
  }
  LinkedHandles::Links* at = linkedObjects.sentinel.next;
  for (void* handle : values) {
    static_cast<LinkedHandles::Node*>(at)->handle = handle;
    at = at->next;
  }
  while (at != &linkedObjects.sentinel) {
    LinkedHandles::Links* surplus = at;
    at = at->next;
    linkedObjects.unhook(surplus);
  }
}

void ListData::copyObjectsTo(HandleVector::Storage& values) const {
  values.reserve(values.size() + objectCount());
  if (!linked) {
    values.insert(values.end(), objects.data, objects.data + objects.size);
    return;
  }
  for (const LinkedHandles::Links* at = linkedObjects.sentinel.next; at != &linkedObjects.sentinel; at = at->next) {
    values.push_back(static_cast<const LinkedHandles::Node*>(at)->handle);
  }
}

void configurePrimitiveStorage(ListData& list, ListData::PrimitiveKind kind) {
  const std::uint64_t width = primitiveWidth(kind);
  if (list.primitive.elementSize != width) list.primitive.resetToInline(width);
}

void materializePrimitiveList(ListData& list, std::uint64_t room) {
  if (list.primitiveKind == ListData::PrimitiveKind::None) return;
  const std::uint64_t n = list.primitive.size;

  // Boxes go straight into the record's own storage, where the collector finds them. While the kind still stands, that
  // storage is not live; whatever ends the loop early empties it again and leaves the list as it was.
  struct Unwind {
    ListData& list;
    bool done = false;
    ~Unwind() {
      if (!done) emptyObjectStorage(list);
    }
  } unwind{list};

  emptyObjectStorage(list);
  if (!list.linked) list.objects.reserve(n + room);
  vorn::collections::RootedHandle box;
  for (std::uint64_t i = 0; i < n; ++i) {
    box = boxPrimitiveElement(list, i);
    list.objectPushBack(box.get());
  }
  unwind.done = true;
  endPrimitiveStorage(list);
}

void replaceWithObjects(ListData& list, const HandleVector::Storage& values) {
  list.objectAssign(values);
  if (list.primitiveKind != ListData::PrimitiveKind::None) endPrimitiveStorage(list);
}

void copyPrimitiveListStorage(const ListData& source, ListData& target) {
  const SmallPrimitiveBuffer& from = source.primitive;
  SmallPrimitiveBuffer& to = target.primitive;
  target.primitiveType = source.primitiveType;
  target.primitiveKind = source.primitiveKind;
  target.elementType = source.elementType.text != nullptr ? source.elementType : source.primitiveType;
  to.size = 0;
  configurePrimitiveStorage(target, source.primitiveKind);
  if (from.size == 0) return;
  const std::uint64_t width = from.elementSize != 0 ? from.elementSize : 1;
  if (to.elementSize != width) to.resetToInline(width);
  to.reserve(from.size);
  std::memcpy(to.data, from.data, from.size * width);
  to.size = from.size;
}

void clearListStorage(ListData& list) {
  endPrimitiveStorage(list);
  emptyObjectStorage(list);
}
