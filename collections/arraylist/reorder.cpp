// Natives that change the order of a list: reverse and shuffle.

#include <vorn/collections/array_list.h>

#include <algorithm>
#include <cstring>

#include "collections/arraylist/transformed_copy.h"
#include "collections/core/elements/primitive_elements.h"
#include "collections/core/kernels/element_access.h"
#include "collections/core/kinds.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/text.h"

namespace vc = vorn::collections;

namespace {

// A uniform number below `bound`: draws from the lowest 2^64 mod bound values are rejected, so that the rest divide
// evenly. That threshold is below the bound, so a draw that is not needs no second division; the others are one in 2^64
// divided by the bound.
std::uint64_t randomBelow(std::uint64_t bound) {
  std::uint64_t draw = nextFastRandomU64();
  if (draw < bound) [[unlikely]] {
    const std::uint64_t threshold = (0 - bound) % bound;
    while (draw < threshold) draw = nextFastRandomU64();
  }
  return draw % bound;
}

// Fisher-Yates from the back (Durstenfeld, "Algorithm 235: Random permutation", 1964).
template <class Swap>
void shuffleWith(std::uint64_t size, Swap swap) {
  for (std::uint64_t i = size; i-- > 1;) {
    const std::uint64_t j = randomBelow(i + 1);
    if (j != i) swap(i, j);
  }
}

void shufflePrimitive(SmallPrimitiveBuffer& buffer) {
  vc::visitWidth(buffer.elementSize, [&](auto bits) {
    using Bits = decltype(bits);
    shuffleWith(buffer.size, [&](std::uint64_t i, std::uint64_t j) {
      const auto first = vc::loadElement<Bits>(buffer.data, i);
      std::memcpy(buffer.data + i * sizeof(Bits), buffer.data + j * sizeof(Bits), sizeof(Bits));
      std::memcpy(buffer.data + j * sizeof(Bits), &first, sizeof(Bits));
    });
  });
}

void shuffleHandles(void** handles, std::uint64_t size) {
  shuffleWith(size, [&](std::uint64_t i, std::uint64_t j) { std::swap(handles[i], handles[j]); });
}

void shuffleList(ListData& list) {
  if (list.logicalSize() < 2) return;
  if (list.isUnboxed()) return shufflePrimitive(list.primitive);
  if (!list.linked) return shuffleHandles(list.objects.data, list.objects.size);
  vc::HandleVector handles;
  list.copyObjectsTo(*handles);
  shuffleHandles(handles->data(), handles->size());
  list.objectAssign(*handles);
}

}  // namespace

void vorn_collections_ArrayList_reverse(void* list) {
  if (list == nullptr) return;
  ListData& data = *getListData(list);
  const ListDataLock lock(data);
  if (data.isUnboxed()) return primitiveListReverse(data);
  if (data.linked) return data.linkedObjects.reverse();
  std::reverse(data.objects.data, data.objects.data + data.objects.size);
}

void* vorn_collections_ArrayList_reverseNew(void* list) {
  if (list == nullptr) return nullptr;
  return vc::transformedCopy(
      list, [](ListData& result) { primitiveListReverse(result); },
      [](vc::HandleVector::Storage& handles) { std::reverse(handles.begin(), handles.end()); });
}

void vorn_collections_ArrayList_shuffle(void* list) {
  if (list == nullptr) return;
  ListData& data = *getListData(list);
  const ListDataLock lock(data);
  shuffleList(data);
}
