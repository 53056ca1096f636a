#include "console/values.h"

#include <vorn/collections/array.h>
#include <vorn/collections/array_list.h>
#include <vorn/collections/hash_set.h>
#include <vorn/collections/map.h>
#include <vorn/collections/tuple.h>
#include <vorn/collections/runtime_helpers.hpp>

#include <algorithm>
#include <exception>
#include <utility>

#include "console/display_cost.h"
#include "console/problems.h"
#include "console/scalars.h"
#include "console/text.h"

namespace vorn::console {

namespace {

// A screen has room for about so much, and a reader for less.
constexpr std::size_t kLongestText = 1000;
// Past this, only the beginning of a list is displayed at all: the whole would take long to make and be cut anyway.
constexpr std::uint64_t kMostElements = 2000;

std::string plainDisplay(void* handle) {
  const DisplayCost cost = displayCost(handle);
  throwPendingErrors();
  if (cost != DisplayCost::Fine) {
    return typeText(handle) + " of " + counted(sizeOf(handle), "element") +
           (cost == DisplayCost::TooDeep ? ", nested too deep to show" : ", which shows too much to be shown");
  }
  std::string text;
  try {
    text = printable(valueToDisplayString(handle));
  } catch (const std::bad_alloc&) {
    throw Refusal("there is no memory to show this");
  } catch (const std::exception& exception) {
    throw Refusal(std::string("this cannot be shown: ") + exception.what());
  }
  throwPendingErrors();
  return text;
}

// The first elements of a list or array as a collection of its class; the value itself when it is neither, or short.
Value beginning(const Value& value) {
  void* handle = value.handle();
  if (!isCollection(handle) || sizeOf(handle) <= kMostElements) return value;
  const Value given = newObject(vorn_box_boolean(true));
  switch (familyOf(handle)) {
    case Family::List:
      return newObject(vorn_collections_ArrayList_slice(handle, 0, kMostElements, 1, nullptr, given.handle()));
    case Family::Array:
      return newObject(vorn_collections_Array_slice(handle, 0, kMostElements, 1, nullptr, given.handle()));
    default:
      return value;
  }
}

std::string objectText(const Value& value) {
  const Value shown = beginning(value);
  std::string text = plainDisplay(shown.handle());
  const bool whole = shown.handle() == value.handle();
  if (whole && characterCount(text) <= kLongestText) return text;
  const std::uint64_t characters = characterCount(text);
  text = firstCharacters(text, kLongestText);
  std::string sizes;
  if (isCollection(value.handle())) sizes = counted(sizeOf(value.handle()), "element");
  if (whole) sizes += (sizes.empty() ? "" : ", ") + counted(characters, "character");
  return text + " ... (" + sizes + ")";
}

std::string bufferText(const Value& value) {
  const Value::Raw& raw = value.raw();
  return "raw " + std::string(raw.type->name) + " elements of " + typeText(value.handle()) + ", room for " +
         grouped(static_cast<std::uint64_t>(raw.count));
}

}  // namespace

Value Value::object(void* handle) {
  Value result;
  result.kind_ = Kind::Object;
  result.handle_ = handle;
  return result;
}

Value Value::buffer(void* owner, const Raw& raw) {
  Value result;
  result.kind_ = Kind::Buffer;
  result.handle_ = owner;
  result.raw_ = raw;
  return result;
}

Value Value::record(void* owner, ListData* data) {
  Value result;
  result.kind_ = Kind::Record;
  result.handle_ = owner;
  result.data_ = data;
  return result;
}

Value newObject(void* handle) {
  if (handle == nullptr) throw Refusal("there is not enough memory");
  return Value::object(handle);
}

std::string typeText(void* handle) {
  const char* full = vorn_type_name(handle);
  if (full == nullptr) return "null";
  std::string result;
  std::size_t wordStart = 0;
  for (const char* c = full; *c != '\0'; ++c) {
    if (*c == '.') {
      result.resize(wordStart);
      continue;
    }
    result += *c;
    if (*c == '<' || *c == ',' || *c == ' ') wordStart = result.size();
  }
  return result;
}

std::string className(void* handle) {
  std::string text = typeText(handle);
  return text.substr(0, text.find('<'));
}

std::string elementTypeText(void* handle) {
  const std::string text = typeText(handle);
  const std::size_t opening = text.find('<');
  return opening == std::string::npos ? std::string() : text.substr(opening + 1, text.size() - opening - 2);
}

Family familyOf(void* handle) {
  if (handle == nullptr || vorn_is_object(handle) == 0) return Family::None;
  constexpr std::pair<std::string_view, Family> kFamilies[] = {
      {"ArrayList", Family::List},  {"ArrayListSync", Family::List},
      {"LinkedList", Family::List}, {"LinkedListSync", Family::List},
      {"Array", Family::Array},     {"ArraySync", Family::Array},
      {"Map", Family::Map},         {"HashMapSync", Family::Map},
      {"SortedMap", Family::Map},   {"SortedMapSync", Family::Map},
      {"HashSet", Family::HashSet}, {"HashSetSync", Family::HashSet},
      {"Tuple", Family::Tuple},     {"ImmutableList", Family::ImmutableList},
  };
  const std::string_view full = vorn_type_name(handle);
  constexpr std::string_view kModule = "vorn.collections.";
  if (!full.starts_with(kModule)) return Family::None;
  const std::string_view name = full.substr(kModule.size(), full.find('<') - kModule.size());
  const auto* found = std::ranges::find(kFamilies, name, &std::pair<std::string_view, Family>::first);
  return found != std::end(kFamilies) ? found->second : Family::None;
}

bool isCollection(void* handle) { return familyOf(handle) != Family::None; }

std::uint64_t sizeOf(void* handle) {
  switch (familyOf(handle)) {
    case Family::List:
    case Family::ImmutableList:
      return static_cast<std::uint64_t>(vorn_collections_ArrayList_size(handle));
    case Family::Array:
      return static_cast<std::uint64_t>(vorn_collections_Array_size(handle));
    case Family::Map:
      return static_cast<std::uint64_t>(vorn_collections_Map_size(handle));
    case Family::HashSet:
      return static_cast<std::uint64_t>(vorn_collections_HashSet_size(handle));
    case Family::Tuple:
      return static_cast<std::uint64_t>(vorn_collections_Tuple_size(handle));
    case Family::None:
      break;
  }
  return 0;
}

std::string displayText(const Value& value) {
  switch (value.kind()) {
    case Value::Kind::Object:
      return objectText(value);
    case Value::Kind::Buffer:
      return bufferText(value);
    case Value::Kind::Record:
      return "the record of " + typeText(value.handle());
    case Value::Kind::Nothing:
      break;
  }
  return {};
}

std::string shortDisplay(const Value& value, std::size_t characters) {
  std::string text = value.isObject() ? plainDisplay(beginning(value).handle()) : displayText(value);
  std::ranges::replace(text, '\n', ' ');
  if (characterCount(text) <= characters) return text;
  return std::string(firstCharacters(text, characters - 3)) + "...";
}

void throwPendingErrors() {
  const std::size_t count = vorn_error_count();
  if (count == 0) return;
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    if (!text.empty()) text += "; then ";
    text += vorn_error_class(i);
    text += ": ";
    text += vorn_error_message(i);
  }
  vorn_errors_clear();
  throw RaisedError(printable(text));
}

}  // namespace vorn::console
