// The inputs that sorts are measured on, and the loop that measures them.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <type_traits>
#include <vector>

#include "bench/measurement.h"

namespace vorn::bench {

enum class Pattern { Random, Sorted, Reversed, SixteenValues };

struct SortCase {
  const char* suffix;  // of the operation's name
  Pattern pattern;
  std::int64_t length;
};
inline constexpr SortCase kSortCases[] = {
    {"", Pattern::Random, 100},
    {"", Pattern::Random, 1'000},
    {"", Pattern::Random, 100'000},
    {"", Pattern::Random, 1'000'000},
    {"", Pattern::Random, 10'000'000},
    {", sorted", Pattern::Sorted, 1'000'000},
    {", reversed", Pattern::Reversed, 1'000'000},
    {", 16 values", Pattern::SixteenValues, 1'000'000},
};

// Elements in all inputs of one iteration: a short input sorted again and again would teach the branch predictor its
// order and flatter every sort that branches.
inline constexpr std::size_t kBatchElements = 400'000;

template <class Element>
Element elementOf(Pattern pattern, std::size_t place, std::size_t length, std::uint64_t draw) {
  switch (pattern) {
    case Pattern::Random:
      if constexpr (std::is_floating_point_v<Element>) {
        return static_cast<Element>(static_cast<double>(static_cast<std::int64_t>(draw)) * 1e-9);
      } else {
        return static_cast<Element>(draw);
      }
    case Pattern::Sorted:
      return static_cast<Element>(place);
    case Pattern::Reversed:
      return static_cast<Element>(length - place);
    case Pattern::SixteenValues:
      return static_cast<Element>(draw % 16);
  }
  return {};
}

// The inputs of one iteration, one after the other.
template <class Element>
std::vector<Element> inputsOf(Pattern pattern, std::size_t length) {
  const std::size_t batch = std::max<std::size_t>(1, kBatchElements / length);
  std::mt19937_64 random(length);
  std::vector<Element> elements(length * batch);
  for (std::size_t i = 0; i < elements.size(); ++i) {
    elements[i] = elementOf<Element>(pattern, i % length, length, random());
  }
  return elements;
}

// Restores the inputs with the clock stopped, then sorts each.
template <class Restore, class Sort>
void measureSorts(benchmark::State& state, std::size_t length, std::size_t inputs, Restore restore, Sort sort) {
  for (auto _ : state) {
    state.PauseTiming();
    restore();
    state.ResumeTiming();
    for (std::size_t i = 0; i < inputs; ++i) sort(i);
    benchmark::ClobberMemory();
  }
  countElements(state, static_cast<std::int64_t>(length * inputs));
}

// Sorts plain memory by `sort(data, length)`.
template <class Element, class Sort>
void sortVectors(benchmark::State& state, Pattern pattern, std::size_t length, Sort sort) {
  const std::vector<Element> inputs = inputsOf<Element>(pattern, length);
  std::vector<Element> work(inputs.size());
  measureSorts(
      state, length, inputs.size() / length, [&] { std::copy(inputs.begin(), inputs.end(), work.begin()); },
      [&](std::size_t i) { sort(work.data() + i * length, length); });
}

// The order that the natives promise: NaN last.
template <class Element>
bool comesBefore(Element left, Element right) {
  if constexpr (std::is_floating_point_v<Element>) {
    return left < right || (std::isnan(right) && !std::isnan(left));
  } else {
    return left < right;
  }
}

template <class Element>
void sortByStandard(Element* data, std::size_t length) {
  std::sort(data, data + length, comesBefore<Element>);
}

}  // namespace vorn::bench
