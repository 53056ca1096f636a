// Interned type names.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace vorn::collections {

// Equality of names. Those of primitive types are three to eight bytes long and compare as two overlapping words,
// without a call.
inline bool sameName(std::string_view left, std::string_view right) {
  if (left.size() != right.size()) return false;
  const std::size_t size = left.size();
  const auto sameEnds = [&](auto word) {
    const auto at = [&](const char* bytes) {
      std::memcpy(&word, bytes, sizeof(word));
      return word;
    };
    const std::size_t tail = size - sizeof(word);
    return at(left.data()) == at(right.data()) && at(left.data() + tail) == at(right.data() + tail);
  };
  if (size == 3) return sameEnds(std::uint16_t{});
  if (size >= 4 && size <= 8) return sameEnds(std::uint32_t{});
  return std::memcmp(left.data(), right.data(), size) == 0;
}

}  // namespace vorn::collections

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
    return left.text == nullptr ? right.empty() : vorn::collections::sameName(*left.text, right);
  }
};
