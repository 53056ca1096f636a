// Reading and comparing numbers of every kind, exactly.
#include <bit>
#include <cmath>
#include <compare>
#include <cstdint>

#include "collections/core/port/comparison.h"
#include "runtime/objects/builtin_classes.h"
#include "runtime/values/scalars.h"

namespace {

using Kind = NativeNumericValue::Kind;
using vorn::runtime::builtinClass;
using vorn::runtime::BuiltinClass;

template <class T>
int threeWay(T left, T right) {
  return (left > right) - (left < right);
}

// An integer against a double that is not a NaN, without rounding either. Doubles outside the integer's range are
// decided by their sign; inside it the whole part is an exact integer, and what is left decides a tie.
template <class Integer>
int compareWithDouble(Integer integer, double floating) {
  constexpr double kUpper = std::is_signed_v<Integer> ? 0x1p63 : 0x1p64;
  constexpr double kLower = std::is_signed_v<Integer> ? -0x1p63 : 0.0;
  if (floating >= kUpper) return -1;
  if (floating < kLower) return 1;
  const double whole = std::trunc(floating);
  const int byWhole = threeWay(integer, static_cast<Integer>(whole));
  return byWhole != 0 ? byWhole : threeWay(whole, floating);
}

double floatingOf(const NativeNumericValue& number) { return std::bit_cast<double>(number.payload); }

bool isNan(const NativeNumericValue& number) { return number.kind == Kind::Floating && std::isnan(floatingOf(number)); }

// Neither is a NaN, and `left` is an integer.
int compareInteger(const NativeNumericValue& left, const NativeNumericValue& right) {
  const auto leftSigned = static_cast<std::int64_t>(left.payload);
  if (right.kind == Kind::Floating) {
    return left.kind == Kind::Signed ? compareWithDouble(leftSigned, floatingOf(right))
                                     : compareWithDouble(left.payload, floatingOf(right));
  }
  if (left.kind == right.kind) {
    return left.kind == Kind::Signed ? threeWay(leftSigned, static_cast<std::int64_t>(right.payload))
                                     : threeWay(left.payload, right.payload);
  }
  // One signed, one unsigned: a negative number is below every unsigned one, and otherwise the bits are the value.
  if (left.kind == Kind::Signed && leftSigned < 0) return -1;
  if (right.kind == Kind::Signed && static_cast<std::int64_t>(right.payload) < 0) return 1;
  return threeWay(left.payload, right.payload);
}

// Neither is a NaN.
int compareOrdered(const NativeNumericValue& left, const NativeNumericValue& right) {
  if (left.kind != Kind::Floating) return compareInteger(left, right);
  if (right.kind != Kind::Floating) return -compareInteger(right, left);
  return threeWay(floatingOf(left), floatingOf(right));
}

}  // namespace

bool tryReadNativeNumericValue(void* handle, NativeNumericValue& value) {
  const RegisteredObject* box = getRegisteredObjectUnsafe(handle);
  if (box == nullptr) return false;
  if (box->kind() == ObjectKind::IntegerBox) {
    value.kind = box->runtimeClass == &builtinClass(BuiltinClass::ULong) ? Kind::Unsigned : Kind::Signed;
  } else if (box->kind() == ObjectKind::FloatingBox) {
    value.kind = Kind::Floating;
  } else {
    return false;
  }
  value.payload = static_cast<std::uint64_t>(box->integer);
  return true;
}

int compareNativeNumericValues(const NativeNumericValue& left, const NativeNumericValue& right) {
  if (isNan(left)) return 1;
  if (isNan(right)) return -1;
  return compareOrdered(left, right);
}

int compareNativeNumericValuesForSort(const NativeNumericValue& left, const NativeNumericValue& right) {
  const bool leftNan = isNan(left);
  const bool rightNan = isNan(right);
  if (leftNan || rightNan) return threeWay<int>(leftNan, rightNan);
  return compareOrdered(left, right);
}

namespace vorn::runtime {

bool readScalar(const void* handle, Scalar& scalar) {
  const RegisteredObject* box = getRegisteredObjectUnsafe(handle);
  if (box == nullptr) return false;
  switch (box->kind()) {
    case ObjectKind::IntegerBox:
    case ObjectKind::FloatingBox:
      scalar.family = Scalar::Family::Number;
      return tryReadNativeNumericValue(const_cast<void*>(handle), scalar.value);  // NOLINT: only read
    case ObjectKind::CharacterBox:
      scalar.family =
          box->runtimeClass == &builtinClass(BuiltinClass::Char) ? Scalar::Family::Char : Scalar::Family::CodeUnit;
      break;
    case ObjectKind::BooleanBox:
      scalar.family = Scalar::Family::Boolean;
      break;
    default:
      return false;
  }
  scalar.value = signedNumber(box->integer);
  return true;
}

}  // namespace vorn::runtime
