// Sums.

#include <vorn/collections/array_list.h>

#include "collections/arraylist/object_cursor.h"
#include "collections/core/elements/primitive_elements.h"
#include "collections/core/elements/primitive_sums.h"
#include "collections/core/elements/primitive_values.h"
#include "collections/core/errors.h"
#include "collections/core/kernels/sum_kernels.h"
#include "collections/core/kinds.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/objects.h"

namespace vc = vorn::collections;

namespace {

// Adds up the boxed elements in order; a null element raises and gives 0.
template <class Sum, class Read>
Sum sumObjectsOrRaise(ListData& list, Read read) {
  vc::ObjectCursor cursor(list);
  Sum sum{};
  for (std::uint64_t i = 0; i < list.objectCount(); ++i) {
    void* element = cursor.at(i);
    if (element == nullptr) {
      vc::errors::raiseSumOfNull();
      return Sum{};
    }
    sum += read(element);
  }
  return sum;
}

double floatingItem(void* element) {
  const RegisteredObject* record = getRegisteredObjectUnsafe(element);
  if (record != nullptr && record->kind() == ObjectKind::IntegerBox) return static_cast<double>(record->integer);
  return Vorn_getField_double(element, "_value");
}

}  // namespace

long long vorn_collections_ArrayList_sumInt(void* list) {
  if (list == nullptr) return 0;
  ListData& data = *getListData(list);
  const ListDataLock lock(data);
  if (data.isUnboxed()) return primitiveListSumI64(data);
  // Unsigned, so that the sum wraps around.
  return static_cast<long long>(sumObjectsOrRaise<unsigned long long>(
      data, [](void* element) { return static_cast<unsigned long long>(readListItemI64(element)); }));
}

long long vorn_collections_ArrayList_sumI64Fast(void* list) { return vorn_collections_ArrayList_sumInt(list); }

double vorn_collections_ArrayList_sumF64Fast(void* list) {
  if (list == nullptr) return 0.0;
  ListData& data = *getListData(list);
  const ListDataLock lock(data);
  if (vc::isFloatingKind(data.primitiveKind)) {
    return vc::sumFloating(data.primitiveKind, data.primitive.data, data.primitive.size);
  }
  if (data.isUnboxed()) return static_cast<double>(primitiveListSumI64(data));
  return sumObjectsOrRaise<double>(data, floatingItem);
}
