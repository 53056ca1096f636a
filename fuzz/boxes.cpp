#include "fuzz/boxes.h"

#include <string>

namespace vorn::fuzz {

namespace {

template <class Number, class Wanted>
void requireUnboxed(int (*unbox)(void*, Number*), void* handle, bool fits, Wanted wanted) {
  Number number{};
  requireEqual("unboxing", unbox(handle, &number), fits ? 1 : 0);
  if (number != (fits ? static_cast<Number>(wanted) : Number{}) && wanted == wanted) {
    diverge("an unboxed value", std::to_string(number), std::to_string(wanted));
  }
}

}  // namespace

void* exactBox(Value& value) {
  switch (value.type) {
    case Type::SByte:
      return vorn_box_sbyte(static_cast<std::int8_t>(value.integer = static_cast<std::int8_t>(value.integer)));
    case Type::Byte:
      return vorn_box_byte(static_cast<std::uint8_t>(value.integer = static_cast<std::uint8_t>(value.integer)));
    case Type::Short:
      return vorn_box_short(static_cast<std::int16_t>(value.integer = static_cast<std::int16_t>(value.integer)));
    case Type::UShort:
      return vorn_box_ushort(static_cast<std::uint16_t>(value.integer = static_cast<std::uint16_t>(value.integer)));
    case Type::CodeUnit:
      return vorn_box_code_unit(static_cast<std::uint16_t>(value.integer = static_cast<std::uint16_t>(value.integer)));
    case Type::Int:
      return vorn_box_int(static_cast<std::int32_t>(value.integer = static_cast<std::int32_t>(value.integer)));
    case Type::UInt:
      return vorn_box_uint(static_cast<std::uint32_t>(value.integer = static_cast<std::uint32_t>(value.integer)));
    case Type::Char:
      return vorn_box_char(static_cast<std::uint32_t>(value.integer = static_cast<std::uint32_t>(value.integer)));
    case Type::ULong:
      return vorn_box_ulong(static_cast<std::uint64_t>(value.integer));
    case Type::Float:
      return vorn_box_float(static_cast<float>(value.floating));
    case Type::Double:
      return vorn_box_double(value.floating);
    case Type::Boolean:
      return vorn_box_boolean(value.integer != 0);
    default:
      return vorn_box_long(value.integer);
  }
}

void requireBox(void* handle, const Value& value) {
  requireUnboxed(vorn_unbox_sbyte, handle, value.type == Type::SByte, value.integer);
  requireUnboxed(vorn_unbox_byte, handle, value.type == Type::Byte, value.integer);
  requireUnboxed(vorn_unbox_short, handle, value.type == Type::Short, value.integer);
  requireUnboxed(vorn_unbox_ushort, handle, value.type == Type::UShort, value.integer);
  requireUnboxed(vorn_unbox_int, handle, value.type == Type::Int, value.integer);
  requireUnboxed(vorn_unbox_uint, handle, value.type == Type::UInt, value.integer);
  requireUnboxed(vorn_unbox_long, handle, value.type == Type::Long, value.integer);
  requireUnboxed(vorn_unbox_ulong, handle, value.type == Type::ULong, value.integer);
  requireUnboxed(vorn_unbox_float, handle, value.type == Type::Float, value.floating);
  requireUnboxed(vorn_unbox_double, handle, value.type == Type::Double, value.floating);
  requireUnboxed(vorn_unbox_char, handle, value.type == Type::Char, value.integer);
  requireUnboxed(vorn_unbox_code_unit, handle, value.type == Type::CodeUnit, value.integer);
  requireUnboxed(vorn_unbox_boolean, handle, value.type == Type::Boolean, value.integer);
  requireUnboxed(vorn_unbox_integer, handle, isPrimitive(value.type) && !isFloating(value.type), value.integer);
  requireUnboxed(vorn_unbox_floating, handle, isFloating(value.type), value.floating);
  const std::string type = std::string("vorn.") + nameOf(value.type);
  requireSame("the type of a box", vorn_type_name(handle), type);
}

}  // namespace vorn::fuzz
