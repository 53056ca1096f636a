// Handles to objects of any class: what every collection is, and values of no particular type.
#ifndef VORN_CPP_VALUE_HPP
#define VORN_CPP_VALUE_HPP

#include <vorn/collections/array_list.h>
#include <vorn/cpp/elements.hpp>
#include <vorn/runtime.hpp>

#include <concepts>
#include <cstddef>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

namespace vorn {

class value;

namespace detail {

// A handle on its way into an object of this API; its own type, since a pointer to a text would pass for a `void*`.
struct raw_handle {
  void* handle;
};

}  // namespace detail

// What all handles of this API have in common. It is a vorn::Handle: it keeps its object alive wherever it is itself,
// copies and moves refer to the same object, and each is a root slot of its own, which takes a lock of the whole process
// to make and to end. So pass them by reference, and assign to one made before a loop rather than making one in it.
//
// `const` is deep, as for a container: a const handle does not change its collection. A copy of it may.
class object {
 public:
  // For the C API; valid as long as some handle or root holds the object. Does not allocate.
  [[nodiscard]] void* handle() const noexcept { return handle_; }

  // The full name of the class, such as "vorn.collections.ArrayList<Int>"; "null" for null. Does not allocate.
  [[nodiscard]] std::string_view type_name() const noexcept {
    const char* const name = vorn_type_name(handle_);
    return name != nullptr ? name : "null";
  }

  // Whether both are the same object; == compares by value.
  [[nodiscard]] bool is_same(const object& other) const noexcept { return handle_.get() == other.handle_.get(); }

 protected:
  // Refers to what the handle refers to.
  explicit object(detail::raw_handle raw) noexcept : handle_(raw.handle) {}

 private:
  Handle handle_;
};

namespace detail {

template <class T>
concept wrapper = std::derived_from<T, object>;

// The text of a String that a native made. Not for texts with U+0000, which end there.
inline std::string text_of(void* string) {
  const char* const text = vorn_string_text(string);
  return text != nullptr ? text : "";
}

// What a native that displays or joins gives. Root nothing: the text is copied before anything is allocated.
template <class Native, class... Arguments>
std::string text_from(Native native, Arguments... arguments) {
  return text_of(made(call(native, arguments...)));
}

// A new object of the class. The name is one that exists, so that null means no memory.
inline void* new_object(const std::string& class_name) { return made(vorn_object_new(class_name.c_str())); }

// "Map<String,Int>"; the class alone where all arguments are Object, as that declares nothing.
template <class... Ts>
std::string generic_name(const char* class_name) {
  std::string result = class_name;
  if ((std::same_as<Ts, value> && ...)) return result;
  char separator = '<';
  const auto add = [&](const std::string& argument) {
    result += separator;
    result += argument;
    separator = ',';
  };
  (add(element_traits<Ts>::name()), ...);
  result += '>';
  return result;
}

// Whether a collection of the class may have elements of type T where its name has `argument`, such as "Int". Of classes
// one of the argument's own name would be right as well: elements are checked when they are read.
template <class T>
bool argument_allows(std::string_view argument) {
  constexpr bool is_named = primitive_element<T> || std::same_as<T, std::string>;
  return !is_named || argument == "Object" || argument == element_traits<T>::name();
}

// The type arguments of a class name like "vorn.collections.Map<String, ArrayList<Int>>", one after the other; empty
// behind the last.
class type_arguments {
 public:
  explicit type_arguments(std::string_view class_name) {
    const std::size_t open = class_name.find('<');
    if (open != std::string_view::npos) rest_ = class_name.substr(open + 1, class_name.size() - open - 2);
  }
  [[nodiscard]] bool empty() const noexcept { return rest_.empty(); }
  [[nodiscard]] std::string_view next() {
    std::size_t end = 0;
    for (int depth = 0; end < rest_.size() && (depth > 0 || rest_[end] != ','); ++end) {
      depth += rest_[end] == '<' ? 1 : rest_[end] == '>' ? -1 : 0;
    }
    std::string_view argument = rest_.substr(0, end);
    rest_.remove_prefix(end < rest_.size() ? end + 1 : end);
    while (argument.starts_with(' ')) argument.remove_prefix(1);
    while (argument.ends_with(' ')) argument.remove_suffix(1);
    return argument;
  }

 private:
  std::string_view rest_;
};

// Whether the handle is an instance of the class whose type arguments, if its name has any, are those of Ts.
template <class... Ts>
bool is_instance_for(void* handle, const char* class_name) {
  if (vorn_is_instance(handle, class_name) == 0) return false;
  type_arguments arguments(vorn_type_name(handle));
  return arguments.empty() || (argument_allows<Ts>(arguments.next()) && ...);
}

// A typed handle to what a native returned.
template <class Wrapper>
Wrapper adopted(void* result) {
  const local_root keep(made(result));
  return Wrapper::from_handle(keep.get());
}

}  // namespace detail

// A value of any type, null included.
class value : public object {
 public:
  // Null.
  value() noexcept : value(nullptr) {}
  value(std::nullptr_t) noexcept  // NOLINT(google-explicit-constructor): null is a value
      : object(detail::raw_handle{nullptr}) {}

