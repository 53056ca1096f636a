// What sources with planted faults call. The environment says by a number which fault a program has: VORN_PLANTED.
#pragma once

#include <cstdlib>
#include <functional>
#include <type_traits>

namespace vorn::planted {

inline constexpr int kMostFaults = 8192;

// Numbers begin with 1, so that none is planted before this has its value.
inline const int active = [] {
  const char* number = std::getenv("VORN_PLANTED");
  return number != nullptr ? std::atoi(number) : 0;
}();

// Which places the program came by, for whoever wants to know which tests can notice a fault (reached.cpp).
inline unsigned char reached[kMostFaults];

// Whether this fault is the one to have. What the compiler evaluates has none.
constexpr bool on(int number) {
  if (std::is_constant_evaluated()) return false;
  // Threads share the line: it is written once.
  if (reached[number] == 0) reached[number] = 1;
  return number == active;
}

struct ShiftLeft {
  constexpr auto operator()(auto value, auto count) const { return value << count; }
};
struct ShiftRight {
  constexpr auto operator()(auto value, auto count) const { return value >> count; }
};

template <class Written, class Planted>
constexpr auto swapped(int number, auto left, auto right) {
  return on(number) ? Planted{}(left, right) : Written{}(left, right);
}

template <class Written, class Planted, class Target>
constexpr Target& assigned(int number, Target& target, auto value) {
  return target = static_cast<Target>(swapped<Written, Planted>(number, target, value));
}

constexpr auto& increment(int number, auto& value) { return on(number) ? --value : ++value; }
constexpr auto& decrement(int number, auto& value) { return on(number) ? ++value : --value; }

template <class Value>
constexpr Value next(int number, Value value) {
  if constexpr (std::is_same_v<Value, bool>) return value != on(number);
  return static_cast<Value>(on(number) ? value + 1 : value);
}

}  // namespace vorn::planted
