// The text of any object.
#include <vorn/collections/array.h>
#include <vorn/collections/array_list.h>
#include <vorn/collections/hash_set.h>
#include <vorn/collections/immutable_list.h>
#include <vorn/collections/map.h>
#include <vorn/collections/tuple.h>

#include <bit>
#include <string>
#include <string_view>

#include "collections/core/pending_error_watch.h"
#include "collections/core/port/objects.h"
#include "collections/core/port/text.h"
#include "runtime/objects/builtin_classes.h"
#include "runtime/objects/fields.h"
#include "runtime/text/text.h"
#include "runtime/values/boxes.h"

namespace {

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
      text = integerLikeToDisplayString(box.runtimeClass->shortName, box.integer);
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

// "Point(x=1, y=2)"; a class without fields shows its name alone.
std::string defaultText(const ObjectRecord& object, std::string_view className) {
  const RuntimeClass& type = *object.runtimeClass;
  std::string text(className);
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
  return object.kind() == ObjectKind::Type ? typeText(&object) : defaultText(object, object.runtimeClass->shortName);
}

// The display of a collection, made by its own native; null for any other object.
void* collectionString(ObjectRecord& object) {
  switch (object.kind()) {
    case ObjectKind::List:
      return object.runtimeClass->builtin == BuiltinClass::ImmutableList
                 ? vorn_collections_ImmutableList_toString(&object)
                 : vorn_collections_ArrayList_toString(&object);
    case ObjectKind::Tuple:
      return vorn_collections_Tuple_toString(&object);
    case ObjectKind::Array:
      return vorn_collections_Array_toString(&object);
    case ObjectKind::Map:
      return vorn_collections_Map_toString(&object);
    case ObjectKind::Set:
      return vorn_collections_HashSet_toString(&object);
    default:
      return nullptr;
  }
}

// The text that a hook's result stands for: null when it raised or gave something that is no text.
const char* hookText(const vorn::runtime::Hook<void*(void*, void*)>& hook, void* self) {
  const vorn::collections::PendingErrorWatch errors;
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
  if (hook) return hookText(hook, handle);
  // A String's text is a block of its own, which the result may point to when the String is gone.
  if (vorn::runtime::readText(collectionString(object), own)) return own.data();
  return vorn::runtime::newText(ownText(object));
}

std::string formatObjectDefault(void* object, std::string_view className) {
  auto& record = *static_cast<ObjectRecord*>(object);
  if (vorn::runtime::isBoxKind(record.kind())) return boxText(static_cast<const RegisteredObject&>(record));
  if (const auto& hook = record.runtimeClass->hooks.toString) {
    if (const char* text = hookText(hook, object)) return text;
  }
  return defaultText(record, className);
}
