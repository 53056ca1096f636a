// Arrays of a fixed size, plain and synchronised.
#ifndef VORN_CPP_ARRAY_HPP
#define VORN_CPP_ARRAY_HPP

#include <vorn/collections/array.h>
#include <vorn/cpp/classes.hpp>
#include <vorn/cpp/iterators.hpp>
#include <vorn/cpp/list.hpp>
#include <vorn/cpp/list_storage.hpp>
#include <vorn/cpp/value.hpp>

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <optional>
#include <ranges>
#include <span>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace vorn {

// A handle to an array of T. `Class` is plain (Array) or synchronized.
//
// Elements of a primitive type lie unboxed; all others are handles, null at first, which only `value` can be read from.
// A negative index counts from the end. A member that throws has changed nothing, unless it says otherwise. Where the C
// API has constructed an array anew with primitive elements of another type than its class says, elements are read and
// written converted.
template <element T, class Class = plain>
class array : public object {
  using kind = detail::array_class<Class>;
  static constexpr bool is_unboxed = detail::primitive_element<T>;
  static constexpr bool has_span = is_unboxed && !kind::is_shared;

  // Reads and writes elements by index: an array without its root.
  struct access_type {
    using value_type = T;
    void* array = nullptr;

    [[nodiscard]] T get(std::ptrdiff_t index) const {
      if constexpr (detail::floating_element<T>) {
        return static_cast<T>(detail::call(vorn_collections_Array_getDouble, array, index));
      } else if constexpr (is_unboxed) {
        return static_cast<T>(detail::call(vorn_collections_Array_getInt, array, index));
      } else {
        return element_traits<T>::from_handle(detail::call(vorn_collections_Array_operator_index, array, index));
      }
    }
    void set(std::ptrdiff_t index, detail::argument_of<T> x) const {
      if constexpr (std::same_as<T, bool>) {
        detail::call(vorn_collections_Array_setBool, array, index, x);
      } else if constexpr (detail::floating_element<T>) {
        detail::call(vorn_collections_Array_setDouble, array, index, static_cast<double>(x));
      } else if constexpr (is_unboxed) {
        detail::call(vorn_collections_Array_setInt, array, index, static_cast<long long>(x));
      } else {
        const detail::local_root element(element_traits<T>::to_handle(x));
        detail::call(vorn_collections_Array_operator_index_eq, array, index, element.get());
      }
    }
  };

 public:
  // The types that containers of the C++ library name; functions take an element as `argument`.
  using value_type = T;
  using size_type = std::size_t;
  using difference_type = std::ptrdiff_t;
  using argument = detail::argument_of<T>;
  using reference = detail::element_reference<access_type>;
  using iterator = detail::index_iterator<access_type, false>;
  using const_iterator = detail::index_iterator<access_type, true>;

  // Whether its elements come to another collection by a native that takes it.
  static constexpr bool is_source = true;

  // ---- Making and adopting. Those that make a new array allocate. ---------------------------------------------------

  // `size` elements, all zero, false or null.
  explicit array(std::size_t size) : object(detail::raw_handle{new_of_size(size)}) {}
  // A new array of these elements.
  array(std::initializer_list<T> elements) : object(detail::raw_handle{new_from(std::span<const T>(elements))}) {}
  // A copy of the elements of a range or of a list, array or tuple. Throws type_error when one is no T, value_error when a
  // Char is no Unicode scalar. Calls a constant number of natives for a range of a primitive type, or any collection,
  // else one for each element.
  template <detail::elements_for<T, array> R>
  explicit array(R&& range)  // NOLINT(bugprone-forwarding-reference-overload): takes no array
      : object(detail::raw_handle{new_from(range)}) {}

  // The array that a handle refers to. Throws type_error when it is of another class or has another type argument. Does
  // not allocate.
  [[nodiscard]] static array from_handle(void* handle) {
    if (!holds(handle)) {
      detail::throw_type_error(class_name(), vorn_type_name(handle));
    }
    return array(detail::raw_handle{handle});
  }
  // Whether from_handle() takes it. Does not allocate.
  [[nodiscard]] static bool holds(void* handle) {
    if (!detail::is_instance_for<T>(handle, kind::name)) return false;
    return !is_unboxed || !detail::type_arguments(vorn_type_name(handle)).empty();
  }
  // The name of the class, with which collections of such handles are declared.
  [[nodiscard]] static std::string element_name() { return kind::name; }

  // A new array of the same class with the same elements. Allocates.
  [[nodiscard]] array clone() const { return array(detail::raw_handle{copy_of(handle())}); }

  // ---- Reading ------------------------------------------------------------------------------------------------------

  // The number of elements, and whether there are none.
  [[nodiscard]] std::size_t size() const {
    return static_cast<std::size_t>(detail::call(vorn_collections_Array_size, handle()));
  }
  [[nodiscard]] bool empty() const { return size() == 0; }

