// Maps: hashed and sorted ones, plain and synchronised.
#ifndef VORN_CPP_MAP_HPP
#define VORN_CPP_MAP_HPP

#include <vorn/collections/map.h>
#include <vorn/cpp/classes.hpp>
#include <vorn/cpp/list.hpp>
#include <vorn/cpp/map_entries.hpp>
#include <vorn/cpp/tuple.hpp>
#include <vorn/cpp/value.hpp>
#include <vorn/cpp/walks.hpp>

#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <optional>
#include <ranges>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace vorn {

// A handle to a map from K to V. `Class` is plain (Map), synchronized (HashMapSync), sorted (SortedMap) or
// sorted_synchronized.
//
// Keys are compared by value: numbers whatever their type, texts by bytes, tuples and immutable lists by content,
// instances of user classes by their hooks, all else by identity. What compares may run user code, whose errors are
// thrown; so are errors that were pending before the call, where it looks for a key (errors.hpp). A key that is null
// throws null_error. A member that throws has changed nothing, unless it says otherwise.
template <element K, element V, class Class = plain>
class map : public object {
  using kind = detail::map_class<Class>;
  static constexpr bool is_copied_by_columns =
      !kind::is_shared && detail::primitive_element<K> && detail::primitive_element<V>;
  using listing_type =
      std::conditional_t<is_copied_by_columns, std::vector<std::pair<K, V>>, detail::map_entries<K, V>>;

 public:
  // The types that containers of the C++ library name; functions take a key as `key_argument`, a value as `argument`.
  using key_type = K;
  using mapped_type = V;
  using value_type = std::pair<K, V>;
  using size_type = std::size_t;
  using difference_type = std::ptrdiff_t;
  using key_argument = detail::argument_of<K>;
  using argument = detail::argument_of<V>;
  using reference = detail::mapped_reference<map>;
  using const_iterator = detail::listing_iterator<listing_type>;
  using iterator = const_iterator;

  // Whether its elements come to another collection by a native that takes it.
  static constexpr bool is_source = false;

  // A new map, empty or of the pairs of a range, each put by a call. Allocate.
  map() : object(detail::raw_handle{new_empty()}) {}
  map(std::initializer_list<std::pair<K, V>> entries) : map() { put_range(entries); }
  template <detail::pair_range<K, V, map> R>
  explicit map(R&& range) : map() {  // NOLINT(bugprone-forwarding-reference-overload): takes no map
    put_range(range);
  }

  // The map that a handle refers to. Throws type_error when it is of another class or has other type arguments; the keys
  // and values of a map without them are checked when they are read.
  [[nodiscard]] static map from_handle(void* handle) {
    if (!holds(handle)) detail::throw_type_error(class_name(), vorn_type_name(handle));
    return map(detail::raw_handle{handle});
  }
  // Whether from_handle() takes it. Does not allocate.
  [[nodiscard]] static bool holds(void* handle) { return detail::is_instance_for<K, V>(handle, kind::name); }
  // The name of the class, with which collections of such handles are declared.
  [[nodiscard]] static std::string element_name() { return kind::name; }

  // A new map of the same class with the same entries. Allocates.
  [[nodiscard]] map clone() const {
    map copy;
    const detail::map_entries<K, V> entries(handle());
    copy.reserve(entries.size());
    entries.for_each(
        [&](void* key, void* mapped) { detail::call_with_key(vorn_collections_Map_put, copy.handle(), key, mapped); });
    return copy;
  }

  // ---- Reading ------------------------------------------------------------------------------------------------------

  // The number of entries, and whether there are none.
  [[nodiscard]] std::size_t size() const {
    return static_cast<std::size_t>(detail::call(vorn_collections_Map_size, handle()));
  }
  [[nodiscard]] bool empty() const { return size() == 0; }

  // The value of a key. Throws key_error when there is none: reading never inserts. Throws type_error when the value is
  // no V.
  [[nodiscard]] V at(key_argument key) const {
    const detail::local_root handle_of_key(element_traits<K>::to_handle(key));
    return element_traits<V>::from_handle(
        detail::call_with_key(vorn_collections_Map_operator_index, handle(), handle_of_key.get()));
  }
  [[nodiscard]] V operator[](key_argument key) const { return at(key); }
  // The same, or nothing or another value when there is none.
  [[nodiscard]] std::optional<V> try_get(key_argument key) const {
    const detail::local_root handle_of_key(element_traits<K>::to_handle(key));
    detail::local_root mapped(nullptr);
    if (!detail::call_with_key(vorn_collections_Map_tryGet, handle(), handle_of_key.get(), mapped.out())) return {};
    return element_traits<V>::from_handle(mapped.get());
  }
  [[nodiscard]] V get_or(key_argument key, V otherwise) const {
    std::optional<V> found = try_get(key);
    return found ? *std::move(found) : std::move(otherwise);
  }
  // Whether there is an entry with an equal key.
  [[nodiscard]] bool contains(key_argument key) const {
    const detail::local_root handle_of_key(element_traits<K>::to_handle(key));
    return detail::call_with_key(vorn_collections_Map_operator_in, handle(), handle_of_key.get());
  }
  // Whether a value is equal, by the equality of elements. Takes time in proportion to the size.
  [[nodiscard]] bool contains_value(argument x) const {
    const detail::local_root mapped(element_traits<V>::to_handle(x));
    return detail::call(vorn_collections_Map_containsValue, handle(), mapped.get());
  }

