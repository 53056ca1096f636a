// The embedding API: objects, their types, fields and equality.
#include <vorn/runtime.h>

#include <bit>
#include <cstdint>
#include <new>

#include "collections/core/port/borrowed_box.h"
#include "collections/core/port/comparison.h"
#include "collections/core/port/objects.h"
#include "runtime/objects/fields.h"
#include "runtime/objects/tuple_object.h"

namespace {

using vorn::runtime::fieldOf;
using vorn::runtime::isWritable;
using vorn::runtime::kNoItem;
using vorn::runtime::TupleObject;
using vorn::runtime::tupleOf;

// The field of a writable object, or null unless it is of that kind.
const ObjectField* writableField(void* handle, const char* name, ObjectField::Kind kind) {
  const ObjectField* field = fieldOf(handle, name);
  return field != nullptr && field->kind == kind && isWritable(handle) ? field : nullptr;
}

// Which item of a tuple the field is; kNoItem when it is no tuple or no item.
std::uint64_t itemOf(const TupleObject* tuple, const char* field) {
  return tuple != nullptr && field != nullptr ? vorn::runtime::itemNumber(field) : kNoItem;
}

int setItem(TupleObject& tuple, std::uint64_t index, void* item) {
  try {
    vorn::runtime::setTupleItem(tuple, index, item);
    return 1;
  } catch (const std::bad_alloc&) {
    return 0;
  }
}

bool isIntegerField(const ObjectField* field) {
  return field != nullptr && (field->kind == ObjectField::Kind::Integer || field->kind == ObjectField::Kind::Boolean);
}

}  // namespace

extern "C" {

void* vorn_object_new(const char* type_name) {
  try {
    return Vorn_allocObject(type_name);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

int vorn_is_object(void* handle) { return isObjectPointer(handle) ? 1 : 0; }

const char* vorn_type_name(void* handle) { return Vorn_objectTypeName(handle); }

int vorn_is_instance(void* handle, const char* type_name) {
  try {
    return Vorn_isInstanceOf(handle, type_name) ? 1 : 0;
  } catch (const std::bad_alloc&) {
    return 0;
  }
}

int vorn_field_get_integer(void* handle, const char* field, int64_t* value) {
  const ObjectField* found = fieldOf(handle, field);
  if (!isIntegerField(found) || value == nullptr) return 0;
  *value = static_cast<std::int64_t>(vorn::runtime::loadField(handle, *found));
  return 1;
}

int vorn_field_get_floating(void* handle, const char* field, double* value) {
  const ObjectField* found = fieldOf(handle, field);
  if (found == nullptr || found->kind != ObjectField::Kind::Floating || value == nullptr) return 0;
  *value = std::bit_cast<double>(vorn::runtime::loadField(handle, *found));
  return 1;
}

int vorn_field_get_handle(void* handle, const char* field, void** value) {
  const TupleObject* const tuple = tupleOf(handle);
  if (const std::uint64_t item = itemOf(tuple, field); item != kNoItem && value != nullptr) {
    if (tuple->size < 0 || item >= static_cast<std::uint64_t>(tuple->size)) return 0;
    *value = vorn::runtime::tupleItem(*tuple, item);
    return 1;
  }
  const ObjectField* found = fieldOf(handle, field);
  if (found == nullptr || found->kind != ObjectField::Kind::Handle || value == nullptr) return 0;
  *value = std::bit_cast<void*>(vorn::runtime::loadField(handle, *found));
  return 1;
}

int vorn_field_set_integer(void* handle, const char* field, int64_t value) {
  const ObjectField* found = writableField(handle, field, ObjectField::Kind::Integer);
  if (found == nullptr) return 0;
  vorn::runtime::storeField(handle, *found, static_cast<std::uint64_t>(value));
  return 1;
}

int vorn_field_set_floating(void* handle, const char* field, double value) {
  const ObjectField* found = writableField(handle, field, ObjectField::Kind::Floating);
  if (found == nullptr) return 0;
  vorn::runtime::storeField(handle, *found, std::bit_cast<std::uint64_t>(value));
  return 1;
}

int vorn_field_set_handle(void* handle, const char* field, void* value) {
  TupleObject* const tuple = tupleOf(handle);
  if (const std::uint64_t item = itemOf(tuple, field); item != kNoItem) return setItem(*tuple, item, value);
  const ObjectField* found = writableField(handle, field, ObjectField::Kind::Handle);
  if (found == nullptr) return 0;
  vorn::collections::assertMayBeKept(value);
  vorn::runtime::storeField(handle, *found, std::bit_cast<std::uint64_t>(value));
  return 1;
}

int vorn_equals(void* left, void* right) {
  try {
    return Vorn_deepEquals(left, right) != 0 ? 1 : 0;
  } catch (const std::bad_alloc&) {
    return 0;
  }
}
}
