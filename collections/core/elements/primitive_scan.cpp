#include "collections/core/elements/primitive_scan.h"

#include "collections/core/elements/primitive_values.h"

namespace vorn::collections {

std::uint64_t findFirstPrimitive(const ListData& list, const BulkPrimitiveListValue& value, std::uint64_t from) {
  const SmallPrimitiveBuffer& buffer = list.primitive;
  return findFirstElement(list.primitiveKind, buffer.data, from, buffer.size, value.integer, value.floating);
}

std::uint64_t findLastPrimitive(const ListData& list, const BulkPrimitiveListValue& value, std::uint64_t from) {
  return findLastElement(list.primitiveKind, list.primitive.data, from + 1, value.integer, value.floating);
}

std::uint64_t countPrimitive(const ListData& list, const BulkPrimitiveListValue& value) {
  const SmallPrimitiveBuffer& buffer = list.primitive;
  return countElements(list.primitiveKind, buffer.data, buffer.size, value.integer, value.floating);
}

}  // namespace vorn::collections