  // New lists of one moment, all in the same order as long as the map is unchanged: ascending by key for sorted maps.
  // Allocate.
  [[nodiscard]] immutable_list<K> keys() const {
    return detail::adopted<immutable_list<K>>(detail::call(vorn_collections_Map_keys, handle()));
  }
  [[nodiscard]] immutable_list<V> values() const {
    return detail::adopted<immutable_list<V>>(detail::call(vorn_collections_Map_values, handle()));
  }
  [[nodiscard]] immutable_list<tuple<K, V>> items() const {
    return detail::adopted<immutable_list<tuple<K, V>>>(detail::call(vorn_collections_Map_items, handle()));
  }

  // The entries of one moment, as `for (auto [key, value] : map)`: an input range over a listing that begin() makes, so
  // that the map may be changed during the walk. Throws type_error where one is of another type. Allocates.
  [[nodiscard]] const_iterator begin() const {
    if constexpr (is_copied_by_columns) {
      return const_iterator(to_vector());
    } else {
      return const_iterator(detail::map_entries<K, V>(handle()));
    }
  }
  [[nodiscard]] std::default_sentinel_t end() const noexcept { return {}; }

  // The entries of a map without a lock, read from the map itself, as `for (auto& [key, value] : map.walk())`: an input
  // range that lists nothing first. Values may be replaced meanwhile; after any other change of the map the next step
  // throws error. Throws type_error where an entry is of another type.
  [[nodiscard]] auto walk() const requires(!kind::is_shared) {
    return detail::walk_range<detail::map_steps<K, V>>(*this);
  }

  // The entries of one moment in a vector, or in a container C that is made from two iterators. A constant number of calls for primitive
  // keys and values, unless the map is synchronised.
  [[nodiscard]] std::vector<std::pair<K, V>> to_vector() const {
    if constexpr (is_copied_by_columns) {
      const std::vector<K> all_keys = keys().to_vector();
      const std::vector<V> all_values = values().to_vector();
      // A listing lacks a Char that its list refuses.
      if (all_keys.size() == all_values.size()) {
        std::vector<std::pair<K, V>> result;
        result.reserve(all_keys.size());
        for (std::size_t i = 0; i < all_keys.size(); ++i) result.emplace_back(all_keys[i], all_values[i]);
        return result;
      }
    }
    return detail::map_entries<K, V>(handle()).to_vector();
  }
  template <class C>
  [[nodiscard]] C to() const {
    return detail::container_of<C>(to_vector());
  }

  // ---- Changing -----------------------------------------------------------------------------------------------------

  // The value of a key to be read, as at() reads it, and assigned, as put() puts it.
  [[nodiscard]] reference operator[](key_argument key) { return reference(*this, key); }

  // Puts an entry, or replaces the key and the value of the one with an equal key. Allocates.
  void put(key_argument key, argument x) {
    const detail::local_root handle_of_key(element_traits<K>::to_handle(key));
    const detail::local_root mapped(element_traits<V>::to_handle(x));
    detail::call_with_key(vorn_collections_Map_put, handle(), handle_of_key.get(), mapped.get());
  }
  // Puts the pairs of a range one by one. When this throws, those before are put. Allocates.
  template <detail::pair_range<K, V, void> R>
  void put_range(R&& range) {
    if constexpr (std::ranges::sized_range<R>) reserve(size() + static_cast<std::size_t>(std::ranges::size(range)));
    for (auto&& entry : range) {
      const key_argument key = get<0>(entry);
      const argument x = get<1>(entry);
      put(key, x);
    }
  }
  // Removes the entry of a key; whether there was one.
  bool erase(key_argument key) {
    const detail::local_root handle_of_key(element_traits<K>::to_handle(key));
    return detail::call_with_key(vorn_collections_Map_remove, handle(), handle_of_key.get());
  }
  // Removes all entries.
  void clear() { detail::call(vorn_collections_Map_clear, handle()); }
  // Makes room in a hashed map for so many entries, or gives back what is more than those there are. Throws
  // std::length_error or std::bad_alloc. Allocates.
  void reserve(std::size_t size) {
    if (size > static_cast<std::size_t>(PTRDIFF_MAX)) throw std::length_error("vorn::map::reserve");
    detail::call(vorn_collections_Map_reserve, handle(), static_cast<long long>(size));
  }

  // The display, such as "{"a": 1}". Runs user code, allocates.
  [[nodiscard]] std::string to_string() const { return detail::text_from(vorn_collections_Map_toString, handle()); }

 private:
  explicit map(detail::raw_handle raw) : object(raw) {}

  static const std::string& class_name() {
    static const std::string name = detail::generic_name<K, V>(kind::name);
    return name;
  }
  static void* new_empty() { return detail::new_object(class_name()); }
};

// `vorn::map ages{std::pair(1, 2.5)}` is a map<int, double>.
template <class K, class V>
map(std::initializer_list<std::pair<K, V>>) -> map<K, V>;

// Maps in the order of their keys, plain or synchronised.
template <element K, element V, class Lock = plain>
using sorted_map = map<K, V, std::conditional_t<std::is_same_v<Lock, plain>, sorted, sorted_synchronized>>;

}  // namespace vorn

#endif
