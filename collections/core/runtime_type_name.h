// Interned type names.
#pragma once

#include <string>
#include <string_view>

// A pointer to a shared string that lives as long as the process. Equal names have equal pointers; null is the empty
// name. Made by internRuntimeTypeName (runtime_interface.h).
struct RuntimeTypeName {
  const std::string* text = nullptr;

  // The name; the empty string for null.
  [[nodiscard]] const std::string& get() const {
    if (text != nullptr) return *text;
    static const std::string empty;
    return empty;
  }

  friend bool operator==(RuntimeTypeName left, RuntimeTypeName right) { return left.text == right.text; }

  // Lengths first, then bytes; an empty view equals a null or empty name.
  friend bool operator==(RuntimeTypeName left, std::string_view right) {
    return left.text == nullptr ? right.empty() : std::string_view(*left.text) == right;
  }
};
