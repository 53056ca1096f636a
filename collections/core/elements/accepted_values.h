// Which values of one primitive type another one takes.
#pragma once

#include <limits>

#include "collections/core/elements/element_types.h"
#include "collections/core/kinds.h"
#include "collections/core/unicode.h"

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
    return integer >= least && integer <= greatest && (!scalarsOnly || isUnicodeScalar(integer));
  }
  // Whether no value that storage of this kind can hold is refused, as its integer reading goes.
  [[nodiscard]] bool containsAllOf(PrimitiveKind kind) const;
};

// The values of a type that convertPrimitiveListValueToDeclared takes. Floating values are all taken or none.
AcceptedValues acceptedValues(const ElementType& declared, const ElementType& value);

// The values that storage under the name of a type may hold: all but for "Char" and "CodeUnit".
AcceptedValues storableValues(RuntimeTypeName typeName);

}  // namespace vorn::collections
