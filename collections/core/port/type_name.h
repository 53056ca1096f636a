// Interned type names, which carry what they classify.
#pragma once

#include <atomic>
#include <cstddef>
#include <string_view>

#include "collections/core/kinds.h"

struct RuntimeClass;

namespace vorn::collections {

// A type name with what the library asks about it, made once for each name and never destroyed. Lists compare and
// classify the types of values by these facts and never by text.
struct InternedTypeName {
  std::string_view text;                              // NUL-terminated
  PrimitiveType primitiveType = PrimitiveType::None;  // the primitive type of exactly this name
  bool takesEveryValue = false;                       // of "Object" alone, among the names of what lists declare
  const InternedTypeName* normalized = nullptr;       // the canonical short form; null for a name that has it already
  // The class that was last seen to be of this type, as Vorn_isInstanceOf says: what lists that declare it are filled
  // with is mostly of one class, whose next object is then told by one comparison. Any thread may come by here.
  mutable const RuntimeClass* lastClass = nullptr;

  [[nodiscard]] bool lastSeen(const RuntimeClass* type) const {
    return std::atomic_ref(lastClass).load(std::memory_order_relaxed) == type;
  }
  void remember(const RuntimeClass* type) const {
    if (!lastSeen(type)) std::atomic_ref(lastClass).store(type, std::memory_order_relaxed);
  }
};

}  // namespace vorn::collections

// A pointer to an interned name. Equal names have equal pointers; null is the empty name. Made by
// internRuntimeTypeName (type_names.h).
struct RuntimeTypeName {
  const vorn::collections::InternedTypeName* name = nullptr;

  // The name, NUL-terminated; the empty string for null.
  [[nodiscard]] std::string_view get() const { return name != nullptr ? name->text : std::string_view(""); }

  [[nodiscard]] bool empty() const { return name == nullptr; }

  // The primitive type of exactly this name: "Int" is one, "vorn.Int" is none.
  [[nodiscard]] vorn::collections::PrimitiveType primitiveType() const {
    return name != nullptr ? name->primitiveType : vorn::collections::PrimitiveType::None;
  }

  // The canonical short form, without the module; the empty name stays empty.
  [[nodiscard]] RuntimeTypeName shortForm() const {
    return name != nullptr && name->normalized != nullptr ? RuntimeTypeName{name->normalized} : *this;
  }

  friend bool operator==(RuntimeTypeName left, RuntimeTypeName right) { return left.name == right.name; }

  // Lengths first, then bytes; an empty view equals a null or empty name.
  friend bool operator==(RuntimeTypeName left, std::string_view right) { return left.get() == right; }
};

namespace vorn::collections {

// The standard names, indexed by PrimitiveType; "Object" stands at None. The library's own: a runtime asks
// standardTypeName (runtime_helpers.hpp).
extern const InternedTypeName standardTypeNames[kPrimitiveTypes];

// The name of a primitive type; "Object" for None.
inline RuntimeTypeName typeNameOf(PrimitiveType type) { return {&standardTypeNames[static_cast<std::size_t>(type)]}; }

// The canonical short form of a name; "Object" for the empty one.
inline RuntimeTypeName normalizedTypeName(RuntimeTypeName name) {
  return name.empty() ? typeNameOf(PrimitiveType::None) : name.shortForm();
}

}  // namespace vorn::collections
