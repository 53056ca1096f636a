#include "runtime/objects/fields.h"

#include <bit>
#include <cstring>
#include <string_view>

#include "collections/core/number_rules.h"
#include "collections/core/port/borrowed_box.h"
#include "collections/core/port/objects.h"
#include "runtime/objects/builtin_classes.h"
#include "runtime/objects/tuple_object.h"
#include "runtime/values/boxes.h"

namespace vorn::runtime {
namespace {

// Every unboxing asks for "_value" and every reading of a tuple for "size", so that these are recognised without a length
// and without a call.
bool isValueFieldName(const char* name) {
  return name[0] == '_' && name[1] == 'v' && name[2] == 'a' && name[3] == 'l' && name[4] == 'u' && name[5] == 'e' &&
         name[6] == '\0';
}
bool isSizeFieldName(const char* name) {
  return name[0] == 's' && name[1] == 'i' && name[2] == 'z' && name[3] == 'e' && name[4] == '\0';
}

// The tuple behind a request for a tuple's size; null for every other request.
TupleObject* tupleAskedForSize(void* handle, const char* name) {
  TupleObject* const tuple = tupleOf(handle);
  return tuple != nullptr && name != nullptr && isSizeFieldName(name) ? tuple : nullptr;
}

// The box behind a request for a box's value; null for every other request.
const RegisteredObject* boxAskedForValue(const void* handle, const char* name) {
  const auto* box = getRegisteredObjectUnsafe(handle);
  if (box == nullptr || name == nullptr) return nullptr;
  return isBoxKind(box->kind()) && isValueFieldName(name) ? box : nullptr;
}

double integerToDouble(const RegisteredObject& box) {
  if (box.runtimeClass == &builtinClass(BuiltinClass::ULong)) {
    return static_cast<double>(static_cast<std::uint64_t>(box.integer));
  }
  return static_cast<double>(box.integer);
}

// A numeric field's value as the wanted type; 0 for a handle field.
template <class Result>
Result readNumber(const void* handle, const char* name) {
  const ObjectField* field = fieldOf(handle, name);
  if (field == nullptr || field->kind == ObjectField::Kind::Handle) return Result{};
  const std::uint64_t word = loadField(handle, *field);
  if (field->kind != ObjectField::Kind::Floating) return static_cast<Result>(static_cast<std::int64_t>(word));
  if constexpr (std::is_same_v<Result, long long>) return collections::truncateToI64(std::bit_cast<double>(word));
  return static_cast<Result>(std::bit_cast<double>(word));
}

// The fields of classes are kept apart from those of tuples, which need no stack.
__attribute__((noinline)) void setHandleField(void* handle, const char* name, void* value) {
  const ObjectField* field = fieldOf(handle, name);
  if (field == nullptr || field->kind != ObjectField::Kind::Handle) return;
  collections::assertMayBeKept(value);
  storeField(handle, *field, std::bit_cast<std::uint64_t>(value));
}

__attribute__((noinline)) void setNumberField(void* handle, const char* name, long long value) {
  const ObjectField* field = fieldOf(handle, name);
  if (field == nullptr || !isWritable(handle)) return;
  if (field->kind == ObjectField::Kind::Integer) {
    storeField(handle, *field, static_cast<std::uint64_t>(value));
  } else if (field->kind == ObjectField::Kind::Floating) {
    storeField(handle, *field, std::bit_cast<std::uint64_t>(static_cast<double>(value)));
  }
}

}  // namespace

const ObjectField* fieldOf(const void* handle, const char* name) {
  if (name == nullptr || !hasObjectMagic(handle)) return nullptr;
  const RuntimeClass* type = static_cast<const ObjectRecord*>(handle)->runtimeClass;
  const std::string_view wanted = name;
  for (std::size_t i = 0; i < type->fieldCount; ++i) {
    if (type->fields[i].name == wanted) return &type->fields[i];
  }
  return nullptr;
}

std::uint64_t loadField(const void* object, const ObjectField& field) {
  std::uint64_t word;
  std::memcpy(&word, static_cast<const unsigned char*>(object) + field.offset, sizeof(word));
  return word;
}

void storeField(void* object, const ObjectField& field, std::uint64_t word) {
  std::memcpy(static_cast<unsigned char*>(object) + field.offset, &word, sizeof(word));
}

bool isWritable(const void* object) {
  return hasObjectMagic(object) && !isBoxKind(static_cast<const ObjectRecord*>(object)->kind());
}

}  // namespace vorn::runtime

using vorn::runtime::boxAskedForValue;
using vorn::runtime::TupleObject;

extern "C" long long Vorn_getField_i64(void* handle, const char* field) {
  if (const RegisteredObject* box = boxAskedForValue(handle, field)) [[likely]] {
    if (box->kind() != ObjectKind::FloatingBox) return box->integer;
    return vorn::collections::truncateToI64(std::bit_cast<double>(box->integer));
  }
  if (const TupleObject* tuple = vorn::runtime::tupleAskedForSize(handle, field)) return tuple->size;
  return vorn::runtime::readNumber<long long>(handle, field);
}

extern "C" double Vorn_getField_double(void* handle, const char* field) {
  if (const RegisteredObject* box = boxAskedForValue(handle, field)) [[likely]] {
    if (box->kind() == ObjectKind::FloatingBox) [[likely]]
      return std::bit_cast<double>(box->integer);
    return vorn::runtime::integerToDouble(*box);
  }
  return vorn::runtime::readNumber<double>(handle, field);
}

extern "C" bool Vorn_getField_i1(void* handle, const char* field) {
  if (const RegisteredObject* box = boxAskedForValue(handle, field)) [[likely]] {
    if (box->kind() != ObjectKind::FloatingBox) [[likely]]
      return box->integer != 0;
    return std::bit_cast<double>(box->integer) != 0.0;
  }
  return vorn::runtime::readNumber<bool>(handle, field);
}

extern "C" void* Vorn_getField_ptr(void* handle, const char* field) {
  if (const TupleObject* tuple = vorn::runtime::tupleOf(handle); tuple != nullptr && field != nullptr) {
    return vorn::runtime::tupleItem(*tuple, vorn::runtime::itemNumber(field));
  }
  const ObjectField* found = vorn::runtime::fieldOf(handle, field);
  if (found == nullptr || found->kind != ObjectField::Kind::Handle) return nullptr;
  return std::bit_cast<void*>(vorn::runtime::loadField(handle, *found));
}

extern "C" void Vorn_setField_i64(void* handle, const char* field, long long value) {
  if (TupleObject* tuple = vorn::runtime::tupleAskedForSize(handle, field)) {
    tuple->size = value;
    return;
  }
  vorn::runtime::setNumberField(handle, field, value);
}

extern "C" void Vorn_setField_ptr(void* handle, const char* field, void* value) {
  if (TupleObject* tuple = vorn::runtime::tupleOf(handle); tuple != nullptr && field != nullptr) {
    const std::uint64_t number = vorn::runtime::itemNumber(field);
    if (number != vorn::runtime::kNoItem) vorn::runtime::setTupleItem(*tuple, number, value);
    return;
  }
  vorn::runtime::setHandleField(handle, field, value);
}

// The description is shared by all objects of the class; it is not const only because the interface says so.
ObjectField* findObjectField(ObjectRecord* object, const char* field) {
  return const_cast<ObjectField*>(
      vorn::runtime::fieldOf(object, field));  // NOLINT(cppcoreguidelines-pro-type-const-cast)
}
