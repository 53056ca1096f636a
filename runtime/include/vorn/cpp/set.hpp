// Hash sets, plain and synchronised.
#ifndef VORN_CPP_SET_HPP
#define VORN_CPP_SET_HPP

#include <vorn/collections/hash_set.h>
#include <vorn/cpp/classes.hpp>
#include <vorn/cpp/iterators.hpp>
#include <vorn/cpp/list.hpp>
#include <vorn/cpp/value.hpp>
#include <vorn/cpp/walks.hpp>

#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <ranges>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace vorn {

// A handle to a set of T. `Class` is plain (HashSet) or synchronized.
//
// Elements are compared as keys are: numbers by value whatever their type, texts by bytes, tuples and immutable lists by
// content, instances of user classes by their hooks, all else by identity. What compares may run user code, whose errors
// are thrown; so are errors that were pending before the call, where it looks for an element (errors.hpp). A member that
// throws has changed nothing, unless it says otherwise.
template <element T, class Class = plain>
class set : public object {
  using kind = detail::set_class<Class>;
  using listing_type = std::conditional_t<detail::primitive_element<T>, std::vector<T>, list<T>>;

 public:
  // The types that containers of the C++ library name; functions take an element as `argument`.
  using value_type = T;
  using size_type = std::size_t;
  using difference_type = std::ptrdiff_t;
  using argument = detail::argument_of<T>;
  using const_iterator = detail::listing_iterator<listing_type>;
  using iterator = const_iterator;

  // Whether its elements come to another collection by a native that takes it.
  static constexpr bool is_source = true;

  // A new set, empty or of the elements of a range, each added by a call. Allocate.
  set() : object(detail::raw_handle{new_empty()}) {}
  set(std::initializer_list<T> elements) : set() { insert_range(elements); }
  template <detail::range_of<T, set> R>
  explicit set(R&& range) : set() {  // NOLINT(bugprone-forwarding-reference-overload): takes no set
    insert_range(range);
  }

  // The set that a handle refers to. Throws type_error when it is of another class or has another type argument; the
  // elements of a set without one are checked when they are read.
  [[nodiscard]] static set from_handle(void* handle) {
    if (!holds(handle)) {
      detail::throw_type_error(class_name(), vorn_type_name(handle));
    }
    return set(detail::raw_handle{handle});
  }
  // Whether from_handle() takes it. Does not allocate.
  [[nodiscard]] static bool holds(void* handle) { return detail::is_instance_for<T>(handle, kind::name); }
  // The name of the class, with which collections of such handles are declared.
  [[nodiscard]] static std::string element_name() { return kind::name; }

  // A new set of the same class with the same elements. Allocates.
  [[nodiscard]] set clone() const {
    set copy;
    const detail::local_root all(detail::made(detail::call(vorn_collections_HashSet_items, handle())));
    const long long count = vorn_collections_ArrayList_size(all.get());
    detail::call(vorn_collections_HashSet_reserve, copy.handle(), count);
    for (long long i = 0; i < count; ++i) {
      const detail::local_root element(detail::call(vorn_collections_ArrayList_operator_index, all.get(), i));
      detail::call_with_key(vorn_collections_HashSet_add, copy.handle(), element.get());
    }
    return copy;
  }

  // The number of elements, and whether there are none.
  [[nodiscard]] std::size_t size() const {
    return static_cast<std::size_t>(detail::call(vorn_collections_HashSet_size, handle()));
  }
  [[nodiscard]] bool empty() const { return size() == 0; }

  // Whether an element is equal.
  [[nodiscard]] bool contains(argument x) const {
    const detail::local_root element(element_traits<T>::to_handle(x));
    return detail::call_with_key(vorn_collections_HashSet_operator_in, handle(), element.get());
  }

  // The elements of one moment as a new list, in no order to rely on. Allocates.
  [[nodiscard]] list<T> items() const {
    return detail::adopted<list<T>>(detail::call(vorn_collections_HashSet_items, handle()));
  }
  // The elements of one moment: an input range over a listing that begin() makes, so that the set may be changed during
  // the walk. Throws type_error where an element is no T. Allocates.
  [[nodiscard]] const_iterator begin() const {
    if constexpr (detail::primitive_element<T>) {
      return const_iterator(to_vector());
    } else {
      return const_iterator(items());
    }
  }
  [[nodiscard]] std::default_sentinel_t end() const noexcept { return {}; }

  // The elements of a set without a lock, read from the set itself: an input range that lists nothing first. After a
  // change of the set the next step throws error. Throws type_error where an element is no T.
  [[nodiscard]] auto walk() const requires(!kind::is_shared) { return detail::walk_range<detail::set_steps<T>>(*this); }

  // The elements of one moment in a vector, or a container C that is made from two iterators. A constant number of calls for primitive
  // elements.
  [[nodiscard]] std::vector<T> to_vector() const { return items().to_vector(); }
  template <class C>
  [[nodiscard]] C to() const {
    return detail::container_of<C>(to_vector());
  }

  // Adds an element, or the elements of a range one by one; an equal element that was there is replaced. When this
  // throws, the elements before are added. Allocate.
  void insert(argument x) {
    const detail::local_root element(element_traits<T>::to_handle(x));
    detail::call_with_key(vorn_collections_HashSet_add, handle(), element.get());
  }
  template <detail::range_of<T, void> R>
  void insert_range(R&& range) {
    if constexpr (std::ranges::sized_range<R>) reserve(size() + static_cast<std::size_t>(std::ranges::size(range)));
    for (auto&& x : range) {
      const argument given = x;
      insert(given);
    }
  }
  // Removes the equal element; whether there was one.
  bool erase(argument x) {
    const detail::local_root element(element_traits<T>::to_handle(x));
    return detail::call_with_key(vorn_collections_HashSet_remove, handle(), element.get());
  }
  // Removes all elements.
  void clear() { detail::call(vorn_collections_HashSet_clear, handle()); }
  // Makes room for so many elements, or gives back what is more than those there are. Throws std::length_error or
  // std::bad_alloc. Allocates.
  void reserve(std::size_t size) {
    if (size > static_cast<std::size_t>(PTRDIFF_MAX)) throw std::length_error("vorn::set::reserve");
    detail::call(vorn_collections_HashSet_reserve, handle(), static_cast<long long>(size));
  }

  // The display, such as "{1, 2}". Runs user code, allocates.
  [[nodiscard]] std::string to_string() const { return detail::text_from(vorn_collections_HashSet_toString, handle()); }

 private:
  explicit set(detail::raw_handle raw) : object(raw) {}

  static const std::string& class_name() {
    static const std::string name = detail::generic_name<T>(kind::name);
    return name;
  }
  static void* new_empty() { return detail::new_object(class_name()); }
};

// `vorn::set items{1, 2}` is a set<int>.
template <class T>
set(std::initializer_list<T>) -> set<T>;

}  // namespace vorn

#endif
