// Typed access to one element of a primitive buffer; the tag is what visitKind passes. Elements live in raw bytes, so
// every access goes through memcpy, which compiles to one load or store.
#pragma once

#include <cstdint>
#include <cstring>

#include "collections/core/kinds.h"
#include "collections/core/number_rules.h"

namespace vorn::collections {

template <class Element>
inline Element loadElement(const unsigned char* data, std::uint64_t index) {
  Element element;
  std::memcpy(&element, data + index * sizeof(Element), sizeof(Element));
  return element;
}

// The integer reading of one element; see primitiveListReadI64.
template <class Tag>
inline long long readElementI64(Tag, const unsigned char* data, std::uint64_t index) {
  const auto element = loadElement<typename Tag::Element>(data, index);
  if constexpr (isFloatingKind(Tag::kind)) {
    return truncateToI64(element);
  } else if constexpr (Tag::kind == PrimitiveKind::Boolean) {
    return element != 0 ? 1 : 0;
  } else {
    return static_cast<long long>(element);
  }
}

// The floating reading of one element; see primitiveListReadF64.
template <class Tag>
inline double readElementF64(Tag, const unsigned char* data, std::uint64_t index) {
  if constexpr (isFloatingKind(Tag::kind)) {
    return loadElement<typename Tag::Element>(data, index);
  } else {
    return static_cast<double>(readElementI64(Tag{}, data, index));
  }
}

// Stores a raw value pair at its width: the double for floating kinds, 0 or 1 for Boolean, else the integer's low bits.
template <class Tag>
inline void storeElement(Tag, unsigned char* data, std::uint64_t index, long long integer, double floating) {
  using Element = typename Tag::Element;
  Element element;
  if constexpr (isFloatingKind(Tag::kind)) {
    element = static_cast<Element>(floating);
  } else if constexpr (Tag::kind == PrimitiveKind::Boolean) {
    element = integer != 0 ? 1 : 0;
  } else {
    element = static_cast<Element>(integer);
  }
  std::memcpy(data + index * sizeof(Element), &element, sizeof(Element));
}

}  // namespace vorn::collections
