// The classes of collections, as arguments of list, array, set and map.
#ifndef VORN_CPP_CLASSES_HPP
#define VORN_CPP_CLASSES_HPP

namespace vorn {

// Not synchronised: threads that share such a collection must agree on who uses it and when.
struct plain {};
// With a lock that each call takes: threads may share the collection, each through a handle of its own or one that none
// of them assigns. Several calls together are not one step.
struct synchronized {};
// Lists of nodes, whose elements are boxed: inserting and removing at an end is cheap, an index is not.
struct linked {};
struct linked_synchronized {};
// Lists whose elements never change.
struct immutable {};
// Maps in the order of their keys.
struct sorted {};
struct sorted_synchronized {};

namespace detail {

template <class Tag>
struct list_class;
template <>
struct list_class<plain> {
  static constexpr const char* name = "ArrayList";
  static constexpr bool is_mutable = true;
  static constexpr bool is_indexed = true;
  static constexpr bool is_shared = false;
};
template <>
struct list_class<synchronized> {
  static constexpr const char* name = "ArrayListSync";
  static constexpr bool is_mutable = true;
  static constexpr bool is_indexed = true;
  static constexpr bool is_shared = true;
};
template <>
struct list_class<linked> {
  static constexpr const char* name = "LinkedList";
  static constexpr bool is_mutable = true;
  static constexpr bool is_indexed = false;
  static constexpr bool is_shared = false;
};
template <>
struct list_class<linked_synchronized> {
  static constexpr const char* name = "LinkedListSync";
  static constexpr bool is_mutable = true;
  static constexpr bool is_indexed = false;
  static constexpr bool is_shared = true;
};
template <>
struct list_class<immutable> {
  static constexpr const char* name = "ImmutableList";
  static constexpr bool is_mutable = false;
  static constexpr bool is_indexed = true;
  static constexpr bool is_shared = false;
};

template <class Tag>
struct array_class;
template <>
struct array_class<plain> {
  static constexpr const char* name = "Array";
  static constexpr bool is_shared = false;
};
template <>
struct array_class<synchronized> {
  static constexpr const char* name = "ArraySync";
  static constexpr bool is_shared = true;
};

template <class Tag>
struct set_class;
template <>
struct set_class<plain> {
  static constexpr const char* name = "HashSet";
  static constexpr bool is_shared = false;
};
template <>
struct set_class<synchronized> {
  static constexpr const char* name = "HashSetSync";
  static constexpr bool is_shared = true;
};

template <class Tag>
struct map_class;
template <>
struct map_class<plain> {
  static constexpr const char* name = "Map";
  static constexpr bool is_shared = false;
};
template <>
struct map_class<synchronized> {
  static constexpr const char* name = "HashMapSync";
  static constexpr bool is_shared = true;
};
template <>
struct map_class<sorted> {
  static constexpr const char* name = "SortedMap";
  static constexpr bool is_shared = false;
};
template <>
struct map_class<sorted_synchronized> {
  static constexpr const char* name = "SortedMapSync";
  static constexpr bool is_shared = true;
};

}  // namespace detail
}  // namespace vorn

#endif
