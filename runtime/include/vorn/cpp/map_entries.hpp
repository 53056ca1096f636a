// What map.hpp reads and writes entries through.
#ifndef VORN_CPP_MAP_ENTRIES_HPP
#define VORN_CPP_MAP_ENTRIES_HPP

#include <vorn/collections/array_list.h>
#include <vorn/collections/map.h>
#include <vorn/collections/tuple.h>
#include <vorn/cpp/list_storage.hpp>
#include <vorn/cpp/value.hpp>

#include <concepts>
#include <cstddef>
#include <ostream>
#include <ranges>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace vorn::detail {

// A range of pairs, or of other tuples of two, of what may be given for a key and a value.
using std::get;
template <class X, class K, class V>
concept given_for_entry = requires(X entry) {
  requires std::tuple_size<std::remove_cvref_t<X>>::value == 2;
  requires given_for<decltype(get<0>(entry)), K>;
  requires given_for<decltype(get<1>(entry)), V>;
};
template <class R, class K, class V, class Self>
concept pair_range = !std::same_as<std::remove_cvref_t<R>, Self> && std::ranges::input_range<R> &&
                     given_for_entry<std::ranges::range_reference_t<R>, K, V>;

// The entries of a map at one moment: the list of tuples that Map.items gives, read without a handle for each tuple.
template <class K, class V>
class map_entries {
 public:
  using value_type = std::pair<K, V>;

  explicit map_entries(void* map) : items_(value::from_handle(made(call(vorn_collections_Map_items, map)))) {}

  [[nodiscard]] std::size_t size() const {
    return static_cast<std::size_t>(vorn_collections_ArrayList_size(items_.handle()));
  }
  [[nodiscard]] value_type at(std::ptrdiff_t index) const {
    void* const entry = call(vorn_collections_ArrayList_operator_index, items_.handle(), index);
    return {element_traits<K>::from_handle(item(entry, 0)), element_traits<V>::from_handle(item(entry, 1))};
  }
  [[nodiscard]] std::vector<value_type> to_vector() const {
    std::vector<value_type> result;
    const std::size_t count = size();
    result.reserve(count);
    for (std::size_t i = 0; i < count; ++i) result.push_back(at(static_cast<std::ptrdiff_t>(i)));
    return result;
  }
  // Calls function(key, value) with the handles of each entry, which this object keeps alive.
  template <class Function>
  void for_each(Function function) const {
    const auto count = static_cast<std::ptrdiff_t>(size());
    for (std::ptrdiff_t i = 0; i < count; ++i) {
      void* const entry = call(vorn_collections_ArrayList_operator_index, items_.handle(), i);
      function(item(entry, 0), item(entry, 1));
    }
  }

 private:
  static void* item(void* entry, long long index) { return call(vorn_collections_Tuple_operator_index, entry, index); }

  value items_;
};

// What `map[key]` gives where the map may be changed. It refers to the map's handle and to the key as it was given, so
// it is meant to be used up in the expression that it stands in.
template <class Map>
class mapped_reference {
 public:
  using value_type = typename Map::mapped_type;

  mapped_reference(Map& map, typename Map::key_argument key) : map_(map), key_(key) {}
  mapped_reference(const mapped_reference&) = default;
  ~mapped_reference() = default;

  [[nodiscard]] value_type get() const { return map_.at(key_); }
  operator value_type() const { return get(); }  // NOLINT(google-explicit-constructor): reads as the value

  // NOLINTBEGIN(misc-unconventional-assign-operator,cppcoreguidelines-c-copy-assignment-signature)
  const mapped_reference& operator=(typename Map::argument x) const {
    map_.put(key_, x);
    return *this;
  }
  mapped_reference& operator=(const mapped_reference& other) {
    map_.put(key_, other.get());
    return *this;
  }
  // NOLINTEND(misc-unconventional-assign-operator,cppcoreguidelines-c-copy-assignment-signature)

  const mapped_reference& operator+=(const value_type& x) const requires requires(value_type y) {
    static_cast<value_type>(y + x);
  }
  { return *this = static_cast<value_type>(get() + x); }
  const mapped_reference& operator-=(const value_type& x) const requires requires(value_type y) {
    static_cast<value_type>(y - x);
  }
  { return *this = static_cast<value_type>(get() - x); }

  friend bool operator==(const mapped_reference& left,
                         const value_type& right) requires(!std::is_arithmetic_v<value_type>) {
    return left.get() == right;
  }
  friend std::ostream& operator<<(std::ostream& out, const mapped_reference& x) requires requires(value_type y) {
    out << y;
  }
  { return out << x.get(); }

 private:
  Map& map_;
  typename Map::key_argument key_;
};

}  // namespace vorn::detail

#endif
