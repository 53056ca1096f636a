// Classes: the built-in ones, their generic forms, and those of users.
#include "minimal_runtime.h"

using namespace minimal;

namespace {
std::recursive_mutex mutex;
std::map<std::string, RuntimeClass> classes;  // by full name; they stay where they are

RuntimeClass* add(const std::string& name, ObjectKind kind, const RuntimeClass* base) {
  return &classes.emplace(name, RuntimeClass{{vc::PrimitiveType::None}, name, kind, base, {}}).first->second;
}

void addBuiltinClasses() {
  const RuntimeClass* object = add("vorn.Object", ObjectKind::Instance, nullptr);
  const RuntimeClass* lists = add("vorn.collections.IList", ObjectKind::Instance, object);
  add("vorn.String", ObjectKind::String, object);
  for (std::size_t i = 1; i < vc::kPrimitiveTypes; ++i) {
    const auto type = static_cast<vc::PrimitiveType>(i);
    ObjectKind kind = vc::isFloatingType(type) ? ObjectKind::FloatingBox : ObjectKind::IntegerBox;
    if (type == vc::PrimitiveType::Boolean) kind = ObjectKind::BooleanBox;
    if (vc::isCharacterType(type)) kind = ObjectKind::CharacterBox;
    add("vorn." + std::string(vc::infoOf(type).name), kind, object)->boxedType = type;
  }
  const auto addAll = [](ObjectKind kind, const RuntimeClass* base, std::initializer_list<const char*> names) {
    for (const char* name : names) add(std::string("vorn.collections.") + name, kind, base);
  };
  addAll(ObjectKind::List, lists, {"ArrayList", "ArrayListSync", "LinkedList", "LinkedListSync", "ImmutableList"});
  addAll(ObjectKind::Map, object, {"Map", "HashMapSync", "SortedMap", "SortedMapSync"});
  addAll(ObjectKind::Array, object, {"Array", "ArraySync"});
  addAll(ObjectKind::Set, object, {"HashSet", "HashSetSync"});
  addAll(ObjectKind::Tuple, object, {"Tuple"});
}

RuntimeClass* findKnown(std::string_view name) {
  for (const char* module : {"", "vorn.", "vorn.collections."}) {
    if (const auto found = classes.find(module + std::string(name)); found != classes.end()) return &found->second;
  }
  for (auto& [fullName, type] : classes) {
    if (shortTypeName(fullName) == name) return &type;
  }
  return nullptr;
}

// "ArrayList<Int>" is the class "vorn.collections.ArrayList<Int>", which is made when it is first asked for.
RuntimeClass* findGeneric(std::string_view name) {
  std::vector<std::string> arguments;
  if (!vorn::compiler::ClassLoader::resolveConcreteGenericArgs(name, arguments)) return nullptr;
  const RuntimeClass* base = findKnown(name.substr(0, name.find('<')));
  if (base == nullptr || base->kind < ObjectKind::Tuple) return nullptr;
  RuntimeClass* type = add(base->name + std::string(name.substr(name.find('<'))), base->kind, base);
  type->elementType = internRuntimeTypeName(shortTypeNameLocal(arguments[0]));
  return type;
}
}  // namespace

const RuntimeClass* minimal::findClass(std::string_view name) {
  const std::lock_guard lock(mutex);
  if (classes.empty()) addBuiltinClasses();
  const RuntimeClass* known = findKnown(name);
  return known != nullptr ? known : findGeneric(name);
}
const RuntimeClass* minimal::classOf(const void* handle) {
  static const RuntimeClass* const strings = findClass("String");
  return handle == nullptr || hasObjectMagic(handle) ? classOfObject(handle) : strings;
}
void minimal::defineClass(const std::string& name) {
  const std::lock_guard lock(mutex);
  if (findClass(name) == nullptr) add(name, ObjectKind::Instance, findClass("Object"));
}
