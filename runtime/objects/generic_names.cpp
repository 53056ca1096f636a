#include "runtime/objects/generic_names.h"

#include <cstddef>

#include "collections/core/port/type_names.h"
#include "runtime/objects/builtin_classes.h"

namespace vorn::runtime {
namespace {

// Nesting beyond this is no type that anyone wrote, and the comparison recurses.
constexpr int kDeepestNesting = 64;

// The ASCII white space, as in the names that the library reads by itself.
bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

bool plainNamesSameType(std::string_view left, std::string_view right) {
  if (left == right) return true;
  const RuntimeClass* leftBuiltin = findBuiltinClass(left);
  const RuntimeClass* rightBuiltin = findBuiltinClass(right);
  if (leftBuiltin != nullptr || rightBuiltin != nullptr) return leftBuiltin == rightBuiltin;
  // Two different full names are two classes; a short name stands for any class so called.
  const std::string_view leftShort = shortTypeName(left);
  const std::string_view rightShort = shortTypeName(right);
  return leftShort == rightShort && (leftShort.size() == left.size() || rightShort.size() == right.size());
}

bool namesSameType(std::string_view left, std::string_view right, int depth) {
  if (left == right) return true;
  if (depth > kDeepestNesting) return false;
  std::string_view leftBase;
  std::string_view rightBase;
  std::vector<std::string_view> leftArguments;
  std::vector<std::string_view> rightArguments;
  const bool leftGeneric = splitGenericName(left, leftBase, leftArguments);
  const bool rightGeneric = splitGenericName(right, rightBase, rightArguments);
  if (leftGeneric != rightGeneric) return false;
  if (!leftGeneric) return plainNamesSameType(left, right);
  if (leftArguments.size() != rightArguments.size() || !plainNamesSameType(leftBase, rightBase)) return false;
  for (std::size_t i = 0; i < leftArguments.size(); ++i) {
    if (!namesSameType(leftArguments[i], rightArguments[i], depth + 1)) return false;
  }
  return true;
}

}  // namespace

std::string_view trimBlanks(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

bool splitGenericName(std::string_view name, std::string_view& base, std::vector<std::string_view>& arguments) {
  name = trimBlanks(name);
  const std::size_t open = name.find('<');
  if (open == std::string_view::npos || name.back() != '>') return false;
  const std::string_view head = trimBlanks(name.substr(0, open));
  if (head.empty()) return false;

  std::vector<std::string_view> found;
  std::size_t depth = 0;
  std::size_t start = open + 1;
  const auto take = [&](std::size_t end) {
    found.push_back(trimBlanks(name.substr(start, end - start)));
    start = end + 1;
    return !found.back().empty();
  };
  for (std::size_t i = open; i < name.size(); ++i) {
    if (name[i] == '<') {
      ++depth;
    } else if (name[i] == '>') {
      --depth;
      if (depth == 0) {
        if (i + 1 != name.size() || !take(i)) return false;
        base = head;
        arguments = std::move(found);
        return true;
      }
    } else if (name[i] == ',' && depth == 1) {
      if (!take(i)) return false;
    }
  }
  return false;
}

bool namesSameType(std::string_view left, std::string_view right) {
  return namesSameType(trimBlanks(left), trimBlanks(right), 0);
}

}  // namespace vorn::runtime
