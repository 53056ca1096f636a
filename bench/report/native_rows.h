// What the rows of the natives share.
#pragma once

#include <vorn/collections/array_list.h>
#include <vorn/collections/inline.h>
#include <vorn/runtime.hpp>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <type_traits>

#include "bench/report/definitions.h"
#include "bench/report/rows.h"

namespace vorn::bench::report {

// Objects are boxes in a list that declares no type of its own.
struct Object {};

template <class Element>
struct KindOf;
template <>
struct KindOf<Int> {
  static constexpr const char* kName = "Int";
  static constexpr const char* kList = "ArrayList<Int>";
  static constexpr vorn_element_type kType = VORN_INT;
};
template <>
struct KindOf<Long> {
  static constexpr const char* kName = "Long";
  static constexpr const char* kList = "ArrayList<Long>";
  static constexpr vorn_element_type kType = VORN_LONG;
};
template <>
struct KindOf<Double> {
  static constexpr const char* kName = "Double";
  static constexpr const char* kList = "ArrayList<Double>";
  static constexpr vorn_element_type kType = VORN_DOUBLE;
};
template <>
struct KindOf<Byte> {
  static constexpr const char* kName = "Byte";
  static constexpr const char* kList = "ArrayList<Byte>";
  static constexpr vorn_element_type kType = VORN_BYTE;
};

// What sums are kept in.
template <class Element>
using SumOf = std::conditional_t<std::is_same_v<Element, Double>, double, std::int64_t>;

// A handle that the functions of a row share.
using Shared = std::shared_ptr<Handle>;
inline Shared share(void* handle = nullptr) { return std::make_shared<Handle>(handle); }

inline std::int64_t intIn(void* box) {
  std::int32_t value = 0;
  vorn_unbox_int(box, &value);
  return value;
}

// The same by the inline form.
inline std::int64_t intInlineIn(const void* box) {
  long long value = 0;
  vorn_inline_unbox_integer(box, VORN_INT, &value);
  return value;
}

inline void* newText(const std::string& text) { return vorn_string_new(text.data(), text.size()); }

// A new list of n elements of the kind.
template <class Element>
void* listOf(std::int64_t n) {
  if constexpr (std::is_same_v<Element, Object>) {
    const Handle list = vorn_object_new("ArrayList<Object>");
    Handle box;
    for (std::int64_t i = 0; i < n; ++i) {
      box = vorn_box_int(numberAt(i));
      vorn_collections_ArrayList_add(list, box);
    }
    return list;
  } else {
    Handle list;
    auto* const elements =
        static_cast<Element*>(vorn_collections_ArrayList_newPrimitiveData(n, KindOf<Element>::kName, list.out()));
    for (std::int64_t i = 0; i < n; ++i) elements[i] = elementAt<Element>(i);
    return list;
  }
}

inline void* listOfTexts(std::int64_t n) {
  const Handle list = vorn_object_new("ArrayList<String>");
  Handle text;
  for (std::int64_t i = 0; i < n; ++i) {
    text = newText(textAt(i));
    vorn_collections_ArrayList_add(list, text);
  }
  return list;
}

// The unboxed elements of a list.
template <class Element>
Element* elementsOf(void* list) {
  return static_cast<Element*>(vorn_collections_ArrayList_primitiveDataPtr(list));
}

template <class Element>
std::uint32_t digestOfList(void* list) {
  Digest digest;
  const std::int64_t size = vorn_collections_ArrayList_size(list);
  for (std::int64_t i = 0; i < size; ++i) {
    if constexpr (std::is_same_v<Element, Double>) {
      digest.add(vorn_collections_ArrayList_getDouble(list, i));
    } else {
      digest.add(std::int64_t{vorn_collections_ArrayList_getInt(list, i)});
    }
  }
  return digest.value();
}

// Sums what `read` gives for the elements of a collection of n, by the two functions of a walk over it.
template <auto begin, auto next, auto element, auto read = intInlineIn>
Ready summingByWalk(const Shared& collection, std::int64_t n) {
  const auto result = std::make_shared<std::int64_t>();
  return {n,
          [=] {
            std::int64_t sum = 0;
            vorn_walk walk;
            begin(*collection, &walk);
            while (next(&walk)) sum += read(walk.*element);
            *result = sum;
          },
          [=] { return digestOfNumber(*result); }};
}

}  // namespace vorn::bench::report
