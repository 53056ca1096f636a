// Tuples: a fixed number of values of fixed types.
#ifndef VORN_CPP_TUPLE_HPP
#define VORN_CPP_TUPLE_HPP

#include <vorn/collections/tuple.h>
#include <vorn/cpp/value.hpp>

#include <compare>
#include <cstddef>
#include <string>
#include <tuple>
#include <utility>

namespace vorn {

// A handle to a tuple whose items are of these types. Tuples never change, and are keys and elements by content:
//
//   auto [name, age] = vorn::tuple<std::string, int>("Ada", 36);
template <element... Ts>
class tuple : public object {
 public:
  // Whether its elements come to another collection by a native that takes it.
  static constexpr bool is_source = true;

  // A new tuple. Allocate.
  // NOLINTNEXTLINE(google-explicit-constructor): explicit where it takes one item
  explicit(sizeof...(Ts) < 2) tuple(detail::argument_of<Ts>... items) requires(sizeof...(Ts) > 0)
      : object(detail::raw_handle{make(items...)}) {}
  explicit tuple(const std::tuple<Ts...>& items)
      : tuple(std::apply([](const auto&... each) { return tuple(each...); }, items)) {}

  // The tuple that a handle refers to. Throws type_error when it is none, or has another number of items or other type
  // arguments; the items are checked when they are read.
  [[nodiscard]] static tuple from_handle(void* handle) {
    if (!holds(handle)) detail::throw_type_error(class_name(), vorn_type_name(handle));
    return tuple(detail::raw_handle{handle});
  }
  // Whether from_handle() takes it. Does not allocate.
  [[nodiscard]] static bool holds(void* handle) {
    return detail::is_instance_for<Ts...>(handle, "Tuple") && vorn_collections_Tuple_size(handle) == sizeof...(Ts);
  }
  // The name of the class, with which collections of such handles are declared.
  [[nodiscard]] static std::string element_name() { return "Tuple"; }

  // The number of items.
  [[nodiscard]] static constexpr std::size_t size() noexcept { return sizeof...(Ts); }

  // An item; throws type_error when it is of another type, as tuples without type arguments may have it.
  template <std::size_t Index>
  [[nodiscard]] auto get() const -> std::tuple_element_t<Index, std::tuple<Ts...>> {
    static_assert(Index < sizeof...(Ts));
    return element_traits<std::tuple_element_t<Index, std::tuple<Ts...>>>::from_handle(
        detail::call(vorn_collections_Tuple_operator_index, handle(), static_cast<long long>(Index)));
  }
  // All items, each as get() reads it.
  [[nodiscard]] std::tuple<Ts...> to_tuple() const {
    return [&]<std::size_t... Indexes>(std::index_sequence<Indexes...>) { return std::tuple<Ts...>(get<Indexes>()...); }
    (std::index_sequence_for<Ts...>());
  }

  // The display, such as "(1, "a")". Runs user code, allocates.
  [[nodiscard]] std::string to_string() const { return detail::text_from(vorn_collections_Tuple_toString, handle()); }

 private:
  explicit tuple(detail::raw_handle raw) : object(raw) {}

  static const std::string& class_name() {
    static const std::string name = detail::generic_name<Ts...>("Tuple");
    return name;
  }

  static void* make(detail::argument_of<Ts>... items) {
    detail::local_roots<sizeof...(Ts)> handles;
    std::size_t count = 0;
    ((handles[count++] = element_traits<Ts>::to_handle(items)), ...);
    return detail::made(vorn_tuple_new(class_name().c_str(), handles.data(), count));
  }
};

// `vorn::tuple pair{1, 2.5}` is a tuple<int, double>.
template <element... Ts>
tuple(const Ts&...) -> tuple<Ts...>;

// As the member: what structured bindings call.
template <std::size_t Index, element... Ts>
auto get(const tuple<Ts...>& items) {
  return items.template get<Index>();
}

// Item by item, where all of them have an order with all others of their type: not floating numbers.
template <element... Ts>
requires(std::three_way_comparable<Ts, std::weak_ordering>&&...) std::weak_ordering operator<=>(
    const tuple<Ts...>& left, const tuple<Ts...>& right) {
  return left.to_tuple() <=> right.to_tuple();
}

}  // namespace vorn

template <class... Ts>
struct std::tuple_size<vorn::tuple<Ts...>> : std::integral_constant<std::size_t, sizeof...(Ts)> {};
template <std::size_t Index, class... Ts>
struct std::tuple_element<Index, vorn::tuple<Ts...>> : std::tuple_element<Index, std::tuple<Ts...>> {};

#endif
