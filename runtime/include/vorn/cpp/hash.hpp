// Hashes of what may be a key in containers of the C++ library: strings, tuples and values.
#ifndef VORN_CPP_HASH_HPP
#define VORN_CPP_HASH_HPP

#include <vorn/runtime.h>
#include <vorn/cpp/tuple.hpp>
#include <vorn/cpp/value.hpp>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <tuple>

// Agrees with == of strings and of texts: that of the view.
template <>
struct std::hash<vorn::string> {
  // The hash.
  std::size_t operator()(const vorn::string& x) const noexcept { return std::hash<std::string_view>()(x.view()); }
};

// Agrees with ==. Numbers hash by value whatever their type, texts by bytes. Everything else that is compared by content
// or by a hook, all collections and instances of user classes, has one hash: correct, and slow as a key. Does not
// allocate.
template <>
struct std::hash<vorn::value> {
  // The hash.
  std::size_t operator()(const vorn::value& x) const noexcept {
    void* const handle = x.handle();
    if (const char* const text = vorn_string_text(handle)) return std::hash<std::string_view>()(text);
    double floating = 0;
    // Equal numbers have one nearest double; adding zero makes both zeros one.
    if (vorn_unbox_floating(handle, &floating) != 0) return std::hash<double>()(floating + 0.0);
    std::int64_t integer = 0;
    if (vorn_unbox_integer(handle, &integer) == 0) return x.is_null() ? 0 : 1;
    const bool is_large = integer < 0 && x.type_name() == "vorn.ULong";
    const double nearest =
        is_large ? static_cast<double>(static_cast<std::uint64_t>(integer)) : static_cast<double>(integer);
    return std::hash<double>()(nearest + 0.0);
  }
};

// From the hashes of the items. Reads each of them.
template <class... Ts>
struct std::hash<vorn::tuple<Ts...>> {
  // The hash.
  std::size_t operator()(const vorn::tuple<Ts...>& x) const {
    std::size_t result = sizeof...(Ts);
    std::apply(
        [&](const auto&... items) {
          // The shifts and the fraction of the golden ratio spread the bits of hashes that are numbers themselves.
          ((result ^= std::hash<Ts>()(items) + 0x9E3779B97F4A7C15U + (result << 6) + (result >> 2)), ...);
        },
        x.to_tuple());
    return result;
  }
};

#endif
