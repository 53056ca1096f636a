// The embedding API: values and texts.
#include <vorn/runtime.h>

#include <bit>
#include <cstring>
#include <new>
#include <string_view>

#include "collections/core/port/values.h"
#include "runtime/objects/builtin_classes.h"
#include "runtime/text/text.h"
#include "runtime/values/boxes.h"

namespace {

using vorn::collections::PrimitiveType;

// The boxed type of a short or full name; None for every other name, null included.
PrimitiveType boxedTypeNamed(const char* name) {
  return name != nullptr ? vorn::runtime::languageTypeNamed(name) : PrimitiveType::None;
}

// What make() gives, or null when there is no memory.
template <class Make>
void* madeOrNull(Make make) {
  try {
    return make();
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

const RegisteredObject* boxOf(const void* handle) {
  const RegisteredObject* object = getRegisteredObjectUnsafe(handle);
  return object != nullptr && vorn::runtime::isBoxKind(object->kind()) ? object : nullptr;
}

}  // namespace

extern "C" {

void* vorn_box_integer(const char* type_name, int64_t value) {
  const PrimitiveType type = boxedTypeNamed(type_name);
  if (type == PrimitiveType::Boolean) return Vorn_boxBool(value != 0);
  if (!vorn::collections::isIntegerKind(vorn::collections::kindOf(type))) return nullptr;
  return madeOrNull([&] { return vorn::runtime::newBox(vorn::runtime::boxClass(type), value); });
}

void* vorn_box_floating(const char* type_name, double value) {
  const PrimitiveType type = boxedTypeNamed(type_name);
  if (!vorn::collections::isFloatingKind(vorn::collections::kindOf(type))) return nullptr;
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

void* vorn_string_new(const char* text, size_t length) {
  if (text == nullptr) return nullptr;
  return madeOrNull([&] { return Vorn_allocString({text, length == SIZE_MAX ? std::strlen(text) : length}); });
}

void* vorn_text_new(const char* text) {
  if (text == nullptr) return nullptr;
  return madeOrNull([&] { return vorn::runtime::newText(text); });
}

const char* vorn_string_text(void* handle) {
  std::string_view text;
  return vorn::runtime::readText(handle, text) ? text.data() : nullptr;
}
}