  // The element at an index. Throw index_error, and type_error for an element that is null or no T. Unboxed elements are
  // read without allocating.
  [[nodiscard]] T at(std::ptrdiff_t index) const { return access().get(index); }
  [[nodiscard]] T operator[](std::ptrdiff_t index) const { return at(index); }
  [[nodiscard]] T front() const { return at(0); }
  [[nodiscard]] T back() const { return at(-1); }

  // Random access by index. The end is that of the moment when end() is called.
  [[nodiscard]] const_iterator begin() const { return {access(), 0}; }
  [[nodiscard]] const_iterator end() const { return {access(), static_cast<std::ptrdiff_t>(size())}; }

  // The unboxed elements themselves, as long as some handle holds the array; only constructing it anew by the C API ends
  // that. Booleans are bytes, true unless 0. Throws type_error when the C API has given the array elements of another
  // type than its class says, for which one element is boxed. Allocates.
  [[nodiscard]] std::span<const detail::stored<T>> span() const requires has_span { return elements(handle()); }
  [[nodiscard]] std::span<detail::stored<T>> span() requires has_span { return elements(handle()); }

  // The elements of one moment. Unboxed ones are copied by a constant number of calls.
  [[nodiscard]] std::vector<T> to_vector() const {
    if constexpr (kind::is_shared) {
      return array<T, plain>(*this).to_vector();
    } else if constexpr (is_unboxed) {
      const auto all = elements(handle());
      return std::vector<T>(all.begin(), all.end());
    } else {
      const std::size_t count = size();
      std::vector<T> result;
      result.reserve(count);
      for (std::size_t i = 0; i < count; ++i) result.push_back(at(static_cast<std::ptrdiff_t>(i)));
      return result;
    }
  }
  // The same in a container C that is made from two iterators.
  template <class C>
  [[nodiscard]] C to() const {
    return detail::container_of<C>(to_vector());
  }

  // ---- Searching. Elements compare by the language's equality, whose errors are thrown. May run user code, allocate. -

  // Whether an element is equal, and how many are.
  [[nodiscard]] bool contains(argument x) const { return search(vorn_collections_Array_operator_in, x); }
  [[nodiscard]] std::size_t count(argument x) const {
    return static_cast<std::size_t>(search(vorn_collections_Array_count, x));
  }
  // As in lists.
  [[nodiscard]] std::optional<std::ptrdiff_t> index_of(argument x, std::ptrdiff_t start = 0) const {
    return found(search(vorn_collections_Array_indexOf, x, start));
  }
  [[nodiscard]] std::optional<std::ptrdiff_t> last_index_of(argument x, std::ptrdiff_t start = -1) const {
    return found(search(vorn_collections_Array_lastIndexOf, x, start));
  }

  // The sum: of integers as 64 bits that wrap around, of floating numbers as a double.
  [[nodiscard]] auto sum() const requires detail::integer_element<T> || detail::floating_element<T> {
    if constexpr (detail::floating_element<T>) {
      return detail::call(vorn_collections_Array_sumF64Fast, handle());
    } else {
      return static_cast<std::int64_t>(detail::call(vorn_collections_Array_sumI64Fast, handle()));
    }
  }

  // ---- New arrays from this one. Allocate. --------------------------------------------------------------------------

  // The elements start:stop:step, as in lists. Throws error for a step of 0.
  [[nodiscard]] array slice(std::optional<std::ptrdiff_t> start = {}, std::optional<std::ptrdiff_t> stop = {},
                            std::ptrdiff_t step = 1) const {
    return detail::adopted<array>(detail::call(vorn_collections_Array_slice, handle(), start.value_or(0),
                                               stop.value_or(0), step, start ? handle() : nullptr,
                                               stop ? handle() : nullptr));
  }
  // The elements in the opposite order.
  [[nodiscard]] array reversed() const {
    return detail::adopted<array>(detail::call(vorn_collections_Array_reverseNew, handle()));
  }
  // The elements in the order of sorted lists.
  [[nodiscard]] array sorted() const {
    return detail::adopted<array>(detail::call(vorn_collections_Array_sortNew, handle()));
  }
  // The elements of both, in an array of the left one's class. Throws type_error for an element that does not fit.
  template <detail::native_source Other>
  [[nodiscard]] friend array operator+(const array& left, const Other& right) {
    return detail::adopted<array>(detail::call(vorn_collections_Array_concat, left.handle(), right.handle()));
  }

  // ---- Changing -----------------------------------------------------------------------------------------------------

  // An element to be read and assigned; throws index_error then. A Char must be a Unicode scalar: value_error.
  [[nodiscard]] reference operator[](std::ptrdiff_t index) { return reference(access(), index); }
  // As above, with references that can be assigned.
  [[nodiscard]] iterator begin() { return {access(), 0}; }
  [[nodiscard]] iterator end() { return {access(), static_cast<std::ptrdiff_t>(size())}; }

