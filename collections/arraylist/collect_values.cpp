#include "collections/arraylist/collect_values.h"

#include <string_view>

#include "collections/core/port/objects.h"
#include "collections/core/port/type_names.h"

namespace vc = vorn::collections;
using vc::CollectedValues;

namespace {

std::string_view typeNameOf(void* value) {
  const char* name = Vorn_objectTypeName(value);
  return name != nullptr ? std::string_view(name) : std::string_view();
}

bool collectTuple(void* tuple, CollectedValues& values) {
  const long long size = Vorn_getField_i64(tuple, "size");
  if (size < 0) return false;
  values.collectTuple(tuple, static_cast<std::uint64_t>(size));
  return true;
}

bool collectOrdered(void* value, std::string_view typeName, const void* receiver, CollectedValues& values) {
  const bool lent = value != receiver;
  if (isArrayLike(typeName)) {
    values.collectArray(value, lent);
  } else if (isArrayListLike(typeName) || isImmutableListLike(typeName)) {
    values.collectList(value, lent);
  } else {
    return isTupleLike(typeName) && collectTuple(value, values);
  }
  return true;
}

}  // namespace

bool collectOrderedCollectionValues(void* value, const void* receiver, CollectedValues& values) {
  return value != nullptr && collectOrdered(value, typeNameOf(value), receiver, values);
}

bool collectListInsertionValues(void* value, const void* receiver, CollectedValues& values) {
  if (value == nullptr) return false;
  const std::string_view typeName = typeNameOf(value);
  if (collectOrdered(value, typeName, receiver, values)) return true;
  if (!isHashSetLike(typeName)) return false;
  values.collectSet(value);
  return true;
}
