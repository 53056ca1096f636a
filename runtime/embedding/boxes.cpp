// The embedding API: boxed values, by the name of their type and by a function for each type.
#include <vorn/runtime.h>

#include <bit>
#include <type_traits>

#include "collections/core/port/values.h"
#include "runtime/embedding/made_or_null.h"
#include "runtime/objects/builtin_classes.h"
#include "runtime/values/boxes.h"

namespace {

using vorn::collections::infoOf;
using vorn::collections::PrimitiveType;
using vorn::runtime::madeOrNull;

// The boxed type of a short or full name; None for every other name, null included.
PrimitiveType boxedTypeNamed(const char* name) {
  return name != nullptr ? vorn::collections::languageTypeNamed(name) : PrimitiveType::None;
}

const RegisteredObject* boxOf(const void* handle) {
  const RegisteredObject* object = getRegisteredObjectUnsafe(handle);
  return object != nullptr && vorn::runtime::isBoxKind(object->kind()) ? object : nullptr;
}

// Whether C has the values of a type in that form.
template <PrimitiveType type, class Value>
constexpr bool isFormOf =
    sizeof(Value) == infoOf(type).width&& std::is_floating_point_v<Value> == vorn::collections::isFloatingType(type);

template <PrimitiveType type, class Value>
void* boxed(Value value) {
  static_assert(isFormOf<type, Value>);
  std::int64_t payload;
  if constexpr (std::is_floating_point_v<Value>) {
    payload = std::bit_cast<std::int64_t>(static_cast<double>(value));
  } else {
    payload = static_cast<std::int64_t>(value);
  }
  return madeOrNull([payload] { return vorn::runtime::newBox(vorn::runtime::boxClass(type), payload); });
}

template <PrimitiveType type, class Value>
int unboxed(const void* handle, Value* value) {
  static_assert(isFormOf<type, Value>);
  const RegisteredObject* box = getRegisteredObjectUnsafe(handle);
  if (box == nullptr || box->runtimeClass != &vorn::runtime::boxClass(type) || value == nullptr) return 0;
  if constexpr (std::is_floating_point_v<Value>) {
    *value = static_cast<Value>(std::bit_cast<double>(box->integer));
  } else {
    *value = static_cast<Value>(box->integer);
  }
  return 1;
}

}  // namespace

extern "C" {

void* vorn_box_integer(const char* type_name, int64_t value) {
  const PrimitiveType type = boxedTypeNamed(type_name);
  if (type == PrimitiveType::Boolean) return Vorn_boxBool(value != 0);
  if (!vorn::collections::isIntegerType(type)) return nullptr;
  return madeOrNull([&] { return vorn::runtime::newBox(vorn::runtime::boxClass(type), value); });
}

void* vorn_box_floating(const char* type_name, double value) {
  const PrimitiveType type = boxedTypeNamed(type_name);
  if (!vorn::collections::isFloatingType(type)) return nullptr;
  return madeOrNull([&] { return vorn::runtime::newFloatingBox(type, value); });
}

void* vorn_box_boolean(bool value) { return Vorn_boxBool(value); }

int vorn_unbox_integer(void* handle, int64_t* value) {
  const RegisteredObject* box = boxOf(handle);
  if (box == nullptr || box->kind() == ObjectKind::FloatingBox || value == nullptr) return 0;
  *value = box->integer;
  return 1;
}

int vorn_unbox_floating(void* handle, double* value) {
  const RegisteredObject* box = boxOf(handle);
  if (box == nullptr || box->kind() != ObjectKind::FloatingBox || value == nullptr) return 0;
  *value = std::bit_cast<double>(box->integer);
  return 1;
}

int vorn_unbox_boolean(void* handle, bool* value) {
  const RegisteredObject* box = boxOf(handle);
  if (box == nullptr || box->kind() != ObjectKind::BooleanBox || value == nullptr) return 0;
  *value = box->integer != 0;
  return 1;
}

void* vorn_box_sbyte(int8_t value) { return boxed<PrimitiveType::SByte>(value); }
int vorn_unbox_sbyte(void* handle, int8_t* value) { return unboxed<PrimitiveType::SByte>(handle, value); }

void* vorn_box_byte(uint8_t value) { return boxed<PrimitiveType::Byte>(value); }
int vorn_unbox_byte(void* handle, uint8_t* value) { return unboxed<PrimitiveType::Byte>(handle, value); }

void* vorn_box_short(int16_t value) { return boxed<PrimitiveType::Short>(value); }
int vorn_unbox_short(void* handle, int16_t* value) { return unboxed<PrimitiveType::Short>(handle, value); }

void* vorn_box_ushort(uint16_t value) { return boxed<PrimitiveType::UShort>(value); }
int vorn_unbox_ushort(void* handle, uint16_t* value) { return unboxed<PrimitiveType::UShort>(handle, value); }

void* vorn_box_int(int32_t value) { return boxed<PrimitiveType::Int>(value); }
int vorn_unbox_int(void* handle, int32_t* value) { return unboxed<PrimitiveType::Int>(handle, value); }

void* vorn_box_uint(uint32_t value) { return boxed<PrimitiveType::UInt>(value); }
int vorn_unbox_uint(void* handle, uint32_t* value) { return unboxed<PrimitiveType::UInt>(handle, value); }

void* vorn_box_long(int64_t value) { return boxed<PrimitiveType::Long>(value); }
int vorn_unbox_long(void* handle, int64_t* value) { return unboxed<PrimitiveType::Long>(handle, value); }

void* vorn_box_ulong(uint64_t value) { return boxed<PrimitiveType::ULong>(value); }
int vorn_unbox_ulong(void* handle, uint64_t* value) { return unboxed<PrimitiveType::ULong>(handle, value); }

void* vorn_box_float(float value) { return boxed<PrimitiveType::Float>(value); }
int vorn_unbox_float(void* handle, float* value) { return unboxed<PrimitiveType::Float>(handle, value); }

void* vorn_box_double(double value) { return boxed<PrimitiveType::Double>(value); }
int vorn_unbox_double(void* handle, double* value) { return unboxed<PrimitiveType::Double>(handle, value); }

void* vorn_box_char(uint32_t value) { return boxed<PrimitiveType::Char>(value); }
int vorn_unbox_char(void* handle, uint32_t* value) { return unboxed<PrimitiveType::Char>(handle, value); }

void* vorn_box_code_unit(uint16_t value) { return boxed<PrimitiveType::CodeUnit>(value); }
int vorn_unbox_code_unit(void* handle, uint16_t* value) { return unboxed<PrimitiveType::CodeUnit>(handle, value); }
}
