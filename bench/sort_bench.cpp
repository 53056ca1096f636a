// Sorting unboxed elements: each of our paths against std::sort and, where its library is installed, Highway's vqsort.
//
// Times are processor time per element. A batch holds many inputs of the same length, because a short input sorted
// again and again teaches the branch predictor its order and flatters every sort that branches.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "collections/core/kernels/sort/introsort.h"
#include "collections/core/kernels/sort/primitive_sort.h"
#include "collections/core/kernels/vector_path.h"

#if defined(VORN_BENCH_VQSORT)
#include <hwy/contrib/sort/vqsort.h>
#endif

namespace {

using vorn::collections::VectorPath;

enum class Pattern { Random, Sorted, Reversed, SixteenValues };

constexpr std::size_t kBatchElements = 400'000;

template <class Element>
std::vector<Element> inputsOf(Pattern pattern, std::size_t length, std::size_t batch) {
  std::mt19937_64 random(length);
  std::vector<Element> elements(length * batch);
  for (std::size_t i = 0; i < elements.size(); ++i) {
    const std::size_t place = i % length;
    const std::uint64_t draw = random();
    switch (pattern) {
      case Pattern::Random:
        if constexpr (std::is_floating_point_v<Element>) {
          elements[i] = static_cast<Element>(static_cast<double>(static_cast<std::int64_t>(draw)) * 1e-9);
        } else {
          elements[i] = static_cast<Element>(draw);
        }
        break;
      case Pattern::Sorted:
        elements[i] = static_cast<Element>(place);
        break;
      case Pattern::Reversed:
        elements[i] = static_cast<Element>(length - place);
        break;
      case Pattern::SixteenValues:
        elements[i] = static_cast<Element>(draw % 16);
        break;
    }
  }
  return elements;
}

template <class Element, class Sort>
void measure(benchmark::State& state, Pattern pattern, VectorPath path, Sort sort) {
  const vorn::collections::VectorPathScope scope(path);
  const auto length = static_cast<std::size_t>(state.range(0));
  const std::size_t batch = std::max<std::size_t>(1, kBatchElements / length);
  const std::vector<Element> inputs = inputsOf<Element>(pattern, length, batch);
  std::vector<Element> work(inputs.size());
  for (auto _ : state) {
    state.PauseTiming();
    std::memcpy(work.data(), inputs.data(), inputs.size() * sizeof(Element));
    state.ResumeTiming();
    for (std::size_t i = 0; i < batch; ++i) sort(work.data() + i * length, length);
    benchmark::ClobberMemory();
  }
  state.counters["s_per_element"] = benchmark::Counter(
      static_cast<double>(inputs.size()), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

template <class Element, class Sort>
void add(const std::string& type, const char* sorter, Sort sort, VectorPath path = vorn::collections::vectorPath()) {
  struct Named {
    Pattern pattern;
    const char* name;
  };
  for (const Named& input : {Named{Pattern::Random, "random"}, Named{Pattern::Sorted, "sorted"},
                             Named{Pattern::Reversed, "reversed"}, Named{Pattern::SixteenValues, "16values"}}) {
    auto* bench = benchmark::RegisterBenchmark(("sort/" + type + "/" + input.name + "/" + sorter).c_str(),
                                               [pattern = input.pattern, path, sort](benchmark::State& state) {
                                                 measure<Element>(state, pattern, path, sort);
                                               });
    for (const std::int64_t length : {100, 1'000, 100'000, 1'000'000, 10'000'000}) {
      if (input.pattern == Pattern::Random || length == 1'000'000) bench->Arg(length);
    }
    bench->Unit(benchmark::kMillisecond);
  }
}

template <class Element>
void addAll(const std::string& type) {
  add<Element>(type, "std", [](Element* data, std::size_t count) {
    if constexpr (std::is_floating_point_v<Element>) {
      // The order that the sort promises, NaN last.
      std::sort(data, data + count, [](Element a, Element b) { return a < b || (std::isnan(b) && !std::isnan(a)); });
    } else {
      std::sort(data, data + count);
    }
  });
#if defined(VORN_BENCH_VQSORT)
  if constexpr (sizeof(Element) > 1) {
    add<Element>(type, "vqsort", [](Element* data, std::size_t count) {
      static hwy::Sorter sorter;
      sorter(data, count, hwy::SortAscending());
    });
  }
#endif
  for (const auto& [path, name] : {std::pair{VectorPath::Plain, "plain"}, std::pair{VectorPath::Avx2, "avx2"},
                                   std::pair{VectorPath::Avx512, "avx512"}}) {
    if (!vorn::collections::isVectorPathAvailable(path)) continue;
    const auto sort = [](Element* data, std::size_t count) { vorn::collections::sortPrimitive(data, count); };
    add<Element>(type, name, sort, path);
  }
}

}  // namespace

int main(int argc, char** argv) {
  addAll<std::int8_t>("int8");
  addAll<std::uint16_t>("uint16");
  addAll<std::int32_t>("int32");
  addAll<std::uint32_t>("uint32");
  addAll<std::int64_t>("int64");
  addAll<std::uint64_t>("uint64");
  addAll<float>("float");
  addAll<double>("double");
  add<std::int64_t>("comparator", "introsort", [](std::int64_t* data, std::size_t count) {
    vorn::collections::introsort(data, count, [](std::int64_t a, std::int64_t b) { return a < b; });
  });
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
