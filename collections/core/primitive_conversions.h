// Conversions between language values and raw primitive values, and the two questions asked of every value that enters
// a list: does the declared element type accept it, and can it be kept unboxed. Nothing here locks.
#pragma once

#include <cstdint>
#include <limits>
#include <string_view>

#include "collections/core/element_types.h"
#include "collections/core/list_data.h"

// A value converted to a primitive kind. `typeName` is normalised and refers to the kinds table, to an interned name or
// to the caller's text.
struct BulkPrimitiveListValue {
  ListData::PrimitiveKind kind = ListData::PrimitiveKind::None;
  std::string_view typeName;
  long long integer = 0;
  double floating = 0.0;
};

// The integer of a boxed integer-like element: the registered record's value, else the field "_value".
long long readListItemI64(void* handle);

// Boxes one raw value: floating kinds under the name or "Double", Boolean as the shared boxes, every other kind under
// the name or "Int". Allocates.
void* boxPrimitiveListValue(ListData::PrimitiveKind kind, std::string_view typeName, long long integer,
                            double floating);

// Boxes an element of primitive storage under the list's primitive type name. Allocates.
void* boxPrimitiveElement(const ListData& list, std::uint64_t index);

// Unboxes a value of a primitive type; false for null, for bare texts and for objects of other types. Neither
// allocates nor runs user code.
bool objectToPrimitiveListValue(void* handle, BulkPrimitiveListValue& out);

// Whether a value can be kept as the declared kind and name, and as what pair: integers widen within range into integer
// and floating kinds, floating values only into floating kinds, and Boolean, Char and CodeUnit only match themselves.
bool convertPrimitiveListValueToDeclared(ListData::PrimitiveKind declaredKind, std::string_view declaredName,
                                         const BulkPrimitiveListValue& value, long long& integer, double& floating);

// The value converted to the list's declared element type; false when that is no primitive type or refuses the value.
bool rawPrimitiveValueToDeclared(const ListData& list, const BulkPrimitiveListValue& value,
                                 BulkPrimitiveListValue& out);
bool listValueToDeclaredPrimitiveValue(const ListData& list, void* handle, BulkPrimitiveListValue& out);

// Whether a value of this kind and name may be stored unboxed in the list as it stands.
bool primitiveStorageCompatible(const ListData& list, ListData::PrimitiveKind kind, std::string_view typeName);

// Appends a raw value: unboxed when the list is empty (it then adopts the kind) or keeps this kind and name, otherwise
// boxed, materialising first. May raise the character range errors. Allocates.
void appendPrimitiveValue(ListData& list, const BulkPrimitiveListValue& value);

namespace vorn::collections {

// Which integers of one type another type takes. It depends on the two types alone, so that a whole run of values needs
// one look at their names.
struct AcceptedValues {
  long long least = 0;
  long long greatest = -1;  // below `least`: none
  bool scalarsOnly = false;

  static constexpr AcceptedValues all() {
    return {std::numeric_limits<long long>::min(), std::numeric_limits<long long>::max()};
  }
  static constexpr AcceptedValues scalars() { return {0, 0x10FFFF, true}; }

  [[nodiscard]] bool contains(long long integer) const {
    return integer >= least && integer <= greatest && !(scalarsOnly && integer >= 0xD800 && integer <= 0xDFFF);
  }
  // Whether no value that storage of this kind can hold is refused, as its integer reading goes.
  [[nodiscard]] bool containsAllOf(ListData::PrimitiveKind kind) const;
};

// The values of a type that convertPrimitiveListValueToDeclared takes. Floating values are all taken or none.
AcceptedValues acceptedValues(const ElementType& declared, const ElementType& value);

// The values of a type that storage of that very name may hold: all but for "Char" and "CodeUnit".
AcceptedValues storableValues(std::string_view typeName);

// Whether the declared element type takes the value; what ensureListValueMatchesDeclaredElementType asks before it
// raises. Neither allocates nor runs user code.
bool declaredTypeAccepts(const ListData& list, void* handle);

// Makes an empty array-backed list keep values of this kind and name unboxed; false, after raising and with nothing
// changed, when the value is a Char or CodeUnit out of range.
bool adoptPrimitiveKindOrRaise(ListData& list, const BulkPrimitiveListValue& value);

// How a value enters a list.
enum class StoreForm {
  Refused,  // the declared element type does not accept it; the error is pending
  Unboxed,  // as the raw value, which the present storage can keep
  Boxed,    // as the handle, in boxed storage
};

// Decides how a value enters the list; `raw` is filled for the unboxed form. One lookup of the declared type and one
// unboxing serve the gate and the storage decision.
StoreForm chooseStoreFormOrRaise(const ListData& list, void* handle, BulkPrimitiveListValue& raw);

}  // namespace vorn::collections

// The declared-type gate of every list store; raises TypeError "ArrayList<...> cannot accept ..." and gives false when
// the value is refused.
bool ensureListValueMatchesDeclaredElementType(const ListData& list, void* handle);
