// Type names as text: short names, families of collection classes, type arguments, interning.
#include <vorn/collections/runtime_helpers.hpp>

#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "collections/core/port/type_names.h"
#include "runtime/objects/builtin_classes.h"
#include "runtime/objects/generic_names.h"
#include "runtime/objects/name_map.h"
#include "runtime/objects/runtime_class.h"

namespace {

using vorn::runtime::builtinClass;
using vorn::runtime::BuiltinClass;

using vorn::collections::InternedTypeName;
using InternedNames = vorn::runtime::NameMap<InternedTypeName>;

constinit InternedNames internedNames;
std::mutex internAdditions;

// The canonical short form of a name; null when the name has it.
const InternedTypeName* normalizedFormOf(std::string_view name) {
  const std::string_view shortName = shortTypeName(name);
  if (shortName.size() == name.size()) return nullptr;
  return internRuntimeTypeName(shortName.empty() ? std::string_view("Object") : shortName).name;
}

// The class of a collection's type name: short, or full and generic. A class of another module is no collection, even
// when its short name is that of one.
BuiltinClass collectionClassOf(std::string_view typeName) {
  constexpr std::string_view kModule = "vorn.collections.";
  if (typeName.starts_with(kModule)) typeName.remove_prefix(kModule.size());
  const std::string_view base = typeName.substr(0, typeName.find('<'));
  const auto chosen = [base](BuiltinClass candidate) {
    return base == builtinClass(candidate).shortName ? candidate : BuiltinClass::None;
  };
  if (base.empty()) return BuiltinClass::None;
  switch (base.front()) {
    case 'A':
      if (base.size() == 5) return chosen(BuiltinClass::Array);
      if (base == "ArraySync") return BuiltinClass::ArraySync;
      return base.size() == 9 ? chosen(BuiltinClass::ArrayList) : chosen(BuiltinClass::ArrayListSync);
    case 'L':
      return base.size() == 10 ? chosen(BuiltinClass::LinkedList) : chosen(BuiltinClass::LinkedListSync);
    case 'I':
      return chosen(BuiltinClass::ImmutableList);
    case 'T':
      return chosen(BuiltinClass::Tuple);
    case 'M':
      return chosen(BuiltinClass::Map);
    case 'S':
      return base.size() == 9 ? chosen(BuiltinClass::SortedMap) : chosen(BuiltinClass::SortedMapSync);
    case 'H':
      if (base.size() == 7) return chosen(BuiltinClass::HashSet);
      return base == "HashSetSync" ? BuiltinClass::HashSetSync : chosen(BuiltinClass::HashMapSync);
    default:
      return BuiltinClass::None;
  }
}

// The class of a collection of one family; null for every other name.
const RuntimeClass* classOfFamily(std::string_view typeName, ObjectKind family) {
  const BuiltinClass type = collectionClassOf(typeName);
  if (type == BuiltinClass::None || builtinClass(type).kind != family) return nullptr;
  return &builtinClass(type);
}

bool isOfFamily(std::string_view typeName, ObjectKind family) { return classOfFamily(typeName, family) != nullptr; }

}  // namespace

std::string_view shortTypeName(std::string_view typeName) {
  // Almost every name comes from one of the runtime's own two modules; the scan then begins behind it.
  constexpr std::string_view kModule = "vorn.";
  constexpr std::string_view kCollections = "vorn.collections.";
  std::size_t start = typeName.starts_with(kModule) ? kModule.size() : 0;
  if (start != 0 && typeName.starts_with(kCollections)) start = kCollections.size();
  for (std::size_t i = start; i < typeName.size() && typeName[i] != '<'; ++i) {
    if (typeName[i] == '.') start = i + 1;
  }
  return typeName.substr(start);
}

std::string_view shortTypeNameLocal(std::string_view typeName) { return shortTypeName(typeName); }

RuntimeTypeName internRuntimeTypeName(std::string_view name) {
  if (name.empty()) return {};
  if (const InternedTypeName* standard = vorn::collections::standardTypeName(name)) return {standard};
  if (const auto* known = internedNames.find(name)) return {&known->value};
  const InternedTypeName* const normalized = normalizedFormOf(name);
  auto prepared = InternedNames::prepare(name, {});
  prepared->value = {.text = prepared->name, .normalized = normalized};
  const std::scoped_lock lock(internAdditions);
  if (const auto* known = internedNames.find(name)) return {&known->value};
  return {&internedNames.add(std::move(prepared))->value};
}

std::string_view runtimeCollectionBaseName(std::string_view typeName) {
  const std::string_view name = shortTypeName(typeName);
  return name.substr(0, name.find('<'));
}

bool isArrayListLike(std::string_view typeName) {
  return isOfFamily(typeName, ObjectKind::List) && !isImmutableListLike(typeName);
}

bool isSyncArrayListLike(std::string_view typeName) {
  const RuntimeClass* const type = classOfFamily(typeName, ObjectKind::List);
  return type != nullptr && type->traits.isSynchronised;
}

bool isLinkedListLike(std::string_view typeName) {
  const RuntimeClass* const type = classOfFamily(typeName, ObjectKind::List);
  return type != nullptr && type->traits.isLinked;
}

bool isImmutableListLike(std::string_view typeName) {
  return collectionClassOf(typeName) == BuiltinClass::ImmutableList;
}

bool isIListLike(std::string_view typeName) { return isOfFamily(typeName, ObjectKind::List); }

bool isArrayLike(std::string_view typeName) { return isOfFamily(typeName, ObjectKind::Array); }

bool isSyncArrayLike(std::string_view typeName) { return collectionClassOf(typeName) == BuiltinClass::ArraySync; }

bool isTupleLike(std::string_view typeName) { return collectionClassOf(typeName) == BuiltinClass::Tuple; }

bool isMapLike(std::string_view typeName) { return isOfFamily(typeName, ObjectKind::Map); }

bool isHashSetLike(std::string_view typeName) { return isOfFamily(typeName, ObjectKind::Set); }

bool isSyncHashSetLike(std::string_view typeName) { return collectionClassOf(typeName) == BuiltinClass::HashSetSync; }

bool isFloatingNumberShortType(std::string_view shortName) { return shortName == "Float" || shortName == "Double"; }

bool vorn::compiler::ClassLoader::resolveConcreteGenericArgs(std::string_view typeName,
                                                             std::vector<std::string>& arguments) {
  arguments.clear();
  std::string_view base;
  std::vector<std::string_view> pieces;
  if (!vorn::runtime::splitGenericName(typeName, base, pieces)) return false;
  arguments.assign(pieces.begin(), pieces.end());
  return true;
}
