#include "collections/display/value_display.h"

#include <array>
#include <string_view>

#include "collections/core/port/objects.h"
#include "collections/core/port/roots.h"
#include "collections/core/port/text.h"
#include "collections/core/port/type_names.h"
#include "collections/core/port/values.h"
#include "collections/display/display_buffer.h"

namespace vc = vorn::collections;
using vc::DisplayBuffer;

namespace {

// Most texts have nothing to escape and are copied as they are. Looking at every byte without an early end lets the
// compiler look at sixteen at once.
bool hasNothingToEscape(std::string_view content) {
  bool found = false;
  for (const char c : content) found |= static_cast<unsigned char>(c) < 0x20 || c == '"' || c == '\\';
  return !found;
}

void appendQuoted(DisplayBuffer& text, std::string_view content) {
  text.append("\"");
  if (hasNothingToEscape(content)) {
    text.append(content);
  } else {
    text.append(escapeDisplayString(content));
  }
  text.append("\"");
}

bool isIntegerTypeName(std::string_view name) {
  constexpr std::array<std::string_view, 8> kNames = {"Int",   "UInt",   "Long", "ULong",
                                                      "Short", "UShort", "Byte", "SByte"};
  for (const std::string_view candidate : kNames) {
    if (name == candidate) return true;
  }
  return false;
}

void appendTypeName(DisplayBuffer& text, void* type) {
  for (const char* field : {"_fullName", "_name"}) {
    if (void* name = Vorn_getField_ptr(type, field)) return text.append(stringTextFromPtr(name));
  }
  text.append("Type");
}

// Of nested and generated classes only the innermost name is shown.
std::string_view displayedClassName(std::string_view shortName) {
  if (shortName.empty()) return "Object";
  const std::size_t dollar = shortName.rfind('$');
  if (dollar == std::string_view::npos || dollar + 1 == shortName.size()) return shortName;
  return shortName.substr(dollar + 1);
}

// An object whose type name decides how it is shown. The predicates of the families come in the order in which they are
// asked.
void appendByTypeName(DisplayBuffer& text, void* object, std::string_view type) {
  if (type == "Boolean") return text.append(Vorn_getField_i1(object, "_value") ? "true" : "false");
  if (type == "String") return appendQuoted(text, stringTextFromPtr(object));
  if (isIntegerTypeName(type)) {
    return text.append(integerLikeToDisplayString(type, Vorn_getField_i64(object, "_value")));
  }
  if (type == "Double" || type == "Float") return text.append(formatVornFloat(Vorn_getField_double(object, "_value")));
  if (type == "Type") return appendTypeName(text, object);
  if (isArrayListLike(type)) return vc::appendListDisplay(text, object);
  if (isImmutableListLike(type)) return vc::appendImmutableListDisplay(text, object);
  if (isArrayLike(type)) return vc::appendArrayDisplay(text, object);
  if (isTupleLike(type)) return vc::appendTupleDisplay(text, object);
  if (isMapLike(type)) return vc::appendMapDisplay(text, object);
  if (isHashSetLike(type)) return vc::appendSetDisplay(text, object);
  text.append(formatObjectDefault(object, displayedClassName(type)));
}

}  // namespace

namespace vorn::collections {

void appendValueDisplay(DisplayBuffer& text, void* value) {
  if (value == nullptr) return text.append("null");
  if (!isObjectPointer(value)) return appendQuoted(text, static_cast<const char*>(value));
  const char* type = Vorn_objectTypeName(value);
  // A user class may bear the short name of a built-in one; what has no such value is no such box.
  const bool isInstance = getObject(value)->kind() == ObjectKind::Instance;
  const std::string_view shortName = type != nullptr ? shortTypeName(type) : std::string_view();
  if (isInstance) return text.append(formatObjectDefault(value, displayedClassName(shortName)));
  appendByTypeName(text, value, shortName);
}

void appendLanguageText(DisplayBuffer& text, void* value) {
  const char* own = value != nullptr ? Vorn_objectToString(value) : nullptr;
  text.append(own != nullptr ? own : "null");
}

void* displayAsString(void (*append)(DisplayBuffer& text, void* collection, void** string), void* collection) {
  DisplayBuffer text;
  void* string = nullptr;
  append(text, collection, &string);
  return string;
}

void finishDisplay(const DisplayBuffer& text, void** string) {
  if (string != nullptr) *string = Vorn_allocString(text.view());
}

}  // namespace vorn::collections

std::string valueToDisplayString(void* value) {
  DisplayBuffer text;
  vc::appendValueDisplay(text, value);
  return std::string(text.view());
}
