// Which C++ types stand for which types of the language, as elements, keys and values of collections.
//
//   SByte Byte Short UShort Int UInt Long ULong   integers of that width and sign (std::int8_t ... std::uint64_t)
//   Float Double                                  float, double
//   Boolean Char CodeUnit                         bool, char32_t, char16_t
//   String                                        std::string; std::string_view and const char* where one is given
//   Object (anything, null included)              vorn::value
//   a String, a collection                        vorn::string, vorn::list<int>, ... : handles to it
//
// What is read is checked: an element that is no T throws type_error, null included. A number of another type is a T if
// T has its value exactly, as the language's own collections take numbers across types. An element is read from, or
// made into, a handle; elements that a collection keeps unboxed never become one on their way.
#ifndef VORN_CPP_ELEMENTS_HPP
#define VORN_CPP_ELEMENTS_HPP

#include <vorn/runtime.h>
#include <vorn/cpp/errors.hpp>
#include <vorn/cpp/roots.hpp>

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace vorn {

// How values of T become handles and back. A program may specialise it for a type of its own, such as one that stands
// for a user class:
//
//   name()            the name of the language's type, which collections of T are declared with
//   argument          what functions take that are given a T: T itself, a reference, or a view
//   to_handle(x)      the value as a handle, which need not be rooted; may allocate
//   holds(handle)     whether the handle is a T; does not allocate
//   from_handle(h)    the T, or type_error. The handle may be rooted nowhere; does not allocate before it is done with it
template <class T>
struct element_traits;

template <class T>
concept element = requires(typename element_traits<T>::argument argument, void* handle) {
  { element_traits<T>::name() } -> std::convertible_to<std::string>;
  { element_traits<T>::to_handle(argument) } -> std::same_as<void*>;
  { element_traits<T>::holds(handle) } -> std::same_as<bool>;
  { element_traits<T>::from_handle(handle) } -> std::same_as<T>;
};

namespace detail {

template <auto Box, auto Unbox>
struct boxing {
  static constexpr auto box = Box;
  static constexpr auto unbox = Unbox;
};

// The row of a primitive type: its name and its boxes.
template <class T>
struct primitive_row;
template <>
struct primitive_row<std::int8_t> : boxing<&vorn_box_sbyte, &vorn_unbox_sbyte> {
  static constexpr const char* name = "SByte";
};
template <>
struct primitive_row<std::uint8_t> : boxing<&vorn_box_byte, &vorn_unbox_byte> {
  static constexpr const char* name = "Byte";
};
template <>
struct primitive_row<std::int16_t> : boxing<&vorn_box_short, &vorn_unbox_short> {
  static constexpr const char* name = "Short";
};
template <>
struct primitive_row<std::uint16_t> : boxing<&vorn_box_ushort, &vorn_unbox_ushort> {
  static constexpr const char* name = "UShort";
};
template <>
struct primitive_row<std::int32_t> : boxing<&vorn_box_int, &vorn_unbox_int> {
  static constexpr const char* name = "Int";
};
template <>
struct primitive_row<std::uint32_t> : boxing<&vorn_box_uint, &vorn_unbox_uint> {
  static constexpr const char* name = "UInt";
};
template <>
struct primitive_row<std::int64_t> : boxing<&vorn_box_long, &vorn_unbox_long> {
  static constexpr const char* name = "Long";
};
template <>
struct primitive_row<std::uint64_t> : boxing<&vorn_box_ulong, &vorn_unbox_ulong> {
  static constexpr const char* name = "ULong";
};
template <>
struct primitive_row<float> : boxing<&vorn_box_float, &vorn_unbox_float> {
  static constexpr const char* name = "Float";
};
template <>
struct primitive_row<double> : boxing<&vorn_box_double, &vorn_unbox_double> {
  static constexpr const char* name = "Double";
};
template <>
struct primitive_row<bool> : boxing<&vorn_box_boolean, &vorn_unbox_boolean> {
  static constexpr const char* name = "Boolean";
};
template <>
struct primitive_row<char32_t> : boxing<&vorn_box_char, &vorn_unbox_char> {
  static constexpr const char* name = "Char";
};
template <>
struct primitive_row<char16_t> : boxing<&vorn_box_code_unit, &vorn_unbox_code_unit> {
  static constexpr const char* name = "CodeUnit";
};

// The integer types, which do not count characters and bool; `char` is neither number nor character here.
template <class T>
concept integer_element =
    std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, char> && !std::same_as<T, wchar_t> &&
    !std::same_as<T, char8_t> && !std::same_as<T, char16_t> && !std::same_as<T, char32_t>;

template <class T>
concept floating_element = std::same_as<T, float> || std::same_as<T, double>;

template <class T>
concept character_element = std::same_as<T, char16_t> || std::same_as<T, char32_t>;

// What collections keep unboxed.
template <class T>
concept primitive_element = integer_element<T> || floating_element<T> || character_element<T> || std::same_as<T, bool>;

// `long` and `long long` are one type here, and so are their unsigned forms.
template <class T>
struct row_type {
  using type = T;
};
template <integer_element T>
requires(sizeof(T) == sizeof(std::int64_t)) struct row_type<T> {
  using type = std::conditional_t<std::is_signed_v<T>, std::int64_t, std::uint64_t>;
};
template <primitive_element T>
using row_of = primitive_row<typename row_type<T>::type>;

// As it lies in unboxed storage. A Boolean is a byte of which compiled code may have made anything but 0 for true.
template <class T>
using stored = std::conditional_t<std::same_as<T, bool>, std::uint8_t, T>;

inline void check_character(char32_t value) {
  if (value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) {
    throw value_error("ValueException", "Char value must be a Unicode scalar (0..0x10FFFF, excluding surrogates)");
  }
}

inline void check_text(std::string_view text) {
  if (text.find('\0') != std::string_view::npos) {
    throw value_error("ValueException", "U+0000 cannot be stored in a String");
  }
}

// The number in a box of another type than T's own, if T has its value exactly.
template <class T>
bool read_other_number(void* handle, T& value) {
  const char* const type = vorn_type_name(handle);
  if (type == nullptr) return false;
  const std::string_view name = type;
  if (name == "vorn.Char" || name == "vorn.CodeUnit" || name == "vorn.Boolean") return false;
  std::int64_t integer = 0;
  if (vorn_unbox_integer(handle, &integer) != 0) {
    const bool large = name == "vorn.ULong" && integer < 0;
    if constexpr (integer_element<T>) {
      if (large ? !std::in_range<T>(static_cast<std::uint64_t>(integer)) : !std::in_range<T>(integer)) return false;
      value = static_cast<T>(integer);
    } else {
      // Every integer below 2^64 stays below the range of a floating type, and 2^64 itself is none.
      const T converted = large ? static_cast<T>(static_cast<std::uint64_t>(integer)) : static_cast<T>(integer);
      const T limit = large ? static_cast<T>(0x1p64) : static_cast<T>(0x1p63);
      if (converted >= limit) return false;
      const bool exact = large ? static_cast<std::uint64_t>(converted) == static_cast<std::uint64_t>(integer)
                               : static_cast<std::int64_t>(converted) == integer;
      if (!exact) return false;
      value = converted;
    }
    return true;
  }
  if constexpr (floating_element<T>) {
    double floating = 0;
    if (vorn_unbox_floating(handle, &floating) == 0) return false;
    value = static_cast<T>(floating);
    return static_cast<double>(value) == floating || floating != floating;
  } else {
    return false;
  }
}

template <primitive_element T>
bool read_primitive(void* handle, T& value) {
  typename row_type<T>::type raw{};
  using unboxed = std::conditional_t<std::same_as<T, char32_t>, std::uint32_t,
                                     std::conditional_t<std::same_as<T, char16_t>, std::uint16_t, decltype(raw)>>;
  unboxed own{};
  if (row_of<T>::unbox(handle, &own) != 0) {
    value = static_cast<T>(own);
    return true;
  }
  if constexpr (integer_element<T> || floating_element<T>) return read_other_number(handle, value);
  return false;
}

}  // namespace detail

// A primitive type. to_handle throws value_error for a Char that is no Unicode scalar.
template <detail::primitive_element T>
struct element_traits<T> {
  // As element_traits says.
  using argument = T;
  static std::string name() { return detail::row_of<T>::name; }
  static void* to_handle(T value) {
    if constexpr (std::same_as<T, char32_t>) detail::check_character(value);
    return detail::made(detail::row_of<T>::box(value));
  }
  static bool holds(void* handle) {
    T value{};
    return detail::read_primitive(handle, value);
  }
  static T from_handle(void* handle) {
    T value{};
    if (!detail::read_primitive(handle, value)) detail::throw_type_error(name(), vorn_type_name(handle));
    return value;
  }
};

// A String, copied. A text with U+0000 in it is refused with value_error, since a native would see it up to there only.
template <>
struct element_traits<std::string> {
  // As element_traits says.
  using argument = std::string_view;
  static std::string name() { return "String"; }
  static void* to_handle(std::string_view text) {
    detail::check_text(text);
    return detail::made(vorn_string_new(text.empty() ? "" : text.data(), text.size()));
  }
  static bool holds(void* handle) { return vorn_string_text(handle) != nullptr; }
  static std::string from_handle(void* handle) {
    const char* const text = vorn_string_text(handle);
    if (text == nullptr) detail::throw_type_error(name(), vorn_type_name(handle));
    return text;
  }
};

namespace detail {

template <class T>
using argument_of = typename element_traits<T>::argument;

}  // namespace detail
}  // namespace vorn

#endif
