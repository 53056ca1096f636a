// What the elements, keys and orders of the report's workloads are. The programs in bench/peers define the same in
// their languages; each workload's checksum is compared, so that a row means the same work everywhere.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace vorn::bench::report {

using Int = std::int32_t;
using Long = std::int64_t;
using Double = double;
using Byte = std::uint8_t;

// ---- Elements -------------------------------------------------------------------------------------------------------

// Different numbers below 2^24, without order.
inline Int numberAt(std::int64_t index) {
  return static_cast<Int>(static_cast<std::uint32_t>(index) * 0x9E3779B1U & 0xFFFFFFU);
}

template <class Element>
inline Element elementAt(std::int64_t index) {
  if constexpr (std::is_same_v<Element, Long>) return numberAt(index) + (Long{1} << 33);
  if constexpr (std::is_same_v<Element, Double>) return numberAt(index) + 0.5;
  if constexpr (std::is_same_v<Element, Byte>) return static_cast<Byte>(numberAt(index) & 127);
  return static_cast<Element>(numberAt(index));
}

// What is appended: the index itself, which costs nothing to make.
template <class Element>
inline Element indexAs(std::int64_t index) {
  return static_cast<Element>(std::is_same_v<Element, Byte> ? index & 127 : index);
}

inline std::string textOf(char first, std::int64_t number) {
  return std::string(1, first).append(std::to_string(number));
}
inline std::string textAt(std::int64_t index) { return textOf('e', numberAt(index)); }

// No list holds these.
inline constexpr Int kAbsentNumber = -1;
inline constexpr const char* kAbsentText = "absent";

// A character of a text: every sixteenth one is not ASCII.
inline std::uint32_t charAt(std::int64_t index) {
  return index % 16 == 15 ? 0xE9U : static_cast<std::uint32_t>('a' + index % 26);
}

// ---- Random numbers, orders and keys --------------------------------------------------------------------------------

// Marsaglia's xorshift of 32 bits ("Xorshift RNGs", 2003), which is the same in languages without wide integers.
class Random {
 public:
  explicit Random(std::uint32_t seed) : state_(seed * 2654435761U | 1U) {}
  std::uint32_t next() {
    state_ ^= state_ << 13;
    state_ ^= state_ >> 17;
    state_ ^= state_ << 5;
    return state_;
  }

 private:
  std::uint32_t state_;
};

inline constexpr std::uint32_t kPutOrder = 1;
inline constexpr std::uint32_t kGetOrder = 2;

// The numbers 0 ... n - 1 in an order without pattern (Fisher and Yates).
inline std::vector<std::int32_t> shuffledOrder(std::int64_t count, std::uint32_t seed) {
  std::vector<std::int32_t> order(static_cast<std::size_t>(count));
  std::iota(order.begin(), order.end(), 0);
  Random random(seed);
  for (std::size_t i = order.size(); i > 1; --i) std::swap(order[i - 1], order[random.next() % i]);
  return order;
}

// Different numbers below 2^30 have different keys below 2^30.
inline Int keyOf(std::int32_t number) {
  return static_cast<Int>(static_cast<std::uint32_t>(number) * 0x9E3779B1U & 0x3FFFFFFFU);
}
inline Int absentKeyOf(std::int32_t number) { return -1 - keyOf(number); }
inline std::string textKeyOf(std::int32_t number) { return textOf('k', keyOf(number)); }
inline std::string absentTextKeyOf(std::int32_t number) { return textOf('n', keyOf(number)); }

inline std::vector<Int> keysInOrder(std::int64_t count, std::uint32_t seed, Int (*key)(std::int32_t) = keyOf) {
  std::vector<Int> keys;
  for (const std::int32_t number : shuffledOrder(count, seed)) keys.push_back(key(number));
  return keys;
}
inline std::vector<std::string> textKeysInOrder(std::int64_t count, std::uint32_t seed,
                                                std::string (*key)(std::int32_t) = textKeyOf) {
  std::vector<std::string> keys;
  for (const std::int32_t number : shuffledOrder(count, seed)) keys.push_back(key(number));
  return keys;
}

// ---- What is sorted -------------------------------------------------------------------------------------------------

enum class Pattern { Random, Sorted, Reversed, Nearly, Equal, Adversarial };

