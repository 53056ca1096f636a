// Lists: array-backed, linked and immutable ones, plain and synchronised.
#ifndef VORN_CPP_LIST_HPP
#define VORN_CPP_LIST_HPP

#include <vorn/collections/array_list.h>
#include <vorn/collections/immutable_list.h>
#include <vorn/cpp/classes.hpp>
#include <vorn/cpp/iterators.hpp>
#include <vorn/cpp/list_storage.hpp>
#include <vorn/cpp/value.hpp>
#include <vorn/cpp/walks.hpp>

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace vorn {

// A handle to a list of T. `Class` is plain (ArrayList), synchronized, linked, linked_synchronized or immutable; an
// immutable list lacks the members that change a list.
//
// Elements of a primitive type lie unboxed in lists that are not linked. A negative index counts from the end everywhere
// but in insert. All members but the observers of the handle itself may throw what errors.hpp says; "throws" below names
// what they throw of themselves. A member that throws has changed nothing, unless it says otherwise.
//
// A list declared ULong takes numbers of 2^63 and more by construction from a range and by push_back alone; from boxes
// and other collections the language refuses them with TypeError, and so type_error is thrown.
template <element T, class Class = plain>
class list : public object {
  using kind = detail::list_class<Class>;
  static constexpr bool is_mutable = kind::is_mutable;
  static constexpr bool is_unboxed = detail::primitive_element<T> && kind::is_indexed;
  static constexpr bool has_span = is_unboxed && !kind::is_shared;
  // Not characters, since somebody has to look at each.
  static constexpr bool is_filled_in_place = is_unboxed && is_mutable && !std::is_same_v<T, char32_t>;

  // Reads and writes elements by index: a list without its root.
  struct access_type {
    using value_type = T;
    void* list = nullptr;
    bool declared = false;

    [[nodiscard]] T get(std::ptrdiff_t index) const {
      if constexpr (detail::floating_element<T>) {
        if (declared) return static_cast<T>(detail::call(vorn_collections_ArrayList_getDouble, list, index));
      } else if constexpr (detail::primitive_element<T>) {
        if (declared) return static_cast<T>(detail::call(vorn_collections_ArrayList_getIntFast, list, index));
      }
      return element_traits<T>::from_handle(detail::call(vorn_collections_ArrayList_operator_index, list, index));
    }
    void set(std::ptrdiff_t index, detail::argument_of<T> x) const {
      const detail::local_root element(element_traits<T>::to_handle(x));
      detail::call(vorn_collections_ArrayList_operator_index_eq, list, index, element.get());
    }
  };

  // Elements that are copied by few calls are, so that a walk needs no call for each.
  using listing_type = std::conditional_t<detail::primitive_element<T>, std::vector<T>, list<T, plain>>;

 public:
  // The types that containers of the C++ library name; functions take an element as `argument`.
  using value_type = T;
  using size_type = std::size_t;
  using difference_type = std::ptrdiff_t;
  using argument = detail::argument_of<T>;
  using reference = detail::element_reference<access_type>;
  using const_iterator = std::conditional_t<kind::is_indexed, detail::index_iterator<access_type, true>,
                                            detail::listing_iterator<listing_type>>;
  using iterator =
      std::conditional_t<kind::is_indexed && is_mutable, detail::index_iterator<access_type, false>, const_iterator>;
  // What slices and repetitions are: of the same family, but never immutable.
  using slice_type = std::conditional_t<is_mutable, list, list<T, plain>>;

  // Whether its elements come to another collection by a native that takes it.
  static constexpr bool is_source = true;

  // ---- Making and adopting. Those that make a new list allocate. ----------------------------------------------------

  // A new list, empty or of these elements.
  list() : list(detail::raw_handle{new_empty()}) {}
  list(std::initializer_list<T> elements)
      : list(detail::raw_handle{detail::new_list<T, Class>(std::span<const T>(elements))}) {}
  // A copy of the elements of a range or of another collection. Throws type_error when a collection has one that is no
  // T, value_error when a Char is no Unicode scalar. Calls a constant number of natives for a range of a primitive type,
  // or any collection, else one for each element.
  template <detail::elements_for<T, list> R>
  explicit list(R&& range)  // NOLINT(bugprone-forwarding-reference-overload): takes no list
      : list(detail::raw_handle{detail::new_list<T, Class>(range)}) {}

  // The list that a handle refers to. Throws type_error when it is of another class, or declared with another type of
  // elements; an undeclared list may be read as a list of anything, and is checked element by element.
  [[nodiscard]] static list from_handle(void* handle) {
    if (!holds(handle)) {
      detail::throw_type_error(detail::list_class_name<T, Class>(), vorn_type_name(handle));
    }
    return list(detail::raw_handle{handle});
  }
  // Whether from_handle() takes it. Does not allocate.
  [[nodiscard]] static bool holds(void* handle) {
    if (vorn_is_instance(handle, kind::name) == 0) return false;
    const detail::list_view_of<T> view(handle);
    return view.is_list && view.may_hold_elements();
  }
  // The name of the class, with which collections of such handles are declared.
  [[nodiscard]] static std::string element_name() { return kind::name; }

  // `size` elements that `fill(std::span<T>)` writes straight into the new list's storage, where their contents are
  // undefined before. A Boolean is a byte, 0 or 1. What `fill` throws passes through, and the list with it.
  template <class Fill>
  requires is_filled_in_place [[nodiscard]] static list filled(std::size_t size, Fill fill) {
    list made;
    if (size == 0) return made;
    const auto count = static_cast<long long>(size);
    detail::call(vorn_collections_ArrayList_reserve, made.handle(), count);
    fill(detail::unboxed_elements<T>(made.handle(), size));
    detail::call(vorn_collections_ArrayList_commitPrimitiveDataSize, made.handle(), count);
    return made;
  }

  // A new list of the same class with the same elements. Allocates.
  [[nodiscard]] list clone() const {
    if constexpr (is_mutable) {
      // Turned around twice, since the other natives that copy give a list without type arguments or convert elements.
      list copy = reversed();
      copy.reverse();
      return copy;
    } else {
      const detail::local_root copy(new_empty());
      detail::call(vorn_collections_ImmutableList_ctor, copy.get(), handle());
      return list(detail::raw_handle{copy.get()});
    }
  }

  // ---- Reading ------------------------------------------------------------------------------------------------------

  // The number of elements, and whether there are none.
  [[nodiscard]] std::size_t size() const {
    return static_cast<std::size_t>(detail::call(vorn_collections_ArrayList_size, handle()));
  }
  [[nodiscard]] bool empty() const { return size() == 0; }

  // The element at an index. Throw index_error, and type_error when an undeclared list has something else there.
  // Unboxed elements are read without allocating.
  [[nodiscard]] T at(std::ptrdiff_t index) const { return access().get(index); }
  [[nodiscard]] T operator[](std::ptrdiff_t index) const { return at(index); }
  [[nodiscard]] T front() const { return at(0); }
  [[nodiscard]] T back() const { return at(-1); }

  // Random access by index; a linked list is walked through a copy that begin() makes, so that it is an input range.
  // The end is that of the moment when end() is called.
  [[nodiscard]] const_iterator begin() const { return first<const_iterator>(); }
  [[nodiscard]] auto end() const { return last<const_iterator>(); }

  // The elements of a linked list without a lock, read from the list itself: an input range that lists nothing first. The
  // list may be changed meanwhile: the walk then goes on at its next index, which it finds from the nearer end. Throws
  // type_error where an element is no T.
  [[nodiscard]] auto walk() const requires(!kind::is_indexed && !kind::is_shared) {
    return detail::walk_range<detail::list_steps<T>>(*this);
  }

  // The unboxed elements themselves. Valid until an element is added or removed, the list is cleared, reserved, filled
  // or given one that is no T, by whichever handle; is_current() tells. Booleans are bytes, true unless 0. Throws
  // type_error when the list keeps its elements in boxes. Does not allocate.
  [[nodiscard]] std::span<const detail::stored<T>> span() const requires has_span { return elements(); }
  [[nodiscard]] std::span<detail::stored<T>> span() requires has_span && is_mutable { return elements(); }
  // Whether a span of this list still is where its elements are, all of them. Does not allocate.
  [[nodiscard]] bool is_current(std::span<const detail::stored<T>> elements) const requires has_span {
    const detail::list_view_of<T> view(handle());
    return elements.size() == view.info.size &&
           (elements.empty() ||
            (view.is_unboxed() && elements.data() == vorn_collections_ArrayList_primitiveDataPtr(handle())));
  }

  // The elements of one moment. Unboxed ones are copied by a constant number of calls.
  [[nodiscard]] std::vector<T> to_vector() const {
    if constexpr (!kind::is_indexed) {
      return listed().to_vector();
    } else if constexpr (kind::is_shared) {
      return slice().copied();
    } else {
      return copied();
    }
  }
  // The same in a container C that is made from two iterators.
  template <class C>
  [[nodiscard]] C to() const {
    return detail::container_of<C>(to_vector());
  }

  // ---- Searching. Elements compare by the language's equality, whose errors are thrown. May run user code, allocate. -

  // Whether an element is equal, and how many are.
  [[nodiscard]] bool contains(argument x) const { return search(vorn_collections_ArrayList_operator_in, x); }
  [[nodiscard]] std::size_t count(argument x) const {
    return static_cast<std::size_t>(search(vorn_collections_ArrayList_count, x));
  }
  // The index of the first (last) equal element at or after (at or before) `start`, which stands for the end when
  // negative in the second; nothing when there is none.
  [[nodiscard]] std::optional<std::ptrdiff_t> index_of(argument x, std::ptrdiff_t start = 0) const {
    return found(search(vorn_collections_ArrayList_indexOf, x, start));
  }
  [[nodiscard]] std::optional<std::ptrdiff_t> last_index_of(argument x, std::ptrdiff_t start = -1) const {
    return found(search(vorn_collections_ArrayList_lastIndexOf, x, start));
  }

  // The sum: of integers as 64 bits that wrap around, of floating numbers as a double.
  [[nodiscard]] auto sum() const requires detail::integer_element<T> || detail::floating_element<T> {
    if constexpr (detail::floating_element<T>) {
      return detail::call(vorn_collections_ArrayList_sumF64Fast, handle());
    } else {
      return static_cast<std::int64_t>(detail::call(vorn_collections_ArrayList_sumInt, handle()));
    }
  }

  // ---- New lists from this one. Allocate. ---------------------------------------------------------------------------

  // The elements start:stop:step, as in the language: bounds are clamped, and a missing one is the end where the step
  // begins or leads to. Throws error for a step of 0.
  [[nodiscard]] slice_type slice(std::optional<std::ptrdiff_t> start = {}, std::optional<std::ptrdiff_t> stop = {},
                                 std::ptrdiff_t step = 1) const {
    return detail::adopted<slice_type>(detail::call(vorn_collections_ArrayList_slice, handle(), start.value_or(0),
                                                    stop.value_or(0), step, start ? handle() : nullptr,
                                                    stop ? handle() : nullptr));
  }
  // The elements, all of them `times` times over.
  [[nodiscard]] slice_type repeat(std::ptrdiff_t times) const {
    return detail::adopted<slice_type>(detail::call(vorn_collections_ArrayList_repeat, handle(), times));
  }
  // The elements in the opposite order.
  [[nodiscard]] list reversed() const {
    return detail::adopted<list>(detail::call(vorn_collections_ArrayList_reverseNew, handle()));
  }
  // In ascending order; numbers by value with NaN last, texts by bytes, others by the language's order of elements,
  // which may run user code. Not stable.
  [[nodiscard]] list sorted() const {
    if constexpr (is_mutable) {
      return detail::adopted<list>(detail::call(vorn_collections_ArrayList_sortNew, handle()));
    } else {
      return detail::adopted<list>(detail::call(vorn_collections_ImmutableList_sortNew, handle()));
    }
  }
  // The elements of both, in a list of the left one's class.
  template <class Other>
  [[nodiscard]] friend list operator+(const list& left, const list<T, Other>& right) {
    return detail::adopted<list>(detail::call(vorn_collections_ArrayList_concat, left.handle(), right.handle()));
  }

  // ---- Changing -----------------------------------------------------------------------------------------------------

  // An element to be read and assigned. Assigning past the end throws index_error, but right at the end it appends, as
  // in the language.
  [[nodiscard]] reference operator[](std::ptrdiff_t index) requires is_mutable { return reference(access(), index); }
  // As above, with references that can be assigned where the list can be read by index.
  [[nodiscard]] iterator begin() { return first<iterator>(); }
  [[nodiscard]] auto end() { return last<iterator>(); }

  // Appends. A primitive value is not boxed on its way, a text becomes a new String. Allocates.
  void push_back(argument x) requires is_mutable {
    if constexpr (std::same_as<T, bool>) {
      detail::call(vorn_collections_ArrayList_addPrimitiveBool, handle(), x);
    } else if constexpr (detail::floating_element<T>) {
      detail::call(vorn_collections_ArrayList_addPrimitiveDouble, handle(), static_cast<double>(x),
                   detail::row_of<T>::name);
    } else if constexpr (detail::primitive_element<T>) {
      if constexpr (std::same_as<T, char32_t>) detail::check_character(x);
      detail::call(vorn_collections_ArrayList_addPrimitiveI64, handle(), static_cast<long long>(x),
                   detail::row_of<T>::name);
    } else {
      const detail::local_root element(element_traits<T>::to_handle(x));
      detail::call(vorn_collections_ArrayList_add, handle(), element.get());
    }
  }
  // Inserts before an index, which is not negative. Throws index_error. Allocates.
  void insert(std::ptrdiff_t index, argument x) requires is_mutable {
    const detail::local_root element(element_traits<T>::to_handle(x));
    detail::call(vorn_collections_ArrayList_addAt, handle(), index, element.get());
  }
  // Appends, or inserts before an index, the elements of a range or of another collection, which may be this list. All
  // of them, or none when this throws. Calls as for construction. Allocate.
  template <detail::elements_for<T, void> R>
  requires is_mutable void append_range(R&& range) {
    const detail::source<T> elements(range);
    detail::call(vorn_collections_ArrayList_addAll, handle(), elements.get());
  }
  template <detail::elements_for<T, void> R>
  requires is_mutable void insert_range(std::ptrdiff_t index, R&& range) {
    const detail::source<T> elements(range);
    detail::call(vorn_collections_ArrayList_addAllAt, handle(), index, elements.get());
  }
  // Assigns to start:stop:step. With step 1 another number of elements replaces that range, and the list's elements are
  // boxed from then on; with any other step there must be as many, or this throws value_error. Assignment stops at an
  // element that is refused, those before it stay assigned. Allocates.
  template <detail::elements_for<T, void> R>
  requires is_mutable void assign_slice(std::optional<std::ptrdiff_t> start, std::optional<std::ptrdiff_t> stop,
                                        R&& range, std::ptrdiff_t step = 1) {
    const detail::source<T> elements(range);
    detail::call(vorn_collections_ArrayList_sliceAssign, handle(), start.value_or(0), stop.value_or(0), step,
                 start ? handle() : nullptr, stop ? handle() : nullptr, elements.get());
  }

  // Removes the element at an index, or the last; throw index_error when there is none. Do not allocate.
  void erase(std::ptrdiff_t index) requires is_mutable {
    detail::call(vorn_collections_ArrayList_removeAt, handle(), index);
  }
  void pop_back() requires is_mutable { erase(-1); }
  // Removes the first equal element; whether there was one. As searching.
  bool remove(argument x) requires is_mutable { return search(vorn_collections_ArrayList_remove, x); }
  // Removes all elements.
  void clear() requires is_mutable { detail::call(vorn_collections_ArrayList_clear, handle()); }
  // Makes room; nothing for a linked list. Throws std::length_error or std::bad_alloc. Allocates.
  void reserve(std::size_t size) requires is_mutable {
    if (size > static_cast<std::size_t>(PTRDIFF_MAX)) throw std::length_error("vorn::list::reserve");
    detail::call(vorn_collections_ArrayList_reserve, handle(), static_cast<long long>(size));
  }

  // Reverses, sorts as sorted() does, or shuffles the elements in place.
  void reverse() requires is_mutable { detail::call(vorn_collections_ArrayList_reverse, handle()); }
  void sort() requires is_mutable { detail::call(vorn_collections_ArrayList_sort, handle()); }
  void shuffle() requires is_mutable { detail::call(vorn_collections_ArrayList_shuffle, handle()); }

  // ---- Text. Run user code, allocate. -------------------------------------------------------------------------------

  // The display, such as "[1, 2]".
  [[nodiscard]] std::string to_string() const {
    if constexpr (is_mutable) {
      return detail::text_from(vorn_collections_ArrayList_toString, handle());
    } else {
      return detail::text_from(vorn_collections_ImmutableList_toString, handle());
    }
  }
  // The texts of the elements with the separator between neighbours, up to the first U+0000 among them.
  [[nodiscard]] std::string join(const std::string& separator = "") const {
    return detail::text_from(vorn_collections_ArrayList_join, handle(), separator.c_str());
  }

 private:
  explicit list(detail::raw_handle raw)
      : object(raw), declared_(detail::list_view_of<T>(raw.handle).declares_elements()) {}

  static void* new_empty() { return detail::new_object(detail::list_class_name<T, Class>()); }

  [[nodiscard]] access_type access() const { return {handle(), declared_}; }

  template <class Iterator>
  [[nodiscard]] Iterator first() const {
    if constexpr (kind::is_indexed) {
      return Iterator(access(), 0);
    } else if constexpr (detail::primitive_element<T>) {
      return Iterator(to_vector());
    } else {
      return Iterator(listed());
    }
  }
  template <class Iterator>
  [[nodiscard]] auto last() const {
    if constexpr (kind::is_indexed) {
      return Iterator(access(), static_cast<std::ptrdiff_t>(size()));
    } else {
      return std::default_sentinel;
    }
  }

  // The elements of a linked list in one that has an index. It is not declared, so that it takes whatever there is.
  [[nodiscard]] list<T, plain> listed() const {
    const detail::local_root all(detail::new_object(detail::list_class<plain>::name));
    detail::call(vorn_collections_ArrayList_addAll, all.get(), handle());
    return list<T, plain>::from_handle(all.get());
  }

  // The elements of a list that nobody else changes meanwhile.
  [[nodiscard]] std::vector<T> copied() const {
    if constexpr (is_unboxed) {
      const detail::list_view_of<T> view(handle());
      if (view.is_unboxed()) {
        const auto all = detail::unboxed_elements<T>(handle(), view.info.size);
        return std::vector<T>(all.begin(), all.end());
      }
    }
    const std::size_t count = size();
    std::vector<T> result;
    result.reserve(count);
    for (std::size_t i = 0; i < count; ++i) result.push_back(at(static_cast<std::ptrdiff_t>(i)));
    return result;
  }

  [[nodiscard]] std::span<detail::stored<T>> elements() const {
    const detail::list_view_of<T> view(handle());
    if (view.is_unboxed()) return detail::unboxed_elements<T>(handle(), view.info.size);
    if (view.info.size != 0)
      detail::throw_type_error(std::string("a list of unboxed ").append(element_traits<T>::name()), "boxed");
    return {};
  }

  template <class Native, class... More>
  [[nodiscard]] auto search(Native native, argument x, More... more) const {
    const detail::local_root element(element_traits<T>::to_handle(x));
    return detail::call(native, handle(), element.get(), more...);
  }
  [[nodiscard]] static std::optional<std::ptrdiff_t> found(long long index) {
    return index < 0 ? std::nullopt : std::optional<std::ptrdiff_t>(index);
  }

  // Declared types do not change, so that the natives that read without boxes are right for good.
  bool declared_ = false;
};

// `vorn::list xs{1, 2, 3}` is a list<int>.
template <class T>
list(std::initializer_list<T>) -> list<T>;

// Linked lists, plain or synchronised, and immutable ones.
template <element T, class Lock = plain>
using linked_list = list<T, std::conditional_t<std::is_same_v<Lock, plain>, linked, linked_synchronized>>;
template <element T>
using immutable_list = list<T, immutable>;

// Lists are ordered as words are, by elements that have an order with all others of their type: not floating numbers.
template <element T, class Left, class Right>
requires std::three_way_comparable<T, std::weak_ordering> std::weak_ordering operator<=>(const list<T, Left>& left,
                                                                                         const list<T, Right>& right) {
  const std::vector<T> lefts = left.to_vector();
  const std::vector<T> rights = right.to_vector();
  return std::lexicographical_compare_three_way(lefts.begin(), lefts.end(), rights.begin(), rights.end());
}

}  // namespace vorn

#endif
