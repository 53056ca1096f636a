#include "collections/core/elements/accepted_values.h"

#include "collections/core/port/type_name.h"

namespace vorn::collections {

namespace {

constexpr std::string_view kCodeUnit = "CodeUnit";
constexpr std::string_view kChar = "Char";

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
  if (declared.kind == PrimitiveKind::Boolean) {
    return value.kind == PrimitiveKind::Boolean && sameName(value.name, declared.name) ? AcceptedValues::all() : kNone;
  }
  // The two character types match nothing but themselves.
  const bool takesUnits = sameName(declared.name, kCodeUnit);
  if (takesUnits || sameName(value.name, kCodeUnit)) {
    return takesUnits && sameName(value.name, kCodeUnit) ? storableValues(kCodeUnit) : kNone;
  }
  const bool takesScalars = sameName(declared.name, kChar);
  if (takesScalars || sameName(value.name, kChar)) {
    return takesScalars && sameName(value.name, kChar) ? storableValues(kChar) : kNone;
  }
  if (isIntegerKind(declared.kind)) return isIntegerKind(value.kind) ? integersOf(declared.kind) : kNone;
  const bool numeric = isFloatingKind(value.kind) || isIntegerKind(value.kind) || value.kind == PrimitiveKind::Boolean;
  return isFloatingKind(declared.kind) && numeric ? AcceptedValues::all() : kNone;
}

AcceptedValues storableValues(std::string_view typeName) {
  if (sameName(typeName, kCodeUnit)) return {0, 0xFFFF};
  return sameName(typeName, kChar) ? AcceptedValues::scalars() : AcceptedValues::all();
}

}  // namespace vorn::collections
