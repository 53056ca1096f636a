// The raw-buffer kernels on each of their paths beside the loops that a compiler makes of std::accumulate, std::find,
// std::count and std::reverse. "vorn" is the path that this processor gets.

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <string>
#include <vector>

#include "bench/limits.h"
#include "bench/path_columns.h"
#include "bench/program.h"
#include "collections/core/kernels/reverse_kernels.h"
#include "collections/core/kernels/search_kernels.h"
#include "collections/core/kernels/sum_kernels.h"
#include "collections/core/kernels/vector_path.h"

namespace {

using namespace vorn::bench;  // NOLINT(google-build-using-namespace): the program's own namespace
using vorn::collections::PrimitiveKind;
using vorn::collections::VectorPath;

// The short ones show what a call costs.
constexpr std::int64_t kSizes[] = {1, 4, 16, 1'000, 1'000'000, 10'000'000};

// A needle that makeElements never gives, and that every kind can hold.
constexpr int kNeedle = 101;

template <class Element>
std::vector<Element> makeElements(std::int64_t count) {
  std::vector<Element> elements(static_cast<std::size_t>(count));
  for (std::size_t i = 0; i < elements.size(); ++i) elements[i] = static_cast<Element>(i * 31 % 97);
  return elements;
}

template <class Element>
const unsigned char* bytesOf(const std::vector<Element>& elements) {
  return reinterpret_cast<const unsigned char*>(elements.data());
}

// Adds `pass(elements)` on a path for each size. A pass gives a value that depends on its whole work.
template <class Element, class Pass>
void addSizes(Benchmarks& benchmarks, const std::string& operation, const char* library, Pass pass,
              VectorPath path = vorn::collections::vectorPath()) {
  for (const std::int64_t count : kSizes) {
    benchmarks.push_back({operation, library, count, [=](benchmark::State& state) {
                            const vorn::collections::VectorPathScope scope(path);
                            std::vector<Element> elements = makeElements<Element>(count);
                            for (auto _ : state) {
                              keep(elements.data());
                              keep(pass(elements));
                            }
                            countElements(state, count);
                          }});
  }
}

// The same once per path that this machine has.
template <class Element, class Pass>
void addPaths(Benchmarks& benchmarks, const std::string& operation, Pass pass) {
  for (const VectorPath path : vorn::collections::kVectorPaths) {
    if (!vorn::collections::isVectorPathAvailable(path)) continue;
    addSizes<Element>(benchmarks, operation, columnOf(path), pass, path);
  }
}

template <PrimitiveKind kKind, class Element>
void addSums(Benchmarks& benchmarks, const std::string& kind) {
  addPaths<Element>(benchmarks, "sum " + kind, [](const std::vector<Element>& elements) {
    return vorn::collections::sumIntegers(kKind, bytesOf(elements), elements.size());
  });
  addSizes<Element>(benchmarks, "sum " + kind, "C++", [](const std::vector<Element>& elements) {
    return std::accumulate(elements.begin(), elements.end(), std::int64_t{0});
  });
}

// Floating sums have one path: the order of the additions is fixed.
template <PrimitiveKind kKind, class Element>
void addFloatingSum(Benchmarks& benchmarks, const std::string& kind) {
  addSizes<Element>(benchmarks, "sum " + kind, kOwn, [](const std::vector<Element>& elements) {
    return vorn::collections::sumFloating(kKind, bytesOf(elements), elements.size());
  });
  addSizes<Element>(benchmarks, "sum " + kind, "C++", [](const std::vector<Element>& elements) {
    return std::accumulate(elements.begin(), elements.end(), 0.0);
  });
}

template <PrimitiveKind kKind, class Element>
void addSearches(Benchmarks& benchmarks, const std::string& kind) {
  addPaths<Element>(benchmarks, "find " + kind, [](const std::vector<Element>& elements) {
    return vorn::collections::findFirstElement(kKind, bytesOf(elements), 0, elements.size(), kNeedle, kNeedle);
  });
  addSizes<Element>(benchmarks, "find " + kind, "C++", [](const std::vector<Element>& elements) {
    return std::find(elements.begin(), elements.end(), static_cast<Element>(kNeedle)) - elements.begin();
  });
  addPaths<Element>(benchmarks, "findLast " + kind, [](const std::vector<Element>& elements) {
    return vorn::collections::findLastElement(kKind, bytesOf(elements), elements.size(), kNeedle, kNeedle);
  });
  addPaths<Element>(benchmarks, "count " + kind, [](const std::vector<Element>& elements) {
    return vorn::collections::countElements(kKind, bytesOf(elements), elements.size(), kNeedle, kNeedle);
  });
  addSizes<Element>(benchmarks, "count " + kind, "C++", [](const std::vector<Element>& elements) {
    return std::count(elements.begin(), elements.end(), static_cast<Element>(kNeedle));
  });
}

template <class Element>
void addReversal(Benchmarks& benchmarks, const std::string& type) {
  addPaths<Element>(benchmarks, "reverse " + type, [](std::vector<Element>& elements) {
    auto* const bytes = reinterpret_cast<unsigned char*>(elements.data());
    vorn::collections::reverseElements(bytes, elements.size(), sizeof(Element));
    return elements.data();
  });
  addSizes<Element>(benchmarks, "reverse " + type, "C++", [](std::vector<Element>& elements) {
    std::reverse(elements.begin(), elements.end());
    return elements.data();
  });
}

}  // namespace

int main(int argc, char** argv) {
  Benchmarks benchmarks;
  addSums<PrimitiveKind::SByte, std::int8_t>(benchmarks, "SByte");
  addSums<PrimitiveKind::Byte, std::uint8_t>(benchmarks, "Byte");
  addSums<PrimitiveKind::Boolean, std::uint8_t>(benchmarks, "Boolean");
  addSums<PrimitiveKind::Short, std::int16_t>(benchmarks, "Short");
  addSums<PrimitiveKind::UShort, std::uint16_t>(benchmarks, "UShort");
  addSums<PrimitiveKind::Int, std::int32_t>(benchmarks, "Int");
  addSums<PrimitiveKind::UInt, std::uint32_t>(benchmarks, "UInt");
  addSums<PrimitiveKind::Long, std::int64_t>(benchmarks, "Long");
  addFloatingSum<PrimitiveKind::Float, float>(benchmarks, "Float");
  addFloatingSum<PrimitiveKind::Double, double>(benchmarks, "Double");
  addSearches<PrimitiveKind::Byte, std::uint8_t>(benchmarks, "Byte");
  addSearches<PrimitiveKind::Short, std::int16_t>(benchmarks, "Short");
  addSearches<PrimitiveKind::Int, std::int32_t>(benchmarks, "Int");
  addSearches<PrimitiveKind::Long, std::int64_t>(benchmarks, "Long");
  addSearches<PrimitiveKind::Float, float>(benchmarks, "Float");
  addSearches<PrimitiveKind::Double, double>(benchmarks, "Double");
  addReversal<std::uint8_t>(benchmarks, "uint8");
  addReversal<std::uint16_t>(benchmarks, "uint16");
  addReversal<std::int32_t>(benchmarks, "int32");
  addReversal<std::int64_t>(benchmarks, "int64");
  return runBenchmarks(argc, argv,
                       {.topic = "kernels",
                        .libraries = pathColumns({"C++"}),
                        .benchmarks = std::move(benchmarks),
                        .printMore = printPathInUse});
}
