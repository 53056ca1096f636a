// Values of primitive types: out of their boxes, into boxes, and from one type to another. Nothing here locks.
#pragma once

#include <cstdint>

#include "collections/core/elements/element_types.h"
#include "collections/core/number_rules.h"
#include "collections/core/storage/list_data.h"

// A value converted to a primitive kind, under a normalised type name.
struct BulkPrimitiveListValue {
  ListData::PrimitiveKind kind = ListData::PrimitiveKind::None;
  RuntimeTypeName typeName;
  long long integer = 0;
  double floating = 0.0;

  [[nodiscard]] vorn::collections::ElementType type() const { return {kind, typeName}; }
};

namespace vorn::collections {

// The field that a box, or an object of a class named like one, keeps its value in.
inline constexpr const char* kValueField = "_value";

// A raw value of an element type, as an integer and as a floating number.
inline BulkPrimitiveListValue rawPrimitiveValue(const ElementType& type, long long value) {
  return {type.kind, type.name, value, static_cast<double>(value)};
}
inline BulkPrimitiveListValue rawPrimitiveValue(const ElementType& type, double value) {
  return {type.kind, type.name, truncateToI64(value), value};
}

}  // namespace vorn::collections

// The integer of a boxed integer-like element: the registered record's value, else the field "_value".
long long readListItemI64(void* handle);

// Boxes one raw value: floating kinds under the name or "Double", Boolean as the shared boxes, every other kind under
// the name or "Int". Allocates.
void* boxPrimitiveListValue(ListData::PrimitiveKind kind, RuntimeTypeName typeName, long long integer, double floating);

// Boxes an element of primitive storage under the list's primitive type name. Allocates.
void* boxPrimitiveElement(const ListData& list, std::uint64_t index);

// Unboxes a value of a primitive type; false for null, for bare texts and for objects of other types. Neither
// allocates nor runs user code.
bool objectToPrimitiveListValue(void* handle, BulkPrimitiveListValue& out);

// Whether a value can be kept as the declared kind and name, and as what pair: integers widen within range into integer
// and floating kinds, floating values only into floating kinds, and Boolean, Char and CodeUnit only match themselves.
bool convertPrimitiveListValueToDeclared(ListData::PrimitiveKind declaredKind, RuntimeTypeName declaredName,
                                         const BulkPrimitiveListValue& value, long long& integer, double& floating);