  // Assigns to start:stop:step, for which there must be as many elements, or this throws value_error. Assignment stops
  // at an element that is refused, those before it stay assigned. Allocates.
  template <detail::elements_for<T, void> R>
  void assign_slice(std::optional<std::ptrdiff_t> start, std::optional<std::ptrdiff_t> stop, R&& range,
                    std::ptrdiff_t step = 1) {
    const detail::source<T> elements(range);
    detail::call(vorn_collections_Array_sliceAssign, handle(), start.value_or(0), stop.value_or(0), step,
                 start ? handle() : nullptr, stop ? handle() : nullptr, elements.get());
  }

  // Reverses or sorts the elements in place; the order is that of lists, and an error of user code does not stop the sort.
  void reverse() { detail::call(vorn_collections_Array_reverse, handle()); }
  void sort() { detail::call(vorn_collections_Array_sort, handle()); }

  // ---- Text. Run user code, allocate. -------------------------------------------------------------------------------

  // The display, such as "f:[1, 2]".
  [[nodiscard]] std::string to_string() const { return detail::text_from(vorn_collections_Array_toString, handle()); }
  // The texts of the elements with the separator between neighbours, up to the first U+0000 among them.
  [[nodiscard]] std::string join(const std::string& separator = "") const {
    return detail::text_from(vorn_collections_Array_join, handle(), separator.c_str());
  }

 private:
  explicit array(detail::raw_handle raw) : object(raw) {}

  static const std::string& class_name() {
    static const std::string name = detail::generic_name<T>(kind::name);
    return name;
  }
  static void* new_of_size(std::size_t size) {
    if (size > static_cast<std::size_t>(PTRDIFF_MAX)) throw std::length_error("vorn::array");
    const detail::local_root made(detail::new_object(class_name()));
    detail::call(vorn_collections_Array_ctor, made.get(), static_cast<long long>(size));
    return made.get();
  }
  static void* copy_of(void* source) {
    const detail::local_root made(detail::new_object(class_name()));
    detail::call(vorn_collections_Array_copyCtor, made.get(), source);
    return made.get();
  }
  // Elements that lie unboxed in a plain array are written there, all others go through a list; only a Char has to be
  // looked at, which a list does.
  template <class R>
  static void* new_from(R&& range) {
    if constexpr (is_unboxed && !kind::is_shared && !detail::native_source<R> && std::ranges::sized_range<R> &&
                  !std::same_as<T, char32_t>) {
      const auto size = static_cast<std::size_t>(std::ranges::size(range));
      const detail::local_root made(new_of_size(size));
      if (size != 0) detail::write_elements<T>(range, unchecked_elements(made.get()).data(), size);
      return made.get();
    } else {
      const detail::source<T> source(range);
      return copy_of(source.get());
    }
  }

  static std::span<detail::stored<T>> unchecked_elements(void* array) {
    return {static_cast<detail::stored<T>*>(vorn_collections_Array_rawDataPtr(array)),
            static_cast<std::size_t>(vorn_collections_Array_rawSize(array))};
  }
  // The width of what lies there is that of the array's element type, which constructing it anew may have changed.
  static std::span<detail::stored<T>> elements(void* array) {
    if (vorn_collections_Array_rawSize(array) == 0) return {};
    const detail::local_root first(detail::call(vorn_collections_Array_operator_index, array, 0LL));
    const char* const type = vorn_type_name(first.get());
    if (type == nullptr || std::string("vorn.").append(element_traits<T>::name()) != type) {
      detail::throw_type_error(std::string("an array of unboxed ").append(element_traits<T>::name()), type);
    }
    return unchecked_elements(array);
  }

  [[nodiscard]] access_type access() const { return {handle()}; }

  template <class Native, class... More>
  [[nodiscard]] auto search(Native native, argument x, More... more) const {
    const detail::local_root element(element_traits<T>::to_handle(x));
    return detail::call(native, handle(), element.get(), more...);
  }
  [[nodiscard]] static std::optional<std::ptrdiff_t> found(long long index) {
    return index < 0 ? std::nullopt : std::optional<std::ptrdiff_t>(index);
  }
};

// `vorn::array items{1, 2}` is an array<int>.
template <class T>
array(std::initializer_list<T>) -> array<T>;

// As lists are ordered.
template <element T, class Left, class Right>
requires std::three_way_comparable<T, std::weak_ordering> std::weak_ordering operator<=>(const array<T, Left>& left,
                                                                                         const array<T, Right>& right) {
  const std::vector<T> lefts = left.to_vector();
  const std::vector<T> rights = right.to_vector();
  return std::lexicographical_compare_three_way(lefts.begin(), lefts.end(), rights.begin(), rights.end());
}

}  // namespace vorn

#endif
