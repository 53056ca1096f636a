// The embedding API: definition of user classes.
#include <vorn/runtime.h>

#include <memory>
#include <new>
#include <span>
#include <string_view>
#include <vector>

#include "collections/core/port/type_names.h"
#include "runtime/objects/class_registry.h"
#include "runtime/objects/runtime_class.h"

namespace {

using vorn::runtime::ClassHooks;
using vorn::runtime::findClass;

// Offsets are 32 bits wide; no class comes near this.
constexpr std::size_t kMostFields = 1U << 20;

bool isNameCharacter(unsigned char c, bool first) {
  const bool letter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c == '$' || c >= 0x80;
  return letter || (!first && c >= '0' && c <= '9');
}

// Letters, digits, "_", "$" and anything beyond ASCII, not starting with a digit.
bool isIdentifier(std::string_view text) {
  bool first = true;
  for (const char c : text) {
    if (!isNameCharacter(static_cast<unsigned char>(c), first)) return false;
    first = false;
  }
  return !text.empty();
}

// Identifiers separated by points.
bool isClassName(const char* name) {
  if (name == nullptr) return false;
  std::string_view rest = name;
  for (std::size_t point = rest.find('.'); point != std::string_view::npos; point = rest.find('.')) {
    if (!isIdentifier(rest.substr(0, point))) return false;
    rest.remove_prefix(point + 1);
  }
  return isIdentifier(rest);
}

bool isFieldKind(vorn_field_type type) {
  return type == VORN_FIELD_INTEGER || type == VORN_FIELD_FLOATING || type == VORN_FIELD_HANDLE;
}

ObjectField::Kind fieldKind(vorn_field_type type) {
  switch (type) {
    case VORN_FIELD_FLOATING:
      return ObjectField::Kind::Floating;
    case VORN_FIELD_HANDLE:
      return ObjectField::Kind::Handle;
    case VORN_FIELD_INTEGER:
      break;
  }
  return ObjectField::Kind::Integer;
}

// The base's fields and then the class's own; false when a definition is malformed or a name occurs twice.
bool collectFields(const RuntimeClass& base, std::span<const vorn_field_definition> definitions,
                   std::vector<ObjectField>& fields) {
  fields.assign(base.fields, base.fields + base.fieldCount);
  for (const vorn_field_definition& definition : definitions) {
    if (definition.name == nullptr || !isIdentifier(definition.name) || !isFieldKind(definition.type)) return false;
    for (const ObjectField& earlier : fields) {
      if (earlier.name == definition.name) return false;
    }
    const auto offset = static_cast<std::uint32_t>(sizeof(ObjectRecord) + fields.size() * sizeof(std::uint64_t));
    // Field names are as few and as long-lived as type names, so that the same table keeps them.
    fields.push_back({fieldKind(definition.type), offset, internRuntimeTypeName(definition.name).get()});
  }
  return true;
}

template <class Function>
void overrideHook(vorn::runtime::Hook<Function>& hook, Function* function, void* context) {
  if (function != nullptr) hook = {function, context};
}

ClassHooks hooksFrom(const RuntimeClass& base, const vorn_class_definition& definition) {
  ClassHooks hooks = base.hooks;
  overrideHook(hooks.equals, definition.equals, definition.context);
  overrideHook(hooks.compare, definition.compare, definition.context);
  overrideHook(hooks.hash, definition.hash, definition.context);
  overrideHook(hooks.toString, definition.to_string, definition.context);
  return hooks;
}

// The class to derive from: Object when none is named, null when the name is not that of a user class.
const RuntimeClass* baseOf(const vorn_class_definition& definition) {
  if (definition.base_name == nullptr) return findClass("vorn.Object");
  const RuntimeClass* base = findClass(definition.base_name);
  return base != nullptr && base->builtin == vorn::runtime::BuiltinClass::None ? base : nullptr;
}

bool define(const vorn_class_definition& definition) {
  if (definition.struct_size < sizeof(vorn_class_definition) || !isClassName(definition.name)) return false;
  if (definition.field_count > kMostFields || (definition.fields == nullptr && definition.field_count != 0)) {
    return false;
  }
  const RuntimeClass* base = baseOf(definition);
  std::vector<ObjectField> fields;
  if (base == nullptr || !collectFields(*base, {definition.fields, definition.field_count}, fields)) return false;

  auto copiedFields = std::make_unique<ObjectField[]>(fields.size());
  std::copy(fields.begin(), fields.end(), copiedFields.get());
  const std::string_view name = internRuntimeTypeName(definition.name).get();
  auto made = std::make_unique<RuntimeClass>(RuntimeClass{
      .fullName = name,
      .shortName = shortTypeName(name),
      .kind = ObjectKind::Instance,
      .builtin = vorn::runtime::BuiltinClass::None,
      .traits = {},
      .base = base,
      .fields = copiedFields.get(),
      .fieldCount = fields.size(),
      .instanceSize = sizeof(ObjectRecord) + fields.size() * sizeof(std::uint64_t),
      .hooks = hooksFrom(*base, definition),
  });
  if (!vorn::runtime::addUserClass(*made)) return false;
  (void)copiedFields.release();  // NOLINT: kept by the registry for good
  (void)made.release();          // NOLINT
  return true;
}

}  // namespace

extern "C" int vorn_class_define(const vorn_class_definition* definition) {
  if (definition == nullptr) return 0;
  try {
    return define(*definition) ? 1 : 0;
  } catch (const std::bad_alloc&) {
    return 0;
  }
}
