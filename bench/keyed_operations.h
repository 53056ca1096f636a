// The operations on maps that are measured, and who implements them.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "bench/measurement.h"

namespace vorn::bench {

// One row of the comparison: the same work by the natives and three libraries.
struct KeyedOperation {
  const char* name;
  Measured vorn;
  Measured standard;
  Measured glib;
  Measured abseil;
  double smallLimit;  // nanoseconds per entry that the native may take at a thousand entries; 0 when none is set
  double largeLimit;  // the same at a million
};

// The numbers 0 ... n - 1 in an order without pattern, the same for every library (Fisher and Yates).
inline std::vector<std::size_t> shuffledOrder(std::int64_t elements, std::uint64_t seed) {
  std::vector<std::size_t> order(static_cast<std::size_t>(elements));
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
  for (std::size_t i = order.size(); i > 1; --i) {
    seed = seed * 6364136223846793005ULL + 1442695040888963407ULL;
    std::swap(order[i - 1], order[(seed >> 33) % i]);
  }
  return order;
}

// The key of a number as a text of 8 to 12 bytes; absent ones begin differently.
inline std::string textKey(std::size_t number, bool absent) {
  std::string digits = std::to_string(number * 2654435761U % 1000000007U);
  digits.resize(7 + number % 5, 'x');
  std::string rest = std::to_string(number);
  rest += digits;
  std::string text(1, absent ? '?' : 'k');
  text.append(digits, 0, 3);
  text.append(rest, 0, digits.size() - 3);
  return text;
}

// Keys are looked up in another order than they were put in.
inline constexpr std::uint64_t kPutOrder = 1;
inline constexpr std::uint64_t kGetOrder = 2;

namespace natives {
void putInt(benchmark::State& state, std::int64_t elements);
void getInt(benchmark::State& state, std::int64_t elements);
void getAbsentInt(benchmark::State& state, std::int64_t elements);
void putText(benchmark::State& state, std::int64_t elements);
void getText(benchmark::State& state, std::int64_t elements);
void getAbsentText(benchmark::State& state, std::int64_t elements);
void walk(benchmark::State& state, std::int64_t elements);
void listKeys(benchmark::State& state, std::int64_t elements);
void putSorted(benchmark::State& state, std::int64_t elements);
void getSorted(benchmark::State& state, std::int64_t elements);
void walkSorted(benchmark::State& state, std::int64_t elements);
void addInt(benchmark::State& state, std::int64_t elements);

// A set emptied element by element, taking the first or the last each time.
void drainFront(benchmark::State& state, std::int64_t elements);
void drainEnd(benchmark::State& state, std::int64_t elements);
// The keys of a map that had so many entries and has ten.
void listKeysLeft(benchmark::State& state, std::int64_t elements);
// Numbers that an unseeded mixing function gives one hash, and numbers without pattern.
void putChosen(benchmark::State& state, std::int64_t elements);
void putRandom(benchmark::State& state, std::int64_t elements);
// Tuples of two, one of them sixteen levels deep and different at the bottom.
void putNestedTuples(benchmark::State& state, std::int64_t elements);
void putFlatTuples(benchmark::State& state, std::int64_t elements);

// Prints what a hashed map of so many entries takes from the collected heap.
void printMemory(std::int64_t elements);
}  // namespace natives

#define VORN_KEYED_PEER(peer)                                         \
  namespace peer {                                                    \
  void putInt(benchmark::State& state, std::int64_t elements);        \
  void getInt(benchmark::State& state, std::int64_t elements);        \
  void getAbsentInt(benchmark::State& state, std::int64_t elements);  \
  void putText(benchmark::State& state, std::int64_t elements);       \
  void getText(benchmark::State& state, std::int64_t elements);       \
  void getAbsentText(benchmark::State& state, std::int64_t elements); \
  void walk(benchmark::State& state, std::int64_t elements);          \
  void putSorted(benchmark::State& state, std::int64_t elements);     \
  void getSorted(benchmark::State& state, std::int64_t elements);     \
  void walkSorted(benchmark::State& state, std::int64_t elements);    \
  }
VORN_KEYED_PEER(standard)
VORN_KEYED_PEER(glib)
VORN_KEYED_PEER(abseil)
#undef VORN_KEYED_PEER

}  // namespace vorn::bench
