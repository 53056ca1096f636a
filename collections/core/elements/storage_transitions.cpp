#include "collections/core/elements/storage_transitions.h"

#include <atomic>

#include "collections/core/elements/primitive_values.h"
#include "collections/core/kinds.h"
#include "collections/core/storage/primitive_copies.h"

namespace vc = vorn::collections;

namespace {

void emptyObjectStorage(ListData& list) {
  if (list.linked) {
    list.linkedObjects.reset();
  } else {
    list.objects.clear();
  }
}

// What a list that takes over unboxed storage declares.
RuntimeTypeName typeOfCopies(const ListData& source) {
  return source.elementType.empty() ? source.primitiveType : source.elementType;
}

// Ends primitive storage once the object storage has taken its place. A size read without the lock asks for the kind,
// then the size that it selects, then the kind again: as long as the kind leaves before the old size does, it never
// takes the one for the other. Processors that let stores pass each other are told the order here, where the storage
// begins, and where object storage is filled while the kind still stands.
void endPrimitiveStorage(ListData& list) {
  std::atomic_ref(list.primitiveKind).store(ListData::PrimitiveKind::None, std::memory_order_release);
  std::atomic_ref(list.primitive.size).store(0, std::memory_order_release);
  list.i64Mirror.size = 0;
  list.f64Mirror.size = 0;
  list.primitiveType = {};
}

}  // namespace

void configurePrimitiveStorage(ListData& list, ListData::PrimitiveKind kind) {
  const std::uint64_t width = vc::primitiveWidth(kind);
  if (list.primitive.elementSize != width) list.primitive.resetToInline(width);
}

void beginPrimitiveStorage(ListData& list, ListData::PrimitiveKind kind, RuntimeTypeName typeName) {
  std::atomic_ref(list.primitiveKind).store(kind, std::memory_order_release);
  list.primitiveType = typeName;
}

void materializePrimitiveList(ListData& list, std::uint64_t room) {
  if (!list.isUnboxed()) return;
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
  // Whoever still takes the list for an empty one with objects must not see these sizes before the kind.
  std::atomic_thread_fence(std::memory_order_release);
  if (!list.linked) list.objects.reserve(n + room);
  vc::RootedHandle box;
  for (std::uint64_t i = 0; i < n; ++i) {
    box = boxPrimitiveElement(list, i);
    list.objectPushBack(box.get());
  }
  unwind.done = true;
  endPrimitiveStorage(list);
}

void replaceWithObjects(ListData& list, const vc::HandleVector::Storage& values) {
  list.objectAssign(values);
  if (list.isUnboxed()) endPrimitiveStorage(list);
}

void copyPrimitiveListStorage(const ListData& source, ListData& target) {
  // The elements' own width, which only a record that is not whole has different from its kind's.
  const std::uint64_t count = source.primitive.size;
  const std::uint64_t width = count != 0 && source.primitive.elementSize != 0
                                  ? source.primitive.elementSize
                                  : vc::primitiveWidth(source.primitiveKind);
  target.primitive.resetFor(width, count);
  beginPrimitiveStorage(target, source.primitiveKind, source.primitiveType);
  target.elementType = typeOfCopies(source);
  vc::appendPrimitiveElements(source, 0, 1, count, target);
}

void clearListStorage(ListData& list) {
  endPrimitiveStorage(list);
  emptyObjectStorage(list);
}

namespace vorn::collections {

void resetToPrimitiveStorage(ListData& list, PrimitiveKind kind, RuntimeTypeName typeName, std::uint64_t n) {
  list.primitive.resetFor(primitiveWidth(kind), n);
  clearListStorage(list);
  beginPrimitiveStorage(list, kind, typeName);
}

void adoptPrimitiveStorageOf(const ListData& source, ListData& target, std::uint64_t n) {
  resetToPrimitiveStorage(target, source.primitiveKind, source.primitiveType, n);
  if (!target.elementType.empty()) return;
  target.elementType = typeOfCopies(source);
}

}  // namespace vorn::collections