  // A new box, a new String, or the same collection. Allocate.
  template <element T>
  requires(!std::same_as<T, value>)
      value(const T& x)  // NOLINT(google-explicit-constructor): whatever is an element is a value
      : object(detail::raw_handle{element_traits<T>::to_handle(x)}) {}
  value(std::string_view text)  // NOLINT(google-explicit-constructor)
      : object(detail::raw_handle{element_traits<std::string>::to_handle(text)}) {}
  value(const char* text) : value(std::string_view(text)) {}  // NOLINT(google-explicit-constructor)

  // What a handle of the C API refers to; any handle will do. Does not allocate.
  [[nodiscard]] static value from_handle(void* handle) noexcept { return value(detail::raw_handle{handle}); }

  // Whether it is null, which is a value of no class. Does not allocate.
  [[nodiscard]] bool is_null() const noexcept { return handle() == nullptr; }

  // Whether it is a T; see <vorn/cpp/elements.hpp> for numbers. Do not allocate.
  template <element T>
  [[nodiscard]] bool is() const {
    return element_traits<T>::holds(handle());
  }
  // As a T; throws type_error when it is none.
  template <element T>
  [[nodiscard]] T as() const {
    return element_traits<T>::from_handle(handle());
  }
  // As a T, or nothing when it is none.
  template <element T>
  [[nodiscard]] std::optional<T> try_as() const {
    return is<T>() ? std::optional<T>(as<T>()) : std::nullopt;
  }

  // The language's text: a String's own text, numbers in decimal, displays of collections. Runs user code, whose errors
  // it throws. Allocates.
  [[nodiscard]] std::string to_string() const {
    const detail::local_root list(detail::made(vorn_collections_ArrayList_literal1(handle())));
    return detail::text_from(vorn_collections_ArrayList_join, list.get(), "");
  }

 private:
  explicit value(detail::raw_handle raw) noexcept : object(raw) {}
};

// A String that is referred to rather than copied.
class string : public object {
 public:
  // A new String. Throws value_error for a text with U+0000 in it. Allocates.
  explicit string(std::string_view text) : object(detail::raw_handle{element_traits<std::string>::to_handle(text)}) {}

  // A String object or bare text; throws type_error for anything else. Does not allocate.
  [[nodiscard]] static string from_handle(void* handle) {
    if (!holds(handle)) detail::throw_type_error("String", vorn_type_name(handle));
    return string(detail::raw_handle{handle});
  }
  // Whether from_handle() takes it. Does not allocate.
  [[nodiscard]] static bool holds(void* handle) { return vorn_string_text(handle) != nullptr; }
  // The name of the class, with which collections of such handles are declared.
  [[nodiscard]] static std::string element_name() { return "String"; }

  // The text, up to its first U+0000 where a program has put one into it; valid as long as the String is alive.
  [[nodiscard]] const char* c_str() const noexcept { return vorn_string_text(handle()); }
  [[nodiscard]] std::string_view view() const noexcept { return c_str(); }
  operator std::string_view() const noexcept { return view(); }  // NOLINT(google-explicit-constructor): reads as one
  [[nodiscard]] std::string to_string() const { return c_str(); }

 private:
  explicit string(detail::raw_handle raw) noexcept : object(raw) {}
};

// Any value, null included.
template <>
struct element_traits<value> {
  // As element_traits says.
  using argument = const value&;
  static std::string name() { return "Object"; }
  static void* to_handle(const value& x) { return x.handle(); }
  static bool holds(void*) { return true; }
  static value from_handle(void* handle) { return value::from_handle(handle); }
};

// All other handles. The elements of a collection of collections are declared without type arguments ("ArrayList", not
// "ArrayList<Int>"), because slices and listings come without them. What is read is checked for them.
template <detail::wrapper T>
struct element_traits<T> {
  // As element_traits says.
  using argument = const T&;
  static std::string name() { return T::element_name(); }
  static void* to_handle(const T& x) { return x.handle(); }
  static bool holds(void* handle) { return T::holds(handle); }
  static T from_handle(void* handle) { return T::from_handle(handle); }
};

// Structural equality, as the language's ==, across the classes of a family (a list of Int and a linked list of boxed
// numbers). May run user code, whose errors are thrown. Allocates.
inline bool operator==(const value& left, const value& right) {
  return detail::call(vorn_equals, left.handle(), right.handle()) != 0;
}
template <detail::wrapper Left, detail::wrapper Right>
bool operator==(const Left& left, const Right& right) {
  return detail::call(vorn_equals, left.handle(), right.handle()) != 0;
}

// Strings compare by their bytes.
inline bool operator==(const string& left, std::string_view right) { return left.view() == right; }
inline bool operator==(const string& left, const string& right) { return left.view() == right.view(); }
inline auto operator<=>(const string& left, std::string_view right) { return left.view() <=> right; }
inline auto operator<=>(const string& left, const string& right) { return left.view() <=> right.view(); }

// The text that to_string gives.
template <detail::wrapper T>
std::ostream& operator<<(std::ostream& out, const T& x) {
  return out << x.to_string();
}

}  // namespace vorn

#endif
