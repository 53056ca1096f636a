#include "runtime/objects/class_registry.h"

#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "collections/core/port/type_names.h"
#include "runtime/objects/builtin_classes.h"
#include "runtime/objects/generic_names.h"
#include "runtime/objects/name_map.h"

namespace vorn::runtime {
namespace {

// Every spelling that was asked for and found. Unknown names are not remembered: they may be defined later, and anyone
// can make up any number of them.
using ClassMap = NameMap<const RuntimeClass*>;
constinit ClassMap classesBySpelling;
std::mutex additions;

// A thread that makes one object of a class mostly makes more of them, and comparing a name is cheaper than hashing it.
// Entries stay as they are for good.
thread_local constinit const ClassMap::Entry* lastKnown __attribute__((tls_model("initial-exec"))) = nullptr;

const RuntimeClass* knownClass(std::string_view name) {
  const ClassMap::Entry* entry = lastKnown;
  if (entry != nullptr && entry->name == name) return entry->value;
  entry = classesBySpelling.find(name);
  if (entry == nullptr) return nullptr;
  lastKnown = entry;
  return entry->value;
}

// An argument as it stands in a full type name: as written, but value types without their module, since both spellings
// are the same type to every list and array.
std::string_view argumentSpelling(std::string_view argument) {
  const RuntimeClass* builtin = findBuiltinClass(argument);
  return builtin != nullptr && builtin->parameters == 0 ? builtin->shortName : argument;
}

std::string fullGenericName(const RuntimeClass& raw, const std::vector<std::string_view>& arguments) {
  std::string name(raw.fullName);
  char separator = '<';
  for (const std::string_view argument : arguments) {
    name += separator;
    name += argumentSpelling(argument);
    separator = ',';
  }
  return name += '>';
}

// Makes the instance of a generic class. The caller holds `additions`.
const RuntimeClass* genericInstance(const RuntimeClass& raw, const std::vector<std::string_view>& arguments) {
  const std::string name = fullGenericName(raw, arguments);
  if (const RuntimeClass* present = knownClass(name)) return present;
  // A list of Int is an IList of Int as well.
  const RuntimeClass* base = raw.base;
  if (base->parameters == raw.parameters) base = genericInstance(*base, arguments);

  // The name's text must live as long as the class, so the intern table keeps it.
  const std::string_view text = internRuntimeTypeName(name).get();
  auto instance = std::make_unique<RuntimeClass>(raw);
  instance->fullName = text;
  instance->shortName = shortTypeName(text);
  instance->base = base;
  instance->raw = &raw;
  instance->typeArguments = arguments.size();
  if (raw.kind == ObjectKind::List)
    instance->elementType = internRuntimeTypeName(shortTypeNameLocal(arguments.front()));
  const RuntimeClass* made = classesBySpelling.findOrAdd(name, instance.get())->value;
  (void)instance.release();  // NOLINT: the table keeps it for good
  return made;
}

const RuntimeClass* resolveUnknownSpelling(std::string_view name) {
  if (const RuntimeClass* builtin = findBuiltinClass(name)) return builtin;
  std::string_view base;
  std::vector<std::string_view> arguments;
  if (!splitGenericName(name, base, arguments)) return nullptr;
  const RuntimeClass* raw = findBuiltinClass(base);
  if (raw == nullptr || raw->parameters == 0) return nullptr;
  if (raw->parameters != kAnyParameters && static_cast<std::size_t>(raw->parameters) != arguments.size()) {
    return nullptr;
  }
  const std::scoped_lock lock(additions);
  return genericInstance(*raw, arguments);
}

}  // namespace

const RuntimeClass* findClass(std::string_view name) {
  if (const RuntimeClass* known = knownClass(name)) return known;
  const RuntimeClass* resolved = resolveUnknownSpelling(name);
  if (resolved == nullptr) return nullptr;
  const std::scoped_lock lock(additions);
  return classesBySpelling.findOrAdd(name, resolved)->value;
}

bool addUserClass(RuntimeClass& definition) {
  if (findBuiltinClass(definition.fullName) != nullptr) return false;
  definition.answersToShortName = findBuiltinClass(definition.shortName) == nullptr;
  const std::scoped_lock lock(additions);
  if (knownClass(definition.fullName) != nullptr) return false;
  // Either both names stand for the class or none does, should memory end.
  auto fullEntry = ClassMap::prepare(definition.fullName, &definition);
  auto shortEntry = ClassMap::prepare(definition.shortName, &definition);
  classesBySpelling.add(std::move(fullEntry));
  if (definition.answersToShortName && knownClass(definition.shortName) == nullptr) {
    classesBySpelling.add(std::move(shortEntry));
  }
  return true;
}

}  // namespace vorn::runtime
