// Filling a list's primitive storage from arrays of raw values.

#include <algorithm>
#include <cstring>

#include "collections/core/elements/accepted_values.h"
#include "collections/core/elements/primitive_elements.h"
#include "collections/core/elements/primitive_values.h"
#include "collections/core/elements/storage_transitions.h"
#include "collections/core/kernels/element_access.h"
#include "collections/core/kinds.h"
#include "collections/core/number_rules.h"
#include "collections/core/port/roots.h"

namespace vc = vorn::collections;
using vc::PrimitiveKind;

namespace vorn::collections {

namespace {

// Narrows every value to the element type, as storing it alone would.
template <class Tag, class Value>
void fillElements(Tag tag, unsigned char* data, const Value* values, std::uint64_t n) {
  for (std::uint64_t i = 0; i < n; ++i) {
    if constexpr (std::is_same_v<Value, double>) {
      storeElement(tag, data, i, isFloatingKind(Tag::kind) ? 0 : truncateToI64(values[i]), values[i]);
    } else {
      storeElement(tag, data, i, values[i], static_cast<double>(values[i]));
    }
  }
}

// One look at the name serves all values.
template <class Value>
bool checkCharacterRangesOrRaise(RuntimeTypeName typeName, const Value* values, std::uint64_t n) {
  const AcceptedValues accepted = storableValues(typeName);
  if (values == nullptr || accepted.containsAllOf(PrimitiveKind::Long)) return true;
  const Value* const end = values + n;
  const Value* const refused =
      std::find_if(values, end, [&](Value value) { return !accepted.contains(integerReading(value)); });
  return refused == end || checkCharacterRangeOrRaise(typeName, integerReading(*refused));
}

template <class Value>
bool assignValues(ListData& list, PrimitiveKind kind, RuntimeTypeName typeName, const Value* values, std::uint64_t n) {
  if (!checkCharacterRangesOrRaise(typeName, values, n)) return false;
  if (list.linked) {
    HandleVector boxes;
    boxes->reserve(n);
    for (std::uint64_t i = 0; i < n; ++i) {
      const auto raw = rawPrimitiveValue({kind, typeName}, values != nullptr ? values[i] : Value{});
      boxes->push_back(boxPrimitiveListValue(kind, typeName, raw.integer, raw.floating));
    }
    list.objectAssign(*boxes);
    list.elementType = typeName;
    return true;
  }
  resetToPrimitiveStorage(list, kind, typeName, n);
  list.elementType = typeName;
  if (values == nullptr) {
    std::memset(list.primitive.data, 0, n * list.primitive.elementSize);
  } else {
    visitKind(kind, [&](auto tag) { fillElements(tag, list.primitive.data, values, n); });
  }
  list.primitive.size = n;
  return true;
}

}  // namespace

}  // namespace vorn::collections

bool primitiveListAssignFromI64Values(ListData& list, PrimitiveKind kind, RuntimeTypeName typeName,
                                      const long long* values, std::uint64_t n) {
  return vc::assignValues(list, kind, typeName, values, n);
}

bool primitiveListAssignFromF64Values(ListData& list, PrimitiveKind kind, RuntimeTypeName typeName,
                                      const double* values, std::uint64_t n) {
  return vc::assignValues(list, kind, typeName, values, n);
}
