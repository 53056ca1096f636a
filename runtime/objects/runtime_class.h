// The class descriptor behind every object.
//
// Descriptors live as long as the process and never change once another thread can see them, so that they are read
// without locks. Built-in classes are constants (builtin_classes.h); generic instances such as
// "vorn.collections.ArrayList<Int>" and user classes are made on demand and kept by the registry (class_registry.h).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "collections/core/port/object_layout.h"
#include "collections/core/port/type_name.h"

namespace vorn::runtime {

// A built-in class by name; None for user classes.
enum class BuiltinClass : std::uint8_t {
#define VORN_BUILTIN_CLASS(name, module, kind, base, parameters, traits, fields) name,
#include "runtime/objects/builtin_classes.def"
#undef VORN_BUILTIN_CLASS
  None,
};

struct ClassTraits {
  bool isAbstract = false;  // has no instances of its own
  bool isSynchronised = false;
  bool isLinked = false;
};

// A hook of a user class with the context of the class that defined it, which need not be the class that inherits it.
template <class Function>
struct Hook {
  Function* function = nullptr;
  void* context = nullptr;

  explicit operator bool() const { return function != nullptr; }
};

struct ClassHooks {
  Hook<bool(void* self, void* other, void* context)> equals;
  Hook<int(void* self, void* other, bool* comparable, void* context)> compare;
  Hook<std::uint64_t(void* self, void* context)> hash;
  Hook<void*(void* self, void* context)> toString;
};

inline constexpr int kAnyParameters = -1;

}  // namespace vorn::runtime

struct RuntimeClass {
  RuntimeClassHead head{};     // first: what the collections library reads
  std::string_view fullName;   // NUL-terminated
  std::string_view shortName;  // the end of fullName
  ObjectKind kind;
  vorn::runtime::BuiltinClass builtin;  // of a generic instance: its raw class
  vorn::runtime::ClassTraits traits{};
  int parameters = 0;                  // type arguments that the raw class takes
  bool answersToShortName = true;      // false for a user class that shares a built-in class's short name
  const RuntimeClass* base = nullptr;  // null for Object alone
  const RuntimeClass* raw = nullptr;   // the class without type arguments; null when there are none
  std::size_t typeArguments = 0;       // that this class has
  RuntimeTypeName elementType{};       // of a generic list class: its normalised argument
  const ObjectField* fields = nullptr;
  std::size_t fieldCount = 0;                       // base fields come first
  std::size_t instanceSize = sizeof(ObjectRecord);  // of boxes and instances, in bytes
  vorn::runtime::ClassHooks hooks{};
};
