// Inputs and checks for the primitive sort, shared by its tests.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "collections/core/kernels/sort/primitive_sort.h"
#include "collections/core/kernels/vector_path.h"

namespace vorn::tests {

using collections::VectorPath;

// Those that this machine has; SSE2 is left out, as it sorts by the plain code.
inline std::vector<VectorPath> sortingPaths() {
  std::vector<VectorPath> paths;
  for (const VectorPath path : {VectorPath::Plain, VectorPath::Avx2, VectorPath::Avx512}) {
    if (collections::isVectorPathAvailable(path)) paths.push_back(path);
  }
  return paths;
}

template <class Element>
void sortOn(VectorPath path, Element* data, std::uint64_t count) {
  const collections::VectorPathScope scope(path);
  ASSERT_EQ(collections::vectorPath(), path);
  collections::sortPrimitive(data, count);
}

template <class Element>
using BitsOf =
    std::conditional_t<sizeof(Element) == 1, std::uint8_t,
                       std::conditional_t<sizeof(Element) == 2, std::uint16_t,
                                          std::conditional_t<sizeof(Element) == 4, std::uint32_t, std::uint64_t>>>;

template <class Element>
bool isNaN(Element element) {
  if constexpr (std::is_floating_point_v<Element>) return std::isnan(element);
  return false;
}

// The bits of all elements, in an order of their own: equal for two vectors that hold the same elements.
template <class Element>
std::vector<BitsOf<Element>> sortedBits(const std::vector<Element>& elements) {
  std::vector<BitsOf<Element>> bits(elements.size());
  if (!bits.empty()) std::memcpy(bits.data(), elements.data(), bits.size() * sizeof(Element));
  std::sort(bits.begin(), bits.end());
  return bits;
}

template <class Element>
struct Input {
  std::string name;
  std::vector<Element> elements;
};

template <class Element>
Element anyElement(std::mt19937_64& random) {
  const std::uint64_t draw = random();
  if constexpr (std::is_floating_point_v<Element>) {
    return static_cast<Element>(static_cast<double>(static_cast<std::int64_t>(draw)) * 1e-12);
  } else {
    return static_cast<Element>(draw);
  }
}

// Not a number with the given payload and sign; 1 is the smallest payload, and a signalling one.
template <class Element>
Element nanWith(std::uint64_t payload, bool negative) {
  using Bits = BitsOf<Element>;
  const Bits infinity = std::bit_cast<Bits>(std::numeric_limits<Element>::infinity());
  const auto mantissa = static_cast<Bits>(Bits{1} << (std::numeric_limits<Element>::digits - 1));
  const auto sign = static_cast<Bits>(negative ? Bits{1} << (8 * sizeof(Element) - 1) : 0);
  return std::bit_cast<Element>(static_cast<Bits>(sign | infinity | (1 + payload % (mantissa - 1))));
}

template <class Element>
Element extremeElement(std::uint64_t draw) {
  using Limits = std::numeric_limits<Element>;
  switch (draw % 8) {
    case 0:
      return Limits::lowest();
    case 1:
      return Limits::max();
    case 2:
      return static_cast<Element>(Limits::max() - 1);
    case 3:
      return Element{0};
    case 4:
      return Element{1};
    case 5:
      return static_cast<Element>(Limits::lowest() + 1);
    case 6:
      return Limits::has_infinity ? Limits::infinity() : Element{2};
    default:
      return Limits::has_infinity ? -Limits::infinity() : Element{3};
  }
}

// A vector is assigned bit by bit here: a signalling NaN that passes through a floating register may come out quiet.
template <class Element>
std::vector<Input<Element>> inputsOf(std::size_t count) {
  std::mt19937_64 random(count * 2 + 1);
  std::vector<Input<Element>> inputs;
  const auto add = [&](const char* name, auto elementAt) {
    Input<Element> input{name, std::vector<Element>(count)};
    for (std::size_t i = 0; i < count; ++i) {
      const Element element = elementAt(i);
      std::memcpy(&input.elements[i], &element, sizeof(Element));
    }
    inputs.push_back(std::move(input));
  };
  add("random", [&](std::size_t) { return anyElement<Element>(random); });
  add("sorted", [](std::size_t i) { return static_cast<Element>(i); });
  add("reversed", [=](std::size_t i) { return static_cast<Element>(count - i); });
  add("equal", [](std::size_t) { return Element{7}; });
  add("largest", [](std::size_t) { return std::numeric_limits<Element>::max(); });
  add("smallest", [](std::size_t) { return std::numeric_limits<Element>::lowest(); });
  add("two values", [&](std::size_t) { return static_cast<Element>(random() % 2); });
  add("sixteen values", [&](std::size_t) { return static_cast<Element>(random() % 16); });
  add("organ pipe", [=](std::size_t i) { return static_cast<Element>(std::min(i, count - i)); });
  add("sawtooth", [](std::size_t i) { return static_cast<Element>(i % 17); });
  add("extremes", [&](std::size_t) { return extremeElement<Element>(random()); });
  add("sorted but for the last", [=](std::size_t i) { return static_cast<Element>(i + 1 == count ? 0 : i); });
  if constexpr (std::is_floating_point_v<Element>) {
    add("both zeros", [&](std::size_t) { return random() % 2 == 0 ? Element{0} : -Element{0}; });
    add("NaN only", [&](std::size_t) { return nanWith<Element>(random(), random() % 2 == 0); });
    add("some NaN", [&](std::size_t) {
      return random() % 10 == 0 ? nanWith<Element>(random(), random() % 2 == 0) : anyElement<Element>(random);
    });
    add("half NaN among extremes", [&](std::size_t i) {
      return random() % 2 == 0 ? nanWith<Element>(i, i % 2 == 0) : extremeElement<Element>(random());
    });
    add("negative NaN first, then sorted",
        [&](std::size_t i) { return i == 0 ? nanWith<Element>(0, true) : static_cast<Element>(i); });
    add("denormal", [&](std::size_t) {
      const auto bits = static_cast<BitsOf<Element>>(random() % 64);
      const auto element = std::bit_cast<Element>(bits);
      return random() % 2 == 0 ? element : -element;
    });
  }
  return inputs;
}

// What must come out: numbers in order, then the NaNs.
template <class Element>
std::vector<Element> numbersInOrder(const std::vector<Element>& elements) {
  std::vector<Element> numbers;
  for (const Element element : elements) {
    if (!isNaN(element)) numbers.push_back(element);
  }
  std::sort(numbers.begin(), numbers.end());
  return numbers;
}

// Sorts a copy on every path, between guards, and compares with the reference.
template <class Element>
void expectSortedOnEveryPath(const Input<Element>& input) {
  constexpr std::size_t kGuards = 64 / sizeof(Element);
  const std::size_t count = input.elements.size();
  const std::vector<Element> numbers = numbersInOrder(input.elements);
  const auto bits = sortedBits(input.elements);
  std::vector<unsigned char> guard(kGuards * sizeof(Element), 0xA5);
  for (const VectorPath path : sortingPaths()) {
    SCOPED_TRACE(std::string(collections::vectorPathName(path)) + ", " + input.name + ", " + std::to_string(count));
    std::vector<Element> block(count + 2 * kGuards);
    std::memcpy(block.data(), guard.data(), guard.size());
    if (count > 0) std::memcpy(block.data() + kGuards, input.elements.data(), count * sizeof(Element));
    std::memcpy(block.data() + kGuards + count, guard.data(), guard.size());

    sortOn(path, block.data() + kGuards, count);

    ASSERT_EQ(std::memcmp(block.data(), guard.data(), guard.size()), 0) << "wrote before the range";
    ASSERT_EQ(std::memcmp(block.data() + kGuards + count, guard.data(), guard.size()), 0) << "wrote after the range";
    const std::vector<Element> sorted(block.begin() + kGuards, block.end() - kGuards);
    for (std::size_t i = 0; i < numbers.size(); ++i) ASSERT_EQ(sorted[i], numbers[i]) << "at " << i;
    for (std::size_t i = numbers.size(); i < count; ++i) ASSERT_TRUE(isNaN(sorted[i])) << "at " << i;
    ASSERT_EQ(sortedBits(sorted), bits) << "lost or changed an element";
  }
}

using AllElements = ::testing::Types<std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t,
                                     std::uint32_t, std::int64_t, std::uint64_t, float, double>;

}  // namespace vorn::tests
