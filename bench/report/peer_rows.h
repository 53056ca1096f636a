// What the rows of the libraries of C++ and C share.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "bench/keep.h"
#include "bench/report/definitions.h"
#include "bench/report/rows.h"

namespace vorn::bench::report {

// An object of a program, in a block of its own.
struct Item {
  Int value;
};

template <class Element>
inline constexpr const char* kNameOf = std::is_same_v<Element, Int>           ? "Int"
                                       : std::is_same_v<Element, Long>        ? "Long"
                                       : std::is_same_v<Element, Double>      ? "Double"
                                       : std::is_same_v<Element, Byte>        ? "Byte"
                                       : std::is_same_v<Element, std::string> ? "String"
                                                                              : "Object";

template <class Element>
using PlainSum = std::conditional_t<std::is_same_v<Element, Double>, double, std::int64_t>;

template <class Element>
std::vector<Element> vectorOf(std::int64_t n) {
  std::vector<Element> elements;
  elements.reserve(static_cast<std::size_t>(n));
  for (std::int64_t i = 0; i < n; ++i) {
    if constexpr (std::is_same_v<Element, std::string>) {
      elements.push_back(textAt(i));
    } else {
      elements.push_back(elementAt<Element>(i));
    }
  }
  return elements;
}

inline std::vector<std::unique_ptr<Item>> itemsOf(std::int64_t n) {
  std::vector<std::unique_ptr<Item>> items;
  for (std::int64_t i = 0; i < n; ++i) items.push_back(std::make_unique<Item>(Item{numberAt(i)}));
  return items;
}

// A row whose runs share a state: `run(state)`, then `checksum(state)` of what it left.
template <class State, class Run, class Checksum>
Ready sharing(std::int64_t operations, State state, Run run, Checksum checksum) {
  const auto shared = std::make_shared<State>(std::move(state));
  return {operations, [=]() mutable { run(*shared); }, [=] { return checksum(*shared); }};
}

// Sorts plain memory by `sort(data, length)`.
template <class Element, auto sort>
MakeReady sortingMemory(Pattern pattern) {
  return [=](std::int64_t n) -> Ready {
    const auto inputs = std::make_shared<std::vector<Element>>(sortInputs<Element>(pattern, n));
    const auto work = std::make_shared<std::vector<Element>>(*inputs);
    const auto length = static_cast<std::size_t>(n);
    return {static_cast<std::int64_t>(inputs->size()),
            [=] {
              for (std::size_t at = 0; at < work->size(); at += length) sort(work->data() + at, length);
            },
            [=] { return digestOf(std::vector<Element>(work->end() - n, work->end())); },
            [=] { std::copy(inputs->begin(), inputs->end(), work->begin()); }};
  };
}

}  // namespace vorn::bench::report
