// The text of any object.
#include <bit>
#include <string>
#include <string_view>

#include "collections/core/runtime_interface.h"
#include "runtime/objects/builtin_classes.h"
#include "runtime/objects/fields.h"
#include "runtime/objects/user_hooks.h"
#include "runtime/text/text.h"
#include "runtime/values/boxes.h"

namespace {

using vorn::runtime::builtinClass;
using vorn::runtime::BuiltinClass;

std::string boxText(const RegisteredObject& box) {
  std::string text;
  switch (box.kind()) {
    case ObjectKind::FloatingBox:
      vorn::runtime::appendFloating(text, std::bit_cast<double>(box.integer));
      break;
    case ObjectKind::BooleanBox:
      text = box.integer != 0 ? "true" : "false";
      break;
    case ObjectKind::CharacterBox:
      vorn::runtime::appendScalarValue(text, static_cast<std::uint64_t>(box.integer));
      break;
    default:
      text = box.runtimeClass == &builtinClass(BuiltinClass::ULong)
                 ? std::to_string(static_cast<std::uint64_t>(box.integer))
                 : std::to_string(box.integer);
      break;
  }
  return text;
}

// A handle inside an object's own text: the text of texts and boxes, and for the rest the class name alone, so that the
// text ends however the objects refer to each other.
std::string innerText(void* handle) {
  if (handle == nullptr) return "null";
  std::string_view text;
  if (vorn::runtime::readText(handle, text)) return std::string(text);
  const auto& object = *static_cast<const ObjectRecord*>(handle);
  if (vorn::runtime::isBoxKind(object.kind())) return boxText(static_cast<const RegisteredObject&>(object));
  return std::string(object.runtimeClass->shortName);
}

std::string fieldText(const void* object, const ObjectField& field) {
  const std::uint64_t word = vorn::runtime::loadField(object, field);
  switch (field.kind) {
    case ObjectField::Kind::Integer:
      return std::to_string(static_cast<std::int64_t>(word));
    case ObjectField::Kind::Floating: {
      std::string text;
      vorn::runtime::appendFloating(text, std::bit_cast<double>(word));
      return text;
    }
    case ObjectField::Kind::Boolean:
      return word != 0 ? "true" : "false";
    case ObjectField::Kind::Handle:
      return innerText(std::bit_cast<void*>(word));
  }
  return {};
}

// "Point(x=1, y=2)"; a class without fields shows its name alone, and so does a collection.
std::string defaultText(const ObjectRecord& object) {
  const RuntimeClass& type = *object.runtimeClass;
  std::string text(type.shortName);
  if (object.kind() != ObjectKind::Instance) return text;
  const char* separator = "(";
  for (std::size_t i = 0; i < type.fieldCount; ++i) {
    text += separator;
    text += type.fields[i].name;
    text += '=';
    text += fieldText(&object, type.fields[i]);
    separator = ", ";
  }
  if (type.fieldCount != 0) text += ')';
  return text;
}

// A Type shows the name of the type that it stands for.
std::string typeText(void* type) {
  for (const char* field : {"_fullName", "_name"}) {
    std::string_view text;
    if (vorn::runtime::readText(Vorn_getField_ptr(type, field), text)) return std::string(text);
  }
  return "Type";
}

std::string ownText(ObjectRecord& object) {
  if (vorn::runtime::isBoxKind(object.kind())) return boxText(static_cast<const RegisteredObject&>(object));
  return object.kind() == ObjectKind::Type ? typeText(&object) : defaultText(object);
}

// The text that a hook's result stands for: null when it raised or gave something that is no text.
const char* hookText(const vorn::runtime::Hook<void*(void*, void*)>& hook, void* self) {
  const vorn::runtime::HookErrors errors;
  void* const result = hook.function(self, hook.context);
  std::string_view text;
  return !errors.raised() && vorn::runtime::readText(result, text) ? text.data() : nullptr;
}

}  // namespace

extern "C" const char* Vorn_objectToString(void* handle) {
  if (handle == nullptr) return nullptr;
  std::string_view own;
  if (vorn::runtime::readText(handle, own)) return own.data();
  auto& object = *static_cast<ObjectRecord*>(handle);
  const auto& hook = object.runtimeClass->hooks.toString;
  return hook ? hookText(hook, handle) : vorn::runtime::newText(ownText(object));
}
