// The raw-buffer kernels against the loops that a compiler makes of the standard algorithms. Every row reports the time
// for one element as `ns/element`; rows named `standard` are std::accumulate, std::find, std::count and std::reverse.
// Run it several times and keep the minimum: the machine's other work only ever adds.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <numeric>
#include <string>
#include <type_traits>
#include <vector>

#include "collections/core/kernels/reverse_kernels.h"
#include "collections/core/kernels/search_kernels.h"
#include "collections/core/kernels/sum_kernels.h"
#include "collections/core/kernels/vector_path.h"

namespace vorn::collections {
namespace {

// The short ones show what a call costs.
constexpr std::int64_t kSizes[] = {1, 4, 16, 1'000, 1'000'000, 10'000'000};

// A needle that makeElements never gives, and that every kind can hold.
constexpr int kAbsent = 101;

template <class Element>
std::vector<Element> makeElements(std::int64_t n) {
  std::vector<Element> elements(static_cast<std::size_t>(n));
  for (std::size_t i = 0; i < elements.size(); ++i) elements[i] = static_cast<Element>(i * 31 % 97);
  return elements;
}

template <class Element>
const unsigned char* bytesOf(const std::vector<Element>& elements) {
  return reinterpret_cast<const unsigned char*>(elements.data());
}

void reportPerElement(benchmark::State& state, std::int64_t n) {
  state.counters["ns/element"] = benchmark::Counter(
      static_cast<double>(n) * 1e-9, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

// Runs `pass(elements)` on a path for each size, as benchmarks of their own. A pass gives a value that depends on its
// whole work.
template <class Element, class Pass>
void registerSizes(const std::string& name, Pass pass, VectorPath path = vectorPath()) {
  for (const std::int64_t n : kSizes) {
    benchmark::RegisterBenchmark((name + "/" + std::to_string(n)).c_str(), [pass, n, path](benchmark::State& state) {
      setVectorPath(path);
      std::vector<Element> elements = makeElements<Element>(n);
      for (auto step : state) {
        benchmark::DoNotOptimize(elements.data());
        benchmark::DoNotOptimize(pass(elements));
        benchmark::ClobberMemory();
      }
      reportPerElement(state, n);
    });
  }
}

// The same once per path that this machine has.
template <class Element, class Pass>
void registerPaths(const std::string& name, Pass pass) {
  for (const VectorPath path : kVectorPaths) {
    if (isVectorPathAvailable(path)) registerSizes<Element>(name + "/" + vectorPathName(path), pass, path);
  }
}

template <PrimitiveKind kKind, class Element>
void registerSums(const std::string& kind) {
  registerPaths<Element>("sum/" + kind, [](const std::vector<Element>& elements) {
    return sumIntegers(kKind, bytesOf(elements), elements.size());
  });
  registerSizes<Element>("sum/" + kind + "/standard", [](const std::vector<Element>& elements) {
    return std::accumulate(elements.begin(), elements.end(), std::int64_t{0});
  });
}

template <PrimitiveKind kKind, class Element>
void registerSearches(const std::string& kind) {
  registerPaths<Element>("find/" + kind, [](const std::vector<Element>& elements) {
    return findFirstElement(kKind, bytesOf(elements), 0, elements.size(), kAbsent, kAbsent);
  });
  registerSizes<Element>("find/" + kind + "/standard", [](const std::vector<Element>& elements) {
    return std::find(elements.begin(), elements.end(), static_cast<Element>(kAbsent)) - elements.begin();
  });
  registerPaths<Element>("findLast/" + kind, [](const std::vector<Element>& elements) {
    return findLastElement(kKind, bytesOf(elements), elements.size(), kAbsent, kAbsent);
  });
  registerPaths<Element>("count/" + kind, [](const std::vector<Element>& elements) {
    return countElements(kKind, bytesOf(elements), elements.size(), kAbsent, kAbsent);
  });
  registerSizes<Element>("count/" + kind + "/standard", [](const std::vector<Element>& elements) {
    return std::count(elements.begin(), elements.end(), static_cast<Element>(kAbsent));
  });
}

template <class Element>
void registerReversal(const std::string& type) {
  registerPaths<Element>("reverse/" + type, [](std::vector<Element>& elements) {
    reverseElements(reinterpret_cast<unsigned char*>(elements.data()), elements.size(), sizeof(Element));
    return elements.data();
  });
  registerSizes<Element>("reverse/" + type + "/standard", [](std::vector<Element>& elements) {
    std::reverse(elements.begin(), elements.end());
    return elements.data();
  });
}

// Floating sums have one path: the order of the additions is fixed.
template <PrimitiveKind kKind, class Element>
void registerFloatingSum(const std::string& kind) {
  registerSizes<Element>("sum/" + kind + "/in order", [](const std::vector<Element>& elements) {
    return sumFloating(kKind, bytesOf(elements), elements.size());
  });
  registerSizes<Element>("sum/" + kind + "/standard", [](const std::vector<Element>& elements) {
    return std::accumulate(elements.begin(), elements.end(), 0.0);
  });
}

// What the memory gives when nothing is done with it but reading: one 64-bit addition for each cache line.
void registerMemoryRate() {
  registerSizes<std::int32_t>("read/a word of each line", [](const std::vector<std::int32_t>& elements) {
    std::uint64_t total = 0;
    const unsigned char* data = bytesOf(elements);
    const std::size_t bytes = elements.size() * sizeof(std::int32_t);
    for (std::size_t at = 0; at + 8 <= bytes; at += 64) {
      std::uint64_t word;
      std::memcpy(&word, data + at, sizeof word);
      total += word;
    }
    return total;
  });
}

void registerAll() {
  registerMemoryRate();
  registerSums<PrimitiveKind::SByte, std::int8_t>("SByte");
  registerSums<PrimitiveKind::Byte, std::uint8_t>("Byte");
  registerSums<PrimitiveKind::Boolean, std::uint8_t>("Boolean");
  registerSums<PrimitiveKind::Short, std::int16_t>("Short");
  registerSums<PrimitiveKind::UShort, std::uint16_t>("UShort");
  registerSums<PrimitiveKind::Int, std::int32_t>("Int");
  registerSums<PrimitiveKind::UInt, std::uint32_t>("UInt");
  registerSums<PrimitiveKind::Long, std::int64_t>("Long");
  registerFloatingSum<PrimitiveKind::Float, float>("Float");
  registerFloatingSum<PrimitiveKind::Double, double>("Double");
  registerSearches<PrimitiveKind::Byte, std::uint8_t>("Byte");
  registerSearches<PrimitiveKind::Short, std::int16_t>("Short");
  registerSearches<PrimitiveKind::Int, std::int32_t>("Int");
  registerSearches<PrimitiveKind::Long, std::int64_t>("Long");
  registerSearches<PrimitiveKind::Float, float>("Float");
  registerSearches<PrimitiveKind::Double, double>("Double");
  registerReversal<std::uint8_t>("uint8");
  registerReversal<std::uint16_t>("uint16");
  registerReversal<std::int32_t>("int32");
  registerReversal<std::int64_t>("int64");
}

}  // namespace
}  // namespace vorn::collections

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  vorn::collections::registerAll();
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