// A repetition sorts several short inputs: a processor would learn the order of one.
inline std::int64_t sortBatch(std::int64_t length) { return std::max<std::int64_t>(1, 100'000 / length); }

template <class Element>
Element drawn(Random& random) {
  const std::uint32_t draw = random.next();
  if constexpr (std::is_same_v<Element, std::string>) return textOf('k', draw & 0x3FFFFFFFU);
  if constexpr (std::is_same_v<Element, Long>) return static_cast<Long>(static_cast<Int>(draw)) * (1 << 20);
  if constexpr (std::is_same_v<Element, Double>) return static_cast<Int>(draw) * 0.5;
  if constexpr (std::is_same_v<Element, Byte>) return static_cast<Byte>(draw & 127);
  if constexpr (std::is_same_v<Element, Int>) return static_cast<Int>(draw);
}

// Musser's sequence ("Introspective Sorting and Selection Algorithms", 1997): 1, k + 1, 3, k + 3, ..., 2, 4, ..., 2 k.
inline Int adversarialAt(std::int64_t index, std::int64_t length) {
  const std::int64_t half = length / 4 * 2;
  if (index >= 2 * half) return static_cast<Int>(index);
  if (index >= half) return static_cast<Int>(2 * (index - half) + 2);
  return static_cast<Int>(index % 2 == 0 ? index + 1 : half + index);
}

// All inputs of a repetition, one after the other.
template <class Element>
std::vector<Element> sortInputs(Pattern pattern, std::int64_t length) {
  const std::int64_t batch = sortBatch(length);
  Random random(static_cast<std::uint32_t>(length));
  std::vector<Element> inputs;
  inputs.reserve(static_cast<std::size_t>(length * batch));
  for (std::int64_t copy = 0; copy < batch; ++copy) {
    const std::size_t begin = inputs.size();
    for (std::int64_t i = 0; i < length; ++i) {
      if (pattern == Pattern::Random) {
        inputs.push_back(drawn<Element>(random));
      } else if constexpr (std::is_same_v<Element, Int>) {
        if (pattern == Pattern::Equal) {
          inputs.push_back(static_cast<Int>(random.next() % 16));
        } else if (pattern == Pattern::Reversed) {
          inputs.push_back(static_cast<Int>(length - i));
        } else {
          inputs.push_back(pattern == Pattern::Adversarial ? adversarialAt(i, length) : static_cast<Int>(i));
        }
      }
    }
    if (pattern != Pattern::Nearly) continue;
    for (std::int64_t swaps = length / 100 + 1; swaps > 0; --swaps) {
      const std::size_t one = begin + random.next() % static_cast<std::uint32_t>(length);
      const std::size_t other = begin + random.next() % static_cast<std::uint32_t>(length);
      std::swap(inputs[one], inputs[other]);
    }
  }
  return inputs;
}

// ---- Checksums ------------------------------------------------------------------------------------------------------

// Of numbers by their low 32 bits, doubles doubled first; of texts by their bytes.
class Digest {
 public:
  void add(std::int64_t value) { value_ = value_ * 31 + static_cast<std::uint32_t>(value); }
  void add(std::int32_t value) { add(std::int64_t{value}); }
  void add(std::uint8_t value) { add(std::int64_t{value}); }
  void add(double value) { add(static_cast<std::int64_t>(value * 2)); }
  void add(std::string_view text) {
    for (const char byte : text) add(std::int64_t{static_cast<unsigned char>(byte)});
  }
  [[nodiscard]] std::uint32_t value() const { return value_; }

 private:
  std::uint32_t value_ = 0;
};

template <class Elements>
std::uint32_t digestOf(const Elements& elements) {
  Digest digest;
  for (const auto& element : elements) digest.add(element);
  return digest.value();
}

// What shows a list differs between languages in all but its digits.
inline std::uint32_t digestOfDigits(std::string_view text) {
  Digest digest;
  for (const char byte : text) {
    if (byte >= '0' && byte <= '9') digest.add(std::int64_t{byte});
  }
  return digest.value();
}

inline std::uint32_t digestOfNumber(std::int64_t number) { return static_cast<std::uint32_t>(number); }
inline std::uint32_t digestOfNumber(double number) { return static_cast<std::uint32_t>(static_cast<Long>(number * 2)); }

// Of a map or a set, whatever its order.
inline std::uint32_t digestOfEntries(std::int64_t size, std::int64_t sumOfValues) {
  return static_cast<std::uint32_t>(size * 31 + sumOfValues);
}

}  // namespace vorn::bench::report
