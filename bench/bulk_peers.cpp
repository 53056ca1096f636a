#include <glib.h>

#include <algorithm>
#include <memory>
#include <numeric>
#include <random>
#include <vector>

#include "bench/bulk_operations.h"

namespace vorn::bench {

namespace standard {

namespace {

template <class Number>
std::vector<Number> makeVector(std::int64_t elements) {
  std::vector<Number> numbers(static_cast<std::size_t>(elements));
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    numbers[i] = static_cast<Number>(elementAt(static_cast<std::int64_t>(i)));
  }
  return numbers;
}

template <class Number, class Work>
void onVector(benchmark::State& state, std::int64_t elements, Work work) {
  auto numbers = makeVector<Number>(elements);
  for (auto _ : state) {
    keep(&numbers);
    work(numbers);
  }
  countElements(state, elements);
}

}  // namespace

void sumInt(benchmark::State& state, std::int64_t elements) {
  onVector<std::int32_t>(state, elements, [](const auto& numbers) {
    keep(std::accumulate(numbers.begin(), numbers.end(), std::int64_t{0}));
  });
}

void sumLong(benchmark::State& state, std::int64_t elements) {
  onVector<std::int64_t>(state, elements, [](const auto& numbers) {
    keep(std::accumulate(numbers.begin(), numbers.end(), std::int64_t{0}));
  });
}

void sumDouble(benchmark::State& state, std::int64_t elements) {
  onVector<double>(state, elements,
                   [](const auto& numbers) { keep(std::accumulate(numbers.begin(), numbers.end(), 0.0)); });
}

void reverse(benchmark::State& state, std::int64_t elements) {
  onVector<std::int32_t>(state, elements, [](auto& numbers) {
    std::reverse(numbers.begin(), numbers.end());
    keep(numbers.data());
  });
}

void slice(benchmark::State& state, std::int64_t elements) {
  const auto numbers = makeVector<std::int32_t>(elements + 2);
  for (auto _ : state) {
    const std::vector<std::int32_t> part(numbers.begin() + 1, numbers.end() - 1);
    keep(part.data());
  }
  countElements(state, elements);
}

void sliceEverySecond(benchmark::State& state, std::int64_t elements) {
  const auto numbers = makeVector<std::int32_t>(2 * elements);
  for (auto _ : state) {
    std::vector<std::int32_t> part(static_cast<std::size_t>(elements));
    for (std::size_t i = 0; i < part.size(); ++i) part[i] = numbers[2 * i];
    keep(part.data());
  }
  countElements(state, elements);
}

void concat(benchmark::State& state, std::int64_t elements) {
  const auto numbers = makeVector<std::int32_t>(elements / 2);
  for (auto _ : state) {
    std::vector<std::int32_t> both;
    both.reserve(2 * numbers.size());
    both.insert(both.end(), numbers.begin(), numbers.end());
    both.insert(both.end(), numbers.begin(), numbers.end());
    keep(both.data());
  }
  countElements(state, elements);
}

void addAll(benchmark::State& state, std::int64_t elements) {
  const auto source = makeVector<std::int32_t>(elements);
  std::vector<std::int32_t> target;
  for (auto _ : state) {
    target.clear();
    target.insert(target.end(), source.begin(), source.end());
    keep(target.data());
  }
  countElements(state, elements);
}

void shuffle(benchmark::State& state, std::int64_t elements) {
  std::mt19937_64 generator(1);
  onVector<std::int32_t>(state, elements, [&](auto& numbers) {
    std::shuffle(numbers.begin(), numbers.end(), generator);
    keep(numbers.data());
  });
}

void narrow(benchmark::State& state, std::int64_t elements) {
  const auto wide = makeVector<std::int64_t>(elements);
  std::vector<std::int32_t> narrow(wide.size());
  for (auto _ : state) {
    for (std::size_t i = 0; i < wide.size(); ++i) narrow[i] = static_cast<std::int32_t>(wide[i]);
    keep(narrow.data());
  }
  countElements(state, elements);
}

void widen(benchmark::State& state, std::int64_t elements) {
  const auto narrow = makeVector<std::int32_t>(elements);
  std::vector<std::int64_t> wide(narrow.size());
  for (auto _ : state) {
    std::copy(narrow.begin(), narrow.end(), wide.begin());
    keep(wide.data());
  }
  countElements(state, elements);
}

void writeThroughPointer(benchmark::State& state, std::int64_t elements) {
  for (auto _ : state) {
    const auto ints = std::make_unique_for_overwrite<std::int32_t[]>(static_cast<std::size_t>(elements));
    for (std::int64_t i = 0; i < elements; ++i) ints[i] = static_cast<std::int32_t>(i);
    keep(ints.get());
  }
  countElements(state, elements);
}

}  // namespace standard

namespace glib {

namespace {

GArray* makeArray(std::int64_t elements) {
  GArray* numbers = g_array_new(FALSE, FALSE, sizeof(gint32));
  for (std::int64_t i = 0; i < elements; ++i) {
    const gint32 number = elementAt(i);
    g_array_append_val(numbers, number);
  }
  return numbers;
}

}  // namespace

void sumInt(benchmark::State& state, std::int64_t elements) {
  GArray* numbers = makeArray(elements);
  for (auto _ : state) {
    keep(numbers);
    gint64 sum = 0;
    for (guint i = 0; i < numbers->len; ++i) sum += g_array_index(numbers, gint32, i);
    keep(sum);
  }
  g_array_free(numbers, TRUE);
  countElements(state, elements);
}

void slice(benchmark::State& state, std::int64_t elements) {
  GArray* numbers = makeArray(elements + 2);
  for (auto _ : state) {
    GArray* part = g_array_new(FALSE, FALSE, sizeof(gint32));
    g_array_append_vals(part, &g_array_index(numbers, gint32, 1), static_cast<guint>(elements));
    g_array_free(part, TRUE);
  }
  g_array_free(numbers, TRUE);
  countElements(state, elements);
}

void concat(benchmark::State& state, std::int64_t elements) {
  GArray* numbers = makeArray(elements / 2);
  for (auto _ : state) {
    GArray* both = g_array_sized_new(FALSE, FALSE, sizeof(gint32), 2 * numbers->len);
    g_array_append_vals(both, numbers->data, numbers->len);
    g_array_append_vals(both, numbers->data, numbers->len);
    g_array_free(both, TRUE);
  }
  g_array_free(numbers, TRUE);
  countElements(state, elements);
}

void addAll(benchmark::State& state, std::int64_t elements) {
  GArray* source = makeArray(elements);
  GArray* target = g_array_new(FALSE, FALSE, sizeof(gint32));
  for (auto _ : state) {
    g_array_set_size(target, 0);
    g_array_append_vals(target, source->data, source->len);
    keep(target->data);
  }
  g_array_free(target, TRUE);
  g_array_free(source, TRUE);
  countElements(state, elements);
}

}  // namespace glib

}  // namespace vorn::bench
