// Type names as text: short names, arguments, families, interning.
#include <vorn/collections/runtime_helpers.hpp>

#include "minimal_runtime.h"

namespace {
// Whether a type name is one of these classes of the collections' module. A class of that name elsewhere is none.
bool isOneOf(std::string_view typeName, std::initializer_list<std::string_view> family) {
  constexpr std::string_view kModule = "vorn.collections.";
  if (typeName.starts_with(kModule)) typeName.remove_prefix(kModule.size());
  const std::string_view base = typeName.substr(0, typeName.find('<'));
  return std::find(family.begin(), family.end(), base) != family.end();
}
}  // namespace

std::string_view shortTypeName(std::string_view typeName) {
  const std::size_t dot = typeName.substr(0, typeName.find('<')).rfind('.');
  return dot == std::string_view::npos ? typeName : typeName.substr(dot + 1);
}
std::string_view shortTypeNameLocal(std::string_view typeName) { return shortTypeName(typeName); }
RuntimeTypeName internRuntimeTypeName(std::string_view name) {
  static std::recursive_mutex mutex;
  static std::map<std::string, vorn::collections::InternedTypeName, std::less<>>
      names;  // whose entries stay where they are
  if (name.empty()) return {};
  if (const vorn::collections::InternedTypeName* standard = vorn::collections::standardTypeName(name))
    return {standard};
  const std::lock_guard lock(mutex);
  const auto [entry, isNew] = names.try_emplace(std::string(name));
  if (isNew) {
    const std::string_view shortForm = shortTypeNameLocal(entry->first);
    entry->second.text = entry->first;
    if (shortForm != name) {
      entry->second.normalized = internRuntimeTypeName(shortForm.empty() ? "Object" : shortForm).name;
    }
  }
  return {&entry->second};
}
std::string_view runtimeCollectionBaseName(std::string_view typeName) {
  const std::string_view name = shortTypeName(typeName);
  return name.substr(0, name.find('<'));
}
bool isArrayListLike(std::string_view name) {
  return isOneOf(name, {"ArrayList", "ArrayListSync", "LinkedList", "LinkedListSync"});
}
bool isSyncArrayListLike(std::string_view name) { return isOneOf(name, {"ArrayListSync", "LinkedListSync"}); }
bool isLinkedListLike(std::string_view name) { return isOneOf(name, {"LinkedList", "LinkedListSync"}); }
bool isImmutableListLike(std::string_view name) { return isOneOf(name, {"ImmutableList"}); }
bool isIListLike(std::string_view name) { return isArrayListLike(name) || isImmutableListLike(name); }
bool isArrayLike(std::string_view name) { return isOneOf(name, {"Array", "ArraySync"}); }
bool isSyncArrayLike(std::string_view name) { return isOneOf(name, {"ArraySync"}); }
bool isTupleLike(std::string_view name) { return isOneOf(name, {"Tuple"}); }
bool isMapLike(std::string_view name) { return isOneOf(name, {"Map", "HashMapSync", "SortedMap", "SortedMapSync"}); }
bool isHashSetLike(std::string_view name) { return isOneOf(name, {"HashSet", "HashSetSync"}); }
bool isSyncHashSetLike(std::string_view name) { return isOneOf(name, {"HashSetSync"}); }
bool isFloatingNumberShortType(std::string_view name) { return name == "Float" || name == "Double"; }
bool vorn::compiler::ClassLoader::resolveConcreteGenericArgs(std::string_view typeName,
                                                             std::vector<std::string>& arguments) {
  arguments.clear();
  const std::size_t open = typeName.find('<');
  if (open == std::string_view::npos || !typeName.ends_with('>')) return false;
  int depth = 0;
  std::string argument;
  for (const char c : typeName.substr(open + 1)) {
    depth += (c == '<') - (c == '>');
    if ((c == ',' && depth == 0) || depth < 0) {
      while (argument.ends_with(' ')) argument.pop_back();
      if (argument.empty()) return false;
      arguments.push_back(std::exchange(argument, {}));
    } else if (c != ' ' || !argument.empty()) {
      argument += c;
    }
  }
  return depth == -1;
}
