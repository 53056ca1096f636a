// Sums.
#include <vorn/collections/array.h>

#include "collections/array/array_data.h"
#include "collections/core/array_slot_kind.h"
#include "collections/core/elements/primitive_values.h"
#include "collections/core/errors.h"
#include "collections/core/kernels/element_access.h"
#include "collections/core/kernels/sum_kernels.h"
#include "collections/core/port/objects.h"

namespace vc = vorn::collections;

namespace {

// Adds up the handles' values in order; a null slot raises and gives 0. Reading a value runs no user code.
template <class Sum, class Read>
Sum sumObjectsOrRaise(const SmallObjectVector& objects, Read read) {
  Sum sum{};
  for (std::uint64_t i = 0; i < objects.size; ++i) {
    if (objects.data[i] == nullptr) {
      vc::errors::raiseSumOfNull();
      return Sum{};
    }
    sum += read(objects.data[i]);
  }
  return sum;
}

// In floating slots every element is truncated by itself, unlike in the sum of a list.
long long sumTruncated(const ArrayData& array) {
  unsigned long long sum = 0;
  vc::visitKind(vc::primitiveKindOf(array.slotKind), [&](auto tag) {
    for (std::uint64_t i = 0; i < array.primitive.size; ++i) {
      sum += static_cast<unsigned long long>(vc::readElementI64(tag, array.primitive.data, i));
    }
  });
  return static_cast<long long>(sum);
}

double sumAsDoubles(const ArrayData& array) {
  double sum = 0.0;
  vc::visitKind(vc::primitiveKindOf(array.slotKind), [&](auto tag) {
    for (std::uint64_t i = 0; i < array.primitive.size; ++i) {
      sum += vc::readElementF64(tag, array.primitive.data, i);
    }
  });
  return sum;
}

}  // namespace

long long vorn_collections_Array_sumI64Fast(void* array) {
  if (array == nullptr) return 0;
  const ArrayData& data = *getArrayData(array);
  const ArrayDataLock lock(data);
  if (arraySlotKindIsFloating(data.slotKind)) return sumTruncated(data);
  if (data.isUnboxed()) {
    return vc::sumIntegers(vc::primitiveKindOf(data.slotKind), data.primitive.data, data.primitive.size);
  }
  // Unsigned, so that the sum wraps around.
  return static_cast<long long>(sumObjectsOrRaise<unsigned long long>(
      data.objects, [](void* element) { return static_cast<unsigned long long>(readListItemI64(element)); }));
}

double vorn_collections_Array_sumF64Fast(void* array) {
  if (array == nullptr) return 0.0;
  const ArrayData& data = *getArrayData(array);
  const ArrayDataLock lock(data);
  if (data.isUnboxed()) return sumAsDoubles(data);
  return sumObjectsOrRaise<double>(data.objects, [](void* element) { return Vorn_getField_double(element, "_value"); });
}
