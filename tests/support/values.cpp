#include "tests/support/values.h"

#include <climits>
#include <cstdio>

#include "tests/support/kinds.h"
#include "tests/support/user_objects.h"

namespace vorn::tests {

const std::vector<std::string>& primitiveNames() {
  static const std::vector<std::string> names = [] {
    std::vector<std::string> all;
    for (const NamedKind& row : kNamedKinds) all.emplace_back(row.name);
    return all;
  }();
  return names;
}

bool isFloatingName(const std::string& type) { return type == "Float" || type == "Double"; }

Handle box(const std::string& type, long long value) {
  if (isFloatingName(type)) return floating(type.c_str(), static_cast<double>(value));
  if (type == "Boolean") return boolean(value != 0);
  return integer(type.c_str(), value);
}

std::string describeNumber(double value) {
  char digits[40];
  std::snprintf(digits, sizeof(digits), "%.17g", value);
  return digits;
}

std::string describe(void* handle) {
  if (handle == nullptr) return "null";
  if (vorn_is_object(handle) == 0) return std::string("text ") + static_cast<const char*>(handle);
  const std::string fullName = vorn_type_name(handle);
  const std::string type = fullName.substr(fullName.rfind('.') + 1);
  std::int64_t whole = 0;
  double real = 0.0;
  if (vorn_unbox_integer(handle, &whole) != 0) return type + " " + std::to_string(whole);
  if (vorn_unbox_floating(handle, &real) != 0) return type + " " + describeNumber(real);
  if (vorn_field_get_integer(handle, "id", &whole) != 0) return type + " " + std::to_string(whole);
  const char* characters = vorn_string_text(handle);
  return characters != nullptr ? type + " " + characters : type;
}

Palette paletteOf(const std::string& element) {
  Palette palette;
  const auto add = [&palette](const Handle& value, long long asInteger, double asDouble) {
    palette.push_back({value, asInteger, asDouble});
  };
  const auto addIntegers = [&](std::initializer_list<long long> values) {
    for (const long long value : values) add(box(element, value), value, static_cast<double>(value));
  };
  if (element.empty()) {
    add(integer("Int", 7), 7, 7.0);
    add(string("seven"), 0, 0.0);
    add(floating("Double", 2.75), 2, 2.75);
    add(text("eight"), 0, 0.0);
    add(integer("Long", 1LL << 40), 1LL << 40, 1099511627776.0);
    add(item(1), 0, 0.0);
    add(integer("Char", 'q'), 'q', 113.0);
    add(nullptr, 0, 0.0);
  } else if (element == "app.Item") {
    for (int id = 1; id <= 5; ++id) add(item(id), 0, 0.0);
  } else if (element == "SByte") {
    addIntegers({0, 1, -1, 127, -128});
  } else if (element == "Byte") {
    addIntegers({0, 1, 127, 128, 255});
  } else if (element == "Short") {
    addIntegers({0, 1, -1, 32767, -32768});
  } else if (element == "UShort" || element == "CodeUnit") {
    addIntegers({0, 65, 0xD800, 32768, 65535});
  } else if (element == "Int") {
    addIntegers({0, 1, -1, INT_MAX, INT_MIN});
  } else if (element == "UInt") {
    addIntegers({0, 1, 0x7FFFFFFF, 0x80000000LL, 0xFFFFFFFFLL});
  } else if (element == "Char") {
    addIntegers({0, 65, 0xD7FF, 0xE000, 0x10FFFF});
  } else if (element == "Long") {
    addIntegers({0, 1, -1, LLONG_MAX, LLONG_MIN});
  } else if (element == "ULong") {
    addIntegers({0, 1, 0xFFFFFFFFLL, 0x100000000LL, LLONG_MAX});
  } else if (isFloatingName(element)) {
    for (const double value : {0.0, 1.5, -2.75, 16777216.0}) {
      add(floating(element.c_str(), value), static_cast<long long>(value), value);
    }
    add(floating(element.c_str(), 0x1p100), LLONG_MIN, 0x1p100);
  } else if (element == "Boolean") {
    addIntegers({0, 1});
  }
  return palette;
}

}  // namespace vorn::tests
