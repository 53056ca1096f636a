#include "collections/core/storage/list_data.h"

#include <atomic>
#include <cstring>
#include <new>
#include <type_traits>

#include "collections/core/kinds.h"

namespace vc = vorn::collections;
using vc::HandleVector;

static_assert(std::is_same_v<std::underlying_type_t<ListData::PrimitiveKind>, std::uint8_t>);
static_assert(sizeof(SmallPrimitiveBuffer) == 160, "128 inline bytes and four words");

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
