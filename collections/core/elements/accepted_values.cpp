#include "collections/core/elements/accepted_values.h"

namespace vorn::collections {

namespace {

// The integers that an integer kind can hold. ULong holds the non-negative half: its upper half cannot be told from
// negative numbers in a signed pair.
AcceptedValues integersOf(PrimitiveKind kind) {
  return visitKind(
      kind,
      [](auto tag) {
        using Limits = std::numeric_limits<typename decltype(tag)::Element>;
        if constexpr (!isIntegerKind(decltype(tag)::kind)) {
          return AcceptedValues{};
        } else if constexpr (decltype(tag)::kind == PrimitiveKind::ULong) {
          return AcceptedValues{0, std::numeric_limits<long long>::max()};
        } else {
          return AcceptedValues{Limits::min(), Limits::max()};
        }
      },
      AcceptedValues{});
}

}  // namespace

bool AcceptedValues::containsAllOf(PrimitiveKind kind) const {
  // The upper half of ULong reads as negative.
  const AcceptedValues held = kind == PrimitiveKind::ULong || !isIntegerKind(kind) ? all() : integersOf(kind);
  return least <= held.least && greatest >= held.greatest && !scalarsOnly;
}

AcceptedValues acceptedValues(const ElementType& declared, const ElementType& value) {
  constexpr AcceptedValues kNone;
  if (declared.kind == PrimitiveKind::Boolean) return value == declared ? AcceptedValues::all() : kNone;
  // The two character types match nothing but themselves.
  if (isCharacterType(declared.name.primitiveType()) || isCharacterType(value.name.primitiveType())) {
    return value.name == declared.name ? storableValues(declared.name) : kNone;
  }
  if (isIntegerKind(declared.kind)) return isIntegerKind(value.kind) ? integersOf(declared.kind) : kNone;
  const bool numeric = isFloatingKind(value.kind) || isIntegerKind(value.kind) || value.kind == PrimitiveKind::Boolean;
  return isFloatingKind(declared.kind) && numeric ? AcceptedValues::all() : kNone;
}

AcceptedValues storableValues(RuntimeTypeName typeName) {
  const PrimitiveType type = typeName.primitiveType();
  if (type == PrimitiveType::CodeUnit) return {0, 0xFFFF};
  return type == PrimitiveType::Char ? AcceptedValues::scalars() : AcceptedValues::all();
}

}  // namespace vorn::collections
