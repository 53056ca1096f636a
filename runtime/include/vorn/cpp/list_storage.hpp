// What list.hpp does to the storage of lists: filling and reading them whole, by few calls however long they are.
#ifndef VORN_CPP_LIST_STORAGE_HPP
#define VORN_CPP_LIST_STORAGE_HPP

#include <vorn/collections/array_list.h>
#include <vorn/collections/immutable_list.h>
#include <vorn/cpp/classes.hpp>
#include <vorn/cpp/value.hpp>

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <ranges>
#include <span>
#include <string_view>
#include <type_traits>
#include <vector>

namespace vorn::detail {

// What may be given for a T without being narrowed.
template <class X, class T>
concept given_for = (primitive_element<T> && requires(X x) { T{static_cast<X>(x)}; }) ||
                    (!primitive_element<T> && std::convertible_to<X, argument_of<T>>);

// A range of what may be given for a T. `Self` is the collection that asks: its copies are no conversions.
template <class R, class T, class Self>
concept range_of = !std::same_as<std::remove_cvref_t<R>, Self> && std::ranges::input_range<R> &&
                   given_for<std::ranges::range_reference_t<R>, T>;

// What the natives that take a whole collection read in one call.
template <class R>
concept native_source = wrapper<std::remove_cvref_t<R>> && std::remove_cvref_t<R>::is_source;

// Whatever a collection of T may be filled from.
template <class R, class T, class Self>
concept elements_for = !std::same_as<std::remove_cvref_t<R>, Self> && (native_source<R> || range_of<R, T, Self>);

// "LinkedList<Int>".
template <class T, class Tag>
const std::string& list_class_name() {
  static const std::string name = generic_name<T>(list_class<Tag>::name);
  return name;
}

// How a list keeps its elements, as far as reading them goes.
template <class T>
struct list_view_of {
  explicit list_view_of(void* list) { is_list = vorn_list_get_storage(list, &info) != 0; }

  // Whether all elements were of type T when they were added, so that they can be read without boxes.
  [[nodiscard]] bool declares_elements() const {
    return std::string_view(info.element_type) == element_traits<T>::name();
  }
  // Whether it may be read as a list of T: it is declared with T, or with nothing that says otherwise.
  [[nodiscard]] bool may_hold_elements() const {
    if constexpr (primitive_element<T> || std::same_as<T, std::string> || std::same_as<T, string>) {
      const std::string_view declared = info.element_type;
      return declared.empty() || declared == "Object" || declares_elements();
    } else {
      return true;
    }
  }
  [[nodiscard]] bool is_unboxed() const {
    return info.storage == VORN_LIST_PRIMITIVE && std::string_view(info.primitive_type) == element_traits<T>::name();
  }

  bool is_list = false;
  vorn_list_storage_info info{};
};

template <class T>
std::span<stored<T>> unboxed_elements(void* list, std::size_t size) {
  return {static_cast<stored<T>*>(vorn_collections_ArrayList_primitiveDataPtr(list)), size};
}

// Writes as many elements of a range as there is room for, which is as many as it said that it has; their number.
template <class T, class Stored, class R>
std::size_t write_elements(R&& range, Stored* data, std::size_t room) {
  if constexpr (std::ranges::contiguous_range<R> && std::same_as<std::ranges::range_value_t<R>, Stored>) {
    std::memcpy(data, std::ranges::data(range), room * sizeof(Stored));
    return room;
  } else {
    std::size_t written = 0;
    for (auto&& x : range) {
      if (written == room) break;
      const argument_of<T> given = x;
      data[written++] = static_cast<Stored>(given);
    }
    return written;
  }
}

// Makes the elements of a range those of a new list that nobody else knows: four calls for primitive elements, one for
// each of others. The list is rooted by the caller.
template <class T, class R>
void fill_new_list(void* list, R&& range) {
  if constexpr (!primitive_element<T>) {
    if constexpr (std::ranges::sized_range<R>) {
      call(vorn_collections_ArrayList_reserve, list, static_cast<long long>(std::ranges::size(range)));
    }
    for (auto&& x : range) {
      const argument_of<T> given = x;
      const local_root element(element_traits<T>::to_handle(given));
      call(vorn_collections_ArrayList_add, list, element.get());
    }
  } else if constexpr (!std::ranges::sized_range<R>) {
    std::vector<T> elements;
    for (auto&& x : range) {
      const argument_of<T> given = x;
      elements.push_back(given);
    }
    fill_new_list<T>(list, elements);
  } else {
    const auto size = static_cast<std::size_t>(std::ranges::size(range));
    if (size == 0) return;
    if constexpr (std::same_as<T, char32_t>) {
      // The buffer of the protocol whose commit looks at each character.
      long long* const data =
          call(vorn_collections_ArrayList_preparePrimitiveI64Data, list, static_cast<long long>(size), row_of<T>::name);
      const std::size_t written = write_elements<T>(range, data, size);
      call(vorn_collections_ArrayList_commitPrimitiveI64DataSize, list, static_cast<long long>(written));
    } else {
      call(vorn_collections_ArrayList_reserve, list, static_cast<long long>(size));
      const std::size_t written = write_elements<T>(range, unboxed_elements<T>(list, size).data(), size);
      call(vorn_collections_ArrayList_commitPrimitiveDataSize, list, static_cast<long long>(written));
    }
  }
}

// A new ArrayList with the elements of a range or collection, as a handle that is not rooted.
template <class T, class R>
void* new_array_list(R&& range) {
  const local_root list(new_object(list_class_name<T, plain>()));
  if constexpr (native_source<R>) {
    call(vorn_collections_ArrayList_addAll, list.get(), range.handle());
  } else {
    fill_new_list<T>(list.get(), range);
  }
  return list.get();
}

// A new list of a class, in the same way.
template <class T, class Tag, class R>
void* new_list(R&& range) {
  const local_root list(new_object(list_class_name<T, Tag>()));
  if constexpr (std::same_as<Tag, immutable>) {
    const local_root elements(new_array_list<T>(range));
    call(vorn_collections_ImmutableList_ctor, list.get(), elements.get());
  } else if constexpr (native_source<R>) {
    call(vorn_collections_ArrayList_addAll, list.get(), range.handle());
  } else if constexpr (list_class<Tag>::is_indexed) {
    fill_new_list<T>(list.get(), range);
  } else {
    const local_root elements(new_array_list<T>(range));
    call(vorn_collections_ArrayList_addAll, list.get(), elements.get());
  }
  return list.get();
}

// A range as the source of a native: collections as they are, other ranges through a new list, so that they are read to
// their end before anything changes.
template <class T>
class source {
 public:
  template <elements_for<T, source> R>
  explicit source(R&& range) : root_(handle_of(range)) {}  // NOLINT(bugprone-forwarding-reference-overload): no source
  [[nodiscard]] void* get() const noexcept { return root_.get(); }

 private:
  template <class R>
  static void* handle_of(R&& range) {
    if constexpr (native_source<R>) {
      return range.handle();
    } else {
      return new_array_list<T>(range);
    }
  }
  local_root root_;
};

// The elements from `first` to `last` as the container C.
template <class C, class T>
C container_of(std::vector<T> elements) {
  if constexpr (std::same_as<C, std::vector<T>>) {
    return elements;
  } else {
    return C(std::make_move_iterator(elements.begin()), std::make_move_iterator(elements.end()));
  }
}

}  // namespace vorn::detail

#endif
